#include "tx/TX.h"

#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "tx/ErrorCatcher.h"
#include "tx/InputMethod.h"
#include "tx/TXImage.h"
#include "tx/TXState.h"
#include "tx/TXWRoot.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace tx {

Display* dpy = nullptr;
Window rootWindow = none;
Colormap colormap = none;
bool hasFocus = false;

namespace {

plat::LogSrc log("TX");

plat::BoolParameter ownCmap("owncmap",
                            "Use a private colormap rather than the default one, to prevent other applications of "
                            "being starved of colors.",
                            /*defaultValue=*/false);
plat::BoolParameter xSync("xsync", "Enable X synchronization for debugging", /*defaultValue=*/false);
plat::IntParameter decorationWidth("WMDecorationWidth", "Width of window manager decoration around a window", 6,
                                   /*isAdvanced=*/false, /*owner=*/nullptr, 0);
plat::IntParameter decorationHeight("WMDecorationHeight", "Height of window manager decoration around a window", 24,
                                    /*isAdvanced=*/false, /*owner=*/nullptr, 0);
plat::BoolParameter noGrab("_NoGrab", "", /*defaultValue=*/false);

constexpr int maxTimeWindows = 10;
constexpr int maxWindowLevels = 64; // another client may nest its own without end
constexpr int eventBudgetMs = 20;   // then timers and other descriptors have their turn

/// Remembers when the cut buffer last changed.
class CutBufferEventHandler : public TXEventHandler {
public:
    bool handleEvent(XEvent* event) override {
        if (event->type == PropertyNotify && event->xproperty.atom == XA_CUT_BUFFER0)
            state().cutBufferTime = event->xproperty.time;
        return false;
    }
};

CutBufferEventHandler& cutBufferHandler() {
    static CutBufferEventHandler handler;
    return handler;
}

/// Keeps up with the screen, whose size a user of the session may change at any time; Xlib itself does not.
class ScreenSizeHandler : public TXEventHandler {
public:
    bool handleEvent(XEvent* event) override {
        const XConfigureEvent& e = event->xconfigure;
        if (event->type == ConfigureNotify && e.window == rootWindow && !e.send_event)
            state().screenSize = {e.width, e.height};
        return false;
    }
};

ScreenSizeHandler& screenSizeHandler() {
    static ScreenSizeHandler handler;
    return handler;
}

/// Xlib calls this once the connection is broken; it must not return.
///
/// Whatever runs now, a destructor or an exit handler, might ask the server something, so the process ends here. Files
/// are replaced only when they are whole, so what was being saved keeps its old contents.
int connectionLost(Display*) {
    log.error("connection to X server \"%s\" lost", XDisplayName(nullptr));
    std::fflush(nullptr);
    _exit(1);
}

Display* openDisplay() {
    if (Display* display = XOpenDisplay(nullptr))
        return display;
    setenv("XAUTHLOCALHOSTNAME", "localhost", 1);
    return XOpenDisplay(nullptr);
}

void selectRootEvents() {
    long mask = 0;
    for (const auto& [handler, handlerMask] : state().rootMasks)
        mask |= handlerMask;
    XSelectInput(dpy, rootWindow, mask);
}

void makeTimeWindow() {
    XSetWindowAttributes attributes{};
    attributes.event_mask = PropertyChangeMask;
    attributes.override_redirect = True;
    state().timeWindow = XCreateWindow(dpy, rootWindow, -10, -10, 1, 1, 0, CopyFromParent, InputOutput, nullptr,
                                       CWEventMask | CWOverrideRedirect, &attributes);
}

Bool isTimeEvent(Display*, XEvent* event, XPointer) {
    return event->type == PropertyNotify && event->xproperty.window == state().timeWindow && !event->xany.send_event;
}

bool askForTime(Time* out) {
    const unsigned char nothing = 0;
    const Window window = state().timeWindow;
    XChangeProperty(dpy, window, timestampAtom(), XA_STRING, 8, PropModeAppend, &nothing, 0);
    XSync(dpy, False);
    XEvent event;
    bool gotTime = false;
    // Only the newest counts: another client may change our property as well.
    while (XCheckIfEvent(dpy, &event, isTimeEvent, nullptr))
        gotTime = true;
    if (gotTime)
        *out = event.xproperty.time;
    return gotTime;
}

bool enumLevels(EnumWindowsCallback* callback, Window parent, int levels) {
    Window root = none;
    Window grandparent = none;
    Window* children = nullptr;
    unsigned count = 0;
    {
        ErrorCatcher catcher(100);
        if (!XQueryTree(dpy, parent, &root, &grandparent, &children, &count))
            return true; // it has gone
    }
    bool goOn = true;
    for (unsigned i = 0; goOn && i < count; i++) {
        ErrorCatcher catcher(100);
        goOn = callback->nextWindow(children[i]) && (levels == 1 || enumLevels(callback, children[i], levels - 1));
    }
    if (children)
        XFree(children);
    return goOn;
}

/// A server that takes no shared memory after all said so in an error: ask for all pictures anew.
void recoverFromShmFailure() {
    state().shmFailed = false;
    TXImage::setSharedAllowed(/*allowed=*/false);
    for (const auto& [id, window] : state().windows)
        XClearArea(dpy, id, 0, 0, 0, 0, True);
}

} // namespace

TXState& state() {
    static TXState& shared = *new TXState;
    return shared;
}

void TXInit(const char* displayName) {
    if (dpy)
        return;
    if (displayName && *displayName)
        setenv("DISPLAY", displayName, 1);
    std::signal(SIGPIPE, SIG_IGN); // a lost server is told by the write, not by a signal
    Display* display = openDisplay();
    if (!display)
        throw plat::ExceptionFmt("unable to open display \"%s\"", XDisplayName(nullptr));
    dpy = display;
    XSetIOErrorHandler(connectionLost);
    XSetErrorHandler(ErrorCatcher::handleError);
    if (xSync.value())
        XSynchronize(dpy, True);
    rootWindow = DefaultRootWindow(dpy);
    colormap = DefaultColormap(dpy, DefaultScreen(dpy));
    if (ownCmap.value())
        colormap = XCreateColormap(dpy, rootWindow, DefaultVisual(dpy, DefaultScreen(dpy)), AllocNone);
    getDefaultFont();
    state().screenSize = {DisplayWidth(dpy, DefaultScreen(dpy)), DisplayHeight(dpy, DefaultScreen(dpy))};
    addRootEventHandler(&cutBufferHandler(), /*add=*/true, PropertyChangeMask);
    addRootEventHandler(&screenSizeHandler(), /*add=*/true, StructureNotifyMask);
}

void TXClose() {
    if (!dpy)
        return;
    addRootEventHandler(&cutBufferHandler(), /*add=*/false);
    addRootEventHandler(&screenSizeHandler(), /*add=*/false);
    InputMethod::instance().close();
    TXState& shared = state();
    if (shared.defaultFont)
        XFreeFont(dpy, shared.defaultFont);
    if (shared.defaultGC)
        XFreeGC(dpy, shared.defaultGC);
    XCloseDisplay(dpy); // cursors go with it
    shared.cursors.clear();
    shared.atoms.fill(none);
    shared.atomNames.clear();
    shared.pointerMap.clear();
    shared.sharedPixelsKnown = false;
    shared.defaultFont = nullptr;
    shared.defaultGC = nullptr;
    shared.timeWindow = none;
    shared.requestsAtRead = 0;
    shared.cutBufferTime = 0;
    dpy = nullptr;
    rootWindow = none;
    colormap = none;
    hasFocus = false;
}

namespace {

/// Sends what waits to be sent, and reads the socket empty, when there is a reason to.
bool hasEvents(bool arrived) {
    if (XQLength(dpy) == 0 && (arrived || NextRequest(dpy) != state().requestsAtRead)) {
        XPending(dpy);
        state().requestsAtRead = NextRequest(dpy);
    }
    return XQLength(dpy) > 0;
}

} // namespace

bool processEvents(bool arrived) {
    const int64_t deadline = plat::monoTicks() + eventBudgetMs * plat::ticksPerMs;
    bool timeLeft = true;
    while (timeLeft && hasEvents(std::exchange(arrived, false))) {
        XEvent event;
        XNextEvent(dpy, &event);
        handleXEvent(&event);
        timeLeft = plat::monoTicks() < deadline;
    }
    TXWRoot::instance().reap();
    if (state().shmFailed)
        recoverFromShmFailure();
    return !timeLeft && XQLength(dpy) > 0;
}

void addGlobalEventHandler(TXEventHandler* handler, bool add) {
    if (add)
        state().globalHandlers.add(handler);
    else
        state().globalHandlers.remove(handler);
}

void addRootEventHandler(TXEventHandler* handler, bool add, long mask) {
    TXState& shared = state();
    if (add) {
        shared.rootHandlers.add(handler);
        shared.rootMasks[handler] = mask;
    } else {
        shared.rootHandlers.remove(handler);
        shared.rootMasks.erase(handler);
    }
    if (dpy)
        selectRootEvents();
}

Time getServerTime() {
    Time time = currentTime;
    bool gotTime = false;
    for (int tries = 0; tries < maxTimeWindows && !gotTime; tries++) {
        if (state().timeWindow == none)
            makeTimeWindow();
        gotTime = askForTime(&time);
        if (gotTime)
            continue;
        // Another client has destroyed the window, or made its property one that takes no text.
        const ErrorCatcher catcher(100);
        XDestroyWindow(dpy, state().timeWindow);
        state().timeWindow = none;
    }
    ASSERT(gotTime);
    return time;
}

void sendClientMessage(Window window, long mask, Window destination, Atom message, long l0, long l1, long l2, long l3,
                       long l4) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = message;
    event.xclient.format = 32;
    const long values[5] = {l0, l1, l2, l3, l4};
    std::copy(values, values + 5, event.xclient.data.l);
    XSendEvent(dpy, destination, False, mask, &event);
}

void sendRootClientMessage(Window window, Atom message, long l0, long l1, long l2, long l3, long l4) {
    sendClientMessage(window, SubstructureNotifyMask | SubstructureRedirectMask, rootWindow, message, l0, l1, l2, l3,
                      l4);
}

rfb::Point getPointerPosition() {
    Window root = none;
    Window child = none;
    int rootX = 0;
    int rootY = 0;
    int x = 0;
    int y = 0;
    unsigned mask = 0;
    XQueryPointer(dpy, rootWindow, &root, &child, &rootX, &rootY, &x, &y, &mask);
    return {rootX, rootY};
}

rfb::Point getScreenSize() { return state().screenSize; }

rfb::Point getDecorationSize() { return {decorationWidth.value(), decorationHeight.value()}; }

bool enumWindows(EnumWindowsCallback* callback, Window parent, bool recursive) {
    return enumLevels(callback, parent, recursive ? maxWindowLevels : 1);
}

Cursor getFontCursor(unsigned shape) {
    Cursor& cursor = state().cursors[shape];
    if (cursor == none)
        cursor = XCreateFontCursor(dpy, shape);
    return cursor;
}

GC getDefaultGC() {
    GC& gc = state().defaultGC;
    if (!gc) {
        XGCValues values{};
        values.foreground = getSharedPixel(SharedPixel::Black);
        values.background = getSharedPixel(SharedPixel::Background);
        values.graphics_exposures = False;
        gc = XCreateGC(dpy, rootWindow, GCForeground | GCBackground | GCGraphicsExposures, &values);
    }
    return gc;
}

XFontStruct* getDefaultFont() {
    XFontStruct*& font = state().defaultFont;
    if (font)
        return font;
    font = XLoadQueryFont(dpy, "-*-helvetica-medium-r-*-*-12-*-*-*-*-*-*-*");
    if (!font)
        font = XLoadQueryFont(dpy, "fixed");
    if (!font) {
        std::fputs("Failed to load any font\n", stderr);
        std::exit(1);
    }
    XSetFont(dpy, getDefaultGC(), font->fid);
    return font;
}

Time getCutBufferTime() { return state().cutBufferTime; }

int getPointerMap(unsigned char out[8]) {
    auto& map = state().pointerMap;
    if (map.empty()) {
        map.resize(8);
        const int count = XGetPointerMapping(dpy, map.data(), 8);
        map.resize(static_cast<size_t>(std::clamp(count, 0, 8)));
    }
    std::copy(map.begin(), map.end(), out);
    return static_cast<int>(map.size());
}

bool isGrabSuppressed() { return noGrab.value(); }

TXWindow* findWindow(Window id) {
    const auto found = state().windows.find(id);
    return found == state().windows.end() ? nullptr : found->second;
}

} // namespace tx
