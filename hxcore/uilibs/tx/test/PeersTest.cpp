// Other programs on the same server: well-known ones, greedy ones, and some that mean harm.
#include "XTest.h"
#include "plat/test/CapturedLog.h"
#include "tx/DesktopSettings.h"
#include "tx/ErrorCatcher.h"
#include "tx/WindowManager.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace txtest {
namespace {

/// A program that runs beside us; it is killed at the end.
class Program {
public:
    template <class... Args>
    explicit Program(Args... args) {
        pid = fork();
        if (pid == 0) {
            const int nowhere = open("/dev/null", O_RDWR);
            dup2(nowhere, 1);
            dup2(nowhere, 2);
            execlp(args..., nullptr);
            _exit(127);
        }
    }
    ~Program() {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

private:
    pid_t pid;
};

struct PeersTest : XTest {
    PeersTest() { plat::setTimeSource(nullptr); } // programs take real time

    /// Serves X until it holds, for at most ten seconds.
    template <class Condition>
    bool wait(Condition condition) {
        const int64_t deadline = plat::monoTicks() + 10 * plat::ticksPerSecond;
        while (!condition()) {
            if (plat::monoTicks() > deadline)
                return false;
            tx::processEvents();
            pollfd fd{ConnectionNumber(tx::dpy), POLLIN, 0};
            poll(&fd, 1, 5);
        }
        return true;
    }
    /// What a shell command writes while we serve X.
    std::string output(const std::string& command) {
        std::string text;
        std::atomic<bool> done{false};
        std::thread reader([&] {
            FILE* pipe = popen(command.c_str(), "r");
            char buffer[65536];
            for (size_t len = 0; (len = fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
                text.append(buffer, len);
            pclose(pipe);
            done = true;
        });
        EXPECT_TRUE(wait([&] { return done.load(); })) << command;
        reader.join();
        return text;
    }
    /// Gives CLIPBOARD to a program that stays in the background.
    void copyWith(const std::string& command) {
        const Window before = XGetSelectionOwner(other.display, other.atom("CLIPBOARD"));
        output("(" + command + ") >/dev/null 2>&1");
        EXPECT_TRUE(wait([&] { return XGetSelectionOwner(other.display, other.atom("CLIPBOARD")) != before; }));
        pump(); // that the selection is lost is news of the server's, too
    }
    std::string paste() { return window.getCutText(tx::clipboardAtom()).c_str(); }
    void offer(const std::string& text) { window.setCutText(text.size(), text.data(), tx::getServerTime()); }
    void appendWide(Window to, Atom property, Atom type, int times, const std::string& part) {
        for (int i = 0; i < times; i++)
            XChangeProperty(other.display, to, property, type, 8, PropModeAppend,
                            reinterpret_cast<const unsigned char*>(part.data()), static_cast<int>(part.size()));
        other.sync();
    }

    tx::TXWindow window{10, 10};
};

TEST_F(PeersTest, TextGoesBothWaysWithClipboardPrograms) {
    const std::string text = "caf\xc3\xa9 \xe2\x82\xac\nsecond line";
    offer(text);
    EXPECT_EQ(output("xclip -o -selection clipboard -t UTF8_STRING"), text);
    EXPECT_EQ(output("xclip -o -selection primary -t STRING | od -An -c | tr -d ' \\n'").substr(0, 10), "caf351?\\ns");
    EXPECT_EQ(output("xsel --clipboard --output"), text);
    EXPECT_EQ(output("xclip -o -selection clipboard -t TARGETS"), "TIMESTAMP\nUTF8_STRING\nSTRING\n");
    EXPECT_NE(output("xclip -o -selection clipboard -t TIMESTAMP"), "");

    copyWith("printf 'fr\xc3\xb6hlich' | xclip -i -selection clipboard");
    EXPECT_EQ(paste(), "fr\xc3\xb6hlich");
    copyWith("printf 'a \xe2\x82\xac' | xsel --clipboard --input");
    EXPECT_EQ(paste(), "a \xe2\x82\xac");
    // Larger than a request: it comes piece by piece, which we decline.
    copyWith("head -c 20000000 /dev/zero | tr '\\0' x | xclip -i -selection clipboard");
    EXPECT_EQ(paste(), "");
    offer("ours again");
    EXPECT_EQ(output("xsel --clipboard --output"), "ours again");
}

TEST_F(PeersTest, LargeTextIsGivenUpToTheLargestRequestAndRefusedBeyond) {
    offer(std::string(3000000, 'x'));
    EXPECT_EQ(output("xclip -o -selection clipboard -t UTF8_STRING").size(), 3000000U);
    offer(std::string(20000000, 'x'));
    EXPECT_EQ(output("timeout 0.5 xclip -o -selection clipboard -t UTF8_STRING 2>/dev/null").size(), 0U);
    EXPECT_EQ(paste().size(), 20000000U); // among ourselves
}

// A hundred megabytes, wherever we read a property.
TEST_F(PeersTest, PropertiesOfAHundredMegabytesAreReadInPart) {
    const std::string part(15UL * 1024 * 1024, 'x');
    const Window victim = other.makeWindow();
    appendWide(victim, other.atom("WM_NAME"), XA_STRING, 7, part);
    EXPECT_TRUE(tx::getWindowProperty(victim, XA_WM_NAME, XA_STRING).isTruncated());
    for (const char* name : {"RESOURCE_MANAGER", "_NET_WORKAREA"})
        appendWide(other.root(), other.atom(name), XA_STRING, 1, part);
    const tx::DesktopSettings settings;
    EXPECT_EQ(tx::WindowManager::getWorkArea(), rfb::Rect({0, 0}, tx::getScreenSize()));

    // As a selection, by an owner that writes it itself.
    const Window owner = other.makeWindow();
    XSetSelectionOwner(other.display, other.atom("CLIPBOARD"), owner, tx::currentTime);
    other.sync();
    std::thread answering([&] {
        XEvent event;
        do
            XNextEvent(other.display, &event);
        while (event.type != SelectionRequest);
        const XSelectionRequestEvent request = event.xselectionrequest;
        appendWide(request.requestor, request.property, other.atom("UTF8_STRING"), 5, part);
        XEvent answer{};
        answer.xselection.type = SelectionNotify;
        answer.xselection.requestor = request.requestor;
        answer.xselection.selection = request.selection;
        answer.xselection.target = request.target;
        answer.xselection.property = request.property;
        XSendEvent(other.display, request.requestor, False, 0, &answer);
        other.sync();
    });
    EXPECT_TRUE(window.requestSelection(tx::clipboardAtom(), tx::utf8String(), 8000));
    answering.join();
    EXPECT_FALSE(window.hasCutText());
    EXPECT_FALSE(tx::getWindowProperty(window.win(), tx::selectionString(), AnyPropertyType).exists());
    for (const char* name : {"RESOURCE_MANAGER", "_NET_WORKAREA"})
        other.removeProperty(other.root(), name);
}

TEST_F(PeersTest, AGrabThatAnotherClientHoldsIsRefusedAndTold) {
    window.setOverrideRedirect(true);
    window.map();
    pump();
    XGrabPointer(other.display, other.root(), False, 0, GrabModeAsync, GrabModeAsync, tx::none, tx::none,
                 tx::currentTime);
    XGrabKeyboard(other.display, other.root(), False, GrabModeAsync, GrabModeAsync, tx::currentTime);
    other.sync();
    {
        const plat::CapturedLog log;
        window.addEventMask(StructureNotifyMask);
        window.setGrab(true, true, tx::none, true);
        window.handleWindowEvent([&] {
            static XEvent mapped{};
            mapped.xmap.type = MapNotify;
            mapped.xmap.window = window.win();
            return &mapped;
        }());
        EXPECT_TRUE(log.has("0 TXWindow: XGrabPointer failed: 1"));
        EXPECT_TRUE(log.has("0 TXWindow: XGrabKeyboard failed: 1"));
    }
    XUngrabPointer(other.display, tx::currentTime);
    XUngrabKeyboard(other.display, tx::currentTime);
    // And asked for again until it is had.
    const auto hasIt = [&] {
        timers->processTimers();
        const bool pointer = XGrabPointer(other.display, other.root(), False, 0, GrabModeAsync, GrabModeAsync, tx::none,
                                          tx::none, tx::currentTime) == AlreadyGrabbed;
        const bool keyboard = XGrabKeyboard(other.display, other.root(), False, GrabModeAsync, GrabModeAsync,
                                            tx::currentTime) == AlreadyGrabbed;
        XUngrabPointer(other.display, tx::currentTime);
        XUngrabKeyboard(other.display, tx::currentTime);
        other.sync();
        return pointer && keyboard;
    };
    EXPECT_TRUE(wait(hasIt));
    window.setGrab(false, false, tx::none, true);
    pump();
    EXPECT_FALSE(hasIt());
    EXPECT_TRUE(wait([this] {
        timers->processTimers();
        return isIdle();
    }));
}

// However much comes, timers and links get their turn.
TEST_F(PeersTest, AFloodOfEventsLeavesRoomForTheRest) {
    struct Slow : tx::TXEventHandler {
        bool handleEvent(XEvent* event) override {
            if (event->type == PropertyNotify) {
                clockTicks += plat::ticksPerMs;
                handled++;
            }
            return false;
        }
        int handled = 0;
    } slow;
    plat::setTimeSource(readClock);
    tx::addGlobalEventHandler(&slow, /*add=*/true);
    window.addEventMask(PropertyChangeMask);
    pump();
    for (int i = 0; i < 1000; i++)
        appendWide(window.win(), other.atom("SOME_PROPERTY"), XA_STRING, 1, "x");
    other.sync();
    XSync(tx::dpy, False);
    EXPECT_TRUE(tx::processEvents()) << "tells that there is more";
    EXPECT_GE(slow.handled, 15);
    EXPECT_LE(slow.handled, 25);
    int turns = 1;
    while (tx::processEvents())
        turns++;
    EXPECT_EQ(slow.handled, 1000);
    EXPECT_GE(turns, 40);
    tx::addGlobalEventHandler(&slow, /*add=*/false);
}

TEST_F(PeersTest, AStormOfSizesIsPaintedOnceInTheLastOne) {
    FakeWidget root(50, 50);
    tx::TXWParent parent(&root, nullptr, /*unmanaged=*/true);
    parent.show(true);
    pump();
    root.painted.clear();
    struct Count : tx::TXEventHandler {
        bool handleEvent(XEvent* event) override {
            configures += event->type == ConfigureNotify ? 1 : 0;
            return false;
        }
        int configures = 0;
    } count;
    parent.addEventHandler(&count, /*add=*/true);
    for (unsigned i = 0; i < 1000; i++)
        XResizeWindow(other.display, parent.win(), 60 + i % 40, 70 + i % 30);
    XResizeWindow(other.display, parent.win(), 333, 222);
    pump();
    EXPECT_EQ(root.getSize(), rfb::Point(333, 222));
    EXPECT_LT(count.configures, 50);
    EXPECT_LT(root.painted.size(), 50U);
    parent.addEventHandler(&count, /*add=*/false);
}

TEST_F(PeersTest, WhatIsSelectedAndWhatIsCopiedAreTwoThings) {
    FakeWidget root(50, 50);
    tx::TXWParent parent(&root, nullptr, /*unmanaged=*/true);
    parent.setCutText("copied");
    parent.setPrimaryText("s\xc3\xa9lected");
    EXPECT_EQ(output("xclip -o -selection primary -t UTF8_STRING"), "s\xc3\xa9lected");
    EXPECT_EQ(output("xclip -o -selection clipboard -t UTF8_STRING"), "copied");
    EXPECT_STREQ(parent.getPrimaryText().c_str(), "s\xc3\xa9lected");
    EXPECT_STREQ(parent.getCutText().c_str(), "copied");
    copyWith("printf theirs | xclip -i -selection clipboard");
    EXPECT_STREQ(parent.getCutText().c_str(), "theirs");
    EXPECT_EQ(output("xclip -o -selection primary -t UTF8_STRING"), "s\xc3\xa9lected");
    parent.setCutText("both"); // which a copy has always set
    EXPECT_STREQ(parent.getPrimaryText().c_str(), "both");
}

// Any client may destroy any window; ours then lives on as an object.
TEST_F(PeersTest, AWindowDestroyedByAnotherClientIsNoCrash) {
    FakeWidget root(50, 50);
    tx::TXWParent parent(&root, nullptr, /*unmanaged=*/true);
    parent.show(true);
    pump();
    XDestroyWindow(other.display, parent.win());
    pump();
    root.repaint();
    parent.setGrab(true, true, tx::none, true);
    parent.resize(60, 60);
    parent.setCutText("text");
    parent.show(false);
    parent.show(true);
    pump();
}

TEST_F(PeersTest, AWindowManagerMayComeAndGo) {
    FakeWidget root(50, 50);
    tx::TXWParent parent(&root);
    parent.setWMProperties("survivor");
    parent.show(true);
    pump();
    for (int round = 0; round < 2; round++) {
        {
            const Program manager("openbox", "openbox", "--sm-disable");
            // It names itself first, and takes windows over when it lists them.
            EXPECT_TRUE(wait([&] {
                const tx::Property list =
                    tx::getWindowProperty(tx::rootWindow, other.atom("_NET_CLIENT_LIST"), XA_WINDOW);
                return std::count(list.longs().begin(), list.longs().end(), parent.win()) == 1;
            }));
            EXPECT_TRUE(tx::WindowManager::isWMRunning());
            parent.show(false);
            parent.show(true);
            EXPECT_TRUE(wait([&] { return parent.isMapped() && root.isAttached(); }));
        }
        EXPECT_TRUE(wait([] { return !tx::WindowManager::isWMRunning(); })); // what it left behind is not believed
        other.removeProperty(other.root(), "_NET_CLIENT_LIST");
        parent.show(false);
        parent.show(true);
        EXPECT_TRUE(wait([&] { return parent.isMapped() && root.isAttached(); }));
    }
}

} // namespace
} // namespace txtest
