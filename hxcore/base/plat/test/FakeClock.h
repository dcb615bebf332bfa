// A monotonic clock that stands still until a test moves it.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/monoTime.h"

namespace plat {

/// Stands in for the system's clock while it lives; at most one at a time.
class FakeClock : private NonCopyable {
public:
    FakeClock() {
        now = 0;
        jumped = false;
        previous = setTimeSource(read);
    }
    ~FakeClock() { setTimeSource(previous); }

    static void advanceMs(int64_t ms) { now += ms * ticksPerMs; }
    static void advanceTicks(int64_t ticks) { now += ticks; }

    /// The next reading gives `ticks` and says that the clock had to be reset.
    void jumpTo(int64_t ticks) {
        now = ticks;
        jumped = true;
    }

    static inline int64_t now = 0;
    static inline int64_t lastLimit = 0; ///< as the last reader gave it

private:
    static int64_t read(int64_t limit, bool* out) {
        lastLimit = limit;
        *out = jumped;
        jumped = false;
        return now;
    }

    static inline bool jumped = false;
    MonoTimeSource previous;
};

} // namespace plat
