// Loops over rows of 32-bit pixels, which everything on the screen passes through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rfb {

/// One way to do the work. All ways give the same bytes; rows need no alignment.
struct PixelRows {
    void (*fill)(uint8_t* row, int width, uint32_t pixel);

    /// overOp on 0xaarrggbb over 0x??rrggbb. `opaque` is ORed to sources that have no alpha, `ink` is what the
    /// destination stores.
    void (*over)(uint8_t* dst, const uint8_t* src, int width, uint32_t opaque, uint32_t ink);

    void (*premultiply)(uint8_t* dst, const uint8_t* src, int width); ///< premultiplyOp on 0xaarrggbb
    /// Sets `pixel` where a column of mask bytes has a 1, eight pixels a byte, most significant first, and rewrites the
    /// other pixels of the eight as they are. Bits outside `keep` count as 0. Steps are in bytes.
    void (*mono)(uint8_t* row, std::ptrdiff_t rowStep, const uint8_t* bits, std::ptrdiff_t bitStep, int height,
                 uint8_t keep, uint32_t pixel);

    void (*to565)(uint8_t* dst, const uint8_t* src, int width); ///< from 0x??rrggbb to pfRGB565
};

const PixelRows& pixelRows(); ///< the fastest that this processor can do

/// All that it can do: first the plain one, pixel by pixel, as the definitions say; last the fastest.
std::vector<const PixelRows*> allPixelRows();

} // namespace rfb
