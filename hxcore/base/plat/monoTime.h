// Monotonic time, and the slot for another source of it.
#pragma once

#include <cstdint>

namespace plat {

constexpr int64_t ticksPerMs = 10000;
constexpr int64_t ticksPerSecond = 10000000;
constexpr int64_t noTimeLimit = INT64_MAX;

/// A source of monotonic time: ticks of 100 ns since the first reading of the process.
///
/// `limit` is the latest time that the caller takes for plausible; `*jumped` is set if the clock had to be reset.
using MonoTimeSource = int64_t (*)(int64_t limit, bool* jumped);

/// The time from the installed source.
int64_t monoTime(int64_t limit, bool* jumped);

/// The time now, in ticks of 100 ns.
int64_t monoTicks();

/// Installs a source, null the system's own clock; gives the previous one, null for the system's.
MonoTimeSource setTimeSource(MonoTimeSource source);

} // namespace plat
