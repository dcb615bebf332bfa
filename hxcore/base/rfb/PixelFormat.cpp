#include "rfb/PixelFormat.h"

#include "plat/SString.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <bit>
#include <cstring>

namespace rfb {
namespace {

constexpr PixelFormat indexed8() {
    PixelFormat pf(8, 8, 0, 0, 0, 0, 0, 0);
    pf.trueColour = 0;
    return pf;
}

constexpr PixelFormat rgb888(32, 24, 255, 255, 255, 16, 8, 0);
constexpr PixelFormat bgr888(32, 24, 255, 255, 255, 0, 8, 16);
constexpr PixelFormat rgb565(16, 16, 31, 63, 31, 11, 5, 0);
constexpr PixelFormat rgb555(16, 15, 31, 31, 31, 10, 5, 0);
constexpr PixelFormat rgb222(8, 6, 3, 3, 3, 4, 2, 0);
constexpr PixelFormat rgb111(8, 3, 1, 1, 1, 2, 1, 0);
constexpr PixelFormat paletted = indexed8();
constexpr PixelFormat argb8888(32, 32, 255, 255, 255, 16, 8, 0, 255, 24);
constexpr PixelFormat abgr8888(32, 32, 255, 255, 255, 0, 8, 16, 255, 24);

PixelFormat native(PixelFormat pf) {
    pf.toNativeEndian();
    return pf;
}

int bits(unsigned max) { return static_cast<int>(std::bit_width(max)); }

bool isFull(unsigned max) { return (max & (max + 1)) == 0; }

/// A channel of a text form: its letter, maximum and shift.
struct Channel {
    char letter;
    unsigned max;
    unsigned shift;
};

/// True if the channels, named from the top, fill the bits from 0 up without a gap.
bool isTight(const Channel* channels, int count) {
    unsigned expected = 0;
    for (int i = count - 1; i >= 0; --i) {
        if (!isFull(channels[i].max) || channels[i].max == 0 || channels[i].shift != expected)
            return false;
        expected += static_cast<unsigned>(bits(channels[i].max));
    }
    return true;
}

int lowerCase(char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; }

bool startsWithNoCase(const char* text, const char* prefix) {
    for (; *prefix; ++text, ++prefix)
        if (lowerCase(*text) != *prefix)
            return false;
    return true;
}

} // namespace

const PixelFormat& pfRGB888() { return rgb888; }
const PixelFormat& pfBGR888() { return bgr888; }
const PixelFormat& pfRGB565() { return rgb565; }
const PixelFormat& pfRGB555() { return rgb555; }
const PixelFormat& pfRGB222() { return rgb222; }
const PixelFormat& pfRGB111() { return rgb111; }
const PixelFormat& pfIndexed8() { return paletted; }
const PixelFormat& pfARGB8888() { return argb8888; }
const PixelFormat& pfABGR8888() { return abgr8888; }

const PixelFormat& pfRGB888Native() {
    static const PixelFormat pf = native(rgb888);
    return pf;
}

const PixelFormat& pfBGR888Native() {
    static const PixelFormat pf = native(bgr888);
    return pf;
}

const PixelFormat& pfARGB8888Native() {
    static const PixelFormat pf = native(argb8888);
    return pf;
}

const PixelFormat& pfABGR8888Native() {
    static const PixelFormat pf = native(abgr8888);
    return pf;
}

void PixelFormat::read(rdr::InStream& in) {
    bpp = in.readU8();
    depth = in.readU8();
    bigEndian = in.readU8() != 0;
    trueColour = in.readU8() != 0;
    redMax = in.readU16();
    greenMax = in.readU16();
    blueMax = in.readU16();
    redShift = in.readU8();
    greenShift = in.readU8();
    blueShift = in.readU8();
    alphaShift = in.readU8();
    alphaMax = in.readU16();
    // A peer without alpha sends padding here, and not all send zeros: believe it only if the numbers add up.
    if (bits(redMax) + bits(greenMax) + bits(blueMax) + bits(alphaMax) != depth || alphaMax == 0) {
        alphaMax = 0;
        alphaShift = 0;
    }
}

void PixelFormat::write(rdr::OutStream& out) const {
    out.writeU8(bpp);
    out.writeU8(depth);
    out.writeU8(bigEndian);
    out.writeU8(trueColour);
    out.writeU16(redMax);
    out.writeU16(greenMax);
    out.writeU16(blueMax);
    out.writeU8(redShift);
    out.writeU8(greenShift);
    out.writeU8(blueShift);
    out.writeU8(alphaShift);
    out.writeU16(alphaMax);
}

bool PixelFormat::parse(const char* text) {
    if (!text)
        return false;
    if (startsWithNoCase(text, "pal")) {
        if (std::strlen(text) != 4 || text[3] < '1' || text[3] > '8')
            return false;
        *this = paletted;
        depth = static_cast<uint8_t>(text[3] - '0');
        return true;
    }
    const bool redFirst = startsWithNoCase(text, "rgb");
    if (std::strlen(text) != 6 || (!redFirst && !startsWithNoCase(text, "bgr")))
        return false;
    int width[3];
    for (int i = 0; i < 3; ++i) {
        if (text[3 + i] < '1' || text[3 + i] > '9')
            return false;
        width[i] = text[3 + i] - '0';
    }
    const int total = width[0] + width[1] + width[2];
    const int red = redFirst ? width[0] : width[2];
    const int blue = redFirst ? width[2] : width[0];
    const int topShift = width[1] + width[2];
    *this = PixelFormat(total <= 8    ? 8
                        : total <= 16 ? 16
                                      : 32,
                        total, (1 << red) - 1, (1 << width[1]) - 1, (1 << blue) - 1, redFirst ? topShift : 0, width[2],
                        redFirst ? 0 : topShift);
    return true;
}

const char* PixelFormat::print(char (&buffer)[printSize]) const {
    plat::SString::format(buffer, printSize, "depth %d (%d bpp)", depth, bpp);
    char part[printSize];
    if (bpp != 8) {
        plat::SString::format(part, printSize, " %s-endian", bigEndian ? "big" : "little");
        plat::SString::append(buffer, part);
    }
    if (!trueColour) {
        plat::SString::append(buffer, " colour-map");
        return buffer;
    }
    const Channel r{'r', redMax, redShift}, g{'g', greenMax, greenShift}, b{'b', blueMax, blueShift},
        a{'a', alphaMax, alphaShift};
    const Channel orders[][4] = {{r, g, b, a}, {b, g, r, a}, {a, r, g, b}, {a, b, g, r}};
    const int count = alphaMax ? 4 : 3;
    for (int i = 0; i < (alphaMax ? 4 : 2); ++i) {
        const Channel* order = orders[i];
        if (!isTight(order, count))
            continue;
        int n = 0;
        part[n++] = ' ';
        for (int c = 0; c < count; ++c)
            part[n++] = order[c].letter;
        part[n] = 0;
        plat::SString::append(buffer, part);
        for (int c = 0; c < count; ++c) {
            plat::SString::format(part, printSize, "%d", bits(order[c].max));
            plat::SString::append(buffer, part);
        }
        return buffer;
    }
    plat::SString::format(part, printSize, " rgb max %d,%d,%d shift %d,%d,%d", redMax, greenMax, blueMax, redShift,
                          greenShift, blueShift);
    plat::SString::append(buffer, part);
    if (alphaMax) {
        plat::SString::format(part, printSize, " alpha max %d shift %d", alphaMax, alphaShift);
        plat::SString::append(buffer, part);
    }
    return buffer;
}

void PixelFormat::setDepth() {
    const auto mask = [](unsigned max, unsigned shift) { return static_cast<uint64_t>(max) << (shift & 63); };
    depth = static_cast<uint8_t>(std::popcount(mask(redMax, redShift) | mask(greenMax, greenShift) |
                                               mask(blueMax, blueShift) | mask(alphaMax, alphaShift)));
}

bool PixelFormat::toNativeEndian() {
    if (!bigEndian)
        return true;
    if (bpp == 8) {
        bigEndian = 0;
        return true;
    }
    if (!isByteAligned() || !isValid())
        return false;
    const auto mirror = [this](uint8_t shift) { return static_cast<uint8_t>(bpp - 8 - shift); };
    redShift = mirror(redShift);
    greenShift = mirror(greenShift);
    blueShift = mirror(blueShift);
    if (alphaMax)
        alphaShift = mirror(alphaShift);
    bigEndian = 0;
    return true;
}

bool PixelFormat::isValid() const {
    if (bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32)
        return false;
    if (depth == 0 || depth > bpp)
        return false;
    if (!trueColour)
        return depth < 9;
    return redShift + bits(redMax) <= bpp && greenShift + bits(greenMax) <= bpp && blueShift + bits(blueMax) <= bpp &&
           alphaShift + bits(alphaMax) <= bpp;
}

bool PixelFormat::equal(const PixelFormat& other) const {
    if (bpp != other.bpp || !trueColour != !other.trueColour)
        return false;
    if (bpp != 8 && !bigEndian != !other.bigEndian)
        return false;
    if (!trueColour)
        return true;
    return redMax == other.redMax && greenMax == other.greenMax && blueMax == other.blueMax &&
           alphaMax == other.alphaMax && redShift == other.redShift && greenShift == other.greenShift &&
           blueShift == other.blueShift && alphaShift == other.alphaShift;
}

bool PixelFormat::isByteAligned() const {
    return redMax < 256 && greenMax < 256 && blueMax < 256 && alphaMax < 256 && redShift % 8 == 0 &&
           greenShift % 8 == 0 && blueShift % 8 == 0 && alphaShift % 8 == 0;
}

} // namespace rfb
