// The scaler's inner loops for pixels of four bytes, all channels at once.
#pragma once

#include <cstdint>

namespace hxutil {

/// A source row on its way into the sums of a target row. A source pixel is `srcPixel` long, a target pixel `stepX`.
struct ScaleRow {
    const uint8_t* src; // the first source pixel that counts
    int left;           // of that pixel's length, what still counts
    int srcPixel;
    int stepX;
    int width;  // in target pixels
    int weight; // the part of the row's height that counts
};

/// Adds the row to `sums`, four for each target pixel, in the order of the bytes in memory.
void addScaleRow(const ScaleRow& row, int (*sums)[4]);

/// Writes a target row of height `stepY` from its sums, and clears them. Bits outside `ink` are written as 0.
void writeScaleRow(uint8_t* out, int stepY, int width, uint32_t ink, int (*sums)[4]);

} // namespace hxutil
