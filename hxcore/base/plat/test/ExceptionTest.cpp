#include "plat/Exception.h"

#include "plat/Assert.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/inChild.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace plat {
namespace {

TEST(Exception, CutsTextAtACharacter) {
    const std::string text = std::string(254, 'x') + "\xc3\xa4 and more";
    const Exception e(text.c_str(), std::string(70, 't').c_str());
    EXPECT_EQ(std::string(e.what()), std::string(254, 'x'));
    EXPECT_EQ(std::string(e.type), std::string(63, 't'));
}

TEST(SystemException, TextHasContextErrorAndNumber) {
    const SystemException e("bind", 98);
    EXPECT_STREQ(e.type, "System-98");
    EXPECT_STREQ(e.what(), "bind: Address already in use (98)");
    EXPECT_EQ(e.errNo, 98);
    EXPECT_STREQ(SystemException("", 0).what(), "Success (0)");
    EXPECT_STREQ(SystemException(nullptr, 99999).what(), "Unknown error (99999)");
    EXPECT_STREQ(SystemExceptionFmt(2, "fileRename(%s,%s)", "a", "b").what(),
                 "fileRename(a,b): No such file or directory (2)");
    errno = EACCES;
    const StdlibException now("open %d", 1);
    EXPECT_EQ(now.errNo, EACCES);
    EXPECT_STREQ(now.what(), "open 1: Permission denied (13)");
}

TEST(SystemException, KeepsTheErrorBehindALongContext) {
    const SystemException e(std::string(400, 'x').c_str(), ENOENT);
    const std::string tail = ": No such file or directory (2)";
    const std::string text = e.what();
    EXPECT_EQ(text.size(), 255u);
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(Assertion, OfBytesFromAPeerIsThrown) {
    try {
        const int severity = 9;
        ASSERT_PEER(severity < 3);
        FAIL();
    } catch (const AssertionFail& e) {
        EXPECT_STREQ(e.expr, "severity < 3");
        EXPECT_STREQ(e.file, "ExceptionTest.cpp");
        EXPECT_EQ(std::string(e.describe().c_str()),
                  "[AssertionFail] Assertion 'severity < 3' failed at ExceptionTest.cpp:" + std::to_string(e.line));
    }
}

TEST(Assertion, SoftCheckLogsAndGoesOn) {
    CapturedLog captured;
    const int line = __LINE__ + 1;
    SOFT_CHECK(1 + 1 == 3);
    SOFT_CHECK(true);
    ASSERT_EQ(captured.lines.size(), 1u);
    EXPECT_EQ(captured.lines[0],
              "0 Assertion: Warning: Assertion '1 + 1 == 3' failed at ExceptionTest.cpp:" + std::to_string(line));
}

struct Base {
    virtual ~Base() = default;
};
struct Derived : Base {};

TEST(Assertion, CheckedCastNamesWhatIsMissing) {
    Derived derived;
    Base* base = &derived;
    EXPECT_EQ(checkedCast<Derived>(base, "base"), &derived);
    Base other;
    EXPECT_DEATH(checkedCast<Derived>(&other, "other"), "Assertion 'to' failed at Assert.h:[0-9]+: other is null");
}

/// Writes all that is logged to stderr, which is what a death test sees.
class StderrLog : public LogDest {
public:
    StderrLog() : LogDest("probe") {
        logSetSpec("*:probe:110");
        logActivate();
        logApply();
    }
    void write(int level, const char* srcName, const char* text) override {
        std::fprintf(stderr, "[%d %s] %s\n", level, srcName, text);
    }
};

void failWithLog() {
    LogRegistryTest::startOver(); // whatever the tests before have logged
    StderrLog log;
    setAssertFlushHook([] { std::fputs("flushed\n", stderr); });
    ASSERT_TEXT(2 < 1, "for %s", "show");
}

TEST(Assertion, TellsStderrThenTheLogThenTheTraceThenFlushes) {
    EXPECT_EXIT(failWithLog(), testing::KilledBySignal(SIGABRT),
                "^Assertion '2 < 1' failed at ExceptionTest.cpp:[0-9]+: for show\n"
                "\\[0 Assertion\\] Assertion '2 < 1' failed at ExceptionTest.cpp:[0-9]+: for show\n"
                "(\\[0 Assertion\\] stacktrace: [^\n]+\n)+"
                "flushed\n");
}

void failTwice() {
    setAssertFlushHook([] {
        std::fputs("flushing\n", stderr);
        ASSERT(false);
        std::fputs("went on\n", stderr);
    });
    ASSERT(2 < 1);
}

// The second failure says nothing, and above all does not come back here.
TEST(Assertion, InsideAnAssertionAbortsAtOnce) {
    EXPECT_EXIT(failTwice(), testing::KilledBySignal(SIGABRT), "flushing\n$");
}

void failThrowing() {
    setAssertFlushHook([] { throw Exception("link is gone"); });
    ASSERT(2 < 1);
}

TEST(Assertion, SwallowsWhatTheFlushThrows) {
    EXPECT_EXIT(failThrowing(), testing::KilledBySignal(SIGABRT), "Assertion '2 < 1' failed");
}

} // namespace
} // namespace plat
