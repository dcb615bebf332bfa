// Keys and buttons that the X server makes, for tests of who did what.
#pragma once

#include "plat/DynamicFn.h"
#include "tx/xlib.h"

#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>

#include <cstring>
#include <initializer_list>

namespace txtest {

/// Injects input by the XTEST extension, on a connection other than the one that is tested. `afterMs` is the time that
/// the server itself waits before it makes the event.
class TestInput {
public:
    explicit TestInput(Display* display_) : display(display_) {}

    unsigned keycode(KeySym keysym) const { return static_cast<unsigned>(XKeysymToKeycode(display, keysym)); }
    void key(KeySym keysym, bool down, unsigned long afterMs = 0) const {
        fakeKey(display, keycode(keysym), down ? True : False, afterMs);
        XSync(display, False);
    }
    void moveTo(int x, int y) const {
        fakeMotion(display, 0, x, y, 0UL);
        XSync(display, False);
    }
    void button(bool down, unsigned long afterMs = 0) const {
        fakeButton(display, 1U, down ? True : False, afterMs);
        XSync(display, False);
    }
    /// A key of the server's own keyboard, down and up. False if it has none.
    bool deviceKey(KeySym keysym) const {
        int count = 0;
        XDeviceInfo* list = listDevices(display, &count);
        XDevice* device = nullptr;
        for (int i = 0; i < count; i++) {
            if (!device && list[i].use == IsXExtensionKeyboard && !std::strstr(list[i].name, "XTEST"))
                device = openDevice(display, list[i].id);
        }
        freeDevices(list);
        int noAxes = 0;
        for (const int down : {True, False}) {
            if (device)
                fakeDeviceKey(display, device, keycode(keysym), down, &noAxes, 0, 5UL); // later than the last release
        }
        XSync(display, False);
        if (device)
            closeDevice(display, device);
        return device != nullptr;
    }

private:
    static constexpr const char* xtst = "Xtst[6]";
    static constexpr const char* xi = "Xi[6]";
    static inline const plat::DynamicFn<decltype(::XTestFakeKeyEvent)> fakeKey{xtst, "XTestFakeKeyEvent"};
    static inline const plat::DynamicFn<decltype(::XTestFakeButtonEvent)> fakeButton{xtst, "XTestFakeButtonEvent"};
    static inline const plat::DynamicFn<decltype(::XTestFakeMotionEvent)> fakeMotion{xtst, "XTestFakeMotionEvent"};
    static inline const plat::DynamicFn<decltype(::XTestFakeDeviceKeyEvent)> fakeDeviceKey{xtst,
                                                                                           "XTestFakeDeviceKeyEvent"};
    static inline const plat::DynamicFn<decltype(::XListInputDevices)> listDevices{xi, "XListInputDevices"};
    static inline const plat::DynamicFn<decltype(::XFreeDeviceList)> freeDevices{xi, "XFreeDeviceList"};
    static inline const plat::DynamicFn<decltype(::XOpenDevice)> openDevice{xi, "XOpenDevice"};
    static inline const plat::DynamicFn<decltype(::XCloseDevice)> closeDevice{xi, "XCloseDevice"};

    Display* display;
};

} // namespace txtest
