#include "os/LaunchWithPipe.h"
#include "io/FdSelectManager.h"
#include "io/Io.h"
#include "os/AppInfo.h"
#include "os/LaunchWithNamedPipe.h"
#include "os/UnixIo.h"
#include "os/launchFailures.h"
#include "os/processFacts.h"
#include "os/test/LaunchedChild.h"
#include "os/test/TestChild.h"
#include "os/test/ordinaryUser.h"
#include "plat/Configuration.h"
#include "plat/monoTime.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/FakeClock.h"
#include "plat/test/TempDir.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace os {
namespace {

using Words = std::vector<std::string>;

Words commandLineOf(pid_t pid) {
    Words words;
    readProcessArgs(pid, &words);
    return words;
}

LaunchConfig launched() {
    LaunchConfig cfg;
    cfg.args = {ChildRoad::program().c_str(), launchedWord};
    return cfg;
}

LaunchConfig shell(const char* script) {
    LaunchConfig cfg;
    cfg.args = {"/bin/sh", "-c", script};
    return cfg;
}

std::string echoed(io::Io* io, const std::string& text) {
    std::string body = "\x04"
                       "echo" +
                       std::string(1, static_cast<char>(text.size())) + text;
    io->outStream()->writeU16(static_cast<uint16_t>(0x8000 + body.size()));
    io->outStream()->writeBytes(body.data(), body.size());
    io->outStream()->flush();
    return nextMessage(*io->inStream());
}

size_t longestHexRun(const std::string& text) {
    size_t longest = 0;
    size_t run = 0;
    for (const char c : text) {
        run = isxdigit(static_cast<unsigned char>(c)) ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

bool hasEnded(pid_t pid) { return kill(pid, 0) < 0 && errno == ESRCH; }

/// What came of launches over a named pipe.
class Outcome : public LaunchWithNamedPipe::Callback {
public:
    ~Outcome() override { dropIo(); }
    void launched(const LaunchWithPipe::Process& process) override {
        io = process.io;
        pid = process.pid;
        happened();
    }
    void launchFailed(const plat::Exception& why, bool cancelled) override {
        failure = std::string(cancelled ? "cancelled: " : "") + why.describe().c_str();
        happened();
    }
    void dropIo() {
        if (io)
            io->shutdown(/*flush=*/false, /*tellHandler=*/false);
        io = nullptr;
    }

    io::Io* io = nullptr;
    pid_t pid = 0;
    std::string failure;
    int count = 0;
    std::unique_ptr<LaunchWithNamedPipe> launch; // dies in its callback

private:
    void happened() {
        ++count;
        launch.reset();
    }
};

class LaunchPipeTest : public testing::Test {
protected:
    LaunchPipeTest() {
        AppInfo::reset();
        AppInfo::setApp("prog");
        AppInfo::setPathComp(plat::strFormat("zeftest%d", getpid()).c_str());
    }
    ~LaunchPipeTest() override {
        if (access(socketDir().c_str(), F_OK) == 0)
            plat::rmDir(socketDir().c_str(), /*recursive=*/true);
        AppInfo::reset();
        plat::Configuration& parameters = plat::Configuration::global();
        parameters.set("ElevateCmd", "");
        parameters.set("ElevateCmdSingleArg", "0");
        parameters.set("_lppDebug", "0");
    }
    static std::string socketDir() { return plat::strFormat("/tmp/.%s-%u", AppInfo::pathComp(), geteuid()).c_str(); }
    static std::vector<std::string> sockets() {
        std::vector<std::string> names;
        if (DIR* dir = opendir(socketDir().c_str())) {
            while (const dirent* entry = readdir(dir)) {
                if (entry->d_name[0] != '.')
                    names.emplace_back(entry->d_name);
            }
            closedir(dir);
        }
        return names;
    }
    void start(const LaunchConfig& cfg) {
        outcome.launch =
            std::make_unique<LaunchWithNamedPipe>(cfg, static_cast<LaunchWithNamedPipe::Callback*>(&outcome));
    }
    // SIGCHLD may wake another loop of this process.
    void turn(int ms) {
        mgr.poll(ms);
        ProcessMonitor::instance().reap();
    }
    void runUntilSettled() {
        for (int i = 0; i < 500 && outcome.count == 0; ++i)
            turn(20);
        EXPECT_EQ(outcome.count, 1);
    }
    void rounds(int count = 5) {
        for (int i = 0; i < count; ++i)
            turn(1);
    }
    void awaitEnd(pid_t pid) {
        for (int i = 0; i < 500 && !hasEnded(pid); ++i)
            turn(20);
        EXPECT_TRUE(hasEnded(pid)) << pid;
    }

    io::FdSelectManager mgr{/*nested=*/true};
    Outcome outcome;
};

TEST_F(LaunchPipeTest, ASocketPairIsInheritedAndNothingElse) {
    const int leaky = open("/dev/null", O_RDONLY);                             // without close-on-exec
    const LaunchWithPipe::Process warmUp = LaunchWithPipe::launch(launched()); // the monitor makes its pipe
    nextMessage(*warmUp.io->inStream());
    warmUp.io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    awaitEnd(warmUp.pid);
    const int before = plat::openDescriptors();

    LaunchWithPipe::Process child = LaunchWithPipe::launch(launched());
    EXPECT_EQ(commandLineOf(child.pid), (Words{ChildRoad::program(), launchedWord, "3"}));
    const std::string hello = nextMessage(*child.io->inStream());
    EXPECT_EQ(hello.rfind("|hello|" + std::to_string(child.pid) + "|", 0), 0U) << hello;
    EXPECT_NE(hello.find("|||0 1 2 3"), std::string::npos) << hello;
    EXPECT_EQ(hello.size(), hello.find("|0 1 2 3") + 8) << hello;
    EXPECT_EQ(echoed(child.io, "hi"), "|echoed|hi");
    child.io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    awaitEnd(child.pid);
    EXPECT_EQ(plat::openDescriptors(), before);
    close(leaky);
}

TEST_F(LaunchPipeTest, ThePairsNumberGivesWayToOthersThatAreKept) {
    const int other = open("/dev/null", O_RDONLY | O_CLOEXEC);
    LaunchConfig cfg = launched();
    cfg.keptFds = {{other, 4}, {other, 3}};
    LaunchWithPipe::Process child = LaunchWithPipe::launch(cfg);
    EXPECT_EQ(commandLineOf(child.pid).back(), "5");
    EXPECT_NE(nextMessage(*child.io->inStream()).find("|0 1 2 3 4 5"), std::string::npos);
    child.io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    close(other);
}

TEST_F(LaunchPipeTest, AProgramThatIsNotThereLeavesNothingBehind) {
    LaunchConfig cfg;
    cfg.args = {"/nonexistent/core"};
    const int before = plat::openDescriptors();
    for (const bool byName : {false, true}) {
        try {
            if (byName)
                start(cfg);
            else
                LaunchWithPipe::launch(cfg);
            ADD_FAILURE();
        } catch (const plat::Exception& failure) {
            EXPECT_STREQ(failure.what(), "/nonexistent/core does not exist or is not executable");
        }
    }
    EXPECT_EQ(plat::openDescriptors(), before);
    EXPECT_TRUE(sockets().empty());
}

// The child by name: what it is told on its command line, and that its secret stays off every list and log.
TEST_F(LaunchPipeTest, ByNameTheSocketIsForOneConnectionAndItsHashIsAllThatShows) {
    plat::CapturedLog log;
    start(launched());
    const Words names = sockets();
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names[0].rfind("proglaunchpipe.", 0), 0U) << names[0];
    const std::string path = socketDir() + "/" + names[0];
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
    runUntilSettled();
    ASSERT_TRUE(outcome.io) << outcome.failure;
    const Words words = commandLineOf(outcome.pid);
    ASSERT_EQ(words.size(), 5U);
    const std::string hash = words[3];
    EXPECT_EQ(words, (Words{ChildRoad::program(), launchedWord, "-hash", hash, path}));
    EXPECT_EQ(hash.size(), 64U);
    EXPECT_EQ(hash.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_TRUE(sockets().empty()) << "the name is gone";
    EXPECT_EQ(connectUnixSocket(path.c_str()), -1);
    outcome.dropIo();
    awaitEnd(outcome.pid);
    for (std::string line : log.lines) {
        if (const size_t at = line.find(hash); at != std::string::npos)
            line.erase(at, hash.size());
        EXPECT_LT(longestHexRun(line), 32U) << line;
    }
}

TEST_F(LaunchPipeTest, EveryListOfWordsReachesTheChild) {
    for (const bool debug : {false, true}) {
        for (const bool detach : {false, true}) {
            for (const bool byName : {false, true}) {
                plat::Configuration::global().set("_lppDebug", debug ? "1" : "0");
                LaunchConfig cfg = shell("echo \"$0 $@\"; read dontend");
                cfg.args.emplace_back("core");
                cfg.detach = detach;
                int ends[2];
                ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
                cfg.keptFds = {{ends[1], STDOUT_FILENO}};
                LaunchWithPipe::Process child;
                if (byName)
                    start(cfg);
                else
                    child = LaunchWithPipe::launch(cfg);
                char line[512] = "";
                EXPECT_GT(read(ends[0], line, sizeof line - 1), 0);
                std::string expected = "core ";
                expected += debug ? "-lppDebug " : "";
                if (byName)
                    expected += "-hash ";
                std::string got = line;
                if (const size_t hash = got.find("-hash "); hash != std::string::npos)
                    got.erase(hash + 6, 65);
                expected += detach ? "-fork " : "";
                expected += byName ? socketDir() + "/" : "3\n";
                EXPECT_EQ(got.substr(0, expected.size()), expected);
                if (child.io)
                    child.io->shutdown(/*flush=*/false, /*tellHandler=*/false);
                outcome.launch.reset();
                close(ends[0]);
                close(ends[1]);
            }
        }
    }
}

// The first to connect gets the proof; whoever queued behind it gets nothing.
TEST_F(LaunchPipeTest, ASecondConnectionFindsItClosed) {
    start(shell("exec sleep 100"));
    const std::string path = socketDir() + "/" + sockets().at(0);
    const int first = connectUnixSocket(path.c_str());
    const int second = connectUnixSocket(path.c_str());
    ASSERT_GE(second, 0);
    runUntilSettled();
    char bytes[64];
    EXPECT_EQ(read(first, bytes, sizeof bytes), 32);
    EXPECT_LE(read(second, bytes, sizeof bytes), 0);
    EXPECT_EQ(connectUnixSocket(path.c_str()), -1);
    close(first);
    close(second);
    kill(outcome.pid, SIGKILL);
    awaitEnd(outcome.pid);
}

TEST_F(LaunchPipeTest, AConnectionThatBreaksOffAtOnceFailsTheLaunch) {
    plat::CapturedLog log;
    start(shell("exec sleep 100"));
    close(connectUnixSocket((socketDir() + "/" + sockets().at(0)).c_str()));
    runUntilSettled();
    EXPECT_EQ(outcome.failure, "[LaunchFailed] Launch failed: acceptIo() failed for /bin/sh");
    EXPECT_TRUE(log.has("30 LaunchPipe: ioAccept error: [System-32] write: Broken pipe (32)"));
    EXPECT_TRUE(sockets().empty());
    EXPECT_EQ(log.count(",SIGTERM)"), 1) << "it is told to end";
}

// Directory and socket are private; should they be open, who connects is still looked at.
TEST_F(LaunchPipeTest, AStrangerIsRefusedAndTheWaitGoesOn) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can play another user";
    start(shell("exec sleep 100"));
    const std::string path = socketDir() + "/" + sockets().at(0);
    chmod(socketDir().c_str(), 0755);
    chmod(path.c_str(), 0777);
    asOrdinaryUser([this, &path] {
        const int fd = connectUnixSocket(path.c_str());
        ASSERT_GE(fd, 0);
        pollfd waiting{fd, POLLIN, 0};
        EXPECT_EQ(poll(&waiting, 1, 0), 0);
        close(fd);
    });
    rounds();
    EXPECT_EQ(outcome.count, 0);
    const int fd = connectUnixSocket(path.c_str());
    runUntilSettled();
    EXPECT_TRUE(outcome.io);
    close(fd);
    kill(outcome.pid, SIGKILL);
}

TEST_F(LaunchPipeTest, AProcessThatEndsWithoutConnectingCancels) {
    for (const char* script : {"exit 0", "exit 1", "kill -9 $$"}) {
        start(shell(script));
        runUntilSettled();
        EXPECT_EQ(outcome.failure, "cancelled: [ElevateCancelled] Elevation cancelled or not supported.") << script;
        EXPECT_TRUE(sockets().empty());
        outcome.count = 0;
    }
}

// A launcher that ends well may have left the child that is about to connect; one that fails has not.
TEST_F(LaunchPipeTest, WithForkTheChildHasFiveSecondsAfterItsLauncherEnded) {
    plat::CapturedLog log;
    plat::FakeClock clock;
    LaunchConfig cfg = shell("exit 0");
    cfg.detach = true;
    start(cfg);
    const auto toldOfEnd = [&log] { return log.count("(/bin/sh) exited with status 0") > 0; };
    for (int i = 0; i < 500 && !toldOfEnd(); ++i)
        turn(20);
    ASSERT_TRUE(toldOfEnd());
    clock.advanceMs(4990);
    rounds();
    EXPECT_EQ(outcome.count, 0);
    clock.advanceMs(20);
    rounds();
    EXPECT_EQ(outcome.count, 1);
    EXPECT_EQ(outcome.failure.rfind("cancelled", 0), 0U);

    outcome.count = 0;
    cfg.args = {"/bin/sh", "-c", "exit 1"};
    start(cfg);
    runUntilSettled();
}

TEST_F(LaunchPipeTest, AWaitThatIsGivenUpEndsTheProcess) {
    plat::TempDir dir;
    start(shell(("echo $$ > " + (dir / "pid") + "; exec sleep 100").c_str()));
    std::string pid;
    for (int i = 0; i < 500 && pid.find('\n') == std::string::npos; ++i) {
        rounds(1);
        pid = plat::readTextFile(dir / "pid");
    }
    outcome.launch.reset();
    awaitEnd(std::stoi(pid));
    EXPECT_EQ(outcome.count, 0);
    EXPECT_TRUE(sockets().empty());
}

/// What launch() does with a way to root of this kind, for a user who needs one.
std::string elevated(const std::string& script, bool singleArg, int timeoutMs) {
    AppInfo::setPathComp(plat::strFormat("zeftest%d", getpid()).c_str());
    io::FdSelectManager mgr(/*nested=*/true);
    plat::TempDir dir;
    const std::string program = dir / "elevator";
    plat::writeProgram(program, script);
    plat::Configuration::global().set("ElevateCmd", (program + " -x").c_str());
    plat::Configuration::global().set("ElevateCmdSingleArg", singleArg ? "1" : "0");
    LaunchConfig cfg = launched();
    cfg.elevate = true;
    const int before = plat::openDescriptors();
    std::string result;
    try {
        const LaunchWithPipe::Process child = LaunchWithPipe::launch(cfg, timeoutMs);
        nextMessage(*child.io->inStream());
        result = echoed(child.io, "up");
        child.io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    } catch (const plat::Exception& failure) {
        result = failure.describe().c_str();
        ProcessMonitor::instance().attach();
        EXPECT_LE(plat::openDescriptors(), before + 2) << "the monitor's pipe, no more";
    }
    if (const std::string pid = plat::readTextFile(dir / "pid"); pid != "<none>") {
        for (int i = 0; i < 500 && !hasEnded(std::stoi(pid)); ++i) {
            mgr.poll(20);
            ProcessMonitor::instance().reap();
        }
        EXPECT_TRUE(hasEnded(std::stoi(pid))) << "the process that asks goes with the launch";
    }
    plat::rmDir(plat::strFormat("/tmp/.%s-%u", AppInfo::pathComp(), geteuid()).c_str(), /*recursive=*/true);
    return result;
}

TEST_F(LaunchPipeTest, AnOrdinaryUserGoesThroughTheWayToRoot) {
    asOrdinaryUser([] {
        EXPECT_EQ(elevated("shift; exec \"$@\"", false, 10000), "|echoed|up");
        EXPECT_EQ(elevated("shift; exec sh -c \"$1\"", true, 10000), "|echoed|up");
    });
}

TEST_F(LaunchPipeTest, AnOrdinaryUserMayDeclineOrNeverAnswer) {
    asOrdinaryUser([] {
        const std::string cancelled = "[ElevateCancelled] Elevation cancelled or not supported.";
        EXPECT_EQ(elevated("exit 1", false, 10000), cancelled);
        EXPECT_EQ(elevated("exit 0", false, -1), cancelled);
        EXPECT_EQ(elevated("echo $$ > $(dirname $0)/pid; exec sleep 100", false, 100),
                  "[LaunchFailed] Launch failed: " + ChildRoad::program() + " has not connected in time");
    });
}

} // namespace
} // namespace os
