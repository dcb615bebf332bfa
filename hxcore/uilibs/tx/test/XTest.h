// What tests against a real X server share: the display, a clock, another client, a widget that records.
#pragma once

#include "plat/Timer.h"
#include "plat/monoTime.h"
#include "registerBuiltInResources.h"
#include "rfb/Colour.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"
#include "tx/TX.h"
#include "tx/TXWParent.h"
#include "wvw/Widget.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace txtest {

inline int64_t clockTicks = 1;
inline int64_t readClock(int64_t, bool*) { return clockTicks; }

/// A second client on the same server, for what others may do to us.
class Client {
public:
    Client() : display(XOpenDisplay(nullptr)) {}
    ~Client() { XCloseDisplay(display); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    Window root() const { return DefaultRootWindow(display); }
    Window makeWindow() {
        const Window window = XCreateSimpleWindow(display, root(), 0, 0, 10, 10, 0, 0, 0);
        XSelectInput(display, window, PropertyChangeMask);
        return window;
    }
    Atom atom(const char* name) { return XInternAtom(display, name, False); }
    void send(Window to, XEvent event) {
        XSync(tx::dpy, False); // our window is there
        XSendEvent(display, to, False, 0, &event);
        sync();
    }
    void sendKey(Window to, int type, unsigned keycode, unsigned state = 0) {
        XEvent event{};
        event.xkey.type = type;
        event.xkey.window = to;
        event.xkey.root = root();
        event.xkey.keycode = keycode;
        event.xkey.state = state;
        event.xkey.same_screen = True;
        send(to, event);
    }
    void sendPointer(Window to, int type, int x, int y, unsigned button, unsigned state = 0, int rootX = 0,
                     int rootY = 0) {
        XEvent event{};
        event.xbutton.type = type;
        event.xbutton.window = to;
        event.xbutton.root = root();
        event.xbutton.x = x;
        event.xbutton.y = y;
        event.xbutton.x_root = rootX;
        event.xbutton.y_root = rootY;
        event.xbutton.state = state;
        if (type != MotionNotify)
            event.xbutton.button = button;
        event.xbutton.same_screen = True;
        send(to, event);
    }
    void sendDelete(Window to, int format = 32) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = to;
        event.xclient.message_type = atom("WM_PROTOCOLS");
        event.xclient.format = format;
        event.xclient.data.l[0] = static_cast<long>(atom("WM_DELETE_WINDOW"));
        send(to, event);
    }
    void setProperty(Window window, const char* name, const char* type, int format, const void* data, int count) {
        XChangeProperty(display, window, atom(name), atom(type), format, PropModeReplace,
                        static_cast<const unsigned char*>(data), count);
        sync();
    }
    void removeProperty(Window window, const char* name) {
        XDeleteProperty(display, window, atom(name));
        sync();
    }
    void sync() { XSync(display, False); }

    Display* display;
};

/// Records what reaches it.
class FakeWidget : public wvw::Widget {
public:
    FakeWidget(int width, int height) { setSize({width, height}); }

    void paint(rfb::FullFramePixelBuffer& pb) override {
        painted.push_back(pb.getRect());
        rfb::fillRect(pb, pb.getRect(), rfb::pixelFromColour(pb.getPf(), colour, pb.getColourMap()));
    }
    bool handleKey(uint32_t keysym, bool down) override {
        keys.push_back((down ? "+" : "-") + std::to_string(keysym));
        if (onKey)
            onKey();
        return true;
    }
    void mouseEvent(const rfb::Point& position, int mask) override {
        mouse.push_back(std::to_string(position.x) + "," + std::to_string(position.y) + ":" + std::to_string(mask));
        wvw::Widget::mouseEvent(position, mask);
        if (onMouse)
            onMouse();
    }
    bool acceptsFocus() override { return true; }

    rfb::Colour colour{200, 16, 32};
    std::vector<rfb::Rect> painted;
    std::vector<std::string> keys;
    std::vector<std::string> mouse;
    std::function<void()> onKey;
    std::function<void()> onMouse;
};

using Strings = std::vector<std::string>;

/// The display is open, the clock stands still unless moved, and timers fire only in `fire`.
class XTest : public testing::Test {
protected:
    XTest() {
        [[maybe_unused]] static const bool once = (registerBuiltInResources(), true);
        plat::setTimeSource(readClock);
        tx::TXInit();
        timers = std::make_unique<plat::TimerManager>(/*nested=*/plat::TimerManager::current() != nullptr);
    }
    ~XTest() override {
        timers.reset();
        plat::setTimeSource(nullptr);
    }

    /// Handles everything that has happened up to now on both sides.
    void pump() {
        // A turn takes a bounded number of events.
        for (int round = 0; round < 3 || (round < 1000 && XPending(tx::dpy)); round++) {
            other.sync();
            XSync(tx::dpy, False);
            tx::processEvents();
        }
    }
    void fire(int ms) {
        clockTicks += ms * plat::ticksPerMs;
        timers->processTimers();
    }
    /// What the server shows of a window that nothing covers, as far as its format can tell.
    rfb::Colour shown(Window window, int x, int y) {
        XSync(tx::dpy, False);
        XImage* image = XGetImage(other.display, window, x, y, 1, 1, AllPlanes, ZPixmap);
        XColor colour{};
        colour.pixel = XGetPixel(image, 0, 0);
        XDestroyImage(image);
        XQueryColor(other.display, DefaultColormap(other.display, DefaultScreen(other.display)), &colour);
        return {colour.red >> 8, colour.green >> 8, colour.blue >> 8};
    }
    static bool isNear(const rfb::Colour& a, const rfb::Colour& b) {
        constexpr int tolerance = 44; // half a step of a cube of 4
        return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
    }
    bool isIdle() { return timers->timeUntilNext() == -1; }

    Client other;
    std::unique_ptr<plat::TimerManager> timers;
};

} // namespace txtest
