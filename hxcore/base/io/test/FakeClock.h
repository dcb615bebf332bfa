// A clock that stands until a test moves it.
#pragma once

#include "plat/monoTime.h"

namespace io {

/// Replaces the monotonic time for as long as it lives.
class FakeClock {
public:
    FakeClock() : previous(plat::setTimeSource(read)) {}
    ~FakeClock() { plat::setTimeSource(previous); }
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    static void advance(int64_t ms) { now += ms * plat::ticksPerMs; }

private:
    static int64_t read(int64_t, bool* jumped) {
        if (jumped)
            *jumped = false;
        return now;
    }

    inline static int64_t now = 1000 * plat::ticksPerSecond;
    plat::MonoTimeSource previous;
};

} // namespace io
