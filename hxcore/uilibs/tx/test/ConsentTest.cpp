// Input of every origin at a window that grants access.
#include "XTest.h"
#include "plat/Configuration.h"
#include "plat/DynamicFn.h"
#include "plat/test/CapturedLog.h"
#include "tx/TXWRoot.h"
#include "wvw/WBevelButton.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstring>

namespace txtest {
namespace {

constexpr const char* xtst = "Xtst[6]";
const plat::DynamicFn<decltype(::XTestFakeKeyEvent)> fakeKey{xtst, "XTestFakeKeyEvent"};
const plat::DynamicFn<decltype(::XTestFakeButtonEvent)> fakeButton{xtst, "XTestFakeButtonEvent"};
const plat::DynamicFn<decltype(::XTestFakeMotionEvent)> fakeMotion{xtst, "XTestFakeMotionEvent"};
const plat::DynamicFn<decltype(::XTestFakeDeviceKeyEvent)> fakeDeviceKey{xtst, "XTestFakeDeviceKeyEvent"};
const plat::DynamicFn<decltype(::XListInputDevices)> listDevices{"Xi[6]", "XListInputDevices"};
const plat::DynamicFn<decltype(::XFreeDeviceList)> freeDevices{"Xi[6]", "XFreeDeviceList"};
const plat::DynamicFn<decltype(::XOpenDevice)> openDevice{"Xi[6]", "XOpenDevice"};

struct ConsentTest : XTest, wvw::WInputHandler {
    ConsentTest() {
        button.setSize({100, 60});
        button.setHandler(this);
        button.setDeliberate(true);
        parent.setSizeFromRoot();
        parent.setPosition(100, 100);
        park();
    }
    ~ConsentTest() override {
        key(XK_Return, false);
        plat::Configuration::global().find("LocalConsentOnly", /*inChildren=*/true)->unset(plat::PriorityPreference);
        button.setHandler(nullptr);
    }

    // wvw::WInputHandler
    bool activated(wvw::Widget*) override {
        activations++;
        return true;
    }

    void localOnly() { plat::Configuration::global().set("LocalConsentOnly", "1"); }
    void show() {
        parent.show(true);
        pump();
        focus(parent.win());
    }
    void focus(Window window) {
        XSetInputFocus(other.display, window, RevertToPointerRoot, tx::currentTime);
        pump();
    }
    /// The server itself waits before it makes the event.
    void key(KeySym keysym, bool down, unsigned long afterMs = 0) {
        fakeKey(other.display, static_cast<unsigned>(XKeysymToKeycode(other.display, keysym)), down ? True : False,
                afterMs);
        pump();
    }
    void press(KeySym keysym, unsigned long afterMs = 0) {
        key(keysym, true, afterMs);
        key(keysym, false);
    }
    void click(unsigned long afterMs = 0) {
        fakeMotion(other.display, 0, 150, 130, 0UL);
        fakeButton(other.display, 1U, True, afterMs);
        fakeButton(other.display, 1U, False, 0UL);
        pump();
    }
    void park() {
        fakeMotion(other.display, 0, 600, 500, 0UL);
        other.sync();
    }
    /// A key of the server's own keyboard.
    void deviceKey(KeySym keysym) {
        int count = 0;
        XDeviceInfo* list = listDevices(other.display, &count);
        XDevice* device = nullptr;
        for (int i = 0; i < count; i++) {
            if (list[i].use == IsXExtensionKeyboard && !std::strstr(list[i].name, "XTEST"))
                device = openDevice(other.display, list[i].id);
        }
        freeDevices(list);
        ASSERT_NE(device, nullptr);
        const auto code = static_cast<unsigned>(XKeysymToKeycode(other.display, keysym));
        int noAxes = 0;
        for (const int down : {True, False})
            fakeDeviceKey(other.display, device, code, down, &noAxes, 0, 5UL); // later than the last release
        pump();
    }
    int taken() { return std::exchange(activations, 0); }

    wvw::WLabelButton button{nullptr, "Accept"};
    tx::TXWParent parent{&button, nullptr, /*unmanaged=*/true};
    int activations = 0;
};

TEST_F(ConsentTest, APressCountsOnceTheWindowHasBeenInView) {
    show();
    click();
    press(XK_Return);
    EXPECT_EQ(taken(), 0);
    click(/*afterMs=*/510);
    EXPECT_EQ(taken(), 1);
    press(XK_Return); // keys take longer: somebody may be typing
    EXPECT_EQ(taken(), 0);
    press(XK_Return, /*afterMs=*/510);
    EXPECT_EQ(taken(), 1);

    // Shown again, it is new.
    parent.show(false);
    show();
    click();
    EXPECT_EQ(taken(), 0);
}

TEST_F(ConsentTest, WhatIsHeldSinceBeforeNeverAnswers) {
    XkbSetAutoRepeatRate(other.display, XkbUseCoreKbd, 100, 50);
    key(XK_Return, true);
    show();
    key(XK_F5, true, /*afterMs=*/1200); // another key: and the first repeats no more
    key(XK_F5, false);
    key(XK_Return, false);
    EXPECT_EQ(taken(), 0);
    press(XK_Return, /*afterMs=*/5);
    EXPECT_EQ(taken(), 1);
    key(XK_Return, true, /*afterMs=*/5);
    key(XK_Shift_L, true, /*afterMs=*/300); // while it repeats
    EXPECT_EQ(taken(), 1);
    key(XK_Shift_L, false);
}

TEST_F(ConsentTest, WhatClientsSendDoesNotReachIt) {
    show();
    press(XK_F5, /*afterMs=*/1010);
    const auto code = static_cast<unsigned>(XKeysymToKeycode(other.display, XK_Return));
    other.sendKey(parent.win(), KeyPress, code);
    other.sendKey(parent.win(), KeyRelease, code);
    other.sendPointer(parent.win(), ButtonPress, 50, 30, 1);
    other.sendPointer(parent.win(), MotionNotify, 51, 30, 0, Button1Mask);
    other.sendPointer(parent.win(), ButtonRelease, 50, 30, 1, Button1Mask);
    pump();
    EXPECT_EQ(taken(), 0);
    EXPECT_FALSE(button.isHovered() || button.isPressed());
    press(XK_Return);
    EXPECT_EQ(taken(), 1);
}

// Somebody is writing when a window manager hands the keyboard over.
TEST_F(ConsentTest, TypingThatGoesOnNeverAnswers) {
    show();
    focus(other.root());
    press(XK_F5, /*afterMs=*/1010);
    focus(parent.win());
    for (const KeySym typed : {XK_space, XK_Return, XK_space})
        press(typed, /*afterMs=*/450);
    EXPECT_EQ(taken(), 0);
    press(XK_Return, /*afterMs=*/1010);
    EXPECT_EQ(taken(), 1);

    // A click into the window says whom the keys are for.
    focus(other.root());
    click();
    focus(parent.win());
    press(XK_Return, /*afterMs=*/5);
    EXPECT_EQ(taken(), 2);
}

TEST_F(ConsentTest, WhatWasHiddenIsNewOnceItIsSeen) {
    show();
    XSetWindowAttributes unmanaged{};
    unmanaged.override_redirect = True;
    const Window cover = other.makeWindow();
    XChangeWindowAttributes(other.display, cover, CWOverrideRedirect, &unmanaged);
    XMoveResizeWindow(other.display, cover, 90, 90, 200, 200);
    XMapRaised(other.display, cover);
    press(XK_Return, /*afterMs=*/1010);
    EXPECT_EQ(taken(), 0); // nobody can see what it would answer
    XUnmapWindow(other.display, cover);
    click(); // meant for what lay there
    EXPECT_EQ(taken(), 0);
    click(/*afterMs=*/510);
    press(XK_Return);
    EXPECT_EQ(taken(), 2);
}

TEST_F(ConsentTest, ByPolicyInjectedInputIsIgnoredAndSaidSo) {
    localOnly();
    plat::CapturedLog log;
    show();
    const size_t popups = tx::TXWRoot::instance().popupCount();
    press(XK_Return, /*afterMs=*/1010);
    click();
    EXPECT_EQ(taken(), 0);
    EXPECT_FALSE(button.isPressed());
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), popups + 1); // the hint
    EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(),
                            [](const std::string& line) { return line.find("input has no effect") != line.npos; }),
              1); // once, however much comes
    deviceKey(XK_Return);
    EXPECT_EQ(taken(), 1);
    fire(6000);
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), popups);
}

// A program that isn't driven by events, such as inspection, is no person either.
TEST_F(ConsentTest, WithoutInputOnlyThePolicyForbids) {
    show();
    EXPECT_TRUE(button.confirmAct());
    localOnly();
    EXPECT_FALSE(button.confirmAct());
}

} // namespace
} // namespace txtest
