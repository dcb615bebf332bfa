// Colours for drawing, and their translation to pixel values.
#pragma once

#include <cstdint>

namespace rfb {

class ColourMap;
struct PixelFormat;

/// Red, green, blue and alpha, each 0 to 255. Whether the first three are premultiplied depends on the place.
struct Colour {
    int r = 0;
    int g = 0;
    int b = 0;
    int a = 255;

    constexpr Colour() = default;
    constexpr Colour(int r_, int g_, int b_, int a_ = 255) : r(r_), g(g_), b(b_), a(a_) {}
    constexpr bool operator==(const Colour&) const = default;

    /// From 0xrrggbb, opaque.
    static constexpr Colour rgb(uint32_t value) {
        return {static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255), static_cast<int>(value & 255)};
    }
};

/// The nearest pixel value of a format. A format without true colour asks `map` for it, and gives 0 without one.
/// A big-endian format of 16 or 32 bits gives the value with its bytes swapped, ready to be stored.
uint32_t pixelFromColour(const PixelFormat& pf, const Colour& colour, const ColourMap* map = nullptr);

/// The reverse. Without alpha in the format, or without a map where one is needed, the colour is opaque, and black.
Colour colourFromPixel(const PixelFormat& pf, uint32_t pixel, const ColourMap* map = nullptr);

/// x / 255, rounded.
constexpr int div255(int x) { return (x + 127) / 255; }

} // namespace rfb
