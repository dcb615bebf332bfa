// What a monitor says of itself.
#pragma once

#include "plat/String.h"

#include <cstdint>
#include <span>

namespace tx {

/// The monitor's name in a block of extended display identification data (VESA E-EDID A.2, 3.10.3.4), else the
/// manufacturer's letters and the product code as "ABC 1A2B"; null if the block is none.
plat::String edidMonitorName(std::span<const uint8_t> edid);

} // namespace tx
