// System calls that fail, or do less than they could, when a test says so.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/test/thrown.h"

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace plat {

/// While it lives, calls that our code makes of one function of the C library fail with `errNo`: `count` of them
/// (`always` for all), behind `after` that pass. Later ones are asked first.
///
/// For the functions that FailingCalls.cpp wraps, in programs that are linked with it.
class FailingCalls : private NonCopyable {
public:
    static constexpr int always = 1 << 30;

    FailingCalls(const char* function, int errNo, int count = 1, int after = 0); ///< asserts that it is wrapped
    ~FailingCalls();

    int failed() const { return failures; } ///< calls so far

    /// For the wrappers: true, with errno set, if this call is to fail.
    static bool failsNow(const char* function);

private:
    const char* function;
    int errNo, left, passing;
    int failures = 0;
    FailingCalls* outer;
};

/// While it lives, each read, write and send moves at most `maxBytes`.
class ShortCounts : private NonCopyable {
public:
    explicit ShortCounts(size_t maxBytes);
    ~ShortCounts();

    static size_t cut(size_t bytes); ///< for the wrappers
};

/// To see that none is lost.
inline int openDescriptors() {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

} // namespace plat
