#include "sui/DisplayInfoStr.h"

#include "plat/DString.h"

namespace sui {
namespace {
void append(plat::DString& out, int number, const DisplayInfo::Display& display) {
    out.format("- Display %d", number);
    if (display.primary)
        out.append(", Primary");
    if (display.builtIn)
        out.append(", Built In");
    if (!display.active)
        out.append(", Inactive");
    out.append("\n");
    out.format("    - DisplayDevice ID: %s\n", display.id.c_str());
    out.format("    - Description: %s\n", display.description.c_str());
    out.format("    - %d Bits Per Pixel\n", display.bitsPerPixel);
    out.format("    - Resolution: %d x %d\n", display.width, display.height);
    out.format("    - Origin: (%d,%d)\n", display.x, display.y);
}
} // namespace

plat::String displayInfoStr(const DisplayInfo& info) {
    plat::DString out;
    out.format("- Displays Connected: %d\n", static_cast<int>(info.displays.size()));
    int number = 1;
    for (const DisplayInfo::Display& display : info.displays)
        append(out, number++, display);
    out.format("X Server Release %d, %s\n", info.serverRelease, info.serverVendor.c_str());
    out.format("Desktop environment: %s\n", info.desktop.c_str());
    return out.take();
}

} // namespace sui
