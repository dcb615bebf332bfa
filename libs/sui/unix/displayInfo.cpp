#include "sui/unix/displayInfo.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "tx/Randr.h"
#include "tx/TX.h"

namespace sui {
namespace {
plat::LogSrc log("DisplayInfo");

DisplayInfo::Display displayOf(const tx::Output& output, int bitsPerPixel) {
    DisplayInfo::Display display;
    display.id = output.name;
    display.description = output.monitorName.isEmpty() ? plat::String("Unknown") : output.monitorName;
    display.primary = output.primary;
    display.builtIn = output.builtIn;
    display.active = output.active;
    display.bitsPerPixel = bitsPerPixel;
    display.width = output.rect.width();
    display.height = output.rect.height();
    display.x = output.rect.tl.x;
    display.y = output.rect.tl.y;
    return display;
}
} // namespace

DisplayInfo readDisplayInfo() {
    DisplayInfo info;
    info.serverRelease = VendorRelease(tx::dpy);
    info.serverVendor = ServerVendor(tx::dpy);
    try {
        const int bitsPerPixel = tx::screenBitsPerPixel();
        for (const tx::Output& output : tx::listOutputs())
            info.displays.push_back(displayOf(output, bitsPerPixel));
    } catch (const plat::Exception& e) {
        log.info("The displays can't be listed: %s", e.what());
    }
    return info;
}

} // namespace sui
