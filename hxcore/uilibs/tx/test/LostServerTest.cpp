// Servers of our own: one to be killed, one behind a relay that counts.
#include "XRelay.h"
#include "XServer.h"
#include "XTest.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"
#include "tx/TXDialog.h"
#include "tx/TXMsgBox.h"
#include "tx/TXWRoot.h"
#include "tx/WindowManager.h"
#include "tx/dynXrandr.h"
#include "wvw/WCanvas.h"

#include <poll.h>
#include <sys/wait.h>

namespace txtest {
namespace {

/// Waits for X as the loop does, and handles what comes.
void serveX() {
    for (;;) {
        tx::processEvents();
        pollfd fd{ConnectionNumber(tx::dpy), POLLIN, 0};
        poll(&fd, 1, 10000);
    }
}

void loseServerWhileIdle() {
    XServer server;
    tx::TXInit(server.display());
    server.kill();
    serveX();
}

void loseServerWhileDrawing() {
    XServer server;
    tx::TXInit(server.display());
    tx::TXWindow window(100, 100, nullptr, 0, true);
    window.map();
    server.kill();
    for (;;)
        window.raise(); // sooner or later the connection is full, or refuses
}

void loseServerInARoundTrip() {
    XServer server;
    tx::TXInit(server.display());
    server.stop();
    if (fork() == 0) { // while we wait for the time
        server.kill();
        _exit(0);
    }
    tx::getServerTime();
}

void loseServerInAModalLoop() {
    registerBuiltInResources();
    XServer server;
    tx::TXInit(server.display());
    plat::TimerManager timers;
    struct Dialog : tx::TXDialog {
        explicit Dialog(XServer* server_) : tx::TXDialog(nullptr, "lost"), server(server_) { setSize({40, 40}); }
        void mapChanged() override { server->kill(); }
        XServer* server;
    } dialog(&server);
    dialog.showModal();
}

/// With status 1, by itself and at once; the alarm of the test program's time-out would be another end.
TEST(LostServerDeathTest, EndsTheProcessWithStatusOne) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(loseServerWhileIdle(), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(loseServerWhileDrawing(), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(loseServerInARoundTrip(), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(loseServerInAModalLoop(), testing::ExitedWithCode(1), "");
}

TEST(NoServerDeathTest, IsAnExceptionThatNamesTheDisplay) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto openNothing = [] {
        try {
            tx::TXInit(":4711");
        } catch (const plat::Exception& e) {
            _exit(std::string(e.what()) == "unable to open display \":4711\"" ? 0 : 1);
        }
        _exit(2);
    };
    EXPECT_EXIT(openNothing(), testing::ExitedWithCode(0), "");
}

void failToFindAFont() {
    const plat::TempDir dir;
    plat::writeTextFile(dir / "fonts.dir", "0\n");
    const XServer server;
    Display* const other = XOpenDisplay(server.display()); // with the last client the server forgets it all
    std::string fontDir = dir.root;
    char* path[] = {fontDir.data()};
    XSetFontPath(other, path, 1);
    XSync(other, False);
    tx::TXInit(server.display());
}

TEST(NoFontDeathTest, EndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(failToFindAFont(), testing::ExitedWithCode(1), "^Failed to load any font\n$");
}

/// Where colours are cells of a map, and each call waits for its answer.
void usePrivateColours() {
    const XServer server("640x480x8");
    plat::Configuration::global().set("owncmap", "1");
    plat::Configuration::global().set("xsync", "1");
    tx::TXInit(server.display());
    tx::TXWindow window(10, 10);
    XWindowAttributes attributes{};
    XGetWindowAttributes(tx::dpy, window.win(), &attributes);
    const Colormap shared = DefaultColormap(tx::dpy, DefaultScreen(tx::dpy));
    // A full map of all others is no hindrance.
    Display* const other = XOpenDisplay(server.display());
    for (unsigned long cell = 0; XAllocColorCells(other, shared, False, nullptr, 0, &cell, 1);)
        ;
    XSync(other, False);
    XColor odd{};
    odd.red = 0x1234;
    odd.green = 0x5678;
    odd.blue = 0x9abc;
    tx::allocColours(&odd, 1);
    XColor got{};
    got.pixel = odd.pixel;
    XQueryColor(tx::dpy, tx::colormap, &got);
    const plat::CapturedLog log;
    XDestroyWindow(tx::dpy, 1);
    const bool toldAtOnce = log.has("0 XError: X Error: BadWindow (invalid Window parameter) (3)");
    _exit(tx::colormap == shared                          ? 1
          : attributes.colormap != tx::colormap           ? 2
          : got.red >> 8 != 0x12 || got.blue >> 8 != 0x9a ? 3
          : !toldAtOnce                                   ? 4
                                                          : 0);
}

TEST(SwitchesDeathTest, AColormapOfOurOwnAndEachRequestForItself) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(usePrivateColours(), testing::ExitedWithCode(0), "");
}

/// The session's user, or a viewer, gives the screen another size: menus and messages must stay on it.
void changeScreen() {
    static const plat::DynamicFn<decltype(::XRRSetCrtcConfig)> setCrtc{tx::dynXrandr::library, "XRRSetCrtcConfig"};
    static const plat::DynamicFn<decltype(::XRRSetScreenSize)> setSize{tx::dynXrandr::library, "XRRSetScreenSize"};
    const XServer server;
    tx::TXInit(server.display());
    const plat::TimerManager timers;
    tx::TXWindow window(100, 50);
    XSync(tx::dpy, False);
    Client other;
    XRRScreenResources* const resources = tx::dynXrandr::XRRGetScreenResources(other.display, other.root());
    setCrtc(other.display, resources, resources->crtcs[0], tx::currentTime, 0, 0, tx::none, RR_Rotate_0, nullptr, 0);
    setSize(other.display, other.root(), 500, 400, 100, 80);
    XEvent forged{};
    forged.xconfigure.type = ConfigureNotify;
    forged.xconfigure.event = forged.xconfigure.window = other.root();
    forged.xconfigure.width = forged.xconfigure.height = 9;
    XSendEvent(other.display, other.root(), False, StructureNotifyMask, &forged);
    other.sync();
    XSync(tx::dpy, False);
    tx::processEvents();
    window.centreOnScreen();
    const bool follows = tx::TXWRoot::instance().screenSize() == rfb::Point(500, 400) &&
                         tx::WindowManager::getWorkArea() == rfb::Rect(0, 0, 500, 400);
    _exit(follows && window.getRootPosition() == rfb::Point(195, 160) ? 0 : 1);
}

TEST(ScreenDeathTest, ANewSizeOfTheScreenCountsAtOnce) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(changeScreen(), testing::ExitedWithCode(0), "");
}

/// A dialog with buttons from nothing to a picture that rests, through the relay.
void countStartUp() {
    registerBuiltInResources();
    XServer server;
    XRelay relay(server.display());
    plat::TimerManager timers;
    tx::TXInit(relay.display());
    tx::TXMsgBox box(nullptr, "Title", "Some text", tx::TXMsgBox::Icon::Info, tx::TXMsgBox::Ok);
    box.show();
    while (!box.canvas().isAttached() || XPending(tx::dpy))
        tx::processEvents();
    XSync(tx::dpy, False);
    tx::processEvents();
    const int requests = relay.requests();
    const int replies = relay.replies();
    std::fprintf(stderr, "start-up: %d requests, %d round trips\n", requests, replies);
    _exit(requests <= 190 && replies <= 40 ? 0 : 1);
}

TEST(StartUpDeathTest, TakesFewRequestsAndRoundTrips) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(countStartUp(), testing::ExitedWithCode(0), "start-up: ");
}

} // namespace
} // namespace txtest
