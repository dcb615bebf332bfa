#include "tx/TXWParent.h"

#include "XTest.h"
#include "hxutil/DragDropData.h"
#include "rfb/Region.h"
#include "tx/TXWRoot.h"
#include "wvw/WMenu.h"

#include <X11/keysym.h>

namespace txtest {
namespace {

/// A popup window with one widget, mapped and painted.
struct TXWParentTest : XTest {
    TXWParentTest() { show(); }

    void show() {
        parent->show(true);
        pump();
        widget.painted.clear();
    }
    unsigned keycode(KeySym keysym) { return XKeysymToKeycode(tx::dpy, keysym); }
    void press(unsigned code, unsigned state = 0) {
        other.sendKey(parent->win(), KeyPress, code, state);
        pump();
    }
    void release(unsigned code, unsigned state = 0) {
        other.sendKey(parent->win(), KeyRelease, code, state);
        pump();
    }
    void sendFocusOut() {
        XEvent event{};
        event.xfocus.type = FocusOut;
        event.xfocus.window = parent->win();
        other.send(parent->win(), event);
        pump();
    }
    static std::string down(KeySym keysym) { return "+" + std::to_string(keysym); }
    static std::string up(KeySym keysym) { return "-" + std::to_string(keysym); }

    FakeWidget widget{100, 80};
    std::unique_ptr<tx::TXWParent> parent = std::make_unique<tx::TXWParent>(&widget, nullptr, true);
};

TEST_F(TXWParentTest, TheTreeIsAttachedExactlyWhileMapped) {
    EXPECT_TRUE(widget.isAttached());
    parent->show(false);
    EXPECT_FALSE(widget.isAttached());
    parent->show(true);
    pump();
    EXPECT_TRUE(widget.isAttached());
    EXPECT_EQ(widget.painted, (std::vector<rfb::Rect>{{0, 0, 100, 80}})); // once, in one piece
    parent.reset();
    EXPECT_FALSE(widget.isAttached());
}

TEST_F(TXWParentTest, WhatIsPaintedReachesTheScreen) {
    EXPECT_TRUE(isNear(shown(parent->win(), 99, 79), widget.colour));
    widget.colour = {0, 255, 255};
    widget.invalidate(rfb::Region({10, 10, 20, 20}));
    fire(10);
    EXPECT_TRUE(isNear(shown(parent->win(), 10, 19), {0, 255, 255}));
    EXPECT_TRUE(isNear(shown(parent->win(), 9, 19), {200, 16, 32}));
}

TEST_F(TXWParentTest, RepaintsOfTenMillisecondsAreOnePass) {
    widget.invalidate(rfb::Region({0, 0, 10, 10}));
    widget.invalidate(rfb::Region({0, 0, 10, 10}));
    fire(9);
    widget.invalidate(rfb::Region({5, 5, 20, 20}));
    EXPECT_TRUE(widget.painted.empty());
    fire(1);
    ASSERT_FALSE(widget.painted.empty());
    int area = 0;
    for (const rfb::Rect& rect : widget.painted)
        area += rect.area();
    EXPECT_EQ(area, 10 * 10 + 15 * 15 - 5 * 5); // no pixel twice
    EXPECT_TRUE(isIdle());
}

TEST_F(TXWParentTest, NothingChangedMeansNothingPainted) {
    widget.invalidate(rfb::Region());
    widget.setSize({100, 80});
    EXPECT_TRUE(isIdle());
    widget.invalidate(rfb::Region({200, 200, 300, 300})); // outside the image
    fire(10);
    EXPECT_TRUE(widget.painted.empty());
}

TEST_F(TXWParentTest, AnExposePaintsWhatWasWaitingToo) {
    widget.invalidate(rfb::Region({0, 0, 10, 10}));
    XClearArea(other.display, parent->win(), 0, 0, 5, 5, True);
    XClearArea(other.display, parent->win(), 20, 30, 5, 5, True);
    other.sync();
    pump();
    EXPECT_EQ(widget.painted, (std::vector<rfb::Rect>{{0, 0, 25, 35}})); // one box around both
    EXPECT_TRUE(isIdle());
}

TEST_F(TXWParentTest, AHiddenWindowPaintsNothingLater) {
    widget.repaint();
    parent->show(false);
    EXPECT_TRUE(isIdle());
    widget.repaint();
    fire(10);
    EXPECT_TRUE(widget.painted.empty());
}

TEST_F(TXWParentTest, AWidgetMayInvalidateWhileItPaints) {
    struct Restless : FakeWidget {
        using FakeWidget::FakeWidget;
        void paint(rfb::FullFramePixelBuffer& pb) override {
            FakeWidget::paint(pb);
            if (painted.size() < 3)
                repaint();
        }
    } restless(30, 30);
    tx::TXWParent window(&restless, nullptr, true);
    window.show(true);
    pump();
    for (int i = 0; i < 5; i++)
        fire(10);
    EXPECT_EQ(restless.painted.size(), 3U);
    EXPECT_TRUE(isIdle());
}

TEST_F(TXWParentTest, TheRootFollowsTheWindow) {
    XResizeWindow(other.display, parent->win(), 140, 50);
    pump();
    EXPECT_EQ(widget.getSize(), rfb::Point(140, 50));
    fire(10);
    EXPECT_TRUE(isNear(shown(parent->win(), 139, 49), widget.colour));
    widget.setSize({60, 70});
    parent->setSizeFromRoot();
    EXPECT_EQ(parent->width(), 60);
}

TEST_F(TXWParentTest, AReleaseReportsTheKeysymOfThePress) {
    const unsigned code = keycode(XK_a);
    press(code, ShiftMask);
    release(code); // Shift was let go first
    EXPECT_EQ(widget.keys, (Strings{down(XK_A), up(XK_A)}));
    release(code); // never pressed here
    EXPECT_EQ(widget.keys.size(), 2U);
}

TEST_F(TXWParentTest, LosingTheKeyboardReleasesEveryKey) {
    press(keycode(XK_a));
    press(keycode(XK_Control_L));
    EXPECT_TRUE(parent->isKeyDown(XK_Control_L));
    widget.keys.clear();
    sendFocusOut();
    EXPECT_EQ(widget.keys, (Strings{up(XK_Control_L), up(XK_a)}));
    EXPECT_FALSE(parent->isKeyDown(XK_Control_L));
    sendFocusOut();
    EXPECT_EQ(widget.keys.size(), 2U);
}

// Some servers report ISO_Left_Tab without the Shift bit; widgets know Tab with Shift held.
TEST_F(TXWParentTest, BackTabReachesWidgetsAsShiftAndTab) {
    const unsigned spare = 255;
    KeySym keysym = XK_ISO_Left_Tab;
    XChangeKeyboardMapping(other.display, spare, 1, &keysym, 1);
    pump();
    bool shiftWasDown = false;
    widget.onKey = [&] { shiftWasDown |= parent->isKeyDown(XK_Shift_L) && parent->isKeyDown(XK_Tab); };
    press(spare);
    EXPECT_EQ(widget.keys, (Strings{down(XK_Shift_L), down(XK_Tab), up(XK_Shift_L)}));
    EXPECT_TRUE(shiftWasDown);
    release(spare);
    EXPECT_EQ(widget.keys.back(), up(XK_Tab));
    EXPECT_FALSE(parent->isKeyDown(XK_Shift_L));
    widget.keys.clear();
    press(keycode(XK_Shift_L)); // with Shift held it is Tab alone
    press(keycode(XK_Tab), ShiftMask);
    EXPECT_EQ(widget.keys, (Strings{down(XK_Shift_L), down(XK_Tab)}));
}

TEST_F(TXWParentTest, TheWindowMayDieInAKey) {
    widget.onKey = [this] { parent.reset(); };
    press(keycode(XK_a));
    EXPECT_EQ(parent, nullptr);

    parent = std::make_unique<tx::TXWParent>(&widget, nullptr, true);
    widget.onKey = nullptr;
    show();
    press(keycode(XK_a));
    press(keycode(XK_b));
    widget.onKey = [this] { parent.reset(); };
    sendFocusOut(); // two keys to release, but only one window
    EXPECT_EQ(parent, nullptr);
}

TEST_F(TXWParentTest, ButtonsAreTheStateWithTheEventsOwnChange) {
    other.sendPointer(parent->win(), ButtonPress, 3, 4, 3, Button1Mask);
    other.sendPointer(parent->win(), ButtonRelease, 3, 4, 1, Button1Mask | Button3Mask);
    pump();
    EXPECT_EQ(widget.mouse, (Strings{"3,4:5", "3,4:4"}));
    widget.mouse.clear();
    other.sendPointer(parent->win(), ButtonPress, 1, 1, 0);   // no such button
    other.sendPointer(parent->win(), ButtonPress, 1, 1, 255); // nor such
    pump();
    EXPECT_EQ(widget.mouse, (Strings{"1,1:0", "1,1:0"}));
}

TEST_F(TXWParentTest, OnlyTheLastOfManyMotionsCounts) {
    for (int x = 1; x <= 20; x++)
        other.sendPointer(parent->win(), MotionNotify, x, 5, 0);
    XSync(tx::dpy, False);
    pump();
    EXPECT_EQ(widget.mouse, (Strings{"20,5:0"}));
}

TEST_F(TXWParentTest, AMotionDoesNotOvertakeAPress) {
    other.sendPointer(parent->win(), MotionNotify, 1, 5, 0);
    other.sendPointer(parent->win(), MotionNotify, 2, 5, 0);
    other.sendPointer(parent->win(), ButtonPress, 3, 5, 1);
    other.sendPointer(parent->win(), MotionNotify, 8, 5, 0, Button1Mask);
    other.sendPointer(parent->win(), MotionNotify, 9, 5, 0, Button1Mask);
    pump();
    EXPECT_EQ(widget.mouse, (Strings{"2,5:0", "3,5:1", "9,5:1"}));
}

TEST_F(TXWParentTest, BlockedInputReachesNobodyButReleasesDo) {
    press(keycode(XK_a));
    parent->setInputBlocked(true);
    press(keycode(XK_b));
    other.sendPointer(parent->win(), ButtonPress, 1, 1, 1);
    release(keycode(XK_a));
    EXPECT_EQ(widget.keys, (Strings{down(XK_a), up(XK_a)}));
    EXPECT_TRUE(widget.mouse.empty());
}

TEST_F(TXWParentTest, ATooltipShowsAfterHalfASecondAndLeavesAtAKey) {
    widget.setTooltip("help");
    other.sendPointer(parent->win(), MotionNotify, 7, 8, 0);
    pump();
    const size_t before = tx::TXWRoot::instance().popupCount();
    fire(499);
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), before);
    fire(1);
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), before + 1);
    press(keycode(XK_a));
    EXPECT_EQ(tx::TXWRoot::instance().popupCount(), before);
    EXPECT_TRUE(isIdle());
    other.sendPointer(parent->win(), MotionNotify, 9, 8, 0);
    pump();
    EXPECT_FALSE(isIdle());
    parent->setRootWidget(nullptr); // forgotten with its widget
    EXPECT_TRUE(isIdle());
}

/// Accepts drops on its right half.
struct Target : FakeWidget {
    using FakeWidget::FakeWidget;
    bool acceptsDrop(const hxutil::DragDropData&) override { return true; }
    wvw::Widget* findDropTarget(const hxutil::DragDropData&, const rfb::Point& position) override {
        return position.x >= 50 ? this : nullptr;
    }
    void dragOver(const hxutil::DragDropData&, const rfb::Point&) override { calls.emplace_back("over"); }
    void dragEnd() override { calls.emplace_back("end"); }
    void drop(const hxutil::DragDropData&, const rfb::Point& position) override {
        calls.push_back("drop " + std::to_string(position.x));
    }
    Strings calls;
};

struct DragTest : XTest {
    DragTest() {
        window.show(true);
        pump();
    }
    void start() { window.startDrag(std::make_unique<hxutil::DragDropData>(), nullptr); }
    void moveTo(int x) {
        other.sendPointer(window.win(), MotionNotify, x, 5, 0, Button1Mask);
        pump();
    }
    void letGo(int x) {
        other.sendPointer(window.win(), ButtonRelease, x, 5, 1, Button1Mask);
        pump();
    }
    Target target{100, 20};
    tx::TXWParent window{&target, nullptr, true};
};

TEST_F(DragTest, DropsWhereTheDataIsAccepted) {
    start();
    target.mouse.clear();
    moveTo(10);
    moveTo(60);
    letGo(70);
    EXPECT_EQ(target.calls, (Strings{"over", "over", "end", "drop 70"}));
    EXPECT_EQ(target.mouse, (Strings{"70,5:0"})); // the button is up again, and that was all it heard
    moveTo(80);
    EXPECT_EQ(target.mouse.size(), 2U);
}

TEST_F(DragTest, RefusedOrCancelledDropsNothing) {
    start();
    moveTo(60);
    letGo(10);
    EXPECT_EQ(target.calls, (Strings{"over", "end"}));
    target.calls.clear();
    start();
    moveTo(60);
    other.sendKey(window.win(), KeyPress, XKeysymToKeycode(tx::dpy, XK_Escape));
    pump();
    EXPECT_EQ(target.calls, (Strings{"over", "end"}));
    start();
    window.show(false);
    EXPECT_TRUE(isIdle());
}

struct PopupTest : XTest {
    FakeWidget popup{40, 30};
    tx::TXWRoot& root = tx::TXWRoot::instance();
};

TEST_F(PopupTest, AGrabbingPopupClosesAtAPressOutside) {
    root.showPopup(&popup, true, true, {20, 25});
    pump();
    tx::TXWParent* window = root.findPopup(&popup);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->getRootPosition(), rfb::Point(20, 25));
    EXPECT_EQ(rfb::Point(window->width(), window->height()), rfb::Point(40, 30));
    other.sendPointer(window->win(), ButtonPress, 39, 29, 1);
    pump();
    EXPECT_NE(root.findPopup(&popup), nullptr);
    other.sendPointer(window->win(), ButtonPress, 40, 29, 1);
    pump();
    EXPECT_EQ(root.findPopup(&popup), nullptr);
    EXPECT_FALSE(popup.isAttached());
}

TEST_F(PopupTest, APressOnAnotherWindowOfOursClosesItToo) {
    FakeWidget below(100, 100);
    tx::TXWParent window(&below, nullptr, true);
    window.show(true);
    root.showPopup(&popup, true, true, {300, 300});
    pump();
    other.sendPointer(window.win(), ButtonPress, 5, 5, 1, 0, 5, 5);
    pump();
    EXPECT_EQ(root.findPopup(&popup), nullptr);
    EXPECT_TRUE(below.mouse.empty());
}

TEST_F(PopupTest, ShowingAgainMovesItAndHidingTwiceIsFine) {
    root.showPopup(&popup, true, false, {20, 25});
    pump();
    const tx::TXWParent* window = root.findPopup(&popup);
    popup.setSize({50, 60});
    root.showPopup(&popup, true, false, {1, 2});
    pump();
    EXPECT_EQ(root.findPopup(&popup), window);
    EXPECT_EQ(window->getRootPosition(), rfb::Point(1, 2));
    EXPECT_EQ(window->height(), 60);
    root.showPopup(&popup, false, false, {});
    root.showPopup(&popup, false, false, {});
    EXPECT_EQ(root.findPopup(&popup), nullptr);
}

// The pointer is with the menu that was opened last, and all of them go when something is chosen in it.
TEST_F(PopupTest, APressInASubmenuChoosesThere) {
    struct : wvw::WInputHandler {
        bool activated(wvw::Widget* origin) override {
            chosen = origin;
            return true;
        }
        wvw::Widget* chosen = nullptr;
    } handler;
    wvw::WMenuItem more("&More");
    wvw::WMenuItem inner("&Inner");
    wvw::WMenu sub;
    wvw::WRootMenu menu;
    menu.add(&more);
    sub.add(&inner);
    more.setSubmenu(&sub);
    inner.setHandler(&handler);
    menu.show(&root, {20, 20});
    pump();
    menu.openSubmenu(&more, /*byKey=*/false);
    pump();
    tx::TXWParent* window = root.findPopup(&sub);
    ASSERT_NE(window, nullptr);
    const Window xid = window->win();
    other.sendPointer(xid, MotionNotify, 10, 8, 0, 0);
    other.sendPointer(xid, ButtonPress, 10, 8, 1);
    other.sendPointer(xid, ButtonRelease, 10, 8, 1, Button1Mask);
    pump();
    EXPECT_EQ(handler.chosen, &inner);
    EXPECT_EQ(root.popupCount(), 0U);
}

} // namespace
} // namespace txtest
