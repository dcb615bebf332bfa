#include "tx/WindowWatcher.h"

#include "tx/ErrorCatcher.h"
#include "tx/TX.h"

namespace tx {

WindowWatcher::WindowWatcher(Callback* target) : callback(target) { addGlobalEventHandler(this, /*add=*/true); }

WindowWatcher::~WindowWatcher() {
    addGlobalEventHandler(this, /*add=*/false);
    watch(none);
}

bool WindowWatcher::watch(Window target) {
    if (window != none && dpy && !findWindow(window)) {
        const ErrorCatcher catcher(100);
        XSelectInput(dpy, window, NoEventMask);
    }
    window = none;
    if (target == none)
        return true;
    ErrorCatcher catcher(100);
    XSelectInput(dpy, target, StructureNotifyMask);
    if (catcher.failed())
        return false;
    window = target;
    return true;
}

bool WindowWatcher::handleEvent(XEvent* event) {
    // A SendEvent with this type would be another client's claim, not the server's word.
    if (event->type != DestroyNotify || event->xdestroywindow.window != window || window == none ||
        event->xany.send_event)
        return false;
    const Window gone = window;
    window = none;
    callback->windowDestroyed(this, gone); // may delete this
    return false;
}

} // namespace tx
