#include "tx/TXWindow.h"

#include "os/AppInfo.h"
#include "plat/Assert.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/TXState.h"
#include "tx/TXWindowIcon.h"
#include "tx/WindowManager.h"
#include "tx/latin1.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <unistd.h>

namespace tx {
namespace {

constexpr int maxSize = 32767; // a window's size is 16 bits on the wire, its coordinates have a sign

void writeText(Window window, Atom property, const char* text) {
    XChangeProperty(dpy, window, property, utf8String(), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(text), plat::strLen(text));
}

void writeLongs(Window window, Atom property, Atom type, const long* values, int count) {
    XChangeProperty(dpy, window, property, type, 32, PropModeReplace, reinterpret_cast<const unsigned char*>(values),
                    count);
}

} // namespace

TXWindow::TXWindow(int width, int height, TXWindow* parent, int borderWidth, bool overrideRedirect_, bool create)
    : width_(std::clamp(width, 1, maxSize)), height_(std::clamp(height, 1, maxSize)),
      overrideRedirect(overrideRedirect_) {
    sizeHints.flags = 0;
    cutText.setSecure(true);
    if (create)
        createWindow(parent, borderWidth, getSharedPixel(SharedPixel::Background), getSharedPixel(SharedPixel::Black),
                     CopyFromParent, nullptr);
}

TXWindow::~TXWindow() {
    for (EventScope* under = scope; under; under = under->outer)
        under->window = nullptr;
    for (const auto& [id, window] : state().windows) {
        if (window->transientFor == this)
            window->transientFor = nullptr;
    }
    if (!win_)
        return;
    setGrab(/*pointer=*/false, /*keyboard=*/false, none, /*ownerEvents=*/true);
    state().windows.erase(win_);
    std::erase(state().modalWindows, this);
    forgetSelections();
    if (dpy)
        XDestroyWindow(dpy, win_);
}

void TXWindow::createWindow(TXWindow* parent, int borderWidth, unsigned long background, unsigned long borderPixel,
                            int depth, Visual* visual) {
    ASSERT(!win_);
    XSetWindowAttributes attributes{};
    attributes.background_pixel = background;
    attributes.border_pixel = borderPixel;
    attributes.override_redirect = overrideRedirect ? True : False;
    attributes.colormap = colormap;
    win_ = XCreateWindow(dpy, parent ? parent->win() : rootWindow, 0, 0, static_cast<unsigned>(width_),
                         static_cast<unsigned>(height_), static_cast<unsigned>(borderWidth), depth, InputOutput, visual,
                         CWBackPixel | CWBorderPixel | CWOverrideRedirect | CWColormap, &attributes);
    state().windows[win_] = this;
    addEventMask(PropertyChangeMask | FocusChangeMask);
    if (parent)
        map();
}

void TXWindow::setName(const char* name) {
    const std::string latin1 = utf8ToLatin1(name ? name : "");
    XStoreName(dpy, win_, latin1.c_str());
    XSetIconName(dpy, win_, latin1.c_str());
    writeText(win_, netWmName(), name);
    writeText(win_, netWmIconName(), name);
}

void TXWindow::setWMProperties(const char* name, TXDeleteWindowCallback* callback, const char* className) {
    if (overrideRedirect)
        setOverrideRedirect(false);
    deleteWindowCallback = callback;
    wmPropertiesSet = true;
    const char* program = os::AppInfo::app(/*emptyIfUnset=*/true);
    plat::String resourceClass = className;
    if (!className)
        resourceClass = plat::strFormat("%s-%s", os::AppInfo::group(/*emptyIfUnset=*/true), program);
    XClassHint classHint{const_cast<char*>(program), resourceClass.get()}; // Xlib only reads them
    XSetWMProperties(dpy, win_, nullptr, nullptr, nullptr, 0, &sizeHints, nullptr, &classHint);
    writtenHints = sizeHints;
    writeWMHints();
    setName(name);
    Atom protocols[2] = {wmTakeFocus(), wmDeleteWindow()};
    XSetWMProtocols(dpy, win_, protocols, callback ? 2 : 1);
    addEventMask(StructureNotifyMask);
    const long pid = getpid();
    writeLongs(win_, netWmPid(), XA_CARDINAL, &pid, 1);
    const std::vector<long>& icon = getWindowIcon();
    if (!icon.empty())
        writeLongs(win_, netWmIcon(), XA_CARDINAL, icon.data(), static_cast<int>(icon.size()));
}

/// Removes the hint if either is 0.
void TXWindow::setSizeHint(long flag, int width, int height) {
    if (width == 0 || height == 0) {
        sizeHints.flags &= ~flag;
        return;
    }
    sizeHints.flags |= flag;
    (flag == PMaxSize ? sizeHints.max_width : sizeHints.min_width) = width;
    (flag == PMaxSize ? sizeHints.max_height : sizeHints.min_height) = height;
}

void TXWindow::setMaxSize(int width, int height) {
    setSizeHint(PMaxSize, width, height);
    writeNormalHints();
}

void TXWindow::setMinSize(int width, int height) {
    setSizeHint(PMinSize, width, height);
    writeNormalHints();
}

void TXWindow::setFixedSize(bool fixed) {
    fixedSize = fixed;
    fixHints(fixed);
}

void TXWindow::fixHints(bool fix) {
    setSizeHint(PMinSize, fix ? width_ : 0, height_);
    setSizeHint(PMaxSize, fix ? width_ : 0, height_);
    writeNormalHints();
}

void TXWindow::writeNormalHints() {
    // A manager looks at the property anew whenever it is written, and at those of a window that is to be mapped.
    if (!wmPropertiesSet || !mapAsked || std::memcmp(&writtenHints, &sizeHints, sizeof sizeHints) == 0)
        return;
    XSetWMNormalHints(dpy, win_, &sizeHints);
    writtenHints = sizeHints;
}

void TXWindow::writeWMHints() {
    if (!wmPropertiesSet)
        return;
    XWMHints hints{};
    hints.flags = InputHint | StateHint | (urgent ? XUrgencyHint : 0);
    hints.input = inputHint ? True : False;
    hints.initial_state = initialState;
    XSetWMHints(dpy, win_, &hints);
}

void TXWindow::setTransientFor(TXWindow* window) {
    if (window == transientFor)
        return;
    transientFor = window;
    if (window)
        XSetTransientForHint(dpy, win_, window->win());
    else
        XDeleteProperty(dpy, win_, XA_WM_TRANSIENT_FOR);
}

void TXWindow::setOverrideRedirect(bool on) {
    overrideRedirect = on;
    XSetWindowAttributes attributes{};
    attributes.override_redirect = on ? True : False;
    XChangeWindowAttributes(dpy, win_, CWOverrideRedirect, &attributes);
}

void TXWindow::setUrgent(bool on) {
    urgent = on;
    writeWMHints();
}

void TXWindow::setInitialIconic(bool iconic) {
    initialState = iconic ? IconicState : NormalState;
    writeWMHints();
}

void TXWindow::setInputHint(bool input) {
    inputHint = input;
    writeWMHints();
}

void TXWindow::setPosition(int x, int y, bool move) {
    sizeHints.flags |= PPosition;
    sizeHints.x = x; // obsolete fields, which some managers still read (ICCCM 4.1.2.3)
    sizeHints.y = y;
    writeNormalHints();
    if (move)
        XMoveWindow(dpy, win_, x, y);
}

void TXWindow::centreOnScreen() {
    const rfb::Point screen = getScreenSize();
    setPosition((screen.x - width_ - 10) / 2, (screen.y - height_ - 30) / 2);
}

void TXWindow::resize(int width, int height) {
    width = std::clamp(width, 1, maxSize);
    height = std::clamp(height, 1, maxSize);
    const EventScope under(this);
    if (mapped) {
        // The manager may have answered already: its word comes first, or the old size would come back as new.
        XSync(dpy, False);
        XEvent last;
        if (drainConfigure(&last))
            takeOverdueSize(last.xconfigure, width, height);
        if (!under.alive())
            return;
    }
    if (width == width_ && height == height_)
        return;
    // A manager holds a window that it has to the hints.
    if (fixedSize)
        fixHints(false);
    resizeRequest = NextRequest(dpy);
    XResizeWindow(dpy, win_, static_cast<unsigned>(width), static_cast<unsigned>(height));
    changeSize(width, height);
    if (under.alive() && fixedSize)
        fixHints(true);
}

/// What is not wanted any more is only noted: resized() comes with the size that is.
void TXWindow::takeOverdueSize(const XConfigureEvent& e, int wantedWidth, int wantedHeight) {
    if (e.width == wantedWidth && e.height == wantedHeight) {
        takeConfigure(e);
        return;
    }
    width_ = e.width;
    height_ = e.height;
    moved();
}

void TXWindow::changeSize(int width, int height) {
    width_ = width;
    height_ = height;
    resized();
}

void TXWindow::setGeometry(const char* geometry, const rfb::Rect& defaultRect) {
    const plat::String byDefault =
        plat::strFormat("%dx%d+%d+%d", defaultRect.width(), defaultRect.height(), defaultRect.tl.x, defaultRect.tl.y);
    const bool given = geometry && *geometry;
    int x = 0;
    int y = 0;
    int w = 0;
    int h = 0;
    int gravity = 0;
    XWMGeometry(dpy, DefaultScreen(dpy), given ? geometry : nullptr, byDefault.c_str(), /*border=*/0, &sizeHints, &x,
                &y, &w, &h, &gravity);
    sizeHints.flags |= PWinGravity;
    sizeHints.win_gravity = gravity;
    setPosition(x, y);
    resize(w, h);
}

void TXWindow::setBorderWidth(int width) { XSetWindowBorderWidth(dpy, win_, static_cast<unsigned>(width)); }

rfb::Point TXWindow::getRootPosition() const {
    int x = 0;
    int y = 0;
    Window child = none;
    XTranslateCoordinates(dpy, win_, rootWindow, 0, 0, &x, &y, &child);
    return {x, y};
}

void TXWindow::map() {
    mapAsked = true;
    writeNormalHints();
    XMapWindow(dpy, win_);
}

void TXWindow::unmap() {
    const EventScope under(this);
    mapAsked = false;
    XUnmapWindow(dpy, win_);
    std::erase(state().modalWindows, this);
    if (wmPropertiesSet && !overrideRedirect) {
        // So that the manager withdraws an icon as well (ICCCM 4.1.4).
        XEvent event{};
        event.xunmap.type = UnmapNotify;
        event.xunmap.event = rootWindow;
        event.xunmap.window = win_;
        XSendEvent(dpy, rootWindow, False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
    }
    XSync(dpy, False);
    handleMapped(false);
}

void TXWindow::iconify() {
    if (mapped) {
        sendRootClientMessage(win_, wmChangeState(), IconicState);
        return;
    }
    setInitialIconic(true);
    map();
}

void TXWindow::deiconify() {
    const EventScope under(this);
    // Only an icon is withdrawn first. Where the manager has yet to map the window, it may do so between our withdrawal
    // and the second map, which then asks for nothing, and take the withdrawal for the last word.
    bool hidden = false;
    if (mapAsked && WindowManager::isHidden(win_, &hidden) && hidden)
        unmap();
    if (!under.alive())
        return;
    setInitialIconic(false);
    map();
}

void TXWindow::raise() {
    XRaiseWindow(dpy, win_);
    activeWindow();
}

void TXWindow::activeWindow() {
    constexpr long fromApplication = 1; // source indication of EWMH
    sendRootClientMessage(win_, netActiveWindow(), fromApplication);
}

void TXWindow::setFocus(Time time) {
    if (!mapped)
        return;
    const ErrorCatcher catcher(100); // it may be unmapped by the manager at this moment
    XSetInputFocus(dpy, win_, RevertToParent, time);
}

void TXWindow::selectEvents(long mask) {
    eventMask = mask;
    XSelectInput(dpy, win_, eventMask);
}

void TXWindow::addEventMask(long mask) {
    if ((eventMask | mask) != eventMask)
        selectEvents(eventMask | mask);
}

void TXWindow::removeEventMask(long mask) {
    if (eventMask & mask)
        selectEvents(eventMask & ~mask);
}

void TXWindow::addEventHandler(TXEventHandler* handler, bool add) {
    if (add)
        eventHandlers.add(handler);
    else
        eventHandlers.remove(handler);
}

void TXWindow::pushModal() {
    std::erase(state().modalWindows, this);
    state().modalWindows.push_back(this);
}

bool TXWindow::isModal() const {
    const auto& list = state().modalWindows;
    return std::find(list.begin(), list.end(), this) != list.end();
}

void TXWindow::drawBevel(GC gc, int x, int y, int w, int h, int bevel, unsigned long face, unsigned long light,
                         unsigned long dark) {
    XSetForeground(dpy, gc, face);
    XFillRectangle(dpy, win_, gc, x + bevel, y + bevel, static_cast<unsigned>(std::max(w - 2 * bevel, 0)),
                   static_cast<unsigned>(std::max(h - 2 * bevel, 0)));
    for (int i = 0; i < bevel; i++) {
        const int right = x + w - 1 - i;
        const int bottom = y + h - 1 - i;
        XSetForeground(dpy, gc, light);
        XDrawLine(dpy, win_, gc, x + i, y + i, right, y + i);
        XDrawLine(dpy, win_, gc, x + i, y + i, x + i, bottom);
        XSetForeground(dpy, gc, dark);
        XDrawLine(dpy, win_, gc, x + i, bottom, right, bottom);
        XDrawLine(dpy, win_, gc, right, y + i, right, bottom);
    }
    XSetForeground(dpy, gc, getSharedPixel(SharedPixel::Black)); // the default GC is shared
}

// Events.

void TXWindow::handleWindowEvent(XEvent* event) {
    const EventScope under(this);
    if (handleOwnEvent(event) && under.alive())
        eventHandlers.dispatch(event, /*stopAtTrue=*/true);
}

bool TXWindow::handleOwnEvent(XEvent* event) {
    switch (event->type) {
    case FocusIn:
    case FocusOut:
        handleFocus(event->type == FocusIn);
        break;
    case MapNotify:
    case UnmapNotify:
        if (event->xmap.window == win_ && !event->xany.send_event) // a client's claim is no map
            handleMapped(event->type == MapNotify);
        break;
    case ConfigureNotify:
        if (event->xconfigure.window == win_)
            handleConfigure(event);
        break;
    case PropertyNotify:
        handleProperty(event->xproperty);
        break;
    case SelectionClear:
        handleSelectionClear(event->xselectionclear);
        break;
    case SelectionRequest:
        handleSelectionRequest(event->xselectionrequest);
        break;
    case SelectionNotify:
        handleSelectionNotify(&event->xselection);
        break;
    case ClientMessage:
        return handleClientMessage(event->xclient);
    default:
        break;
    }
    return true;
}

void TXWindow::handleFocus(bool in) {
    focused = in;
    focusChanged();
}

void TXWindow::handleMapped(bool nowMapped) {
    if (mapped == nowMapped)
        return;
    TXWindow* const oldPointer = pointerGrabber();
    TXWindow* const oldKeyboard = keyboardGrabber();
    mapped = nowMapped;
    applyGrabs(oldPointer, oldKeyboard); // only a mapped window has its grab
    mapChanged();
}

// Only what the server itself sent: others may send any size.
bool TXWindow::drainConfigure(XEvent* last) {
    bool any = false;
    XEvent event;
    while (XCheckTypedWindowEvent(dpy, win_, ConfigureNotify, &event)) {
        const XConfigureEvent& e = event.xconfigure;
        if (e.window != win_ || e.send_event) // of a child, or a claim
            continue;
        *last = event;
        any = true;
    }
    return any;
}

/// A manager sends one itself after a move, and where it refused a resize (ICCCM 4.1.5): the server knows whether it
/// tells the truth.
void TXWindow::correctSize(XConfigureEvent* synthetic) const {
    if (synthetic->width == width_ && synthetic->height == height_)
        return;
    Window root = none;
    int x = 0;
    int y = 0;
    unsigned width = 0;
    unsigned height = 0;
    unsigned border = 0;
    unsigned depth = 0;
    const ErrorCatcher catcher(100);
    if (!XGetGeometry(dpy, win_, &root, &x, &y, &width, &height, &border, &depth))
        return;
    synthetic->width = static_cast<int>(width);
    synthetic->height = static_cast<int>(height);
}

void TXWindow::handleConfigure(XEvent* event) {
    if (!drainConfigure(event) && event->xany.send_event)
        correctSize(&event->xconfigure);
    takeConfigure(event->xconfigure);
}

void TXWindow::takeConfigure(const XConfigureEvent& e) {
    const bool outOfDate = resizeRequest && static_cast<long>(e.serial - resizeRequest) < 0;
    const bool possible = e.width >= 1 && e.height >= 1 && e.width <= maxSize && e.height <= maxSize;
    const bool changed = !outOfDate && possible && (e.width != width_ || e.height != height_);
    const EventScope under(this);
    if (changed) {
        width_ = e.width;
        height_ = e.height;
    }
    moved();
    if (changed && under.alive())
        resized();
}

bool TXWindow::handleClientMessage(const XClientMessageEvent& event) {
    if (event.message_type != wmProtocols() || event.format != 32)
        return true;
    const Atom protocol = static_cast<Atom>(event.data.l[0]);
    if (protocol == wmDeleteWindow() && deleteWindowCallback) {
        deleteWindowCallback->deleteWindow(this);
        return false;
    }
    if (protocol == wmTakeFocus() && mapped)
        takeFocus(static_cast<Time>(event.data.l[1]));
    return true;
}

} // namespace tx
