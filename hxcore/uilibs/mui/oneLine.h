// Text on one line.
#pragma once

#include "plat/String.h"

namespace mui {

/// The text with blanks for line ends and other control characters, so that it can't end a line of the reply it stands
/// in.
plat::String oneLine(const char* text);

} // namespace mui
