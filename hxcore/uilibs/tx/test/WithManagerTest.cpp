// Under a real window manager, which answers in its own time.
#include "XTest.h"
#include "tx/TXDialog.h"
#include "tx/WindowManager.h"

#include <algorithm>
#include <ctime>

#include <poll.h>

namespace txtest {
namespace {

struct RecordingWindow : tx::TXWParent, tx::TXDeleteWindowCallback {
    explicit RecordingWindow(FakeWidget* widget) : tx::TXWParent(widget) { setWMProperties("recording", this); }
    void deleteWindow(tx::TXWindow*) override { closed++; }
    void focusChanged() override { focusChanges++; }
    using tx::TXWParent::focusChanged;
    void takeFocus(Time time) override {
        taken++;
        tx::TXWindow::setFocus(time);
    }
    int closed = 0;
    int focusChanges = 0;
    int taken = 0;
};

struct WithManagerTest : XTest {
    void SetUp() override {
        if (!tx::WindowManager::isWMRunning())
            GTEST_SKIP() << "no window manager";
        window.show(true);
        ASSERT_TRUE(eventually([this] { return window.isMapped() && !widget.painted.empty(); }));
    }

    /// Serves events until the manager has done it; at most 10 seconds.
    template <class Condition>
    bool eventually(Condition condition) {
        const std::time_t deadline = std::time(nullptr) + 10;
        while (!condition()) {
            if (std::time(nullptr) > deadline)
                return false;
            pump();
            pollfd fd{ConnectionNumber(tx::dpy), POLLIN, 0};
            poll(&fd, 1, 20);
        }
        return true;
    }
    bool hasState(Atom wanted) {
        const tx::Property states = tx::getWindowProperty(window.win(), tx::netWmState(), XA_ATOM);
        return std::ranges::count(states.longs(), wanted) == 1;
    }
    bool isHidden() {
        bool hidden = false;
        return tx::WindowManager::isHidden(window.win(), &hidden) && hidden;
    }

    FakeWidget widget{200, 150};
    RecordingWindow window{&widget};
};

TEST_F(WithManagerTest, AddsAndRemovesStates) {
    tx::WindowManager::setNetWMState(&window, true, tx::netWmStateAbove());
    EXPECT_TRUE(eventually([this] { return hasState(tx::netWmStateAbove()); }));
    tx::WindowManager::setNetWMState(&window, false, tx::netWmStateAbove());
    EXPECT_TRUE(eventually([this] { return !hasState(tx::netWmStateAbove()); }));
    tx::WindowManager::setNetWMState(&window, true, tx::netWmStateFullscreen());
    EXPECT_TRUE(eventually([this] { return widget.getSize() == tx::getScreenSize(); }));
}

TEST_F(WithManagerTest, IconifiesAndOpensAgain) {
    EXPECT_FALSE(isHidden());
    window.iconify();
    EXPECT_TRUE(eventually([this] { return isHidden(); }));
    window.show(true);
    EXPECT_TRUE(eventually([this] { return window.isMapped() && !isHidden(); }));
    window.show(false);
    EXPECT_FALSE(widget.isAttached());
    window.iconify(); // while it is withdrawn: mapped as an icon
    EXPECT_TRUE(eventually([this] { return isHidden(); }));
    window.deiconify();
    EXPECT_TRUE(eventually([this] { return window.isMapped() && !isHidden(); }));
}

TEST_F(WithManagerTest, HidingAndShowingAtOnceEndsVisible) {
    for (int i = 0; i < 5; i++) {
        window.show(false);
        window.show(true);
    }
    EXPECT_TRUE(eventually([this] { return window.isMapped() && widget.isAttached(); }));
    XWindowAttributes attributes{};
    EXPECT_TRUE(eventually([&] {
        return XGetWindowAttributes(other.display, window.win(), &attributes) && attributes.map_state == IsViewable;
    }));
}

TEST_F(WithManagerTest, AFixedWindowTakesTheSizesThatWeGiveIt) {
    window.setFixedSize(true);
    for (const rfb::Point size : {rfb::Point(300, 200), rfb::Point(120, 90), rfb::Point(400, 350)}) {
        window.resize(size.x, size.y);
        EXPECT_EQ(widget.getSize(), size);
    }
    XWindowAttributes attributes{};
    EXPECT_TRUE(eventually([&] {
        XGetWindowAttributes(other.display, window.win(), &attributes);
        return attributes.width == 400 && attributes.height == 350;
    }));
    pump();
    EXPECT_EQ(widget.getSize(), rfb::Point(400, 350));
}

// We ask, the user drags, the manager answers late and in its own way: in the end all agree.
TEST_F(WithManagerTest, AStormOfSizesFromAllSidesEndsInOne) {
    for (int round = 0; round < 200; round++) {
        if (round % 3 == 0)
            window.resize(150 + round, 300 - round);
        else
            XResizeWindow(other.display, window.win(), 400U - static_cast<unsigned>(round), 200);
        if (round % 5 == 0)
            tx::processEvents();
    }
    const auto onServer = [this] {
        XWindowAttributes attributes{};
        XGetWindowAttributes(other.display, window.win(), &attributes);
        return rfb::Point(attributes.width, attributes.height);
    };
    EXPECT_TRUE(eventually([&] { return widget.getSize() == onServer(); }));
    window.resize(333, 222);
    EXPECT_TRUE(eventually([&] { return onServer() == rfb::Point(333, 222) && widget.getSize() == onServer(); }));
    widget.colour = {0, 255, 255};
    widget.repaint();
    EXPECT_TRUE(eventually([this] {
        fire(10);
        return isNear(shown(window.win(), 332, 221), widget.colour);
    }));
}

TEST_F(WithManagerTest, KnowsItsPlaceInsideTheFrame) {
    XMoveWindow(tx::dpy, window.win(), 150, 160);
    const auto serverPosition = [this] {
        int x = 0;
        int y = 0;
        Window child = tx::none;
        XTranslateCoordinates(other.display, window.win(), other.root(), 0, 0, &x, &y, &child);
        return rfb::Point(x, y);
    };
    const rfb::Rect near(150, 160, 250, 260); // a frame is added
    EXPECT_TRUE(eventually([&] { return near.contains(serverPosition()); }));
    EXPECT_TRUE(eventually([&] { return widget.getRootPosition() == serverPosition(); }));
}

TEST_F(WithManagerTest, ActivatesWhatIsRaised) {
    FakeWidget second(50, 50);
    RecordingWindow above(&second);
    above.show(true);
    EXPECT_TRUE(eventually([&] { return above.isFocused(); }));
    window.raise();
    EXPECT_TRUE(eventually([&] { return window.isFocused() && !above.isFocused(); }));
    EXPECT_TRUE(tx::hasFocus);
}

// Without the input hint the manager only tells us that we may take the keyboard.
TEST_F(WithManagerTest, TheInputHintDecidesWhoTakesTheFocus) {
    FakeWidget second(50, 50);
    RecordingWindow quiet(&second);
    quiet.setInputHint(false);
    quiet.show(true);
    EXPECT_TRUE(eventually([&] { return quiet.taken > 0 || quiet.isMapped(); }));
    quiet.raise();
    EXPECT_TRUE(eventually([&] { return quiet.taken > 0; }));
    EXPECT_TRUE(eventually([&] { return quiet.isFocused(); }));
}

TEST_F(WithManagerTest, OnlyTheUppermostOfModalDialogsCanBeClosed) {
    tx::TXDialog lower(&window, "lower", /*centred=*/true);
    tx::TXDialog upper(&lower, "upper", /*centred=*/true);
    const std::vector<tx::TXDialog*> dialogs = {&lower, &upper};
    for (tx::TXDialog* dialog : dialogs) {
        dialog->setSize({80, 60});
        dialog->show();
        dialog->pushModal();
        EXPECT_TRUE(eventually([&] { return dialog->isMapped(); }));
    }
    const auto closeAll = [&] {
        for (const Window id : {window.win(), lower.win(), upper.win()})
            tx::sendRootClientMessage(id, other.atom("_NET_CLOSE_WINDOW"));
    };
    closeAll();
    EXPECT_TRUE(eventually([&] { return !upper.isMapped(); }));
    EXPECT_TRUE(lower.isMapped());
    closeAll();
    EXPECT_TRUE(eventually([&] { return !lower.isMapped(); }));
    EXPECT_EQ(window.closed, 0);
    closeAll();
    EXPECT_TRUE(eventually([&] { return window.closed == 1; }));
}

TEST_F(WithManagerTest, ADialogAboveItsParentIsModalForKeysAndClosing) {
    tx::TXDialog dialog(&window, "modal", /*centred=*/true);
    dialog.setSize({80, 60});
    dialog.show();
    dialog.pushModal();
    EXPECT_TRUE(eventually([&] { return dialog.isMapped(); }));
    tx::sendRootClientMessage(window.win(), other.atom("_NET_CLOSE_WINDOW"));
    tx::sendRootClientMessage(dialog.win(), other.atom("_NET_CLOSE_WINDOW"));
    EXPECT_TRUE(eventually([&] { return !dialog.isMapped(); }));
    EXPECT_EQ(window.closed, 0);
    EXPECT_FALSE(dialog.isModal());
}

} // namespace
} // namespace txtest
