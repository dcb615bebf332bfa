#include "io/FdHandler.h"
#include "io/FdSelectManager.h"
#include "io/Kicker.h"
#include "plat/Exception.h"
#include "plat/test/FakeClock.h"
#include "plat/test/thrown.h"
#include "rdr/FdInStream.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <functional>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace io {
namespace {

/// One end of a socket pair; the other is `peer`.
class Watched : public FdHandler {
public:
    explicit Watched(FdManager& mgr_) : mgr(&mgr_) {
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        fd = ends[0];
        peer = ends[1];
        mgr->addHandler(this, /*add=*/true);
    }
    ~Watched() override {
        if (mgr)
            mgr->addHandler(this, /*add=*/false);
        if (peer >= 0)
            close(peer);
    }
    void want(bool read, bool write = false) {
        mgr->setInterest(this, read, write, /*except=*/false, /*accept=*/false, /*connectInterest=*/false);
    }
    void send() const { EXPECT_EQ(write(peer, "x", 1), 1); }
    void moveTo(int newFd) {
        EXPECT_EQ(dup2(fd, newFd), newFd);
        closeFd();
        fd = newFd;
    }

    void fdReadable() override {
        ++reads;
        if (onRead)
            onRead();
    }
    void fdWritable() override {
        ++writes;
        if (onWrite)
            onWrite();
    }
    void fdManagerGone() override {
        mgr = nullptr;
        if (onGone)
            onGone();
    }

    FdManager* mgr;
    int peer;
    int reads = 0;
    int writes = 0;
    std::function<void()> onRead, onWrite, onGone;
};

class Fired : public plat::Timer::Callback {
public:
    bool timerExpired(plat::Timer*) override {
        ++count;
        if (then)
            then();
        return false;
    }
    int count = 0;
    std::function<void()> then;
};

TEST(FdSelectManager, CallsWhatIsReadyAndWanted) {
    FdSelectManager mgr;
    Watched a(mgr);
    EXPECT_FALSE(mgr.poll(0));
    a.send();
    EXPECT_FALSE(mgr.poll(0)) << "no interest yet";
    a.want(/*read=*/true);
    EXPECT_TRUE(mgr.poll(0));
    EXPECT_TRUE(mgr.poll(0)) << "nobody has read the byte";
    EXPECT_EQ(a.reads, 2);
    EXPECT_EQ(a.writes, 0);
    a.want(/*read=*/false, /*write=*/true);
    EXPECT_TRUE(mgr.poll(-1));
    EXPECT_EQ(a.reads, 2);
    EXPECT_EQ(a.writes, 1);
    EXPECT_FALSE(mgr.setInterest(&a, true, false, false, false, /*connectInterest=*/true)) << "select can't tell";
    EXPECT_TRUE(mgr.setInterest(&a, false, false, false, /*accept=*/true, false));
    mgr.poll(0);
    EXPECT_EQ(a.reads, 3);
}

TEST(FdSelectManager, AHandlerTakenOutInTheSameRoundIsNotCalled) {
    // Which of two handlers is called first depends on their addresses, so each takes the other out.
    FdSelectManager mgr;
    auto a = std::make_unique<Watched>(mgr);
    auto b = std::make_unique<Watched>(mgr);
    a->onRead = [&] { b.reset(); };
    b->onRead = [&] { a.reset(); };
    for (Watched* each : {a.get(), b.get()}) {
        each->want(true);
        each->send();
    }
    mgr.poll(0);
    ASSERT_NE(!a, !b) << "one is gone";
    EXPECT_EQ((a ? a : b)->reads, 1);
}

TEST(FdSelectManager, AHandlerThatLosesAnInterestInTheSameRoundIsNotCalled) {
    FdSelectManager mgr;
    Watched a(mgr), b(mgr);
    a.onRead = [&] { b.want(false); };
    b.onRead = [&] { a.want(false); };
    for (Watched* each : {&a, &b}) {
        each->want(true);
        each->send();
    }
    mgr.poll(0);
    EXPECT_EQ(a.reads + b.reads, 1);

    Watched c(mgr);
    c.want(true, /*write=*/true);
    c.send();
    c.onRead = [&] { c.want(true, false); };
    mgr.poll(0);
    EXPECT_EQ(c.reads, 1);
    EXPECT_EQ(c.writes, 0);
}

TEST(FdSelectManager, WhatIsMarkedIsCalledInTheNextRoundWithoutAWait) {
    FdSelectManager mgr;
    Watched a(mgr);
    mgr.markReadable(&a);
    mgr.markReadable(&a);
    mgr.markWritable(&a);
    a.onRead = [&] { mgr.markReadable(&a); };
    EXPECT_TRUE(mgr.poll(-1));
    EXPECT_EQ(a.reads, 1) << "once, and again only in the next round";
    EXPECT_EQ(a.writes, 1);
    a.onRead = nullptr;
    EXPECT_TRUE(mgr.poll(-1));
    EXPECT_EQ(a.reads, 2);
    EXPECT_FALSE(mgr.poll(0));

    mgr.markReadable(&a);
    mgr.unmark(&a);
    mgr.poll(0);
    EXPECT_EQ(a.reads, 2);
}

TEST(FdSelectManager, ADescriptorBeyondSelectsSetNeverFires) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::min<rlim_t>(4096, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
    FdSelectManager mgr;
    Watched below(mgr), beyond(mgr);
    below.moveTo(FD_SETSIZE - 1);
    beyond.moveTo(FD_SETSIZE);
    for (Watched* each : {&below, &beyond}) {
        each->want(true, true);
        each->send();
    }
    mgr.poll(0);
    EXPECT_EQ(below.reads, 1);
    EXPECT_EQ(beyond.reads + beyond.writes, 0);
}

TEST(FdSelectManager, ThrowsForAClosedDescriptorAndGoesOnWithoutIt) {
    FdSelectManager mgr;
    Watched a(mgr), b(mgr);
    b.want(true);
    b.send();
    a.want(true);
    close(a.getFd());
    EXPECT_EQ(plat::whatOf([&] { mgr.poll(0); }), "select: Bad file descriptor (9)");
    a.closeFd(); // the number, not anything open
    EXPECT_TRUE(mgr.poll(0));
    EXPECT_EQ(b.reads, 1);
}

TEST(FdSelectManager, AnExceptionOfOneHandlerLosesNoOther) {
    FdSelectManager mgr;
    Watched a(mgr), b(mgr);
    bool thrown = false;
    for (Watched* each : {&a, &b}) {
        each->want(true);
        each->send();
        each->onRead = [&thrown, each] {
            char c;
            EXPECT_EQ(read(each->getFd(), &c, 1), 1);
            if (!std::exchange(thrown, true))
                throw plat::Exception("first");
        };
    }
    EXPECT_THROW(mgr.poll(0), plat::Exception);
    mgr.poll(0);
    mgr.poll(0);
    EXPECT_EQ(a.reads, 1);
    EXPECT_EQ(b.reads, 1);
}

TEST(FdSelectManager, FiresTimersBeforeDescriptorsAndReportsThem) {
    plat::FakeClock clock;
    FdSelectManager mgr;
    Watched a(mgr);
    Fired fired;
    plat::Timer timer(&fired);
    timer.start(50);
    EXPECT_FALSE(mgr.poll(0));
    plat::FakeClock::advanceMs(50);
    a.want(true);
    a.send();
    fired.then = [&] { EXPECT_EQ(a.reads, 0); };
    EXPECT_TRUE(mgr.poll(-1));
    EXPECT_EQ(fired.count, 1);
    EXPECT_EQ(a.reads, 1);
    mgr.kick();
    EXPECT_TRUE(mgr.poll(-1)) << "the wait ended at once";
}

TEST(FdSelectManager, ATimerStartedInANestedLoopOutlivesIt) {
    plat::FakeClock clock;
    FdSelectManager outer;
    Fired fired;
    plat::Timer timer(&fired);
    {
        FdSelectManager inner(/*nested=*/true);
        EXPECT_EQ(FdManager::current(), &inner);
        outer.startTimer(timer, 10);
        plat::FakeClock::advanceMs(10);
        inner.poll(0);
        EXPECT_EQ(fired.count, 0);
    }
    EXPECT_EQ(FdManager::current(), &outer);
    outer.poll(0);
    EXPECT_EQ(fired.count, 1);
}

TEST(FdSelectManager, TellsEachHandlerThatItGoesLastFirst) {
    auto mgr = std::make_unique<FdSelectManager>();
    std::vector<Watched*> told;
    std::vector<std::unique_ptr<Watched>> handlers;
    for (int i = 0; i < 4; ++i) {
        handlers.push_back(std::make_unique<Watched>(*mgr));
        Watched* each = handlers.back().get();
        each->onGone = [&told, each] { told.push_back(each); };
    }
    mgr.reset();
    ASSERT_EQ(told.size(), 4u);
    EXPECT_TRUE(std::is_sorted(told.rbegin(), told.rend()));
    EXPECT_EQ(FdManager::current(), nullptr);
}

TEST(FdSelectManager, HandlersMayDieOrAskForMoreWhileItGoes) {
    auto mgr = std::make_unique<FdSelectManager>();
    std::vector<std::unique_ptr<Watched>> handlers;
    for (int i = 0; i < 3; ++i)
        handlers.push_back(std::make_unique<Watched>(*mgr));
    int told = 0;
    for (auto& each : handlers) {
        each->onGone = [&] {
            ++told;
            for (auto& other : handlers) {
                if (other && other->mgr) {
                    other->want(true); // the manager is half gone
                    other.reset();
                }
            }
        };
    }
    mgr.reset();
    EXPECT_EQ(told, 1) << "the first took the others along";
}

TEST(FdManager, ClosesDescriptorsForAForkedChild) {
    FdSelectManager mgr;
    Watched a(mgr), b(mgr), kept(mgr);
    const int fd = a.getFd();
    mgr.closeFds(&kept);
    EXPECT_EQ(a.getFd(), -1);
    EXPECT_EQ(b.getFd(), -1);
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    EXPECT_GE(kept.getFd(), 0);
    mgr.closeFds(nullptr);
    EXPECT_EQ(kept.getFd(), -1);
}

class Kicks : public plat::Kickee, public FdKickerCallback {
public:
    void kicked() override { ++count; }
    void kicked(FdKicker* kicker) override {
        ++count;
        if (destroy)
            destroy->reset();
        else
            while (true) {
                got += static_cast<char>(kicker->inStream()->readU8());
                kicker->inStream()->checkpoint();
            }
    }
    int count = 0;
    std::string got;
    std::unique_ptr<FdKicker>* destroy = nullptr;
};

TEST(Kicker, WakesTheLoopOnceForManyKicksFromAThread) {
    FdSelectManager mgr;
    Kicks kicks;
    plat::Kicker kicker(&kicks);
    std::thread other([&] {
        for (int i = 0; i < 100000; ++i) // more than a pipe holds
            kicker.kick();
    });
    other.join();
    EXPECT_TRUE(mgr.poll(-1));
    EXPECT_EQ(kicks.count, 1);
    EXPECT_FALSE(mgr.poll(0));
}

TEST(FdKicker, GivesItsBytesAndMayDieInItsCallback) {
    auto mgr = std::make_unique<FdSelectManager>();
    Kicks kicks;
    auto kicker = std::make_unique<FdKicker>(&kicks);
    errno = 77;
    kicker->kick('a');
    kicker->kick('b');
    EXPECT_EQ(errno, 77);
    mgr->poll(-1);
    EXPECT_EQ(kicks.got, "ab");
    kicks.destroy = &kicker;
    kicker->kick('c');
    mgr->poll(-1);
    EXPECT_EQ(kicker, nullptr);
    EXPECT_EQ(kicks.count, 2);
    FdKicker left(&kicks);
    mgr.reset();
    left.kick('x');
    EXPECT_EQ(left.drain(), 1) << "it outlives its manager";
}

} // namespace
} // namespace io
