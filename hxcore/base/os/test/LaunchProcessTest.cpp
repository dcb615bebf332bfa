#include "os/launchProcess.h"

#include "io/FdSelectManager.h"
#include "os/elevate.h"
#include "os/launchFailures.h"
#include "os/test/ChildRoad.h"
#include "os/test/TestChild.h"
#include "os/test/ordinaryUser.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <pthread.h>
#include <string>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {

bool hasChildren() { return waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD; }

/// A loop and a place for files, open to all users.
class LaunchScene {
public:
    LaunchScene() { chmod(dir.root.c_str(), 0777); }

    LaunchConfig tellFacts(const std::vector<plat::String>& more = {}) const {
        LaunchConfig cfg;
        cfg.args = {ChildRoad::program().c_str(), tellFactsWord, (dir / "facts").c_str()};
        cfg.args.insert(cfg.args.end(), more.begin(), more.end());
        return cfg;
    }
    std::string script(const char* name, const std::string& text) const {
        std::ofstream(dir / name) << text;
        chmod((dir / name).c_str(), 0755);
        return dir / name;
    }
    Facts factsOf(const LaunchConfig& cfg) {
        unlink((dir / "facts").c_str());
        const int status = ends.waitFor(launchProcess(cfg, &ends));
        EXPECT_EQ(status, 0);
        return readFacts(dir / "facts");
    }

    io::FdSelectManager loop{/*nested=*/true};
    plat::TempDir dir;
    Ends ends;
};

TEST(LaunchProcess, TheProgramStartsCleanWhateverWeAreLike) {
    plat::inChild([] {
        LaunchScene scene;
        plat::CapturedLog log;
        signal(SIGPIPE, SIG_IGN);
        signal(SIGUSR1, SIG_IGN);
        sigset_t some;
        sigemptyset(&some);
        sigaddset(&some, SIGTERM);
        sigaddset(&some, SIGCHLD + 1);
        sigprocmask(SIG_BLOCK, &some, nullptr);
        ASSERT_EQ(dup2(1, 50), 50); // leaks
        ASSERT_EQ(dup2(1, 1000), 1000);
        ASSERT_EQ(fcntl(0, F_SETFD, FD_CLOEXEC), 0); // as repaired descriptors are
        close(2);
        setenv("OLD", "parent", 1);
        setenv("KEPT", "as it is", 1);

        LaunchConfig cfg = scene.tellFacts({"", "two words", "it's"});
        cfg.environment = {{"NEW", "a=b"}, {"OLD", "child"}, {"EMPTY", ""}};
        cfg.workingDir = "/usr";
        const Facts facts = scene.factsOf(cfg);
        EXPECT_EQ(facts.at("fds"), "0 1 2");
        EXPECT_EQ(facts.at("fd0"), "/dev/null");
        EXPECT_EQ(facts.at("fd2"), "/dev/null") << "never closed";
        EXPECT_EQ(facts.at("blocked"), "0000000000000000");
        EXPECT_EQ(facts.at("ignored"), "0000000000000000");
        EXPECT_EQ(facts.at("cwd"), "/usr");
        EXPECT_EQ(facts.at("leader"), "no");
        EXPECT_EQ(facts.at("arg0") + "|" + facts.at("arg1") + "|" + facts.at("arg2"), "|two words|it's");
        EXPECT_EQ(facts.at("env NEW"), "a=b");
        EXPECT_EQ(facts.at("env OLD"), "child") << "replaced, and once only";
        EXPECT_EQ(facts.at("env EMPTY"), "");
        EXPECT_EQ(facts.at("env KEPT"), "as it is");
        EXPECT_TRUE(log.has("30 LaunchProcess: Launching " + ChildRoad::program() + " -tellfacts " +
                            (scene.dir / "facts") + "  two words it's"));

        sigset_t now;
        sigprocmask(SIG_BLOCK, nullptr, &now);
        EXPECT_TRUE(sigismember(&now, SIGTERM));
        EXPECT_FALSE(sigismember(&now, SIGINT)) << "our own signals are as they were";
    });
}

TEST(LaunchProcess, MovesDescriptorsEvenInACircle) {
    plat::inChild([] {
        LaunchScene scene;
        ASSERT_EQ(dup2(open((scene.dir / "a").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600), 7), 7);
        ASSERT_EQ(dup2(open((scene.dir / "b").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600), 8), 8);
        LaunchConfig cfg = scene.tellFacts();
        cfg.keptFds = {{7, 8}, {8, 7}};
        cfg.nullOutput = true;
        cfg.detach = true;
        Facts facts = scene.factsOf(cfg);
        EXPECT_EQ(facts.at("fds"), "0 1 2 7 8");
        EXPECT_EQ(facts.at("fd7"), scene.dir / "b");
        EXPECT_EQ(facts.at("fd8"), scene.dir / "a");
        EXPECT_EQ(facts.at("fd1"), "/dev/null");
        EXPECT_EQ(facts.at("leader"), "yes");

        cfg.keptFds = {{8, 8}, {8, 7}, {7, 0}, {1, 3}};
        cfg.nullInput = true; // what is kept wins
        facts = scene.factsOf(cfg);
        EXPECT_EQ(facts.at("fds"), "0 1 2 3 7 8");
        EXPECT_EQ(facts.at("fd0"), scene.dir / "a");
        EXPECT_EQ(facts.at("fd7"), scene.dir / "b");
        EXPECT_EQ(facts.at("fd8"), scene.dir / "b");
    });
}

TEST(LaunchProcess, ClosesDescriptorsAlsoWhereTheSystemCallIsMissing) {
    plat::inChild([] {
        LaunchScene scene;
        ASSERT_EQ(dup2(1, 50), 50);
        ASSERT_EQ(dup2(1, 8), 8);
        failSystemCall(SYS_close_range, ENOSYS);
        LaunchConfig cfg = scene.tellFacts();
        cfg.keptFds = {{8, 8}};
        EXPECT_EQ(scene.factsOf(cfg).at("fds"), "0 1 2 8");
    });
}

TEST(LaunchProcess, TellsWhatFailedAndLeavesNothing) {
    plat::inChild([] {
        LaunchScene scene;
        const auto fails = [&scene](const LaunchConfig& cfg, const std::string& text, int errNo) {
            const int before = plat::openDescriptors();
            try {
                launchProcess(cfg, &scene.ends);
                ADD_FAILURE() << "started: " << text;
            } catch (const plat::SystemException& failure) {
                EXPECT_EQ(std::string(failure.what()).rfind(text, 0), 0u) << failure.what();
                EXPECT_EQ(failure.errNo, errNo) << failure.what();
            } catch (const plat::Exception& failure) {
                EXPECT_EQ(failure.what(), text);
                EXPECT_EQ(errNo, 0) << failure.what();
                EXPECT_STREQ(failure.type, "");
            }
            EXPECT_FALSE(hasChildren()) << text;
            EXPECT_EQ(plat::openDescriptors(), before) << text;
        };
        launchProcess(scene.tellFacts()); // the monitor's descriptors
        while (hasChildren())
            ProcessMonitor::instance().reap();

        LaunchConfig cfg;
        std::ofstream(scene.dir / "plain") << "#!/bin/sh\n";
        for (const std::string& path : {std::string("/nonexistent"), scene.dir / "plain", scene.dir.root}) {
            cfg.args = {path.c_str()};
            fails(cfg, path + " does not exist or is not executable", 0);
        }
        const std::string noInterpreter = scene.script("a", "#!/nonexistent/interpreter\n");
        cfg.args = {noInterpreter.c_str()};
        fails(cfg, "execve(" + noInterpreter + ")", ENOENT);
        const std::string noProgram = scene.script("b", "just text");
        cfg.args = {noProgram.c_str()};
        fails(cfg, "execve(" + noProgram + ")", ENOEXEC);

        cfg = scene.tellFacts();
        cfg.workingDir = (scene.dir / "none").c_str();
        fails(cfg, "chdir(" + (scene.dir / "none") + ")", ENOENT);
        cfg = scene.tellFacts();
        cfg.keptFds = {{999, 3}};
        fails(cfg, "fcntl", EBADF);
        cfg.keptFds = {{0, -7}};
        fails(cfg, "dup2", EBADF);
        cfg = scene.tellFacts({std::string(200000, 'x').c_str()}); // beyond MAX_ARG_STRLEN of execve(2)
        fails(cfg, "execve(", E2BIG);

        // The name of the call is cut at 255 bytes.
        std::string deep = scene.dir.root;
        for (int i = 0; i < 3; ++i)
            mkdir((deep += "/" + std::string(100, 'd')).c_str(), 0700);
        std::ofstream(deep + "/x") << "#!/nonexistent\n";
        chmod((deep + "/x").c_str(), 0700);
        cfg.args = {(deep + "/x").c_str()};
        fails(cfg, ("execve(" + deep).substr(0, 200), ENOENT);
    });
}

TEST(LaunchProcess, TellsOfTheSystemCallThatFails) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs these calls itself";
#endif
    const struct {
        long call;
        int errNo;
        const char* text;
    } cases[] = {
        {SYS_dup2, EIO, "dup2"},
        {SYS_execve, EACCES, "execve("},
        {SYS_chdir, EACCES, "chdir(/usr)"},
        {SYS_pipe2, ENFILE, "pipe2"},
        {SYS_clone, EAGAIN, "fork"},
        {SYS_fcntl, ENOMEM, "fcntl"},
        {SYS_openat, ENFILE, "open(/dev/null)"},
    };
    LaunchScene scene;
    for (const auto& each : cases) {
        plat::inChild([&each, &scene] {
            LaunchConfig cfg = scene.tellFacts();
            cfg.workingDir = "/usr";
            cfg.nullInput = true;
            ProcessMonitor::instance().attach();
            failSystemCall(each.call, each.errNo);
            try {
                launchProcess(cfg);
                ADD_FAILURE() << "started without " << each.text;
            } catch (const plat::SystemException& failure) {
                EXPECT_EQ(std::string(failure.what()).rfind(each.text, 0), 0u) << failure.what();
                EXPECT_EQ(failure.errNo, each.errNo) << each.text;
            }
            EXPECT_FALSE(hasChildren()) << each.text;
        });
    }
}

// What the next forked child does first of all.
std::function<void()>& atChildStart() {
    static std::function<void()> what;
    static const int registered = pthread_atfork(nullptr, nullptr, [] {
        if (atChildStart())
            atChildStart()();
    });
    EXPECT_EQ(registered, 0);
    return what;
}

void writeIntoLaunchPipe(const char* bytes, size_t len) {
    for (int fd = 3; fd < 100; ++fd) {
        struct stat info;
        const int flags = fcntl(fd, F_GETFL);
        const bool isPipe = fstat(fd, &info) == 0 && S_ISFIFO(info.st_mode);
        if (!isPipe || (flags & O_ACCMODE) != O_WRONLY || (flags & O_NONBLOCK)) // the kicker's doesn't block
            continue;
        EXPECT_EQ(write(fd, bytes, len), static_cast<ssize_t>(len));
    }
}

TEST(LaunchProcess, BearsAChildThatDiesBeforeItIsAProgram) {
    plat::inChild([] {
        LaunchScene scene;
        atChildStart() = [] { kill(getpid(), SIGKILL); };
        const int killed = scene.ends.waitFor(launchProcess(scene.tellFacts(), &scene.ends));
        EXPECT_TRUE(WIFSIGNALED(killed) && WTERMSIG(killed) == SIGKILL) << killed;

        for (size_t len = 1; len < 9; ++len) { // "dup2" with errno 9
            atChildStart() = [len] {
                writeIntoLaunchPipe("\0\0\0\11\4dup2", len);
                kill(getpid(), SIGKILL);
            };
            EXPECT_THROW(launchProcess(scene.tellFacts()), LaunchFailed) << len;
            EXPECT_FALSE(hasChildren());
        }
        EXPECT_FALSE(readFacts(scene.dir / "facts").count("cwd"));
    });
}

TEST(LaunchProcess, IsNotCutShortBySignals) {
    plat::inChild([] {
        LaunchScene scene;
        static int ticks = 0;
        struct sigaction action {};
        action.sa_handler = [](int) { ++ticks; };
        sigaction(SIGALRM, &action, nullptr); // without SA_RESTART
        atChildStart() = [] { usleep(50000); };
        const itimerval often{{0, 2000}, {0, 2000}};
        setitimer(ITIMER_REAL, &often, nullptr);
        EXPECT_EQ(scene.factsOf(scene.tellFacts()).count("cwd"), 1u);
        LaunchConfig failing = scene.tellFacts();
        failing.workingDir = "/nonexistent";
        EXPECT_THROW(launchProcess(failing), plat::SystemException);
        EXPECT_GT(ticks, 5);
    });
}

TEST(LaunchProcess, ForksWithoutAProgram) {
    plat::inChild([] {
        LaunchScene scene;
        plat::CapturedLog log;
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        LaunchConfig cfg;
        cfg.keptFds = {{ends[1], 3}};
        cfg.workingDir = "/usr";
        const pid_t child = forkProcess(cfg, &scene.ends);
        if (child == 0) {
            sigset_t now;
            sigprocmask(SIG_BLOCK, nullptr, &now);
            char cwd[10] = "";
            const bool fine = plat::openDescriptors() == 5 /* 0 to 3, the listing itself */ &&
                              getcwd(cwd, sizeof cwd) && std::string(cwd) == "/usr" && !sigismember(&now, SIGTERM) &&
                              !ProcessMonitor::instance().knows(getppid());
            _exit(write(3, "here", 4) == 4 && fine ? 5 : 6);
        }
        sigemptyset(&all);
        sigprocmask(SIG_SETMASK, &all, nullptr);
        EXPECT_STREQ(ProcessMonitor::instance().nameOf(child), "<forked>");
        EXPECT_EQ(WEXITSTATUS(scene.ends.waitFor(child)), 5);
        char text[5] = "";
        EXPECT_EQ(read(ends[0], text, 4), 4);
        EXPECT_STREQ(text, "here");
        EXPECT_TRUE(log.has("30 LaunchProcess: Launching (fork)"));
        EXPECT_TRUE(log.has("30 LaunchProcess: <forked>"));

        cfg.workingDir = "/nonexistent";
        EXPECT_THROW(forkProcess(cfg), plat::SystemException);
    });
}

TEST(LaunchProcess, RootStartsItAsAnotherUser) {
    if (getuid() != 0)
        GTEST_SKIP() << "only root can become another";
    plat::inChild([] {
        LaunchScene scene;
        LaunchConfig cfg = scene.tellFacts({"-more"});
        cfg.asUser = true;
        cfg.user = otherUser;
        ASSERT_EQ(dup2(1, 8), 8);
        cfg.keptFds = {{8, 7}};
        const Facts facts = scene.factsOf(cfg);
        EXPECT_EQ(facts.at("uids"), "65534\t65534\t65534\t65534");
        EXPECT_EQ(facts.at("gids"), "65534\t65534\t65534\t65534");
        EXPECT_EQ(facts.at("groups"), "65534");
        EXPECT_EQ(facts.at("backToRoot"), "no");
        EXPECT_EQ(facts.at("arg0"), "-more");
        EXPECT_EQ(facts.at("fds"), "0 1 2 7");
        EXPECT_EQ(facts.at("env USER"), "nobody");

        cfg = scene.tellFacts();
        cfg.elevate = true; // root needs no program for that
        setenv("PATH", "/nonexistent", 1);
        EXPECT_EQ(scene.factsOf(cfg).at("uids"), "0\t0\t0\t0");
    });
}

TEST(LaunchProcess, AnOrdinaryUserElevatesThroughTheChosenProgram) {
    asOrdinaryUser([] {
        LaunchScene scene;
        plat::Configuration& params = plat::Configuration::global();
        const std::string one = scene.script("one", "#!/bin/sh\nELEVATED=one exec \"$@\"\n");
        const std::string many = scene.script("many", "#!/bin/sh\nELEVATED=\"$1\" exec sh -c \"$2\"\n");
        LaunchConfig cfg = scene.tellFacts({"it's", "$HOME `x`"});
        cfg.elevate = true;
        params.get("ElevateCmd").setParam(one.c_str());
        Facts facts = scene.factsOf(cfg);
        EXPECT_EQ(facts.at("env ELEVATED"), "one");
        EXPECT_EQ(facts.at("arg0") + facts.at("arg1"), "it's$HOME `x`");

        params.get("ElevateCmd").setParam((many + "  -c ").c_str());
        params.get("ElevateCmdSingleArg").setParam("1");
        facts = scene.factsOf(cfg);
        EXPECT_EQ(facts.at("env ELEVATED"), "-c");
        EXPECT_EQ(facts.at("arg0") + facts.at("arg1"), "it's$HOME `x`");

        for (const char* bad : {"/nonexistent/sudo", "no-such-program -e", "./one"}) {
            params.get("ElevateCmd").setParam(bad);
            EXPECT_THROW(launchProcess(cfg), plat::Exception) << bad;
        }
        setenv("PATH", scene.dir.root.c_str(), 1);
        params.get("ElevateCmdSingleArg").setParam("0");
        params.get("ElevateCmd").setParam("one");
        EXPECT_EQ(scene.factsOf(cfg).at("env ELEVATED"), "one") << "found in PATH";
    });
}

TEST(LaunchProcessDeathTest, AssertsItsRules) {
    LaunchConfig cfg;
    EXPECT_DEATH(launchProcess(cfg), "cfg.args.empty");
    cfg.args = {"bin/sh"};
    EXPECT_DEATH(launchProcess(cfg), "isAbsolutePath\\(cfg.args\\[0\\]\\)");
    cfg.args = {"/bin/sh"};
    cfg.keptFds = {{0, 5}, {1, 5}};
    EXPECT_DEATH(launchProcess(cfg), "sameNumber");
    asOrdinaryUser([&cfg] {
        cfg.asUser = true;
        EXPECT_DEATH(launchProcess(cfg), "getuid\\(\\) == 0 && geteuid\\(\\) == 0");
    });
}

TEST(FindProgram, LooksInAbsoluteDirectoriesForFilesThatRun) {
    plat::inChild([] {
        LaunchScene scene;
        scene.script("prog", "#!/bin/sh\n");
        std::ofstream(scene.dir / "data") << "no program";
        mkdir((scene.dir / "folder").c_str(), 0755);
        ASSERT_EQ(chdir(scene.dir.root.c_str()), 0);
        const auto find = [](const char* name) { return std::string(findProgram(name).c_str()); };
        setenv("PATH", (".::/nonexistent:" + scene.dir.root + ":relative").c_str(), 1);
        EXPECT_EQ(find("prog"), scene.dir / "prog");
        for (const char* name : {"data", "folder", "none", "", "./prog", "../prog"})
            EXPECT_EQ(find(name), "") << name;
        for (const char* path : {".", "", ":", ".:", "relative", "/nonexistent"}) {
            setenv("PATH", path, 1);
            EXPECT_EQ(find("prog"), "") << path;
        }
        setenv("PATH", std::string(1 << 16, '/').c_str(), 1);
        EXPECT_EQ(find("prog"), "");
        unsetenv("PATH");
        EXPECT_EQ(find("sh").substr(find("sh").size() - 7), "/bin/sh");
    });
}

} // namespace
} // namespace os
