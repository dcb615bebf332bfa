#include "tx/TXWindow.h"

#include "XTest.h"
#include "plat/Configuration.h"
#include "plat/String.h"
#include "tx/TXState.h"

#include <algorithm>
#include <cctype>

#include <unistd.h>

namespace txtest {
namespace {

struct Recorder : tx::TXEventHandler {
    bool handleEvent(XEvent* event) override {
        types.push_back(event->type);
        last = *event;
        return false;
    }
    int count(int type) const { return static_cast<int>(std::count(types.begin(), types.end(), type)); }
    std::vector<int> types;
    XEvent last{};
};

struct Closer : tx::TXDeleteWindowCallback {
    void deleteWindow(tx::TXWindow* window) override {
        calls++;
        if (destroys)
            delete window;
    }
    int calls = 0;
    bool destroys = false;
};

struct SizedWindow : tx::TXWindow {
    using tx::TXWindow::TXWindow;
    void resized() override { resizes.emplace_back(width(), height()); }
    void mapChanged() override { mapChanges++; }
    void moved() override { moves++; }
    rfb::Point size() const { return {width(), height()}; }
    std::vector<rfb::Point> resizes;
    int mapChanges = 0;
    int moves = 0;
};

struct TXWindowTest : XTest {
    /// The hints as another client reads them.
    XSizeHints serverHints(const tx::TXWindow& window) {
        pump();
        XSizeHints hints{};
        long supplied = 0;
        XGetWMNormalHints(other.display, window.win(), &hints, &supplied);
        return hints;
    }
    static void setSwitch(const char* name, const char* value) { plat::Configuration::global().set(name, value); }
    int grabAsOther() {
        return XGrabPointer(other.display, other.root(), False, 0, GrabModeAsync, GrabModeAsync, tx::none, tx::none,
                            tx::currentTime);
    }
};

TEST_F(TXWindowTest, AModalWindowKeepsKeysAndButtonsFromOthers) {
    tx::TXWindow below(50, 50);
    tx::TXWindow modal(50, 50);
    Recorder atBelow;
    Recorder atModal;
    below.addEventHandler(&atBelow, true);
    modal.addEventHandler(&atModal, true);
    modal.pushModal();

    other.sendPointer(below.win(), ButtonPress, 1, 1, 1);
    other.sendPointer(below.win(), MotionNotify, 1, 1, 0, Button1Mask);
    other.sendKey(below.win(), KeyPress, 38);
    pump();
    EXPECT_TRUE(atBelow.types.empty());

    other.sendPointer(below.win(), MotionNotify, 1, 1, 0); // no button held
    other.sendPointer(modal.win(), ButtonPress, 1, 1, 1);
    pump();
    EXPECT_EQ(atBelow.types, std::vector<int>{MotionNotify});
    EXPECT_EQ(atModal.types, std::vector<int>{ButtonPress});

    modal.unmap();
    other.sendPointer(below.win(), ButtonPress, 1, 1, 1);
    pump();
    EXPECT_EQ(atBelow.count(ButtonPress), 1);
}

TEST_F(TXWindowTest, AModalWindowKeepsOthersFromBeingClosed) {
    tx::TXWindow below(50, 50);
    tx::TXWindow modal(50, 50);
    Closer closer;
    below.setWMProperties("below", &closer);
    modal.setWMProperties("modal", &closer);
    modal.pushModal();
    other.sendDelete(below.win());
    pump();
    EXPECT_EQ(closer.calls, 0);
    other.sendDelete(modal.win());
    pump();
    EXPECT_EQ(closer.calls, 1);
    other.sendDelete(modal.win(), 8); // the same words in bytes are not that message
    pump();
    EXPECT_EQ(closer.calls, 1);
}

TEST_F(TXWindowTest, MayDieInItsOwnEvents) {
    Closer closer;
    closer.destroys = true;
    auto* window = new tx::TXWindow(50, 50);
    Recorder recorder;
    window->addEventHandler(&recorder, true);
    window->setWMProperties("mortal", &closer);
    const Window id = window->win();
    other.sendDelete(id);
    pump();
    EXPECT_EQ(closer.calls, 1);
    EXPECT_EQ(recorder.count(ClientMessage), 0);
    EXPECT_EQ(tx::findWindow(id), nullptr);
}

TEST_F(TXWindowTest, TheLatestMappedGrabberGetsInputInItsOwnCoordinates) {
    tx::TXWindow below(200, 200, nullptr, 0, true);
    tx::TXWindow first(50, 50, nullptr, 0, true);
    tx::TXWindow second(50, 50, nullptr, 0, true);
    Recorder atBelow;
    Recorder atFirst;
    below.addEventHandler(&atBelow, true);
    first.addEventHandler(&atFirst, true);
    for (tx::TXWindow* window : {&below, &first, &second})
        window->addEventMask(StructureNotifyMask);
    first.setPosition(300, 40);
    below.map();
    first.map();
    pump();
    first.setGrab(true, true, tx::none, true);
    second.setGrab(true, false, tx::none, true); // not mapped yet: no grabber
    pump();

    other.sendPointer(below.win(), ButtonPress, 5, 6, 1, 0, 310, 45);
    pump();
    EXPECT_EQ(atBelow.count(ButtonPress), 0);
    ASSERT_EQ(atFirst.count(ButtonPress), 1);
    EXPECT_EQ(atFirst.last.xbutton.x, 10);
    EXPECT_EQ(atFirst.last.xbutton.y, 5);
    EXPECT_EQ(atFirst.last.xbutton.window, first.win());

    second.map();
    pump();
    EXPECT_EQ(tx::pointerGrabber(), &second);
    EXPECT_EQ(tx::keyboardGrabber(), &first);
    other.sendKey(below.win(), KeyPress, 38);
    pump();
    EXPECT_EQ(atFirst.count(KeyPress), 1);

    second.unmap();
    EXPECT_EQ(tx::pointerGrabber(), &first);
}

TEST_F(TXWindowTest, AGrabEndsWithItsWindow) {
    {
        tx::TXWindow window(50, 50, nullptr, 0, true);
        window.addEventMask(StructureNotifyMask);
        window.map();
        pump();
        window.setGrab(true, true, tx::none, true);
        EXPECT_EQ(grabAsOther(), AlreadyGrabbed);
        window.pushModal();
    }
    pump();
    EXPECT_EQ(grabAsOther(), GrabSuccess);
    EXPECT_EQ(tx::topModal(), nullptr);
    XUngrabPointer(other.display, tx::currentTime);
    other.sync();
}

TEST_F(TXWindowTest, ZeroRemovesASizeHint) {
    SizedWindow window(50, 40);
    window.setWMProperties("hints");
    window.setMinSize(20, 10);
    window.setMaxSize(500, 400);
    window.map();
    const XSizeHints hints = serverHints(window);
    EXPECT_EQ(hints.flags & (PMinSize | PMaxSize), PMinSize | PMaxSize);
    EXPECT_EQ(hints.min_width, 20);
    EXPECT_EQ(hints.max_height, 400);
    window.setMinSize(0, 0);
    window.setMaxSize(9, 0);
    EXPECT_EQ(serverHints(window).flags & (PMinSize | PMaxSize), 0);
}

TEST_F(TXWindowTest, AFixedSizeFollowsAResize) {
    SizedWindow window(50, 40);
    window.setWMProperties("fixed");
    window.setFixedSize(true);
    window.map();
    window.resize(120, 90);
    const XSizeHints hints = serverHints(window);
    EXPECT_EQ(hints.flags & (PMinSize | PMaxSize), PMinSize | PMaxSize);
    EXPECT_EQ(rfb::Point(hints.min_width, hints.min_height), rfb::Point(120, 90));
    EXPECT_EQ(rfb::Point(hints.max_width, hints.max_height), rfb::Point(120, 90));
    EXPECT_EQ(window.resizes, (std::vector<rfb::Point>{{120, 90}})); // not again when the server confirms it
}

TEST_F(TXWindowTest, ASizeFromBeforeOurOwnResizeIsOutOfDate) {
    SizedWindow window(50, 40);
    window.setWMProperties("race");
    window.resize(60, 60);
    XSync(tx::dpy, False);      // its ConfigureNotify waits in the queue
    XGrabServer(other.display); // the next one reaches the server later
    other.sync();
    window.resize(80, 80);
    tx::processEvents();
    XUngrabServer(other.display);
    pump();
    EXPECT_EQ(window.resizes, (std::vector<rfb::Point>{{60, 60}, {80, 80}}));
    window.resize(0, -5);
    EXPECT_EQ(window.size(), rfb::Point(1, 1));
}

// The manager's news waits in the queue when we ask for the very same: whoever lays out must hear of it.
TEST_F(TXWindowTest, ASizeThatTheManagerGaveAlreadyIsToldAllTheSame) {
    SizedWindow window(50, 40, nullptr, 0, /*overrideRedirect=*/true);
    window.addEventMask(StructureNotifyMask);
    window.map();
    pump();
    for (const rfb::Point size : {rfb::Point(90, 70), rfb::Point(60, 50)}) {
        XMoveResizeWindow(other.display, window.win(), size.x, size.y, static_cast<unsigned>(size.x),
                          static_cast<unsigned>(size.y));
        other.sync();
        window.resizes.clear();
        window.moves = 0;
        window.resize(90, 70);
        EXPECT_EQ(window.resizes, (std::vector<rfb::Point>{{90, 70}}));
        EXPECT_EQ(window.moves, 1);
    }
}

TEST_F(TXWindowTest, WritesWhatManagersAndPagersRead) {
    tx::TXWindow window(50, 40);
    Closer closer;
    window.setWMProperties("caf\xc3\xa9 \xe2\x82\xac", &closer, "Some-class");
    const tx::Property utf8 = tx::getWindowProperty(window.win(), tx::netWmName(), tx::utf8String());
    EXPECT_EQ(std::string(utf8.bytes().data(), utf8.bytes().size()), "caf\xc3\xa9 \xe2\x82\xac");
    const tx::Property latin1 = tx::getWindowProperty(window.win(), XA_WM_NAME, XA_STRING);
    EXPECT_EQ(std::string(latin1.bytes().data(), latin1.bytes().size()), "caf\xe9 ?");
    unsigned long pid = 0;
    EXPECT_TRUE(tx::getCardinalProperty(window.win(), tx::netWmPid(), XA_CARDINAL, &pid));
    EXPECT_EQ(pid, static_cast<unsigned long>(getpid()));
    const tx::Property protocols = tx::getWindowProperty(window.win(), tx::wmProtocols(), XA_ATOM);
    EXPECT_EQ(protocols.longs().size(), 2U);
    XClassHint hint{};
    ASSERT_TRUE(XGetClassHint(other.display, window.win(), &hint));
    EXPECT_STREQ(hint.res_class, "Some-class");
    XFree(hint.res_class);
    XFree(hint.res_name);
}

TEST_F(TXWindowTest, KnowsThatItIsMappedAndFocused) {
    SizedWindow window(50, 40, nullptr, 0, true);
    window.addEventMask(StructureNotifyMask);
    window.setFocus(tx::currentTime); // not mapped: nothing, and no error
    window.map();
    pump();
    EXPECT_TRUE(window.isMapped());
    window.setFocus(tx::currentTime);
    pump();
    EXPECT_TRUE(window.isFocused());
    EXPECT_TRUE(tx::hasFocus);
    window.unmap();
    EXPECT_FALSE(window.isMapped()); // at once: it may be shown again before the server tells
    window.map();
    pump();
    EXPECT_TRUE(window.isMapped());
    EXPECT_EQ(window.mapChanges, 3);
}

TEST_F(TXWindowTest, ServerTimeAdvances) {
    const Time first = tx::getServerTime();
    const Time second = tx::getServerTime();
    EXPECT_NE(first, 0UL);
    EXPECT_LE(first, second);
    // Whatever others do to the window that tells.
    XDestroyWindow(other.display, tx::state().timeWindow);
    other.sync();
    EXPECT_LE(second, tx::getServerTime());
    const long word = 1;
    other.setProperty(tx::state().timeWindow, "TIMESTAMP", "INTEGER", 32, &word, 1);
    EXPECT_LE(second, tx::getServerTime());
}

// A manager looks anew each time; a dialog tries many sizes before it shows itself.
TEST_F(TXWindowTest, TheHintsAreWrittenOnceForEachChangeThatAManagerSees) {
    SizedWindow window(50, 40);
    other.sync();
    XSync(tx::dpy, False);
    XSelectInput(other.display, window.win(), PropertyChangeMask);
    other.sync();
    const auto written = [&] {
        pump();
        int count = 0;
        for (XEvent event; XCheckTypedEvent(other.display, PropertyNotify, &event);)
            count += event.xproperty.atom == XA_WM_NORMAL_HINTS ? 1 : 0;
        return count;
    };
    window.setWMProperties("hints");
    EXPECT_EQ(written(), 1);
    window.setFixedSize(true);
    for (int size = 100; size < 120; size++) {
        window.resize(size, size);
        window.setPosition(size, 0);
    }
    EXPECT_EQ(written(), 0);
    window.map();
    EXPECT_EQ(written(), 1);
    EXPECT_EQ(serverHints(window).min_width, 119);
    window.setFixedSize(true);
    EXPECT_EQ(written(), 0);
    window.unmap();
    window.resize(60, 60);
    EXPECT_EQ(written(), 0);
    window.map();
    EXPECT_EQ(serverHints(window).max_width, 60);
}

TEST_F(TXWindowTest, GrabsCanBeLeftToADebugger) {
    tx::TXWindow window(50, 50, nullptr, 0, true);
    window.addEventMask(StructureNotifyMask);
    window.map();
    pump();
    setSwitch("_NoGrab", "1");
    window.setGrab(true, true, tx::none, true);
    EXPECT_EQ(tx::pointerGrabber(), &window); // for our own dispatch it has the pointer
    EXPECT_EQ(grabAsOther(), GrabSuccess);
    XUngrabPointer(other.display, tx::currentTime);
    other.sync();
    setSwitch("_NoGrab", "0");
}

TEST_F(TXWindowTest, EventsCanBeWatchedOnStderr) {
    tx::TXWindow window(50, 50);
    pump();
    setSwitch("_DebugEvents", "1");
    testing::internal::CaptureStderr();
    other.sendPointer(window.win(), ButtonPress, 7, 8, 1);
    XEvent expose{};
    expose.xexpose.type = Expose;
    expose.xexpose.window = window.win();
    expose.xexpose.x = 1;
    expose.xexpose.y = 2;
    expose.xexpose.width = 10;
    expose.xexpose.height = 20;
    other.send(window.win(), expose);
    pump();
    setSwitch("_DebugEvents", "0");
    const std::string said = testing::internal::GetCapturedStderr();
    const std::string id = plat::strFormat(" window %lx ", window.win()).c_str();
    EXPECT_NE(said.find(" ButtonPress" + id + "7,8\n"), std::string::npos) << said;
    EXPECT_NE(said.find(" Expose" + id + "1,2 to 11,22\n"), std::string::npos) << said;
    std::string form = said.substr(0, said.find(' '));
    std::ranges::replace_if(
        form, [](unsigned char c) { return std::isdigit(c); }, 'd');
    EXPECT_EQ(form, "dd:dd:dd.ddd");
}

// Whoever listens at the root asks for what it needs; the server is told all of it, and no more.
TEST_F(TXWindowTest, TheRootSelectsWhatItsHandlersAskFor) {
    const auto selected = [] {
        XWindowAttributes attributes{};
        XGetWindowAttributes(tx::dpy, tx::rootWindow, &attributes);
        return attributes.your_event_mask;
    };
    const long before = selected();
    Recorder first;
    Recorder second;
    tx::addRootEventHandler(&first, true, SubstructureNotifyMask);
    tx::addRootEventHandler(&second, true, FocusChangeMask | SubstructureNotifyMask);
    EXPECT_EQ(selected(), before | SubstructureNotifyMask | FocusChangeMask);
    const Window created = other.makeWindow();
    pump();
    EXPECT_EQ(first.count(CreateNotify), 1);
    EXPECT_EQ(first.last.xcreatewindow.window, created);
    tx::addRootEventHandler(&first, false);
    tx::addRootEventHandler(&second, true, FocusChangeMask);
    EXPECT_EQ(selected(), before | FocusChangeMask);
    tx::addRootEventHandler(&second, false);
    EXPECT_EQ(selected(), before);
}

TEST_F(TXWindowTest, GeometryOfTheUserWinsOverTheDefault) {
    SizedWindow window(50, 40);
    window.setWMProperties("geometry");
    window.map();
    window.setGeometry("300x200+11+12", {0, 0, 100, 100});
    EXPECT_EQ(window.size(), rfb::Point(300, 200));
    EXPECT_EQ(window.getRootPosition(), rfb::Point(11, 12));
    EXPECT_TRUE(serverHints(window).flags & PWinGravity);
    window.setGeometry("", {5, 6, 105, 206});
    EXPECT_EQ(window.size(), rfb::Point(100, 200));
    EXPECT_EQ(window.getRootPosition(), rfb::Point(5, 6));
    window.setGeometry("no geometry at all", {5, 6, 105, 206});
    EXPECT_EQ(window.size(), rfb::Point(100, 200));
}

} // namespace
} // namespace txtest
