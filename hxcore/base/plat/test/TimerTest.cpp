#include "plat/Timer.h"

#include "plat/DeferredDeleter.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FakeClock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace plat {
namespace {

/// Notes its firings, and does what the test wants meanwhile.
class Recorder : public Timer::Callback {
public:
    bool timerExpired(Timer* timer) override {
        fired.push_back(timer);
        firedAt.push_back(FakeClock::now / ticksPerMs);
        return onExpired ? onExpired(timer) : again;
    }

    bool again = false;
    std::function<bool(Timer*)> onExpired;
    std::vector<Timer*> fired;
    std::vector<int64_t> firedAt; // ms
};

class TimerTest : public testing::Test {
protected:
    using Timers = std::vector<Timer*>;

    void runFor(int64_t ms) {
        for (; ms > 0; --ms) {
            clock.advanceMs(1);
            manager.processTimers();
        }
    }

    FakeClock clock;
    TimerManager manager;
    Recorder recorder;
    Timer a{&recorder};
    Timer b{&recorder};
    Timer c{&recorder};
};

TEST_F(TimerTest, FiresInOrderOfTimeAndThenOfStart) {
    std::vector<std::unique_ptr<Timer>> timers;
    Timers inOrder;
    for (uint32_t i = 0; i < 300; ++i) {
        timers.push_back(std::make_unique<Timer>(&recorder));
        timers.back()->start(i * 7919 % 97);
        inOrder.push_back(timers.back().get());
    }
    std::stable_sort(inOrder.begin(), inOrder.end(),
                     [](const Timer* x, const Timer* y) { return x->getIntervalMs() < y->getIntervalMs(); });
    clock.advanceMs(100);
    EXPECT_EQ(manager.processTimers(), 0);
    EXPECT_EQ(recorder.fired, inOrder);
    EXPECT_EQ(manager.processTimers(), -1);
}

TEST_F(TimerTest, TimeUntilNextRoundsUp) {
    a.start(1);
    clock.advanceTicks(9999);
    int64_t now = 0;
    EXPECT_EQ(manager.timeUntilNext(&now), 1);
    EXPECT_EQ(now, 9999);
    EXPECT_EQ(manager.processTimers(), 1);
    EXPECT_TRUE(recorder.fired.empty());
    clock.advanceTicks(1);
    EXPECT_EQ(manager.timeUntilNext(), 0);
    clock.advanceMs(5);
    EXPECT_EQ(manager.timeUntilNext(), 0); // late, not negative
    a.start(0xffffffff);
    EXPECT_EQ(manager.timeUntilNext(), 0x7fffffff);
}

TEST_F(TimerTest, RepeatsInPhaseUnlessLateByAWholeInterval) {
    recorder.again = true;
    a.start(100);
    clock.advanceMs(130);
    manager.processTimers();
    EXPECT_EQ(manager.timeUntilNext(), 70);
    clock.advanceMs(420); // due at 200, now at 550
    manager.processTimers();
    EXPECT_EQ(recorder.fired.size(), 2u);
    EXPECT_EQ(manager.timeUntilNext(), 100);
}

TEST_F(TimerTest, RestartedInsideItsCallbackRunsOnceMore) {
    recorder.onExpired = [](Timer* timer) {
        timer->start(30);
        return true;
    };
    a.start(10);
    runFor(10);
    EXPECT_EQ(recorder.fired.size(), 1u);
    EXPECT_EQ(manager.timeUntilNext(), 30);
    recorder.onExpired = nullptr;
    runFor(100);
    EXPECT_EQ(recorder.firedAt, std::vector<int64_t>({10, 40}));
}

TEST_F(TimerTest, StartedWithZeroInACallbackWaitsForTheNextRound) {
    recorder.onExpired = [this](Timer* timer) {
        if (timer == &a)
            b.start(0);
        return false;
    };
    a.start(0);
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a}));
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a, &b}));
}

TEST_F(TimerTest, CancelledOrRestartedByAnotherOfTheRoundDoesNotFireInIt) {
    auto doomed = std::make_unique<Timer>(&recorder);
    Timer later(&recorder);
    recorder.onExpired = [&](Timer* timer) {
        b.cancel();
        doomed.reset();
        if (timer == &a)
            later.start(5);
        return false;
    };
    for (Timer* each : {&a, &b, doomed.get(), &c, &later})
        each->start(0);
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a, &c}));
    EXPECT_FALSE(b.isActive());
    b.cancel();
    EXPECT_EQ(manager.timeUntilNext(), 5);
}

TEST_F(TimerTest, MayDieInItsOwnCallback) {
    auto doomed = std::make_unique<Timer>(&recorder);
    recorder.onExpired = [&](Timer*) {
        doomed.reset();
        return true;
    };
    doomed->start(0);
    manager.processTimers();
    EXPECT_EQ(recorder.fired.size(), 1u);
    EXPECT_EQ(manager.timeUntilNext(), -1);
}

TEST_F(TimerTest, ManagerMayDieInACallback) {
    auto inner = std::make_unique<TimerManager>(/*nested=*/true);
    a.start(0);
    b.start(0);
    recorder.onExpired = [&](Timer*) {
        inner.reset();
        return true;
    };
    inner->processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a}));
    EXPECT_FALSE(b.isActive());
    EXPECT_EQ(TimerManager::current(), &manager);
}

TEST_F(TimerTest, ThrowingCallbackLosesNoOtherTimer) {
    recorder.onExpired = [&](Timer* timer) {
        if (timer == &a)
            throw 1;
        return false;
    };
    a.start(0);
    b.start(0);
    EXPECT_THROW(manager.processTimers(), int);
    EXPECT_EQ(manager.timeUntilNext(), 0);
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a, &b}));
}

TEST_F(TimerTest, NestedManagersKeepTheirTimersApart) {
    a.start(1);
    {
        TimerManager nested(/*nested=*/true);
        EXPECT_EQ(TimerManager::current(), &nested);
        b.start(1);
        c.start(7);
        clock.advanceMs(1);
        nested.processTimers();
        EXPECT_EQ(recorder.fired, Timers({&b}));
    }
    EXPECT_FALSE(c.isActive());
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&b, &a}));
    EXPECT_DEATH(TimerManager second, "nested \\|\\| !thrInst");
}

TEST_F(TimerTest, JumpOfTheClockRestartsAll) {
    CapturedLog log;
    a.start(50);
    b.start(100);
    clock.advanceMs(40);
    clock.jumpTo(1000 * ticksPerSecond);
    EXPECT_EQ(manager.timeUntilNext(), 50);
    EXPECT_EQ(FakeClock::lastLimit, 50 * ticksPerMs + 2400000000);
    EXPECT_TRUE(log.has("30 Timer: Time has moved backwards - restarting timers")); // the limit is below
    log.lines.clear();
    clock.jumpTo(ticksPerSecond);
    EXPECT_EQ(manager.timeUntilNext(), 50);
    EXPECT_TRUE(log.has("30 Timer: Time has jumped forwards - restarting timers"));
    clock.advanceMs(100);
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a, &b}));
    manager.timeUntilNext();
    EXPECT_EQ(FakeClock::lastLimit, noTimeLimit);
}

TEST_F(TimerTest, JumpDuringARoundRepeatsFromNow) {
    recorder.onExpired = [&](Timer* timer) {
        if (timer == &a)
            clock.jumpTo(77 * ticksPerSecond);
        return timer == &a;
    };
    a.start(10);
    b.start(10);
    clock.advanceMs(12);
    manager.processTimers();
    EXPECT_EQ(recorder.fired, Timers({&a, &b}));
    EXPECT_EQ(manager.timeUntilNext(), 10);
}

class NextRecorder : public TimerManager::Observer {
public:
    void nextTimerChanged(int ms) override { told.push_back(ms); }
    std::vector<int> told;
};

TEST_F(TimerTest, ObserverLearnsOfANewHeadAndOfEachRound) {
    NextRecorder next;
    manager.setObserver(&next);
    a.start(10);
    b.start(20);
    c.start(5);
    EXPECT_EQ(next.told, std::vector<int>({10, 5}));
    clock.advanceMs(10);
    manager.processTimers();
    EXPECT_EQ(next.told, std::vector<int>({10, 5, 10}));
    manager.setObserver(nullptr);
}

TEST(Timer, NeedsAManager) {
    Timer::Callback callback;
    Timer timer(&callback);
    EXPECT_DEATH(timer.start(1), "Assertion 'thrInst' failed");
    timer.cancel();
}

struct Deletable {
    explicit Deletable(int* count_) : count(count_) {}
    virtual ~Deletable() { ++*count; }
    int* count;
};

TEST_F(TimerTest, DeferredDeleterWaitsForTheNextRound) {
    int deleted = 0;
    deleteLater(new Deletable(&deleted));
    deleteLater(static_cast<Deletable*>(nullptr));
    EXPECT_EQ(deleted, 0);
    manager.processTimers();
    EXPECT_EQ(deleted, 1);
}

TEST(CircularVector, KeepsOrderWhenItGrowsAndWraps) {
    CircularVector<int> queue;
    int next = 0;
    int expected = 0;
    for (int round = 0; round < 6; ++round) {
        for (int i = 0; i < 5; ++i)
            queue.pushBack(next++);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(queue.popFront(), expected++);
    }
    EXPECT_EQ(queue.getCapacity(), 16);
    EXPECT_EQ(queue.size(), 12);
    queue.erase(3);
    EXPECT_EQ(queue[2], expected + 2);
    EXPECT_EQ(queue[3], expected + 4);
    queue.erase(10);
    EXPECT_EQ(queue.size(), 10);
    queue.clear();
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.getCapacity(), 16);
    EXPECT_DEATH(queue.popFront(), "count > 0");
}

TEST(MonoTime, NeverGoesBack) {
    const int64_t first = monoTicks();
    bool jumped = true;
    EXPECT_GE(monoTime(noTimeLimit, &jumped), first);
    EXPECT_FALSE(jumped);
}

} // namespace
} // namespace plat
