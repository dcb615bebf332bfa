// What the status dialog shows, as one comparable value.
#pragma once

#include "plat/String.h"

#include <cstdint>
#include <vector>

namespace score {
class StatusDb;
class StatusEventDb;
} // namespace score

namespace sui {

/// Derived afresh at each commit from well-known nodes; a difference to the last one is what repaints.
struct StatusDialogModel {
    plat::String banner = "Velthar Server";
    uint32_t severity = 0;   ///< the highest among the events
    uint32_t eventCount = 0; ///< events of that severity
    uint32_t connections = 0;
    bool hasMode = false;
    plat::String editionBadge;
    plat::String connText;
    plat::String connDetailHtml;
    std::vector<plat::String> otherWays;
    bool hasPinLink = false;
    plat::String signature;
    plat::String catchphrase;
    plat::String authentication;
    bool canChangePassword = false;
    plat::String footerHtml;

    /// Throws plat::AssertionFail on an event of a severity that doesn't exist.
    static StatusDialogModel from(const score::StatusDb& info, const score::StatusEventDb& events,
                                  uint32_t connections);

    bool operator==(const StatusDialogModel& other) const; ///< null texts equal null only
};

} // namespace sui
