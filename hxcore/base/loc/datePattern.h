// The locale's patterns for dates and times, as strftime takes them.
#pragma once

#include "loc/TimeString.h"

#include <string>

namespace loc {

/// What the locale says of dates; ask inside a LocaleSetter. All patterns are in the locale's charset.
struct DatePatterns {
    std::string date; ///< D_FMT
    std::string both; ///< D_T_FMT
    std::string time; ///< T_FMT
    std::string ampm; ///< T_FMT_AMPM, a usual one where the locale has none

    static DatePatterns ofLocale();
};

/// A pattern with names, cut at its directives of time.
struct SplitPattern {
    std::string before;
    std::string time; ///< first to last of them; "" if there are none
    std::string after;
};

/// Of D_T_FMT; `timeStyle` decides about seconds, and whether a zone may stay where the locale has it.
SplitPattern splitDateTime(const DatePatterns& patterns, TimeString::DateStyle style, TimeString::TimeStyle timeStyle);

std::string makeDatePattern(const DatePatterns& patterns, TimeString::DateStyle style); ///< not for None

/// With a zone only if the style wants one and the locale has it there. Not for None.
std::string makeTimePattern(const DatePatterns& patterns, TimeString::TimeStyle style);

bool hasZone(const std::string& pattern);

} // namespace loc
