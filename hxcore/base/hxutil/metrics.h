// From abstract units to pixels.
#pragma once

namespace hxutil {

int ppmm();           ///< parameter ppmm, 1 to 32: 4 is an ordinary screen, 8 one of twice the density
int textSizeFactor(); ///< parameter TextSizeFactor, 1 to 1000: 100 is normal

/// Pixels of a length in units: (units * ppmm + 4) / 8, mirrored below 0.
int scaled(int units);

} // namespace hxutil
