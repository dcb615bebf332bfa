// Durations, sizes, rates and dates as text for the user.
#pragma once

#include "plat/DString.h"

#include <cstdint>
#include <ctime>

namespace loc {
namespace TimeString {

enum class DateStyle { Numeric, Abbreviated, Full, None };
enum class TimeStyle { NoSeconds, Seconds, SecondsAndZone, None };

// Every function appends.

/// A broken-down local time; "<date error>" if it can't be produced. Both styles None give nothing.
void formatDateTime(plat::DString& out, DateStyle dateStyle, TimeStyle timeStyle, const tm& time);

/// A time if `time` is today, "yesterday", "tomorrow", or else a date.
void formatRelativeDate(plat::DString& out, const tm& time);
void formatRelativeDate(plat::DString& out, const tm& time, const tm& now); ///< as seen at another time

void formatPeriod(plat::DString& out, int seconds);               ///< such as "3 hours"
void formatByteSize(plat::DString& out, uint64_t bytes);          ///< such as "1.5 KB"
void formatByteRate(plat::DString& out, uint32_t bytesPerSecond); ///< such as "12 MB/s"

} // namespace TimeString
} // namespace loc
