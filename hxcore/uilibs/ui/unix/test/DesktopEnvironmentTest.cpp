#include "ui/unix/DesktopEnvironment.h"

#include "os/test/Sleeper.h"
#include "plat/test/CapturedLog.h"
#include "tx/test/XTest.h"

#include <algorithm>

namespace {

using Kind = ui::DesktopEnvironment::Kind;

struct DesktopTest : txtest::XTest, ui::DesktopEnvironment::Callback {
    ~DesktopTest() override {
        desktop.reset();
        for (auto each = made.rbegin(); each != made.rend(); ++each) // children first
            XDestroyWindow(other.display, *each);
        other.removeProperty(other.root(), "_NET_SUPPORTING_WM_CHECK");
        pump();
    }

    void desktopChanged() override {
        ++changes;
        if (endAtChange)
            desktop.reset();
    }

    Window window(const std::string& wmClass = "", const char* type = "STRING", Window parent = tx::none) {
        const Window made1 =
            XCreateSimpleWindow(other.display, parent == tx::none ? other.root() : parent, 0, 0, 1, 1, 0, 0, 0);
        if (!wmClass.empty())
            other.setProperty(made1, "WM_CLASS", type, 8, wmClass.data(), static_cast<int>(wmClass.size()));
        made.push_back(made1);
        return made1;
    }
    void setPid(Window of, long pid, const char* type = "CARDINAL") {
        other.setProperty(of, "_NET_WM_PID", type, 32, &pid, 1);
    }
    /// A window manager of the kind that says so by properties.
    Window manage() {
        const Window check = window();
        other.setProperty(check, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &check, 1);
        other.setProperty(other.root(), "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &check, 1);
        return check;
    }
    /// One that only takes what windows ask of the root.
    void redirect() { XSelectInput(other.display, other.root(), SubstructureRedirectMask); }

    /// Moves time until nothing is due any more; gives how often the display was looked at, -1 for without end.
    int settle() {
        for (int scans = 0; scans < 50; scans++) {
            pump();
            if (isIdle())
                return scans;
            fire(timers->timeUntilNext()); // begins a scan
            for (int pieces = 0; pieces < 1000 && timers->timeUntilNext() == 0; pieces++)
                fire(0);
        }
        return -1;
    }
    std::string detect() {
        desktop = std::make_unique<ui::DesktopEnvironment>(this);
        settle();
        return desktop->name();
    }

    std::vector<Window> made;
    std::unique_ptr<ui::DesktopEnvironment> desktop;
    int changes = 0;
    bool endAtChange = false;
};

std::string instance(const char* name) { return std::string(name) + '\0' + "Class" + '\0'; }

TEST_F(DesktopTest, WithoutAManagerNothingIsLookedAt) {
    window(instance("gnome-shell"));
    plat::CapturedLog log;
    EXPECT_EQ(detect(), "None");
    EXPECT_EQ(changes, 1); // the first finding is told, whatever it is
    EXPECT_TRUE(log.has("30 DesktopEnvironment: Detected None"));
}

TEST_F(DesktopTest, TheGreatestKindWins) {
    redirect();
    EXPECT_EQ(detect(), "TWM-compatible");
    const char* const stories[][2] = {
        {"dtwm", "CDE"},
        {"mwm", "MWM"},
        {"E", "Enlightenment"},
        {"fvwm", "FVWM"},
        {"xfce4-session", "XFCE"},
        {"lxpanel", "LXDE"},
        {"gnome-panel", "GNOME Classic"},
        {"gnome-shell", "GNOME Shell"},
        {"mate-session", "MATE"},
        {"gnome-session", "MATE"}, // the lesser one changes nothing
        {"cinnamon", "Cinnamon"},
        {"unity-panel-service", "Unity"},
        {"unity-2d-launcher", "Unity 2D"},
        {"kwin", "KDE Classic"},
        {"plasma-desktop", "KDE Plasma"},
    };
    const Window parent = window();
    for (const auto& [name, kind] : stories) {
        window(instance(name), "STRING", window("", "", parent)); // deep in the tree
        EXPECT_EQ(detect(), kind) << name;
    }
}

TEST_F(DesktopTest, OnlyAFirstStringOfTheRightTypeAndFormatCounts) {
    redirect();
    const long number = 0x77676e6f;
    window(instance("gnome-shell"), "UTF8_STRING");
    window(instance("other") + instance("gnome-shell"));
    window("gnome-shel");
    window("Gnome-shell");
    window(std::string(300, 'x') + instance("gnome-shell"));
    window(std::string(1, '\0') + "gnome-shell");
    other.setProperty(window(), "WM_CLASS", "STRING", 32, &number, 1);
    EXPECT_EQ(detect(), "TWM-compatible");
    window(instance("kwin") + std::string(200000, 'y')); // what follows isn't read
    EXPECT_EQ(detect(), "KDE Classic");
    window("plasma-desktop"); // without its NUL
    EXPECT_EQ(detect(), "KDE Plasma");
}

TEST_F(DesktopTest, TheBusAddressIsThatOfAProcessOfOurs) {
    redirect();
    const os::Sleeper good("DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/7/bus,guid=12");
    const os::Sleeper remote("DBUS_SESSION_BUS_ADDRESS=tcp:host=evil,port=1");
    const os::Sleeper mixed("DBUS_SESSION_BUS_ADDRESS=unix:abstract=/a;unixexec:path=/bin/sh");
    const os::Sleeper blank("DBUS_SESSION_BUS_ADDRESS=unix:path=/a b");
    const Window shell = window(instance("gnome-shell"));
    const auto addressFor = [&](long pid, const char* type = "CARDINAL") {
        setPid(shell, pid, type);
        detect();
        return std::string(desktop->dbusAddress().c_str());
    };
    plat::CapturedLog log;
    EXPECT_EQ(addressFor(good.pid), "unix:path=/run/user/7/bus,guid=12");
    EXPECT_TRUE(log.has("30 DesktopEnvironment: DBus address: unix:path=/run/user/7/bus,guid=12"));
    EXPECT_EQ(addressFor(good.pid, "INTEGER"), "");
    for (const long pid : {long{remote.pid}, long{mixed.pid}, long{blank.pid}, 0L, -1L, 0x7fffffffL, 0xffffffffL})
        EXPECT_EQ(addressFor(pid), "") << pid;
    if (geteuid() == 0) {
        const os::Sleeper stranger("DBUS_SESSION_BUS_ADDRESS=unix:path=/tmp/trap", 65534);
        EXPECT_EQ(addressFor(stranger.pid), "");
    }
    // Another window of the same kind may know better; one of a lesser kind isn't asked.
    setPid(window(instance("gnome-panel")), good.pid);
    EXPECT_EQ(addressFor(remote.pid), "");
    setPid(window(instance("gnome-shell")), good.pid);
    EXPECT_NE(addressFor(remote.pid), "");
}

TEST(DesktopAddress, OnlyLocalSocketsWillDo) {
    const auto isUsable = ui::DesktopEnvironment::isUsableAddress;
    for (const char* good : {"unix:path=/x", "unix:abstract=/x,guid=1", "unix:path=/x;unix:abstract=y"})
        EXPECT_TRUE(isUsable(good)) << good;
    for (const char* bad : {"", "unix:path=", "unix:abstract=", "unix:tmpdir=/tmp", "unix:runtime=yes", "UNIX:path=/x",
                            " unix:path=/x", "unix:path=/x;", ";unix:path=/x", "unix:path=/x\n", "unix:path=/\xc3\xa4",
                            "autolaunch:", "launchd:env=X", "tcp:host=a,unix:path=/x"})
        EXPECT_FALSE(isUsable(bad)) << bad;
    EXPECT_TRUE(isUsable("unix:path=" + std::string(1014, 'x')));
    EXPECT_FALSE(isUsable("unix:path=" + std::string(1015, 'x')));
}

TEST_F(DesktopTest, AChangeIsFollowedByFiveScansAndThenSilence) {
    redirect();
    desktop = std::make_unique<ui::DesktopEnvironment>(this);
    EXPECT_EQ(settle(), 1);
    EXPECT_EQ(changes, 1);
    other.setProperty(other.root(), "_SOMETHING", "STRING", 8, "x", 1);
    EXPECT_EQ(settle(), 0); // nothing of a window manager's
    manage();
    EXPECT_EQ(settle(), 5);
    EXPECT_EQ(changes, 1); // TWM-compatible all the time

    XEvent message{};
    message.xclient.type = ClientMessage;
    message.xclient.window = other.root();
    message.xclient.message_type = other.atom("MANAGER");
    message.xclient.format = 32;
    message.xclient.data.l[1] = static_cast<long>(other.atom("_NET_SYSTEM_TRAY_S0"));
    const auto announce = [&] {
        XSendEvent(other.display, other.root(), False, StructureNotifyMask, &message);
        return settle();
    };
    EXPECT_EQ(announce(), 0); // a tray has come
    message.xclient.data.l[1] = static_cast<long>(other.atom("WM_S0"));
    EXPECT_EQ(announce(), 5);
}

TEST_F(DesktopTest, TheManagersEndIsSeenAndItsSuccessorToo) {
    const Window check = manage();
    EXPECT_EQ(detect(), "TWM-compatible");
    plat::CapturedLog log;
    XDestroyWindow(other.display, check);
    std::erase(made, check);
    EXPECT_EQ(settle(), 5);
    EXPECT_TRUE(log.has("30 DesktopEnvironment: Window Manager exited (watched window gone)"));
    EXPECT_TRUE(log.has("30 DesktopEnvironment: Detected None"));
    EXPECT_EQ(changes, 2);
    manage();
    EXPECT_EQ(settle(), 5);
    EXPECT_STREQ(desktop->name(), "TWM-compatible");
    EXPECT_EQ(changes, 3);
}

TEST_F(DesktopTest, AFloodOfChangesCostsAScanNowAndThen) {
    redirect();
    detect();
    int scans = 0;
    for (int i = 0; i < 1000; i++) { // one each millisecond
        other.setProperty(other.root(), "_MOTIF_WM_INFO", "STRING", 8, "x", 1);
        XSync(tx::dpy, False);
        tx::processEvents();
        scans += timers->timeUntilNext() == 0 ? 1 : 0;
        while (timers->timeUntilNext() == 0)
            fire(0);
        fire(1);
    }
    EXPECT_LE(scans, 6);
    EXPECT_EQ(settle(), 5);
}

TEST_F(DesktopTest, MayEndInItsOwnCall) {
    redirect();
    endAtChange = true;
    desktop = std::make_unique<ui::DesktopEnvironment>(this);
    for (int i = 0; i < 5 && !isIdle(); i++)
        fire(0);
    EXPECT_EQ(desktop, nullptr);
    EXPECT_TRUE(isIdle());
}

using ScanTest = DesktopTest;

int anyName(std::string_view name) { return name.empty() ? 0 : 1; }

TEST_F(ScanTest, WindowsThatGoMeanwhileArePassedBy) {
    const Window parent = window(instance("parent"));
    for (int i = 0; i < 20; i++)
        window(instance("child"), "STRING", parent);
    pump();
    ui::WindowScan scan(anyName);
    scan.start();
    const int all = [&] {
        while (!scan.run(0)) // one window each time
            ;
        return scan.looked();
    }();
    scan.start();
    while (scan.hits().size() < 5)
        ASSERT_FALSE(scan.run(0));
    XDestroyWindow(other.display, parent); // takes its children along
    made.clear();
    other.sync();
    int pieces = 0;
    while (!scan.run(0))
        pieces++;
    EXPECT_GE(scan.hits().size(), 5U);
    EXPECT_LE(scan.looked(), all);
    EXPECT_GT(pieces, 10); // a piece ends when its time is over
}

TEST_F(ScanTest, EndlessTreesAreLeftAtALimit) {
    Window deepest = other.root();
    for (int depth = 1; depth <= 40; depth++)
        deepest = window(instance("deep"), "STRING", deepest);
    ui::WindowScan scan(anyName);
    scan.start();
    EXPECT_TRUE(scan.run(60000));
    EXPECT_EQ(scan.hits().size(), 32U);

    const Window full = window();
    for (int i = 0; i < 20000; i++)
        XCreateSimpleWindow(other.display, full, 0, 0, 1, 1, 0, 0, 0);
    other.sync();
    scan.start();
    while (!scan.run(60000))
        ;
    EXPECT_EQ(scan.looked(), 16384);
}

} // namespace
