// The report that support asks for.
#pragma once

#include "plat/String.h"

namespace score {
class StatusDb;
class StatusEventDb;
} // namespace score

namespace sui {

/// Puts the report together: what the core says of itself, the displays, the events. It is in English.
class Diagnostics {
public:
    /// `displays` is text as of displayInfoStr. Lines end in "\n"; characters that show nothing are left out. Throws
    /// plat::AssertionFail on an event that can't be.
    static plat::String report(const score::StatusDb& info, const score::StatusEventDb& events, const char* displays);
};

} // namespace sui
