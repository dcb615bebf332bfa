#include "ui/unix/StatusIconGtk.h"

#include "io/FdSelectManager.h"
#include "io/test/bytes.h"
#include "os/AppInfo.h"
#include "os/launchProcess.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"
#include "tx/test/XTest.h"

#include <csignal>
#include <cstring>
#include <ctime>
#include <fstream>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr const char* relayVariable = "ZEF_TEST_RELAY";

sockaddr_un addressOf(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    return address;
}

bool pass(int from, int to) {
    char block[4096];
    const ssize_t count = read(from, block, sizeof block);
    return count > 0 && write(to, block, static_cast<size_t>(count)) == count;
}

/// What this program does when it is started as the helper: it passes all on between the link and the test.
struct HelperRoad {
    HelperRoad() {
        std::ifstream words("/proc/self/cmdline");
        std::string program;
        std::string road;
        std::string number;
        std::getline(words, program, '\0');
        std::getline(words, road, '\0');
        if (road != "-statusicon")
            return;
        const char* path = std::getenv(relayVariable);
        if (!path || !*path)
            _exit(0);
        std::getline(words, number, '\0');
        const int link = std::atoi(number.c_str());
        const int test = socket(AF_UNIX, SOCK_STREAM, 0);
        const sockaddr_un address = addressOf(path);
        if (connect(test, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            _exit(1);
        pollfd fds[2] = {{link, POLLIN, 0}, {test, POLLIN, 0}};
        while (poll(fds, 2, -1) >= 0) {
            if ((fds[0].revents && !pass(link, test)) || (fds[1].revents && !pass(test, link)))
                _exit(0);
        }
        _exit(1);
    }
} helperRoad;

struct StatusIconTest : txtest::XTest, ui::StatusIconGtk::Callback, ui::Menu::ActionCallback {
    StatusIconTest() {
        path = dir / "relay";
        setenv(relayVariable, path.c_str(), 1);
        listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        const sockaddr_un address = addressOf(path.c_str());
        if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || listen(listener, 5))
            std::abort();
    }
    ~StatusIconTest() override {
        icon.reset();
        dropHelper();
        close(listener);
        other.removeProperty(other.root(), "_NET_SUPPORTING_WM_CHECK");
    }

    void iconEmbedded(bool shown) override { told += shown ? "+" : "-"; }
    void iconActivated() override { told += "!"; }
    bool canUseIndicator() override { return indicator; }
    void menuAction(ui::Menu::Item* item) override {
        told += item->getText();
        if (removeChosen)
            icon->menu()->removeItem(item);
    }

    void start() { icon = std::make_unique<ui::StatusIconGtk>(static_cast<ui::StatusIconGtk::Callback*>(this)); }

    /// Serves the loop and the helper's side until the condition holds; at most 10 seconds.
    template <class Condition>
    bool eventually(Condition condition) {
        const std::time_t deadline = std::time(nullptr) + 10;
        while (!condition()) {
            if (std::time(nullptr) > deadline)
                return false;
            serve();
        }
        return true;
    }
    void serve() {
        pump();
        loop.poll(5);
        if (helper < 0)
            helper = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        char block[4096];
        ssize_t count;
        while (helper >= 0 && !isDeaf && (count = read(helper, block, sizeof block)) > 0)
            received.append(block, static_cast<size_t>(count));
    }
    void dropHelper() {
        if (helper >= 0)
            close(helper);
        helper = -1;
        received.clear();
    }
    void tell(const std::string& message) {
        ASSERT_EQ(write(helper, message.data(), message.size()), ssize_t(message.size()));
    }

    /// Moves time on, in small steps, and serves what becomes due.
    void pass(int ms) {
        for (int left = ms; left > 0; left -= stepMs) {
            txtest::clockTicks += std::min(left, stepMs) * plat::ticksPerMs;
            loop.poll(0);
        }
        for (int i = 0; i < 3; i++)
            serve();
    }
    static constexpr int stepMs = 50;
    /// Waits for so many messages of that name, and gives the body of the last.
    std::string await(const std::string& name, size_t count = 1) {
        std::string body;
        EXPECT_TRUE(eventually([&] { return bodies(name).size() >= count; })) << name;
        const std::vector<std::string> all = bodies(name);
        EXPECT_EQ(all.size(), count) << name;
        return all.empty() ? "" : all.back();
    }
    std::vector<std::string> bodies(const std::string& name) {
        std::vector<std::string> all;
        for (const std::string& message : io::messagesOf(received)) {
            const size_t length = static_cast<unsigned char>(message[0]);
            if (message.substr(1, length) == name)
                all.push_back(message.substr(1 + length));
        }
        return all;
    }
    /// The display looks like that desktop from now on.
    void becomeDesktop(const std::string& wmClass) {
        XSelectInput(other.display, other.root(), SubstructureRedirectMask);
        if (!desktopWindow)
            desktopWindow = other.makeWindow();
        other.setProperty(desktopWindow, "WM_CLASS", "STRING", 8, wmClass.c_str(), static_cast<int>(wmClass.size()));
        other.setProperty(other.root(), "_MOTIF_WM_INFO", "STRING", 8, "x", 1);
        pump();
    }

    static std::string create(char type) { return io::bytes("00 00 00") + type; }

    plat::TempDir dir;
    std::string path;
    io::FdSelectManager loop{/*nested=*/true};
    int listener = -1;
    int helper = -1;
    bool isDeaf = false;
    std::string received;
    std::string told;
    bool indicator = false;
    bool removeChosen = false;
    Window desktopWindow = tx::none;
    std::unique_ptr<ui::StatusIconGtk> icon;
};

const std::string isShown = io::message("iconEmbedded", io::bytes("01"));
const std::string isHidden = io::message("iconEmbedded", io::bytes("00"));

TEST_F(StatusIconTest, AsksForAnIconOnceTheDesktopIsKnown) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/ours", 1);
    const char* extra[] = {"-Log=*:stderr:0", nullptr};
    os::AppInfo::setExtraArgs(extra);
    start();
    EXPECT_EQ(await("setEnv"), io::bytes("18 'DBUS_SESSION_BUS_ADDRESS' 0f 'unix:path=/ours'"));
    EXPECT_EQ(await("create"), create(0));
    std::ifstream words("/proc/" + std::to_string(icon->helperPid()) + "/cmdline");
    const std::string line((std::istreambuf_iterator<char>(words)), {});
    const std::string expected = std::string(os::runningExecutable().c_str()) + '\0' + "-statusicon" + '\0' + "3" +
                                 '\0' + "-Log=*:stderr:0" + '\0';
    EXPECT_EQ(line, expected);

    pass(400);
    tell(isHidden); // it may still come
    pass(50);
    EXPECT_EQ(told, "");
    tell(isShown);
    EXPECT_TRUE(eventually([&] { return told == "+"; }));
    pass(5000);
    EXPECT_EQ(told, "+");
    tell(isHidden);
    EXPECT_TRUE(eventually([&] { return told == "+-"; })); // the tray has gone
    tell(isShown);
    EXPECT_TRUE(eventually([&] { return told == "+-+"; }));
    tell(io::message("iconActivate", ""));
    EXPECT_TRUE(eventually([&] { return told == "+-+!"; }));
    os::AppInfo::reset();
}

// How long each desktop gets, with which types, and when the shell is told that there is no icon.
TEST_F(StatusIconTest, EachDesktopHasItsWayAndItsTime) {
    struct Story {
        const char* desktop;
        bool indicator;
        std::string types;
        int untilTold;
    };
    const Story stories[] = {
        {"xfwm4", true, "0", 1000},           {"mate-session", true, "0", 1000},
        {"plasma-desktop", false, "0", 1000}, {"gnome-shell", false, "0", 5500},
        {"gnome-panel", true, "01", 6000},    {"unity-panel-service", true, "1", 1000},
        {"unity-2d-shell", false, "0", 5500},
    };
    for (const Story& story : stories) {
        SCOPED_TRACE(story.desktop);
        indicator = story.indicator;
        told = "";
        plat::CapturedLog log;
        becomeDesktop(story.desktop);
        start();
        await("create");
        pass(story.untilTold - 100);
        EXPECT_EQ(told, "");
        pass(200);
        EXPECT_EQ(told, "-");
        std::string types;
        for (const std::string& body : bodies("create"))
            types += static_cast<char>('0' + body[3]);
        EXPECT_EQ(types, story.types);
        const bool isGnome = std::string(story.desktop).starts_with("gnome");
        EXPECT_EQ(log.has("30 StatusIconGtk: Swapping icon type"), story.types == "01");
        EXPECT_EQ(log.has("30 StatusIconGtk: Exhausted all icon types"), isGnome);
        icon.reset();
        dropHelper();
    }
}

TEST_F(StatusIconTest, AnotherDesktopStartsAfresh) {
    becomeDesktop("xfwm4");
    start();
    await("create");
    pass(1100);
    EXPECT_EQ(told, "-");
    becomeDesktop("gnome-shell");
    indicator = true;
    await("create", 2);
    EXPECT_EQ(bodies("create").back(), create(0));
    tell(isShown);
    EXPECT_TRUE(eventually([&] { return told == "-+"; }));
    tell(isHidden); // within its time: not told at once, but not forgotten
    EXPECT_TRUE(eventually([&] { return !icon->isEmbedded(); }));
    pass(7000);
    EXPECT_EQ(bodies("create").back(), create(1));
    EXPECT_EQ(told, "-+-");
}

TEST_F(StatusIconTest, TheMenuIsToldInItsOrder) {
    start();
    ui::Menu* menu = icon->menu();
    ui::Menu::Item* quit = menu->addItem("&Quit", nullptr, nullptr, this, ui::Menu::NeedsElevation);
    ui::Menu::Item* separator = menu->addSeparator();
    separator->setEnabled(false);
    ui::Menu::Item* open = menu->addItem("&Open...", "icon", quit, this);
    open->setChecked(true);
    open->setText("Op&en");
    open->setEnabled(false);
    menu->removeItem(separator);
    await("setText");
    EXPECT_TRUE(eventually([&] { return bodies("remove").size() == 3; }));
    const std::vector<std::string> messages = io::messagesOf(received);
    const std::string root = io::bytes("ff ff ff ff");
    const std::vector<std::string> expected = {
        io::bytes("03 'add' 00 00 00 01 05 '&Quit'") + root + io::bytes("00 00 00 08"),
        io::bytes("03 'add' 00 00 00 02 00") + root + io::bytes("00 00 00 00"),
        io::bytes("0a 'setEnabled' 00 00 00 02 00"),
        io::bytes("06 'remove' 00 00 00 01"),
        io::bytes("06 'remove' 00 00 00 02"),
        io::bytes("03 'add' 00 00 00 03 08 '&Open...'") + root + io::bytes("00 00 00 00"),
        io::bytes("03 'add' 00 00 00 01 05 '&Quit'") + root + io::bytes("00 00 00 08"),
        io::bytes("03 'add' 00 00 00 02 00") + root + io::bytes("00 00 00 00"),
        io::bytes("0a 'setEnabled' 00 00 00 02 00"),
        io::bytes("0a 'setChecked' 00 00 00 03 01"),
        io::bytes("07 'setText' 00 00 00 03 05 'Op&en'"),
        io::bytes("0a 'setEnabled' 00 00 00 03 00"),
        io::bytes("06 'remove' 00 00 00 02"),
    };
    ASSERT_GE(messages.size(), expected.size());
    for (size_t i = 0; i < expected.size(); i++)
        EXPECT_EQ(messages[i], expected[i]) << i;

    const auto choose = [&](const char* id) { tell(io::message("menuAction", io::bytes("00 00 00") + io::bytes(id))); };
    choose("03"); // disabled
    choose("02"); // gone
    choose("63"); // never there
    removeChosen = true;
    choose("01");
    EXPECT_TRUE(eventually([&] { return told == "&Quit"; }));
    choose("01");
    tell(io::message("iconActivate", ""));
    EXPECT_TRUE(eventually([&] { return told == "&Quit!"; }));
    EXPECT_EQ(menu->itemCount(), 1);
    EXPECT_EQ(menu->itemAt(0), open);
}

TEST_F(StatusIconTest, ImageAndTooltipAreSentWhenTheyChange) {
    start();
    for (int i = 0; i < 3; i++) {
        icon->setImage("zefserver", "Busy");
        icon->setTooltip("Velthar");
    }
    icon->setImage("", nullptr);
    await("setImage", 2);
    EXPECT_EQ(bodies("setImage")[0], io::bytes("09 'zefserver' 04 'Busy'"));
    EXPECT_EQ(bodies("setImage")[1], io::bytes("00 00"));
    EXPECT_EQ(await("setTooltip"), io::bytes("07 'Velthar'"));
}

TEST_F(StatusIconTest, ALostHelperIsStartedAgainWithAllThatItHasToShow) {
    start();
    icon->menu()->addItem("One", nullptr, nullptr, this)->setEnabled(false);
    icon->setImage("zefserver", "");
    icon->setTooltip("T");
    await("create");
    tell(isShown);
    EXPECT_TRUE(eventually([&] { return told == "+"; }));
    int delayMs = 1000;
    const std::string nonsense[] = {
        "", // it ends
        io::bytes("80 03 02 '99'"),
        io::message("iconEmbedded", ""),
        io::message("menuAction", "xyz"),
        std::string(40000, '\xff'),
    };
    for (const std::string& word : nonsense) {
        told = "";
        const pid_t before = icon->helperPid();
        if (word.empty())
            kill(before, SIGKILL);
        else
            tell(word);
        EXPECT_TRUE(eventually([&] { return told == "-"; }));
        dropHelper();
        pass(delayMs - 1);
        EXPECT_EQ(helper, -1);
        pass(1);
        EXPECT_EQ(await("add"), io::bytes("00 00 00 01 03 'One' ff ff ff ff 00 00 00 00"));
        await("create");
        EXPECT_EQ(bodies("setEnabled").size(), 1U);
        EXPECT_EQ(await("setImage"), io::bytes("09 'zefserver' 00"));
        EXPECT_EQ(await("setTooltip"), io::bytes("01 'T'"));
        EXPECT_NE(icon->helperPid(), before);
        EXPECT_NE(kill(before, 0), 0); // reaped
        delayMs *= 5;
    }
    told = "";
    kill(icon->helperPid(), SIGKILL);
    EXPECT_TRUE(eventually([&] { return told == "-"; }));
    dropHelper();
    pass(10 * 60 * 1000);
    EXPECT_EQ(helper, -1); // that was enough
    icon->setTooltip("still alive");
    icon->menu()->addItem("Two");
}

TEST_F(StatusIconTest, AHelperThatLivedLongHasItsStartsAgain) {
    start();
    for (int i = 0; i < 8; i++) {
        await("create");
        pass(601 * 1000);
        told = "";
        kill(icon->helperPid(), SIGKILL);
        EXPECT_TRUE(eventually([&] { return told == "-"; }));
        dropHelper();
        pass(1000);
    }
    await("create");
}

TEST_F(StatusIconTest, AHelperThatTakesNothingIsEnded) {
    start();
    await("create");
    const pid_t deaf = icon->helperPid();
    kill(deaf, SIGSTOP);
    for (int i = 0; i < 20000 && !told.ends_with('-'); i++) {
        icon->setTooltip((std::to_string(i) + std::string(200, 'x')).c_str());
        if (i % 100 == 0)
            serve();
    }
    EXPECT_EQ(told, "-");
    dropHelper();
    pass(1000);
    await("create");
    EXPECT_TRUE(eventually([&] { return kill(deaf, 0) != 0; })); // not stopped for ever
}

TEST_F(StatusIconTest, WithoutAHelperTheShellIsTold) {
    unsetenv(relayVariable);
    for (const char* program : {"/nonexistent/zef", "/bin/false"}) {
        told = "";
        icon = std::make_unique<ui::StatusIconGtk>(static_cast<ui::StatusIconGtk::Callback*>(this), program);
        icon->menu()->addItem("One");
        icon->setImage("zefserver", "");
        EXPECT_EQ(told, ""); // not before the loop runs
        EXPECT_TRUE(eventually([&] { return told.starts_with('-'); }));
        icon.reset();
    }
}

} // namespace
