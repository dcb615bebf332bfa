// Input of every origin at a window that grants access.
#include "TestInput.h"
#include "XTest.h"
#include "plat/Configuration.h"
#include "plat/test/CapturedLog.h"
#include "tx/InputSources.h"
#include "tx/TXWRoot.h"
#include "wvw/WBevelButton.h"

#include <X11/XKBlib.h>
#include <X11/keysym.h>

namespace txtest {
namespace {

struct ConsentTest : XTest, wvw::WInputHandler {
    ConsentTest() {
        button.setSize({100, 60});
        button.setHandler(this);
        button.setDeliberate(true);
        parent.setSizeFromRoot();
        parent.setPosition(100, 100);
        input.moveTo(600, 500);
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
    void key(KeySym keysym, bool down, unsigned long afterMs = 0) {
        input.key(keysym, down, afterMs);
        pump();
    }
    void press(KeySym keysym, unsigned long afterMs = 0) {
        key(keysym, true, afterMs);
        key(keysym, false);
    }
    void click(unsigned long afterMs = 0) {
        input.moveTo(150, 130);
        input.button(true, afterMs);
        input.button(false);
        pump();
    }
    int taken() { return std::exchange(activations, 0); }

    TestInput input{other.display};
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
    const unsigned code = input.keycode(XK_Return);
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

// Motions are taken together, and a forged one brings buttons in its state.
TEST_F(ConsentTest, AForgedMotionIsNotTakenForTheServers) {
    show();
    press(XK_F5, /*afterMs=*/1010);
    for (const unsigned state : {unsigned{Button1Mask}, 0U}) {
        input.moveTo(state ? 150 : 151, 130);
        other.sendPointer(parent.win(), MotionNotify, 50, 30, 0, state);
        pump();
    }
    EXPECT_EQ(taken(), 0);
    EXPECT_FALSE(button.isPressed());
}

// A press that counts for nothing begins nothing either: neither by moving on with it nor by losing the keyboard.
TEST_F(ConsentTest, WhatFollowsAPressIsWorthAsMuchAsThePress) {
    show();
    input.moveTo(150, 130);
    struct : wvw::WMouseInputHandler {
        bool mouseMove(const rfb::Point&, wvw::Widget* widget) override {
            confirmed = widget->confirmAct();
            return false;
        }
        bool confirmed = false;
    } mover;
    button.setMouseHandler(&mover);
    for (const bool early : {true, false}) {
        input.button(true, early ? 0 : 510);
        input.moveTo(early ? 151 : 152, 130);
        pump();
        EXPECT_EQ(mover.confirmed, !early);
        input.button(false);
        pump();
        EXPECT_EQ(taken(), early ? 0 : 1);
    }
    input.moveTo(150, 130); // with nothing held
    pump();
    EXPECT_FALSE(mover.confirmed);
    button.setMouseHandler(nullptr);
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
    EXPECT_EQ(log.count("input has no effect"), 1);              // once, however much comes
    EXPECT_TRUE(input.deviceKey(XK_Return));
    pump();
    EXPECT_EQ(taken(), 1);
    fire(6000);
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), popups);
}

// Without the extension nobody can tell, so that the policy turns all of it down; and says so.
TEST_F(ConsentTest, WhereSourcesAreUnknownThePolicyForbidsAll) {
    if (tx::InputSources::instance().watch(true)) {
        tx::InputSources::instance().watch(false);
        GTEST_SKIP() << "this server tells them";
    }
    show();
    press(XK_Return, /*afterMs=*/1010);
    EXPECT_EQ(taken(), 1);
    parent.show(false);
    localOnly();
    const plat::CapturedLog log;
    const size_t popups = tx::TXWRoot::instance().popupCount();
    show();
    EXPECT_TRUE(log.has("0 ConsentGuard: this X server can't tell local input from injected input: only a time-out "
                        "can decide"));
    press(XK_Return, /*afterMs=*/1010);
    click();
    EXPECT_EQ(taken(), 0);
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), popups + 1); // the hint
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
