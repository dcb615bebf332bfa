#include "mui/MuiComms.h"

#include "mui/test/FakeElements.h"

#include "io/FdSelectManager.h"
#include "os/AppInfo.h"
#include "os/NamedPipeListener.h"
#include "os/UnixIo.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/FakeClock.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mui {
namespace {

class CommsTest : public testing::Test {
protected:
    CommsTest() {
        os::AppInfo::setPathComp(plat::strFormat("zefmuitest%d", static_cast<int>(getpid())).c_str());
        os::AppInfo::setApp("app");
        loop = std::make_unique<io::FdSelectManager>();
        MuiComms::init(&toolkit, ":7");
        MuiComms::instance()->setEnabled(true);
        path = MuiComms::instance()->getPipeName();
    }
    ~CommsTest() override {
        MuiComms::destroy();
        run();
        loop.reset();
        rmdir(path.substr(0, path.rfind('/')).c_str());
    }

    void run() {
        while (loop->poll(0)) {
        }
    }
    void pass(unsigned ms) {
        plat::FakeClock::advanceMs(ms);
        run();
    }
    int connectClient() {
        const int fd = os::connectUnixSocket(path.c_str());
        EXPECT_GE(fd, 0);
        run();
        return fd;
    }
    static void say(int fd, const std::string& text) {
        EXPECT_EQ(send(fd, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
    }
    std::string hear(int fd) {
        run();
        char buffer[65536];
        const ssize_t got = recv(fd, buffer, sizeof buffer, MSG_DONTWAIT);
        if (got > 0)
            return std::string(buffer, static_cast<size_t>(got));
        return got < 0 && errno == EAGAIN ? "<nothing>" : "<end>";
    }

    plat::FakeClock clock;
    FakeToolkit toolkit;
    std::unique_ptr<io::FdSelectManager> loop;
    FakeDialog dialog{"dlg"};
    std::string path;
};

TEST_F(CommsTest, TheSocketIsPrivateAndNamedForTheApplication) {
    EXPECT_TRUE(path.ends_with("/appMuiComms:7")) << path;
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 077U, 0U);
    MuiComms::instance()->setEnabled(false);
    EXPECT_NE(stat(path.c_str(), &info), 0);
    EXPECT_STREQ(MuiComms::instance()->getPipeName(), "");
    EXPECT_DEATH(MuiComms::init(&toolkit), "!instance");
}

TEST_F(CommsTest, CommandsAreAnsweredInTurnHoweverTheyAreCut) {
    const int fd = connectClient();
    const std::string request = "version\ndialogs\nnonsense\n";
    std::string reply;
    for (const char c : request) {
        say(fd, std::string(1, c));
        const std::string part = hear(fd);
        if (part != "<nothing>")
            reply += part;
    }
    EXPECT_EQ(reply, "1\n\n0 dlg\n\n0\n\n");
    say(fd, request);
    EXPECT_EQ(hear(fd), reply);
    close(fd);
}

TEST_F(CommsTest, ALineOf1024BytesIsACommandAndOneMoreEndsTheConnection) {
    const int fd = connectClient();
    std::string line = "settext dlg ";
    line.resize(1024, 'x');
    say(fd, line + "\n");
    EXPECT_EQ(hear(fd), "0\n\n");
    say(fd, line + "x\n");
    EXPECT_EQ(hear(fd), "<end>");
    close(fd);
    const int endless = connectClient();
    say(endless, std::string(4000, 'x'));
    EXPECT_EQ(hear(endless), "<end>");
    close(endless);
}

TEST_F(CommsTest, HalfALineEndsAfterAWhileButAnIdleDriverStays) {
    const int idle = connectClient();
    const int half = connectClient();
    say(idle, "version\n");
    EXPECT_EQ(hear(idle), "1\n\n");
    say(half, "vers");
    run();
    pass(MuiComms::silenceMs - 1);
    EXPECT_EQ(hear(half), "<nothing>");
    pass(2);
    EXPECT_EQ(hear(half), "<end>");
    say(idle, "version\n");
    EXPECT_EQ(hear(idle), "1\n\n");
    close(idle);
    close(half);
}

TEST_F(CommsTest, WhoSaysNothingIsEndedAndTooManyAreRefused) {
    std::vector<int> silent;
    for (unsigned i = 0; i <= MuiComms::maxSilent; ++i)
        silent.push_back(connectClient());
    EXPECT_EQ(hear(silent.back()), "<end>");
    EXPECT_EQ(hear(silent.front()), "<nothing>");
    pass(MuiComms::silenceMs + 1);
    for (const int fd : silent) {
        EXPECT_EQ(hear(fd), "<end>");
        close(fd);
    }
    std::vector<int> talking;
    for (size_t i = 0; i <= MuiComms::maxConnections; ++i) {
        talking.push_back(connectClient());
        if (i < MuiComms::maxConnections)
            say(talking.back(), "version\n");
        EXPECT_EQ(hear(talking.back()), i < MuiComms::maxConnections ? "1\n\n" : "<end>") << i;
    }
    for (const int fd : talking)
        close(fd);
}

// A dialog that blocks runs a loop of its own: the connection that opened it waits, all others are served.
TEST_F(CommsTest, OthersAreServedWhileACommandHoldsUpTheLoop) {
    struct Host : MuiModalHost {
        void serve(MuiModalClient* client, bool on) override {
            std::erase(clients, client);
            if (on)
                clients.push_back(client);
        }
        /// One round of a modal loop; gives how many it served.
        int round() {
            int served = 0;
            for (MuiModalClient* client : std::vector(clients)) {
                if (std::find(clients.begin(), clients.end(), client) == clients.end())
                    continue; // another one took it out
                pollfd fd{client->modalFd(), POLLIN, 0};
                if (fd.fd < 0 || poll(&fd, 1, 0) <= 0)
                    continue;
                client->modalReadable();
                ++served;
            }
            return served;
        }
        std::vector<MuiModalClient*> clients;
    } host;
    MuiComms::destroy();
    MuiComms::setModalHost(&host);
    MuiComms::init(&toolkit, ":7");
    MuiComms::instance()->setEnabled(true);
    MuButton::create(&dialog, "block", "Block");

    std::string heard;
    Listener blocker(&heard, "d");
    int opener = -1;
    blocker.action = [&] {
        say(opener, "version\n"); // has to wait
        const int late = os::connectUnixSocket(path.c_str());
        say(late, "dialogs\n");
        while (host.round() > 0) {
        }
        char buffer[100] = {};
        EXPECT_GT(recv(late, buffer, sizeof buffer - 1, MSG_DONTWAIT), 0);
        EXPECT_STREQ(buffer, "0 dlg\n\n");
        EXPECT_LT(recv(opener, buffer, sizeof buffer, MSG_DONTWAIT), 0);
        const size_t before = host.clients.size();
        close(late);
        EXPECT_EQ(host.round(), 1); // the end is seen once
        EXPECT_EQ(host.round(), 0);
        EXPECT_EQ(host.clients.size(), before - 1);
        // The timers of the main loop stand still, but nothing is kept of those that end, or say nothing.
        const int descriptors = plat::openDescriptors();
        for (int i = 0; i < 100; ++i) {
            const int visitor = os::connectUnixSocket(path.c_str());
            say(visitor, "version\n");
            while (host.round() > 0) {
            }
            EXPECT_GT(recv(visitor, buffer, sizeof buffer, MSG_DONTWAIT), 0) << i;
            close(visitor);
            while (host.round() > 0) {
            }
        }
        EXPECT_EQ(plat::openDescriptors(), descriptors);
        std::vector<int> silent;
        for (unsigned i = 0; i < 2 * MuiComms::maxSilent; ++i) {
            if (i == MuiComms::maxSilent)
                plat::FakeClock::advanceMs(MuiComms::silenceMs + 1);
            silent.push_back(os::connectUnixSocket(path.c_str()));
            while (host.round() > 0) {
            }
        }
        for (unsigned i = 0; i < silent.size(); ++i) {
            EXPECT_EQ(recv(silent[i], buffer, sizeof buffer, MSG_DONTWAIT), i < MuiComms::maxSilent ? 0 : -1) << i;
            close(silent[i]);
        }
        while (host.round() > 0) {
        }
        EXPECT_EQ(plat::openDescriptors(), descriptors);
    };
    dialog.addObserver(&blocker, true);
    opener = connectClient();
    say(opener, "click dlg.block\n");
    EXPECT_EQ(hear(opener), "1\n\n1\n\n");
    EXPECT_EQ(heard, "d:block/1 ");
    close(opener);
    MuiComms::destroy();
    run();
    MuiComms::setModalHost(nullptr);
    EXPECT_TRUE(host.clients.empty());
}

TEST_F(CommsTest, ADriverThatReadsNothingIsNotServedOnAndOn) {
    const int fd = connectClient();
    const int small = 4096;
    setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    MuLayout* row = MuLayout::create(&dialog, "row", Orientation::Horizontal);
    for (int i = 0; i < 400; ++i)
        MuButton::create(row, plat::strFormat("button%d", i).c_str(), "");
    size_t asked = 0;
    const std::string request = "lists dlg\n";
    for (int i = 0; i < 20000; ++i) {
        if (send(fd, request.data(), request.size(), MSG_NOSIGNAL | MSG_DONTWAIT) <= 0)
            break;
        ++asked;
        run();
    }
    EXPECT_LT(asked, 20000U); // the socket fills up, not our memory
    char buffer[65536];
    size_t ends = 0;
    for (bool more = true; more;) {
        run();
        const ssize_t got = recv(fd, buffer, sizeof buffer, MSG_DONTWAIT);
        more = got > 0;
        const std::string_view text(buffer, more ? static_cast<size_t>(got) : 0);
        for (size_t at = text.find("button399 "); at != std::string_view::npos; at = text.find("button399 ", at + 1))
            ++ends;
    }
    EXPECT_NEAR(static_cast<double>(ends), static_cast<double>(asked), 4); // a name may be cut between two reads
    close(fd);
}

TEST_F(CommsTest, ACommandMayEndTheListener) {
    class Ender : public MuObserver {
    public:
        void muActivated(MuElement*) override { MuiComms::destroy(); }
    } ender;
    dialog.addObserver(&ender, true);
    MuButton::create(&dialog, "go", "Go");
    const int fd = connectClient();
    say(fd, "click dlg.go\nversion\n");
    EXPECT_EQ(hear(fd), "<end>");
    close(fd);
}

TEST_F(CommsTest, ATakenNameLeavesTheOtherListening) {
    // Another program of ours listens at the name.
    MuiComms::destroy();
    os::NamedPipeListener other(path.c_str());
    MuiComms::init(&toolkit, ":7");
    MuiComms::instance()->setEnabled(true);
    EXPECT_FALSE(MuiComms::instance()->isEnabled());
    EXPECT_STREQ(MuiComms::instance()->getPipeName(), "");
    struct stat info {};
    EXPECT_EQ(stat(path.c_str(), &info), 0);
}

} // namespace
} // namespace mui
