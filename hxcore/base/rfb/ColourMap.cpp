#include "rfb/ColourMap.h"

#include "plat/Assert.h"

#include <algorithm>
#include <climits>

namespace rfb {

void ColourMapRW::set(int index, const Colour& rgb) {
    ASSERT(index >= 0 && index < 0x10000);
    const size_t at = static_cast<size_t>(index);
    if (at >= colours.size())
        colours.resize(at + 1);
    colours[at] = rgb;
}

void ColourMapRW::lookup(int index, Colour* rgb) const {
    *rgb = index >= 0 && index < size() ? colours[static_cast<size_t>(index)] : Colour();
}

uint32_t ColourMapRW::lookupPixel(const Colour& rgb) const {
    int best = INT_MAX;
    uint32_t found = 0;
    for (size_t i = 0; i < colours.size() && best > 0; ++i) {
        const int dr = colours[i].r - rgb.r, dg = colours[i].g - rgb.g, db = colours[i].b - rgb.b;
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < best) {
            best = distance;
            found = static_cast<uint32_t>(i);
        }
    }
    return found;
}

ColorCubeOrth::ColorCubeOrth(int levels) : n(levels) { ASSERT(levels >= 1 && levels <= 40); }

int ColorCubeOrth::levelValue(int level) const { return n == 1 ? 0 : (level * 255 + (n - 1) / 2) / (n - 1); }

int ColorCubeOrth::index(const Colour& rgb) const {
    const auto level = [this](int v) { return ((n - 1) * std::clamp(v, 0, 255) + 127) / 255; };
    return (level(rgb.r) * n + level(rgb.g)) * n + level(rgb.b);
}

void ColorCubeOrth::lookup(int index, Colour* rgb) const {
    if (index < 0 || index >= size())
        *rgb = Colour();
    else
        *rgb = Colour(levelValue(index / (n * n)), levelValue(index / n % n), levelValue(index % n));
}

uint32_t ColorCubeOrth::lookupPixel(const Colour& rgb) const { return static_cast<uint32_t>(index(rgb)); }

ColorCubePlusTable::ColorCubePlusTable(int levels) : ColorCubeOrth(levels), pixels(static_cast<size_t>(size())) {
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint32_t>(i);
}

void ColorCubePlusTable::setPixel(int cubeIndex, uint32_t pixel) { pixels.at(static_cast<size_t>(cubeIndex)) = pixel; }

void ColorCubePlusTable::lookup(int pixel, Colour* rgb) const {
    const auto found = std::find(pixels.begin(), pixels.end(), static_cast<uint32_t>(pixel));
    ColorCubeOrth::lookup(found == pixels.end() ? -1 : static_cast<int>(found - pixels.begin()), rgb);
}

uint32_t ColorCubePlusTable::lookupPixel(const Colour& rgb) const { return pixels[static_cast<size_t>(index(rgb))]; }

} // namespace rfb
