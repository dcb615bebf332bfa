#include "os/ProcessMonitor.h"

#include "io/FdSelectManager.h"
#include "os/test/TestChild.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/inChild.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace os {
namespace {

pid_t childThat(const std::function<void()>& does) {
    const pid_t child = fork();
    if (child == 0) {
        does();
        _exit(0);
    }
    return child;
}

void becomeZombie(pid_t child) {
    siginfo_t info;
    waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
}

std::string childLine(pid_t pid, const char* rest) {
    return "30 ProcessMonitor: child " + std::to_string(pid) + " " + rest;
}

TEST(ProcessMonitor, TellsHowChildrenEnded) {
    plat::inChild([] {
        io::FdSelectManager loop(/*nested=*/true);
        plat::CapturedLog log;
        Ends ends;
        ProcessMonitor& monitor = ProcessMonitor::instance();
        const pid_t exits = childThat([] { _exit(3); });
        becomeZombie(exits); // before anybody listens
        monitor.add(exits, "/bin/exits", &ends);
        const pid_t waits = childThat([] { pause(); });
        monitor.add(waits, "/bin/waits", &ends);
        const pid_t others = childThat([] { _exit(4); }); // not the monitor's to reap
        EXPECT_EQ(WEXITSTATUS(ends.waitFor(exits)), 3);
        EXPECT_STREQ(monitor.nameOf(waits), "/bin/waits");
        EXPECT_STREQ(monitor.nameOf(exits), "<unknown>");
        EXPECT_TRUE(monitor.kill(waits, SIGTERM));
        const int status = ends.waitFor(waits);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
        EXPECT_FALSE(monitor.knows(waits));
        EXPECT_TRUE(log.has(childLine(exits, "(/bin/exits) exited with status 3")));
        EXPECT_TRUE(log.has(childLine(waits, "(/bin/waits) exited with signal 15")));
        EXPECT_TRUE(log.has("30 ProcessMonitor: kill(" + std::to_string(waits) + ",SIGTERM)"));
        EXPECT_EQ(waitpid(others, nullptr, 0), others);
        EXPECT_FALSE(monitor.kill(others, 0));
        EXPECT_EQ(errno, ESRCH);
    });
}

TEST(ProcessMonitor, ADetachedChildIsReapedAndNobodyTold) {
    plat::inChild([] {
        io::FdSelectManager loop(/*nested=*/true);
        plat::CapturedLog log;
        ProcessMonitor& monitor = ProcessMonitor::instance();
        Ends ends;
        const pid_t first = childThat([] { pause(); });
        const pid_t second = childThat([] { pause(); });
        const pid_t lost = childThat([] {});
        {
            Ends gone;
            monitor.add(first, "first", &gone);
            monitor.add(second, "second", &ends);
        } // takes its child with it
        EXPECT_STREQ(monitor.nameOf(first), "<detached>");
        monitor.detach(second);
        monitor.detach(9999999); // never heard of
        monitor.add(lost, "lost", nullptr);
        monitor.detach(lost);
        EXPECT_EQ(waitpid(lost, nullptr, 0), lost);
        for (const pid_t pid : {first, second})
            kill(pid, SIGKILL);
        for (int i = 0; i < 1000 && (monitor.knows(first) || monitor.knows(second)); ++i)
            loop.poll(10);
        EXPECT_TRUE(log.has(childLine(first, "(<detached>) exited with signal 9")));
        EXPECT_TRUE(log.has("30 ProcessMonitor: waitpid(" + std::to_string(lost) + ") detached: No child processes"));
        EXPECT_TRUE(ends.statuses.empty());
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no zombies";
    });
}

TEST(ProcessMonitor, ACallbackMayDoAnything) {
    plat::inChild([] {
        io::FdSelectManager loop(/*nested=*/true);
        class Restarter : public Ends {
        public:
            void processEnded(pid_t pid, int waitStatus) override {
                Ends::processEnded(pid, waitStatus);
                ProcessMonitor& monitor = ProcessMonitor::instance();
                EXPECT_FALSE(monitor.knows(pid));
                monitor.reap();
                victim.reset(); // it may be the next one of this round
                if (--left > 0)
                    monitor.add(childThat([] {}), "again", this);
            }
            std::unique_ptr<Ends> victim = std::make_unique<Ends>();
            int left = 3;
        } restarter;
        for (int i = 0; i < 2; ++i) {
            const pid_t child = childThat([] {});
            becomeZombie(child);
            ProcessMonitor::instance().add(child, "a", i == 0 ? &restarter : restarter.victim.get());
        }
        for (int i = 0; i < 1000 && restarter.left > 0; ++i)
            loop.poll(10);
        EXPECT_EQ(restarter.left, 0);
    });
}

TEST(ProcessMonitor, TellsOfAChildThatSomebodyElseReaped) {
    plat::inChild([] {
        io::FdSelectManager loop(/*nested=*/true);
        Ends ends;
        const pid_t child = childThat([] {});
        waitpid(child, nullptr, 0);
        ProcessMonitor::instance().add(child, "x", &ends);
        EXPECT_EQ(ends.waitFor(child), ProcessMonitor::lost);
        EXPECT_STREQ(waitStatusText(ProcessMonitor::lost).c_str(), "unknown status");
    });
}

// Loops come and go: a child that was started under one is heard of under the next.
TEST(ProcessMonitor, OutlivesItsLoop) {
    const auto body = [] {
        Ends ends;
        const pid_t early = childThat([] { _exit(1); });
        ProcessMonitor::instance().add(early, "early", &ends); // no loop at all
        becomeZombie(early);
        { io::FdSelectManager loop(/*nested=*/true); }
        {
            io::FdSelectManager loop(/*nested=*/true);
            ProcessMonitor::instance().attach();
            EXPECT_EQ(WEXITSTATUS(ends.waitFor(early)), 1);
        }
        io::FdSelectManager loop(/*nested=*/true);
        const pid_t late = childThat([] { pause(); });
        ProcessMonitor::instance().add(late, "late", &ends);
        loop.poll(0);
        kill(late, SIGKILL);
        EXPECT_EQ(WTERMSIG(ends.waitFor(late)), SIGKILL);

        const pid_t parents = childThat([] { pause(); });
        ProcessMonitor::instance().add(parents, "parents", nullptr);
        const pid_t forked = childThat([] {
            io::FdSelectManager ownLoop(/*nested=*/true); // the other one belongs to the parent
            ProcessMonitor& own = ProcessMonitor::instance();
            Ends ownEnds;
            const pid_t grandchild = childThat([] { _exit(7); });
            own.add(grandchild, "grandchild", &ownEnds);
            _exit(ownEnds.waitFor(grandchild) >> 8);
        });
        ProcessMonitor::instance().add(forked, "forked", &ends);
        EXPECT_EQ(WEXITSTATUS(ends.waitFor(forked)), 7) << "a fork watches its own children";
        kill(parents, SIGKILL);
    };
    plat::inChild([&body] { std::thread(body).join(); }); // a thread has no loop yet
}

} // namespace
} // namespace os
