#include "tx/DesktopUidMonitor.h"

#include "XTest.h"
#include "os/test/Sleeper.h"
#include "plat/test/CapturedLog.h"

namespace txtest {
namespace {

struct DesktopUidTest : XTest, tx::DesktopUidMonitor::Callback {
    DesktopUidTest() {
        setenv("XAUTHORITY", "/our/cookies", 1);
        monitor = std::make_unique<tx::DesktopUidMonitor>(this);
    }
    ~DesktopUidTest() override {
        monitor.reset();
        unsetenv("XAUTHORITY");
        other.removeProperty(other.root(), "ZEF_DESKTOP_UID");
        other.removeProperty(other.root(), "_NET_CLIENT_LIST");
        pump();
    }
    void desktopUidChanged(tx::DesktopUidMonitor*) override { changes++; }
    std::string user() {
        pump();
        fire(500);
        pump();
        return monitor->isKnown() ? std::to_string(monitor->uid()) : "unknown";
    }
    void setType(Window window, const char* type) {
        const Atom atom = other.atom(type);
        other.setProperty(window, "_NET_WM_WINDOW_TYPE", "ATOM", 32, &atom, 1);
    }
    void list(std::vector<Window> windows) {
        other.setProperty(other.root(), "_NET_CLIENT_LIST", "WINDOW", 32, windows.data(),
                          static_cast<int>(windows.size()));
    }

    std::unique_ptr<tx::DesktopUidMonitor> monitor;
    int changes = 0;
};

TEST_F(DesktopUidTest, BelievesAWellFormedPropertyAtTheRoot) {
    EXPECT_EQ(user(), "unknown");
    plat::CapturedLog log;
    tx::writeDesktopUid(1234);
    EXPECT_EQ(user(), "1234");
    EXPECT_TRUE(log.has("30 DesktopUidMonitor: Desktop user is 1234"));
    EXPECT_EQ(user(), "1234");
    EXPECT_EQ(changes, 1);
    const long two[] = {5, 6};
    const long none = -1;
    other.setProperty(other.root(), "ZEF_DESKTOP_UID", "CARDINAL", 32, two, 2);
    EXPECT_EQ(user(), "unknown");
    for (const char* type : {"INTEGER", "STRING"}) {
        other.setProperty(other.root(), "ZEF_DESKTOP_UID", type, 32, two, 1);
        EXPECT_EQ(user(), "unknown") << type;
    }
    other.setProperty(other.root(), "ZEF_DESKTOP_UID", "CARDINAL", 8, "1234", 4);
    EXPECT_EQ(user(), "unknown");
    other.setProperty(other.root(), "ZEF_DESKTOP_UID", "CARDINAL", 32, &none, 1);
    EXPECT_EQ(user(), "unknown");
    EXPECT_EQ(changes, 2);
    EXPECT_TRUE(isIdle());
}

TEST_F(DesktopUidTest, ElseTheProcessOfAWindowTellsThatSharesOurCookies) {
    const os::Sleeper ours("XAUTHORITY=/our/cookies");
    const os::Sleeper theirs("HOME=/home/x");
    const Window window = other.makeWindow();
    const auto setPid = [&](long pid) { other.setProperty(window, "_NET_WM_PID", "CARDINAL", 32, &pid, 1); };
    plat::CapturedLog log;
    setPid(theirs.pid);
    setType(window, "_NET_WM_WINDOW_TYPE_NORMAL");
    list({0x7654321, window});
    EXPECT_EQ(user(), "unknown");
    EXPECT_TRUE(log.has("100 DesktopUidMonitor: xauthFile mismatch: /home/x/.Xauthority != /our/cookies"));
    setPid(ours.pid);
    setType(window, "_NET_WM_WINDOW_TYPE_DIALOG");
    list({window});
    EXPECT_EQ(user(), "unknown");
    for (const char* type : {"_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_DOCK"}) {
        setType(window, type);
        list({window});
        EXPECT_EQ(user(), std::to_string(getuid())) << type;
    }
    tx::writeDesktopUid(77);
    EXPECT_EQ(user(), "77"); // who wrote that knows better
    other.removeProperty(other.root(), "ZEF_DESKTOP_UID");
    EXPECT_EQ(user(), std::to_string(getuid()));
    XDestroyWindow(other.display, window);
    other.sync();
    EXPECT_EQ(user(), "unknown");
    EXPECT_TRUE(isIdle());
}

} // namespace
} // namespace txtest
