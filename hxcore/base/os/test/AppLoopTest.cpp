#include "os/AppLoop.h"

#include "io/FdHandler.h"
#include "io/FdSelectManager.h"
#include "plat/Exception.h"
#include "plat/Timer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace os {
namespace {

class Later : public plat::Timer::Callback {
public:
    explicit Later(std::function<void()> then_) : then(std::move(then_)) { timer.start(0); }
    bool timerExpired(plat::Timer*) override {
        then();
        return false;
    }

private:
    std::function<void()> then;
    plat::Timer timer{this};
};

TEST(AppLoop, FinishesItsRoundBehindAnExit) {
    class Marked : public io::FdHandler {
    public:
        void fdReadable() override { ++reads; }
        int reads = 0;
    } handler;
    AppLoop loop;
    AppLoopImpl::processManager().addHandler(&handler, true);
    AppLoopImpl::processManager().markReadable(&handler);
    Later exit([] { AppLoop::exit(1); });
    EXPECT_EQ(loop.run(), 1);
    EXPECT_EQ(handler.reads, 1);
    AppLoopImpl::processManager().addHandler(&handler, false);
}

TEST(AppLoop, PassesExceptionsOnAndMayRunAgainUntilItsExit) {
    AppLoop loop;
    {
        Later thrower([] { throw plat::Exception("from a timer"); });
        EXPECT_THROW(loop.run(), plat::Exception);
    }
    EXPECT_FALSE(loop.running());
    for (const int code : {5, 0}) {
        Later exit([code] { AppLoop::exit(code); });
        EXPECT_EQ(loop.run(), code);
    }
}

// A toolkit may exit in the middle of a dialog, whose loop then stays on the stack.
TEST(AppLoopDeathTest, ExitInsideANestedLoopTellsTheHandlersAndEnds) {
    class Teller : public io::FdHandler {
    public:
        explicit Teller(const char* name_) : name(name_) { io::FdManager::current()->addHandler(this, true); }
        void fdManagerGone() override { std::fprintf(stderr, "%s gone,", name); }
        const char* name;
    };
    EXPECT_EXIT(
        {
            AppLoop loop;
            Teller outer("outer");
            plat::Timer idle(nullptr);
            idle.start(1000);
            Later dialog([] {
                io::FdSelectManager nested(/*nested=*/true);
                Teller inner("inner");
                plat::Timer innerIdle(nullptr);
                innerIdle.start(1000);
                std::exit(7);
            });
            loop.run();
        },
        testing::ExitedWithCode(7), "inner gone,outer gone,$");
}

TEST(AppLoopDeathTest, AssertsItsRules) {
    EXPECT_DEATH(AppLoop::exit(0), "inst && inst->isRunning");
    AppLoop loop;
    EXPECT_DEATH(AppLoop::exit(0), "inst && inst->isRunning");
    EXPECT_DEATH(AppLoop(), "!inst");
    EXPECT_DEATH(
        {
            Later again([&] { loop.run(); });
            loop.run();
        },
        "!isRunning");
}

} // namespace
} // namespace os
