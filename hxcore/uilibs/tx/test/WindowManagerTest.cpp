#include "tx/WindowManager.h"

#include "XTest.h"
#include "tx/ErrorCatcher.h"
#include "tx/Randr.h"
#include "tx/WindowWatcher.h"
#include "tx/dynXfixes.h"

namespace txtest {
namespace {

/// Without a window manager: what is said of one is what some client wrote.
struct WindowManagerTest : XTest {
    ~WindowManagerTest() override {
        for (const char* name : {"_NET_SUPPORTING_WM_CHECK", "_NET_SUPPORTED", "_NET_WORKAREA", "_NET_CURRENT_DESKTOP"})
            other.removeProperty(other.root(), name);
    }
    void setRoot(const char* name, const char* type, int format, const void* data, int count) {
        other.setProperty(other.root(), name, type, format, data, count);
    }
    const rfb::Rect screen{{0, 0}, tx::getScreenSize()};
};

TEST_F(WindowManagerTest, AManagerMustNameItself) {
    EXPECT_EQ(tx::WindowManager::findWMWindow(), tx::none);
    EXPECT_FALSE(tx::WindowManager::isWMRunning());
    const Window window = other.makeWindow();
    const long id = static_cast<long>(window);
    setRoot("_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &id, 1);
    EXPECT_EQ(tx::WindowManager::findWMWindow(), tx::none);
    const long wrong = id + 1;
    other.setProperty(window, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &wrong, 1);
    EXPECT_EQ(tx::WindowManager::findWMWindow(), tx::none);
    other.setProperty(window, "_NET_SUPPORTING_WM_CHECK", "CARDINAL", 32, &id, 1);
    EXPECT_EQ(tx::WindowManager::findWMWindow(), tx::none);
    other.setProperty(window, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &id, 1);
    EXPECT_EQ(tx::WindowManager::findWMWindow(), window);
    EXPECT_TRUE(tx::WindowManager::isWMRunning());

    const long hints[] = {static_cast<long>(other.atom("_NET_WM_MOVERESIZE"))};
    setRoot("_NET_SUPPORTED", "ATOM", 32, hints, 1);
    EXPECT_TRUE(tx::WindowManager::isNetHintSupported(tx::netWmMoveResize()));
    EXPECT_FALSE(tx::WindowManager::isNetHintSupported(tx::netWmState()));
    XDestroyWindow(other.display, window); // it died, the root's word remains
    other.sync();
    EXPECT_EQ(tx::WindowManager::findWMWindow(), tx::none);
    EXPECT_FALSE(tx::WindowManager::isNetHintSupported(tx::netWmMoveResize()));
}

// A manager that has much to do finds both maps, and no withdrawal between them.
TEST_F(WindowManagerTest, ASecondShowDoesNotTakeBackTheFirst) {
    XSelectInput(other.display, other.root(), SubstructureRedirectMask | SubstructureNotifyMask);
    other.sync();
    FakeWidget widget(20, 20);
    tx::TXWParent window(&widget);
    window.setWMProperties("slow");
    window.show(true);
    window.show(true);
    XSync(tx::dpy, False);
    other.sync();
    XEvent event;
    EXPECT_FALSE(XCheckTypedEvent(other.display, UnmapNotify, &event));
    while (XCheckTypedEvent(other.display, MapRequest, &event))
        XMapWindow(other.display, event.xmaprequest.window);
    pump();
    EXPECT_TRUE(window.isMapped());
    XSelectInput(other.display, other.root(), NoEventMask);
    other.sync();
}

TEST_F(WindowManagerTest, TheWorkAreaIsThatOfTheCurrentDesktop) {
    const long areas[] = {1, 2, 30, 40, 5, 6, 70, 80};
    const long second = 1;
    setRoot("_NET_WORKAREA", "CARDINAL", 32, areas, 8);
    EXPECT_EQ(tx::WindowManager::getWorkArea(), rfb::Rect::xywh(1, 2, 30, 40));
    setRoot("_NET_CURRENT_DESKTOP", "CARDINAL", 32, &second, 1);
    EXPECT_EQ(tx::WindowManager::getWorkArea(), rfb::Rect::xywh(5, 6, 70, 80));
}

TEST_F(WindowManagerTest, AWorkAreaThatMakesNoSenseIsTheScreen) {
    const long good[] = {1, 2, 30, 40};
    const long huge[] = {0, 0, 0x7fffffff, 0x7fffffff};
    const long nothing[] = {10, 10, 0, 0};
    const struct {
        const char* type;
        int format;
        const void* data;
        int count;
    } areas[] = {{"CARDINAL", 32, good, 3}, // too short
                 {"CARDINAL", 8, "0123456789abcdef", 16},
                 {"ATOM", 32, good, 4},
                 {"CARDINAL", 32, huge, 4},
                 {"CARDINAL", 32, nothing, 4}};
    for (const auto& area : areas) {
        setRoot("_NET_WORKAREA", area.type, area.format, area.data, area.count);
        EXPECT_EQ(tx::WindowManager::getWorkArea(), screen) << area.type << area.format << area.count;
    }
    setRoot("_NET_WORKAREA", "CARDINAL", 32, good, 4);
    for (const long desktop : {0x7fffffffL, -1L}) {
        setRoot("_NET_CURRENT_DESKTOP", "CARDINAL", 32, &desktop, 1);
        EXPECT_EQ(tx::WindowManager::getWorkArea(), screen);
    }
}

TEST_F(WindowManagerTest, HiddenIsWhatTheStateSaysElseWhatTheOldStateSays) {
    const Window window = other.makeWindow();
    bool hidden = true;
    EXPECT_FALSE(tx::WindowManager::isHidden(window, &hidden));
    EXPECT_TRUE(hidden); // untouched
    const long iconic[] = {IconicState, 0};
    other.setProperty(window, "WM_STATE", "WM_STATE", 32, iconic, 2);
    EXPECT_TRUE(tx::WindowManager::isHidden(window, &hidden));
    EXPECT_TRUE(hidden);
    const long states[] = {static_cast<long>(other.atom("_NET_WM_STATE_ABOVE"))};
    other.setProperty(window, "_NET_WM_STATE", "ATOM", 32, states, 1);
    EXPECT_TRUE(tx::WindowManager::isHidden(window, &hidden));
    EXPECT_FALSE(hidden); // the newer property wins
    other.setProperty(window, "_NET_WM_STATE", "STRING", 8, "x", 1);
    EXPECT_TRUE(tx::WindowManager::isHidden(window, &hidden));
    EXPECT_TRUE(hidden);
    XDestroyWindow(other.display, window);
    other.sync();
    EXPECT_FALSE(tx::WindowManager::isHidden(window, &hidden));
}

TEST_F(WindowManagerTest, ACardinalHasTheRightTypeFormatAndAnItem) {
    const Window window = other.makeWindow();
    const long number = 0xfffffffe;
    unsigned long out = 7;
    const auto isRead = [&](const char* type, int format, const void* data, int count) {
        other.setProperty(window, "N", type, format, data, count);
        return tx::getCardinalProperty(window, other.atom("N"), XA_CARDINAL, &out);
    };
    EXPECT_FALSE(isRead("CARDINAL", 32, &number, 0));
    EXPECT_FALSE(isRead("CARDINAL", 16, "abcd", 2));
    EXPECT_FALSE(isRead("INTEGER", 32, &number, 1));
    EXPECT_EQ(out, 7UL);
    EXPECT_TRUE(isRead("CARDINAL", 32, &number, 1));
    EXPECT_EQ(out, 0xfffffffeUL); // not sign-extended
}

TEST_F(WindowManagerTest, AtomNamesOfAnyNumberAreSafe) {
    EXPECT_STREQ(tx::atomName(tx::clipboardAtom()), "CLIPBOARD");
    EXPECT_STREQ(tx::atomName(tx::none), "none");
    EXPECT_STREQ(tx::atomName(0x1fffffff), "atom 536870911");
    for (int id = 0; id < static_cast<int>(tx::AtomId::Count); id++) {
        const Atom atom = tx::atom(static_cast<tx::AtomId>(id));
        EXPECT_EQ(other.atom(tx::atomName(atom)), atom);
    }
}

using ErrorCatcherTest = XTest;

TEST_F(ErrorCatcherTest, EachErrorFallsToTheCatcherOfItsRequest) {
    XDestroyWindow(tx::dpy, 1); // before any catcher
    tx::ErrorCatcher outer(110);
    XDestroyWindow(tx::dpy, 2);
    {
        tx::ErrorCatcher inner(110);
        EXPECT_FALSE(inner.failed());
        XFreePixmap(tx::dpy, 3);
        try {
            inner.check("freeing");
            ADD_FAILURE() << "no error";
        } catch (const tx::XErrorException& e) {
            EXPECT_STREQ(e.type, "XError");
            EXPECT_EQ(std::string(e.what()).rfind("freeing: ", 0), 0U);
            EXPECT_NE(std::string(e.what()).find(" (4)"), std::string::npos); // BadPixmap
        }
        EXPECT_NO_THROW(inner.check("again"));
    }
    EXPECT_THROW(outer.check("outer", /*keep=*/true), tx::XErrorException);
    EXPECT_THROW(outer.check("kept"), tx::XErrorException);
    EXPECT_NO_THROW(outer.check("gone"));
}

struct Watched : tx::WindowWatcher::Callback {
    void windowDestroyed(tx::WindowWatcher*, Window window) override { gone.push_back(window); }
    std::vector<Window> gone;
};

TEST_F(ErrorCatcherTest, AWatcherBelievesOnlyTheServer) {
    Watched callback;
    tx::WindowWatcher watcher(&callback);
    EXPECT_FALSE(watcher.watch(0x12345));
    const Window window = other.makeWindow();
    other.sync();
    EXPECT_TRUE(watcher.watch(window));
    XEvent forged{};
    forged.xdestroywindow.type = DestroyNotify;
    forged.xdestroywindow.event = forged.xdestroywindow.window = window;
    tx::TXWindow ours(5, 5);
    other.send(ours.win(), forged);
    pump();
    EXPECT_TRUE(callback.gone.empty());
    XDestroyWindow(other.display, window);
    pump();
    EXPECT_EQ(callback.gone, std::vector<Window>{window});
    EXPECT_EQ(watcher.watched(), tx::none);
}

struct Collector : tx::EnumWindowsCallback {
    bool nextWindow(Window window) override {
        seen.push_back(window);
        if (onWindow)
            onWindow(window);
        return seen.size() < limit;
    }
    std::vector<Window> seen;
    size_t limit = 1000;
    std::function<void(Window)> onWindow;
};

TEST_F(ErrorCatcherTest, AWindowTreeMayChangeDuringAScan) {
    const Window top = other.makeWindow();
    const Window child = XCreateSimpleWindow(other.display, top, 0, 0, 5, 5, 0, 0, 0);
    const Window sibling = XCreateSimpleWindow(other.display, top, 0, 0, 5, 5, 0, 0, 0);
    XCreateSimpleWindow(other.display, sibling, 0, 0, 5, 5, 0, 0, 0);
    other.sync();
    Collector all;
    EXPECT_TRUE(tx::enumWindows(&all, top, true));
    EXPECT_EQ(all.seen.size(), 3U);
    Collector flat;
    EXPECT_TRUE(tx::enumWindows(&flat, top, false));
    EXPECT_EQ(flat.seen, (std::vector<Window>{child, sibling}));
    Collector one;
    one.limit = 1;
    EXPECT_FALSE(tx::enumWindows(&one, top, true));
    Collector changing;
    changing.onWindow = [&](Window) {
        XDestroyWindow(other.display, sibling);
        other.sync();
    };
    EXPECT_TRUE(tx::enumWindows(&changing, top, true));
    EXPECT_EQ(changing.seen, (std::vector<Window>{child, sibling})); // its own child is gone

    Window deep = other.makeWindow();
    const Window bottomless = deep;
    for (int level = 0; level < 500; level++)
        deep = XCreateSimpleWindow(other.display, deep, 0, 0, 5, 5, 0, 0, 0);
    other.sync();
    Collector levels;
    EXPECT_TRUE(tx::enumWindows(&levels, bottomless, true));
    EXPECT_EQ(levels.seen.size(), 64U);
}

TEST_F(ErrorCatcherTest, ExtensionsAreFoundOrMissedWithoutHarm) {
    if (tx::randrAvailable(true)) {
        const std::vector<tx::Monitor> monitors = tx::listMonitors();
        ASSERT_FALSE(monitors.empty());
        EXPECT_EQ(tx::findMonitor("0").crtc, monitors[0].crtc);
        ASSERT_FALSE(monitors[0].outputs.empty());
        std::string upper = monitors[0].outputs[0].c_str();
        for (char& c : upper)
            c = static_cast<char>(toupper(c));
        EXPECT_EQ(tx::findMonitor(upper.c_str()).crtc, monitors[0].crtc);
    }
    EXPECT_THROW(tx::findMonitor("99"), plat::Exception);
    try {
        tx::findMonitor("Elsewhere-9");
        ADD_FAILURE();
    } catch (const plat::Exception& e) {
        EXPECT_STREQ(e.what(), "Monitor named 'Elsewhere-9' not found");
    }
    int events = 0;
    int errors = 0;
    tx::dynXfixes::XFixesQueryExtension(tx::dpy, &events, &errors);
}

} // namespace
} // namespace txtest
