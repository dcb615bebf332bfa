// Points in time, and their texts.
#pragma once

#include "plat/String.h"

#include <compare>
#include <cstdint>

namespace plat {

/// Ticks of 100 ns since 1601-01-01 UTC. Arithmetic saturates, never wraps.
class Time {
public:
    static constexpr int64_t ticksPerDay = 864000000000;
    static constexpr int64_t unixEpoch = 116444736000000000; ///< 1970-01-01 in ticks

    constexpr Time() = default;
    constexpr explicit Time(int64_t ticks_) : ticks(ticks_) {}
    static Time now();
    static Time fromUnix(int64_t seconds, int32_t micros = 0); ///< micros 0 to 999999

    int64_t toUnix() const; ///< whole seconds since 1970, rounded down
    bool isZero() const { return ticks == 0; }
    auto operator<=>(const Time&) const = default;

    Time operator+(int64_t d) const;
    Time operator-(int64_t d) const;
    int64_t operator-(Time other) const; ///< ticks
    Time& operator+=(int64_t d) { return *this = *this + d; }
    Time& operator-=(int64_t d) { return *this = *this - d; }

    int64_t ticks = 0;
};

/// "2024-02-29T12:00:00Z", with ".123" before the Z if asked; "<date error>" if the year doesn't fit an int.
String toIso8601(Time t, bool withMillis = false);

/// The same on the wall clock of this place, with "+01:00" in place of the Z.
String toIso8601Local(Time t, bool withMillis = false);

/// "29 Feb 2024 12:00:00 GMT": the date of RFC 1123 5.2.14 without the day of the week.
String toRfc1123(Time t);

/// Date, "T", time, a fraction of up to 12 digits, then "Z" or a signed offset; false, `out` unchanged, otherwise.
bool parseIso8601(const char* text, Time* out);

/// "P[nD][T[nH][nM][n[.n]S]]" into ticks, with at least one part; saturates. False leaves `ticks` unchanged.
bool parseDuration(const char* text, int64_t* ticks);

} // namespace plat
