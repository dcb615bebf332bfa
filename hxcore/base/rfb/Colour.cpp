#include "rfb/Colour.h"

#include "rfb/ColourMap.h"
#include "rfb/PixelFormat.h"

#include <algorithm>

namespace rfb {
namespace {

uint32_t swapped(const PixelFormat& pf, uint32_t pixel) {
    if (!pf.bigEndian)
        return pixel;
    if (pf.bpp == 16)
        return __builtin_bswap16(static_cast<uint16_t>(pixel));
    return pf.bpp == 32 ? __builtin_bswap32(pixel) : pixel;
}

uint32_t pack(int v, int max, int shift) {
    v = std::clamp(v, 0, 255);
    if (max != 255)
        v = (v * max + 127) / 255;
    return static_cast<uint32_t>(v) << (shift & 31);
}

int unpack(uint32_t pixel, int max, int shift) {
    const int v = static_cast<int>(pixel >> (shift & 31) & static_cast<uint32_t>(max));
    return max == 255 ? v : max == 0 ? 0 : (v * 255 + max / 2) / max;
}

} // namespace

uint32_t pixelFromColour(const PixelFormat& pf, const Colour& colour, const ColourMap* map) {
    if (!pf.trueColour)
        return map ? map->lookupPixel(colour) : 0;
    uint32_t pixel = pack(colour.r, pf.redMax, pf.redShift) | pack(colour.g, pf.greenMax, pf.greenShift) |
                     pack(colour.b, pf.blueMax, pf.blueShift);
    if (pf.alphaMax)
        pixel |= pack(colour.a, pf.alphaMax, pf.alphaShift);
    return swapped(pf, pixel);
}

Colour colourFromPixel(const PixelFormat& pf, uint32_t pixel, const ColourMap* map) {
    Colour colour;
    if (!pf.trueColour) {
        if (map)
            map->lookup(static_cast<int>(pixel), &colour);
        return colour;
    }
    pixel = swapped(pf, pixel);
    colour.r = unpack(pixel, pf.redMax, pf.redShift);
    colour.g = unpack(pixel, pf.greenMax, pf.greenShift);
    colour.b = unpack(pixel, pf.blueMax, pf.blueShift);
    if (pf.alphaMax)
        colour.a = unpack(pixel, pf.alphaMax, pf.alphaShift);
    return colour;
}

} // namespace rfb
