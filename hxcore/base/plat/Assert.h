// Checks that are on in all builds. Their texts are output: expressions keep the names that they show.
#pragma once

#include "plat/cstr.h"

namespace plat {

/// The common end of the checks below; `fmt` null for none.
[[noreturn]] void assertFailed(const char* expr, const char* file, int line);
[[noreturn]] void assertFailedText(const char* expr, const char* file, int line, const char* fmt, ...)
    PLAT_PRINTF(4, 5);
[[noreturn]] void assertFailedPeer(const char* expr, const char* file, int line); ///< throws AssertionFail
void softCheckFailed(const char* expr, const char* file, int line);

/// Called by a failed assertion after it was logged, so that the log reaches the other process before we end.
///
/// Installed by the log on the link; null takes it out. What it throws is swallowed. Gives the previous one.
using AssertFlushHook = void (*)();
AssertFlushHook setAssertFlushHook(AssertFlushHook hook);

/// `from` as a T; asserts, naming `what`, that it is one.
template <class T, class F>
T* checkedCast(F* from, const char* what) {
    T* to = dynamic_cast<T*>(from);
    if (!to)
        assertFailedText("to", __FILE_NAME__, __LINE__, "%s is null", what);
    return to;
}

} // namespace plat

/// Aborts unless `expr` holds. Never about bytes from outside, never with a side effect.
#define ASSERT(expr) ((expr) ? static_cast<void>(0) : ::plat::assertFailed(#expr, __FILE_NAME__, __LINE__))

/// As ASSERT, with a printf text behind the message.
#define ASSERT_TEXT(expr, ...)                                                                                         \
    ((expr) ? static_cast<void>(0) : ::plat::assertFailedText(#expr, __FILE_NAME__, __LINE__, __VA_ARGS__))

/// Throws plat::AssertionFail unless `expr`, a rule for bytes from a peer, holds.
#define ASSERT_PEER(expr) ((expr) ? static_cast<void>(0) : ::plat::assertFailedPeer(#expr, __FILE_NAME__, __LINE__))

/// Logs a warning unless `expr` holds, and goes on.
#define SOFT_CHECK(expr) ((expr) ? static_cast<void>(0) : ::plat::softCheckFailed(#expr, __FILE_NAME__, __LINE__))
