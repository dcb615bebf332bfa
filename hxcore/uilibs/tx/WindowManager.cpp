#include "tx/WindowManager.h"

#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/TXWindow.h"

#include <algorithm>

namespace tx {
namespace {

constexpr Atom resourceManager = XA_RESOURCE_MANAGER;

/// Whether the property of format 32 and this type lists `value`.
bool listHas(Window window, Atom property, Atom type, Atom value) {
    const Property list = getWindowProperty(window, property, type);
    const auto items = list.longs();
    return std::find(items.begin(), items.end(), value) != items.end();
}

/// Xlib hands the four numbers out as longs with the sign extended; a work area is sane only within these bounds.
bool parseArea(std::span<const unsigned long> numbers, const rfb::Rect& screen, rfb::Rect* out) {
    const auto number = [numbers](size_t i) { return static_cast<long>(numbers[i]); };
    for (size_t i = 0; i < 4; i++) {
        if (number(i) < -32768 || number(i) > 32767)
            return false;
    }
    const rfb::Rect area = rfb::Rect::xywh(static_cast<int>(number(0)), static_cast<int>(number(1)),
                                           static_cast<int>(number(2)), static_cast<int>(number(3)))
                               .intersect(screen);
    if (area.isEmpty())
        return false;
    *out = area;
    return true;
}

} // namespace

Window WindowManager::findWMWindow() {
    unsigned long window = none;
    if (!getCardinalProperty(rootWindow, netSupportingWmCheck(), XA_WINDOW, &window))
        return none;
    // A manager that died leaves the property behind: the window must exist and name itself.
    ErrorCatcher catcher(100);
    unsigned long itself = none;
    const bool named = getCardinalProperty(window, netSupportingWmCheck(), XA_WINDOW, &itself);
    return named && itself == window && !catcher.failed() ? window : none;
}

bool WindowManager::isWMRunning() {
    if (findWMWindow() != none)
        return true;
    XWindowAttributes attributes;
    return XGetWindowAttributes(dpy, rootWindow, &attributes) &&
           (attributes.all_event_masks & SubstructureRedirectMask) != 0;
}

bool WindowManager::isNetHintSupported(Atom hint) {
    return findWMWindow() != none && listHas(rootWindow, netSupported(), XA_ATOM, hint);
}

void WindowManager::setNetWMState(TXWindow* window, bool add, Atom state1, Atom state2) {
    if (!window->isMapped())
        return;
    constexpr long fromApplication = 1; // source indication of EWMH
    sendRootClientMessage(window->win(), netWmState(), add ? 1 : 0, static_cast<long>(state1),
                          static_cast<long>(state2), fromApplication);
}

bool WindowManager::isHidden(Window window, bool* out) {
    ErrorCatcher catcher(100);
    const Property states = getWindowProperty(window, netWmState(), XA_ATOM);
    if (states.exists() && states.format() == 32) {
        const auto items = states.longs();
        *out = std::find(items.begin(), items.end(), netWmStateHidden()) != items.end();
        return true;
    }
    unsigned long wmStateValue = NormalState;
    if (!getCardinalProperty(window, wmState(), wmState(), &wmStateValue))
        return false;
    *out = wmStateValue != NormalState;
    return true;
}

void WindowManager::setMotifHints(TXWindow* window, const long hints[5]) {
    XChangeProperty(dpy, window->win(), motifWmHints(), motifWmHints(), 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(hints), 5);
}

rfb::Rect WindowManager::getWorkArea() {
    const rfb::Rect screen({0, 0}, getScreenSize());
    unsigned long desktop = 0;
    getCardinalProperty(rootWindow, netCurrentDesktop(), XA_CARDINAL, &desktop);
    const Property areas = getWindowProperty(rootWindow, netWorkArea(), XA_CARDINAL);
    const auto numbers = areas.longs();
    rfb::Rect area = screen;
    if (desktop < numbers.size() / 4)
        parseArea(numbers.subspan(desktop * 4, 4), screen, &area);
    return area;
}

bool WindowManager::isWMAtom(Atom atom) {
    return atom == netSupported() || atom == netSupportingWmCheck() || atom == mitPriorityColors() ||
           atom == motifWmInfo() || atom == resourceManager;
}

bool WindowManager::isWMChangeEvent(const XEvent* event) {
    return event->type == PropertyNotify && event->xproperty.window == rootWindow && isWMAtom(event->xproperty.atom);
}

} // namespace tx
