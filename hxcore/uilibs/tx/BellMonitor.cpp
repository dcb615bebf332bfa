#include "tx/BellMonitor.h"

#include "plat/LogSrc.h"
#include "tx/TX.h"

#include <X11/XKBlib.h>

namespace tx {
namespace {
plat::LogSrc log("BellMonitor");
} // namespace

BellMonitor::BellMonitor(Callback* callback_) : callback(callback_) {
    int opcode = 0;
    int error = 0;
    int major = XkbMajorVersion;
    int minor = XkbMinorVersion;
    if (!XkbQueryExtension(dpy, &opcode, &eventBase, &error, &major, &minor)) {
        log.info("XKB extension not present - the bell is not heard");
        eventBase = -1;
        return;
    }
    addGlobalEventHandler(this, /*add=*/true);
    selectBell(/*on=*/true);
}

BellMonitor::~BellMonitor() {
    if (eventBase < 0)
        return;
    addGlobalEventHandler(this, /*add=*/false);
    if (dpy)
        selectBell(/*on=*/false);
}

void BellMonitor::selectBell(bool on) {
    XkbSelectEvents(dpy, XkbUseCoreKbd, XkbBellNotifyMask, on ? XkbBellNotifyMask : 0);
    XFlush(dpy);
}

bool BellMonitor::handleEvent(XEvent* event) {
    if (event->type != eventBase || event->xany.send_event)
        return false;
    if (reinterpret_cast<const XkbAnyEvent*>(event)->xkb_type == XkbBellNotify)
        callback->bellRang();
    return false;
}

} // namespace tx
