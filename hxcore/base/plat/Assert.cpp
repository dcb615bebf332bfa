#include "plat/Assert.h"

#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/SString.h"

#include <execinfo.h>

#include <cstdio>
#include <cstdlib>

namespace plat {
namespace {
LogSrc log("Assertion");
AssertFlushHook flushHook = nullptr;
bool failing = false; // a failed assertion is being told

// Logs the callers of fail(), one text line a frame, and appends them to `text`.
void traceStack(DString& text) {
    constexpr int maxFrames = 64;
    void* frames[maxFrames];
    const int count = backtrace(frames, maxFrames);
    char** names = backtrace_symbols(frames, count);
    for (int i = 0; names && i < count; ++i) {
        log.error("stacktrace: %s", names[i]);
        text.format("\n%s", names[i]);
    }
    std::free(names);
}

} // namespace

AssertFlushHook setAssertFlushHook(AssertFlushHook hook) {
    const AssertFlushHook previous = flushHook;
    flushHook = hook;
    return previous;
}

void AssertionFail::fail() const noexcept {
    try {
        DString report(text);
        if (failing)
            std::abort();
        failing = true;
        std::fprintf(stderr, "%s\n", report.c_str());
        log.error("%s", report.c_str());
        traceStack(report);
        if (flushHook)
            flushHook();
    } catch (...) { // NOLINT(bugprone-empty-catch): whatever goes wrong here, the end is the same
    }
    std::abort();
}

void assertFailed(const char* expr, const char* file, int line) { AssertionFail(expr, file, line).fail(); }

void assertFailedText(const char* expr, const char* file, int line, const char* fmt, ...) {
    char more[256];
    va_list args;
    va_start(args, fmt);
    SString::formatV(more, sizeof(more), fmt, args);
    va_end(args);
    AssertionFail(expr, file, line, more).fail();
}

void assertFailedPeer(const char* expr, const char* file, int line) { throw AssertionFail(expr, file, line); }

void softCheckFailed(const char* expr, const char* file, int line) {
    log.error("Warning: %s", AssertionFail(expr, file, line).what());
}

} // namespace plat
