#include "plat/monoTime.h"

#include "plat/Assert.h"

#include <ctime>

namespace plat {
namespace {

constexpr int64_t nsPerTick = 100;

// Reads a clock in ticks; false if the system doesn't have it.
bool readClock(clockid_t clock, int64_t* ticks) {
    timespec now;
    if (clock_gettime(clock, &now) != 0)
        return false;
    *ticks = static_cast<int64_t>(now.tv_sec) * ticksPerSecond + now.tv_nsec / nsPerTick;
    return true;
}

/// The system's clock, picked and set to zero at the first reading.
class SystemClock {
public:
    SystemClock() {
        timespec resolution;
        constexpr int64_t tooCoarse = 10001; // ticks
        if (clock_getres(CLOCK_MONOTONIC_COARSE, &resolution) == 0 && resolution.tv_sec == 0 &&
            resolution.tv_nsec / nsPerTick < tooCoarse && readClock(CLOCK_MONOTONIC_COARSE, &origin))
            clock = CLOCK_MONOTONIC_COARSE;
        else
            origin = absolute();
    }

    int64_t now() const { return absolute() - origin; }

private:
    int64_t absolute() const {
        int64_t ticks = 0;
        const bool gotMonoTime = readClock(clock, &ticks);
        ASSERT(gotMonoTime);
        return ticks;
    }

    clockid_t clock = CLOCK_MONOTONIC;
    int64_t origin = 0;
};

int64_t systemTime(int64_t, bool* jumped) {
    static const SystemClock clock;
    *jumped = false;
    return clock.now();
}

MonoTimeSource installed = nullptr;

} // namespace

int64_t monoTime(int64_t limit, bool* jumped) {
    *jumped = false;
    return (installed ? installed : systemTime)(limit, jumped);
}

int64_t monoTicks() {
    bool jumped;
    return monoTime(noTimeLimit, &jumped);
}

MonoTimeSource setTimeSource(MonoTimeSource source) {
    const MonoTimeSource previous = installed;
    installed = source;
    return previous;
}

} // namespace plat
