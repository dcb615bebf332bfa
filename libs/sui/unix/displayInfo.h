// What the X server knows of the displays.
#pragma once

#include "sui/DisplayInfoStr.h"

namespace sui {

/// Asks the server; what can't be had is left out and logged. The desktop's name stays empty.
DisplayInfo readDisplayInfo();

} // namespace sui
