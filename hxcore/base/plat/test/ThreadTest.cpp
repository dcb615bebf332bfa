#include "plat/Thread.h"

#include "plat/DynamicFn.h"
#include "plat/Exception.h"
#include "plat/SysColors.h"
#include "plat/builtInResource.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/thrown.h"
#include "plat/waitForFd.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace plat {
namespace {

/// Waits, if told to, to be let go, then notes who ran.
class Job : public Runnable {
public:
    void run() override {
        Lock lock(mutex);
        Lock twice(mutex); // recursive
        current = Thread::getCurrent();
        ++runs;
        changed.broadcast();
        if (failing)
            throw Exception("no luck");
    }

    void waitForRun() {
        Lock lock(mutex);
        while (runs == 0)
            changed.wait();
    }

    Mutex mutex;
    Condition changed{mutex};
    bool failing = false;
    int runs = 0;
    Thread* current = nullptr;
};

TEST(Thread, RunsOnceAndIsJoined) {
    CapturedLog log;
    Job job;
    {
        Thread thread("worker", &job);
        EXPECT_EQ(thread.getState(), Thread::State::Created);
        thread.start();
        thread.start();
        thread.join();
        EXPECT_EQ(thread.getState(), Thread::State::Joined);
        thread.start();
        thread.join();
        EXPECT_EQ(job.runs, 1);
        EXPECT_EQ(job.current, &thread);
    }
    for (const char* word : {"started  ", "stopped  ", "join     ", "joined   ", "destroy  ", "destroyed"})
        EXPECT_EQ(log.count("Thread: " + std::string(word) + " worker "), 1) << word;
}

TEST(Thread, FailureIsLoggedAndDestructionJoins) {
    CapturedLog log;
    Job job;
    job.failing = true;
    {
        Thread thread("worker", &job);
        thread.start();
    }
    EXPECT_EQ(job.runs, 1);
    EXPECT_EQ(log.count("Thread: failed    worker "), 1);
    EXPECT_EQ(log.count(": no luck"), 1);
}

TEST(Thread, DetachedDeletesItself) {
    Job job;
    auto* thread = new Thread("loose", &job);
    {
        Lock hold(job.mutex);
        thread->start();
        thread->detach();
    }
    job.waitForRun();
    auto* never = new Thread("never started", &job);
    never->detach();
    EXPECT_EQ(job.runs, 1);
}

TEST(Thread, UnknownThreadIsNative) {
    Thread* self = Thread::getCurrent();
    EXPECT_STREQ(self->getName(), "Native");
    EXPECT_EQ(self->getState(), Thread::State::Native);
    EXPECT_EQ(Thread::getCurrent(), self);
    self->start();
    self->join();
}

TEST(Condition, HasNoTimedWait) {
    Mutex mutex;
    Condition condition(mutex);
    condition.signal();
    EXPECT_DEATH(condition.wait(5), "Assertion 'timeoutMs == -1' failed at Thread.cpp:[0-9]+: Condition timed wait not "
                                    "implemented yet");
}

class WaitForFdTest : public testing::Test {
protected:
    WaitForFdTest() { EXPECT_EQ(pipe(fds), 0); }
    ~WaitForFdTest() override {
        close(fds[0]);
        close(fds[1]);
    }
    int fds[2];
};

TEST_F(WaitForFdTest, RefusesDescriptorsThatSelectCannotTake) {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit wide{2048, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &wide);
    const int high = fcntl(fds[0], F_DUPFD, 1024);
    for (const auto& [fd, errNo] : {std::pair{1024, 24}, std::pair{-1, 9}, std::pair{1000, 9}})
        EXPECT_EQ(errorOf([&] { waitForFd(fd, 0, true, false); }), errNo);
    close(high);
    setrlimit(RLIMIT_NOFILE, &limit);
}

TEST(DynamicFn, TriesLibrariesVersionsAndNamesInOrder) {
    const DynamicFn<double(double)> byVersion("m[99,6]", "no_such_function,floor");
    EXPECT_TRUE(byVersion.isAvailable());
    EXPECT_EQ(byVersion(2.5), 2.0);
    const DynamicFn<double(double)> byAlternative("no_such_library[1,2],m[6]", "ceil");
    EXPECT_EQ(byAlternative(2.5), 3.0);
    const DynamicFn<double(double)> byFile("libm.so.6", "floor");
    EXPECT_EQ(byFile.get(), byVersion.get());
}

std::string loadFailure(const char* library, const char* function) {
    const DynamicFn<void()> missing(library, function);
    EXPECT_FALSE(missing.isAvailable());
    try {
        missing();
    } catch (const DynamicFnLoadFailed& e) {
        return e.describe().c_str();
    }
    return "nothing thrown";
}

TEST(DynamicFn, MissingOnesThrowWithTheirNames) {
    EXPECT_EQ(loadFailure("NoSuchLib[3,2]", "f"), "[DynamicFnLoadFailed] NoSuchLib[3,2]: library not found for f");
    EXPECT_EQ(loadFailure("NoSuchLib", "f"), "[DynamicFnLoadFailed] NoSuchLib: library not found for f");
    EXPECT_EQ(loadFailure("m[6]", "g"), "[DynamicFnLoadFailed] m[6]: function g not found");
    EXPECT_EQ(loadFailure("m[6", "g"), "[DynamicFnLoadFailed] m[6: function g not found");
}

TEST(BuiltInResource, IsFoundByName) {
    static const uint8_t bytes[] = {1, 2, 3};
    addBuiltInResource("a@2x.png", sizeof(bytes), bytes);
    addBuiltInResource("a@2x.png", 1, bytes);
    const BuiltInResource found = findBuiltInResource("a@2x.png");
    EXPECT_EQ(found.size, 3u);
    EXPECT_EQ(found.data, bytes);
    EXPECT_EQ(findBuiltInResource("b").size, 0u);
    EXPECT_EQ(findBuiltInResource(nullptr).data, nullptr);
}

class OneColor : public SysColors {
public:
    bool getColor(const char* name, uint32_t* out) override {
        if (std::strcmp(name, "contentBg") != 0)
            return false;
        *out = 0x123456;
        return true;
    }
    bool isDark() override { return dark; }
    bool dark = false;
};

TEST(SysColors, AsksTheDesktopThenTheTable) {
    EXPECT_EQ(getColor("contentBg", 1u), 0xffffffu);
    EXPECT_FALSE(isDarkMode());
    OneColor desktop;
    setSysColors(&desktop);
    EXPECT_DEATH(setSysColors(&desktop), "Assertion '!sysColorsImpl' failed");
    EXPECT_EQ(getSysColors(), &desktop);
    EXPECT_EQ(getColor("contentBg", 1u), 0x123456u);
    EXPECT_EQ(getColor("helpBg", 1u), 0xffffd3u);
    desktop.dark = true;
    EXPECT_EQ(getColor("helpBg", 1u), 0x443322u);
    EXPECT_EQ(getColor("orange", 1u), 0xffa500u);
    EXPECT_EQ(getColor("#0a0Bff", 1u), 0x0a0bffu);
    for (const char* bad : {"#0a0bf", "#0a0bff0", "#", "#gggggg", "nothing", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(getColor(bad, 7u), 7u);
    setSysColors(nullptr);
}

TEST(SysColors, GenericFollowsItsParameter) {
    SysColorsGeneric generic;
    setSysColors(&generic);
    EXPECT_FALSE(isDarkMode());
    EXPECT_EQ(getColor("selectedBg", 1u), 0xd1e8ffu);
    setSysColors(nullptr);
}

} // namespace
} // namespace plat
