// The road of an event to its window, and the rules of grabs and modality.
#include "plat/ConfigParameter.h"
#include "plat/SString.h"
#include "tx/InputMethod.h"
#include "tx/InputSources.h"
#include "tx/TX.h"
#include "tx/TXState.h"
#include "tx/TXWindow.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include <sys/time.h>

namespace tx {
namespace {

plat::BoolParameter debugEvents("_DebugEvents", "", /*defaultValue=*/false);

constexpr unsigned anyButton = Button1Mask | Button2Mask | Button3Mask | Button4Mask | Button5Mask;

constexpr std::array<const char*, LASTEvent> eventNames = {
    nullptr,          nullptr,          "KeyPress",         "KeyRelease",
    "ButtonPress",    "ButtonRelease",  "MotionNotify",     "EnterNotify",
    "LeaveNotify",    "FocusIn",        "FocusOut",         "KeymapNotify",
    "Expose",         "GraphicsExpose", "NoExpose",         "VisibilityNotify",
    "CreateNotify",   "DestroyNotify",  "UnmapNotify",      "MapNotify",
    "MapRequest",     "ReparentNotify", "ConfigureNotify",  "ConfigureRequest",
    "GravityNotify",  "ResizeRequest",  "CirculateNotify",  "CirculateRequest",
    "PropertyNotify", "SelectionClear", "SelectionRequest", "SelectionNotify",
    "ColormapNotify", "ClientMessage",  "MappingNotify",    "GenericEvent"};

plat::String eventName(int type) {
    const bool known = type >= 2 && type < LASTEvent;
    return known ? plat::String(eventNames[static_cast<size_t>(type)]) : plat::strFormat("%d", type);
}

plat::String eventDetail(const XEvent& event) {
    switch (event.type) {
    case ButtonPress:
    case ButtonRelease:
    case MotionNotify:
    case EnterNotify:
    case LeaveNotify: // all five begin alike
        return plat::strFormat("%d,%d", event.xbutton.x, event.xbutton.y);
    case Expose: {
        const XExposeEvent& e = event.xexpose;
        return plat::strFormat("%d,%d to %d,%d", e.x, e.y, e.x + e.width, e.y + e.height);
    }
    case ConfigureNotify: {
        const XConfigureEvent& e = event.xconfigure;
        return plat::strFormat("%d,%d to %d,%d", e.x, e.y, e.x + e.width, e.y + e.height);
    }
    default:
        return "";
    }
}

void printEvent(const XEvent& event) {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char text[32];
    const size_t len = std::strftime(text, sizeof(text), "%H:%M:%S", &local);
    plat::SString::format(text + len, sizeof(text) - len, ".%03d", static_cast<int>(now.tv_usec / 1000));
    std::fprintf(stderr, "%s %s window %lx %s\n", text, eventName(event.type).c_str(), event.xany.window,
                 eventDetail(event).c_str());
}

/// Key, button and motion events share the layout of their first fields.
void readdress(XEvent* event, const TXWindow* grabber) {
    const rfb::Point corner = grabber->getRootPosition();
    event->xkey.x = event->xkey.x_root - corner.x;
    event->xkey.y = event->xkey.y_root - corner.y;
    event->xkey.window = grabber->win();
}

/// Null drops the event.
TXWindow* routeInput(XEvent* event, TXWindow* target, bool targetGrabs, TXWindow* grabber) {
    if (targetGrabs)
        return target;
    if (grabber) {
        readdress(event, grabber);
        return grabber;
    }
    TXWindow* modal = topModal();
    return modal && modal != target && !target->isBesideModal() ? nullptr : target;
}

bool isDeleteMessage(const XEvent* event) {
    return event->type == ClientMessage && event->xclient.format == 32 &&
           event->xclient.message_type == wmProtocols() &&
           static_cast<Atom>(event->xclient.data.l[0]) == wmDeleteWindow();
}

TXWindow* route(XEvent* event, TXWindow* target) {
    switch (event->type) {
    case MotionNotify:
        if (!(event->xmotion.state & anyButton))
            return target;
        [[fallthrough]];
    case ButtonPress:
    case ButtonRelease:
        return routeInput(event, target, target->grabsPointer(), pointerGrabber());
    case KeyPress:
    case KeyRelease:
        return routeInput(event, target, target->grabsKeyboard(), keyboardGrabber());
    case ClientMessage: {
        TXWindow* modal = topModal();
        const bool drop = isDeleteMessage(event) && !target->grabsPointer() && modal && modal != target;
        return drop ? nullptr : target;
    }
    default:
        return target;
    }
}

void refreshMapping(XMappingEvent* event) {
    XRefreshKeyboardMapping(event);
    if (event->request == MappingPointer)
        state().pointerMap.clear(); // read again when next asked for
}

TXWindow* latestGrabber(bool (TXWindow::*grabs)() const) {
    const auto& list = state().grabWindows;
    const auto found = std::find_if(list.rbegin(), list.rend(), [grabs](const TXWindow* window) {
        return window->isMapped() && (window->*grabs)();
    });
    return found == list.rend() ? nullptr : *found;
}

} // namespace

TXWindow* topModal() { return state().modalWindows.empty() ? nullptr : state().modalWindows.back(); }

TXWindow* pointerGrabber() { return latestGrabber(&TXWindow::grabsPointer); }

TXWindow* keyboardGrabber() { return latestGrabber(&TXWindow::grabsKeyboard); }

void handleXEvent(XEvent* event) {
    if (debugEvents.value())
        printEvent(*event);
    if (event->type == GenericEvent) { // of an extension, and of no window that could be read here
        InputSources::instance().handleGenericEvent(&event->xcookie);
        return;
    }
    if (InputMethod::instance().filterEvent(*event))
        return;
    if (event->type == MappingNotify)
        refreshMapping(&event->xmapping);
    if (event->type == FocusIn)
        hasFocus = true;
    if (event->type == FocusOut)
        hasFocus = false;
    state().globalHandlers.dispatch(event, /*stopAtTrue=*/false);
    if (event->xany.window == rootWindow) {
        state().rootHandlers.dispatch(event, /*stopAtTrue=*/false);
        return;
    }
    TXWindow* target = findWindow(event->xany.window);
    if (target)
        target = route(event, target);
    if (target)
        target->handleWindowEvent(event);
}

} // namespace tx
