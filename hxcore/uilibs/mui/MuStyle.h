// Font and colours of an element and what lies below it.
#pragma once

#include "plat/String.h"

namespace mui {

/// Text looks of an element. Colours are theme names or "#rrggbb"; null takes what the toolkit has by default.
struct MuStyle {
    int family = 0;
    int size = 120; ///< tenths of a point
    int weight = 400;
    plat::String textColour;
    plat::String bgColour;
};

} // namespace mui
