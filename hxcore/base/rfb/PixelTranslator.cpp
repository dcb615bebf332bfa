#include "rfb/PixelTranslator.h"

#include "plat/Assert.h"
#include "rfb/ColourMap.h"
#include "rfb/pixelAccess.h"
#include "rfb/pixelRows.h"

#include <array>
#include <vector>

namespace rfb {
namespace {

/// Moves whole bytes, where every channel is one byte in both formats.
class ByteMover : public PixelTranslator {
public:
    static constexpr int constant = -1; // in place of a source byte: all ones

    ByteMover(int inBytes_, int outBytes_, const std::array<int, 4>& from_)
        : inBytes(inBytes_), outBytes(outBytes_), from(from_) {}

    void translate(const uint8_t* in, int inStride, uint8_t* out, int outStride, Point size) const override {
        for (int y = 0; y < size.y; ++y) {
            if (inBytes == 4 && outBytes == 4)
                row<4, 4>(in, out, size.x);
            else if (inBytes == 4)
                row<4, 3>(in, out, size.x);
            else if (outBytes == 4)
                row<3, 4>(in, out, size.x);
            else
                row<3, 3>(in, out, size.x);
            in += static_cast<std::ptrdiff_t>(inStride) * inBytes;
            out += static_cast<std::ptrdiff_t>(outStride) * outBytes;
        }
    }

private:
    template <int inSize, int outSize>
    void row(const uint8_t* in, uint8_t* out, int width) const {
        uint32_t fill = 0;
        std::array<int, 4> shift{};
        std::array<uint32_t, 4> mask{};
        for (size_t i = 0; i < outSize; ++i) {
            if (from[i] == constant)
                fill |= 0xffU << (8 * i);
            if (from[i] >= 0) {
                shift[i] = 8 * from[i];
                mask[i] = 0xff;
            }
        }
        for (const uint8_t* end = in + width * inSize; in != end; in += inSize, out += outSize) {
            const uint32_t p = loadPixel<inSize>(in);
            uint32_t q = fill;
            for (size_t i = 0; i < outSize; ++i)
                q |= (p >> shift[i] & mask[i]) << (8 * i);
            storePixel<outSize>(out, q);
        }
    }

    int inBytes;
    int outBytes;
    std::array<int, 4> from; // for each byte of the target its byte in the source, or constant, or below that for zero
};

/// One entry for every value that a source pixel can have; of one beyond 16 bits, an index, the low byte counts.
class OneTable : public PixelTranslator {
public:
    OneTable(int inBytes_, int outBytes_, std::vector<uint32_t> table_)
        : inBytes(inBytes_), outBytes(outBytes_), table(std::move(table_)) {}

    void translate(const uint8_t* in, int inStride, uint8_t* out, int outStride, Point size) const override {
        withPixelSize(outBytes, [&]<int outSize>() {
            withPixelSize(inBytes, [&]<int inSize>() { rows<inSize, outSize>(in, inStride, out, outStride, size); });
        });
    }

private:
    template <int inSize, int outSize>
    void rows(const uint8_t* in, int inStride, uint8_t* out, int outStride, Point size) const {
        const uint32_t* entries = table.data();
        constexpr uint32_t mask = inSize == 2 ? 0xffff : 0xff;
        for (int y = 0; y < size.y; ++y) {
            for (int x = 0; x < size.x; ++x)
                storePixel<outSize>(out + x * outSize, entries[loadPixel<inSize>(in + x * inSize) & mask]);
            in += static_cast<std::ptrdiff_t>(inStride) * inSize;
            out += static_cast<std::ptrdiff_t>(outStride) * outSize;
        }
    }

    int inBytes;
    int outBytes;
    std::vector<uint32_t> table;
};

/// A table a channel. Entries are ORed to a pixel, or added to an index into a last table.
class ChannelTables : public PixelTranslator {
public:
    ChannelTables(const PixelFormat& in_, int outBytes_) : in(in_), outBytes(outBytes_) {
        // A channel without bits may state a shift past the end.
        for (uint8_t* shift : {&in.redShift, &in.greenShift, &in.blueShift, &in.alphaShift})
            *shift &= 31;
    }

    void translate(const uint8_t* src, int inStride, uint8_t* out, int outStride, Point size) const override {
        withPixelSize(in.bytesPerPixel(), [&]<int inSize>() {
            withPixelSize(outBytes, [&]<int outSize>() { rows<inSize, outSize>(src, inStride, out, outStride, size); });
        });
    }

    std::vector<uint32_t> red, green, blue, alpha; // alpha may be empty
    std::vector<uint32_t> last;                    // empty in true colour

private:
    template <int inSize, int outSize>
    void rows(const uint8_t* src, int inStride, uint8_t* out, int outStride, Point size) const {
        const bool swap = in.bigEndian;
        for (int y = 0; y < size.y; ++y) {
            for (int x = 0; x < size.x; ++x) {
                uint32_t p = loadPixel<inSize>(src + x * inSize);
                if (swap && inSize == 4)
                    p = __builtin_bswap32(p);
                else if (swap && inSize == 2)
                    p = __builtin_bswap16(static_cast<uint16_t>(p));
                uint32_t q = red[p >> in.redShift & in.redMax] + green[p >> in.greenShift & in.greenMax] +
                             blue[p >> in.blueShift & in.blueMax];
                if (!alpha.empty())
                    q |= alpha[p >> in.alphaShift & in.alphaMax];
                storePixel<outSize>(out + x * outSize, last.empty() ? q : last[q]);
            }
            src += static_cast<std::ptrdiff_t>(inStride) * inSize;
            out += static_cast<std::ptrdiff_t>(outStride) * outSize;
        }
    }

    PixelFormat in;
    int outBytes;
};

/// From the pixels of buffers to those of a 16-bit screen.
class Rgb888To565 : public PixelTranslator {
public:
    void translate(const uint8_t* in, int inStride, uint8_t* out, int outStride, Point size) const override {
        for (int y = 0; y < size.y; ++y) {
            pixelRows().to565(out, in, size.x);
            in += static_cast<std::ptrdiff_t>(inStride) * 4;
            out += static_cast<std::ptrdiff_t>(outStride) * 2;
        }
    }
};

bool wholeBytes(const PixelFormat& pf) {
    return pf.trueColour && (pf.bpp == 32 || pf.bpp == 24) && pf.isByteAligned() && pf.redMax == 255 &&
           pf.greenMax == 255 && pf.blueMax == 255 && (pf.alphaMax == 255 || pf.alphaMax == 0) && pf.isValid();
}

std::unique_ptr<PixelTranslator> makeByteMover(const PixelFormat& in, const PixelFormat& out) {
    // Values of 24 bits lie in little-endian order whatever the format says.
    const auto place = [](const PixelFormat& pf, int shift) {
        return pf.bigEndian && pf.bpp == 32 ? 3 - shift / 8 : shift / 8;
    };
    std::array<int, 4> from;
    from.fill(ByteMover::constant - 1);
    const auto at = [&](int shift) -> int& { return from[static_cast<size_t>(place(out, shift))]; };
    at(out.redShift) = place(in, in.redShift);
    at(out.greenShift) = place(in, in.greenShift);
    at(out.blueShift) = place(in, in.blueShift);
    if (out.alphaMax)
        at(out.alphaShift) = in.alphaMax ? place(in, in.alphaShift) : ByteMover::constant;
    return std::make_unique<ByteMover>(in.bytesPerPixel(), out.bytesPerPixel(), from);
}

/// Levels of the largest cube that a map can hold.
int cubeLevels(int capacity) {
    if (capacity < 3)
        return 0;
    int n = 1;
    while ((n + 1) * (n + 1) * (n + 1) <= capacity)
        ++n;
    return n;
}

/// The pixels of a cube's colours, in the order of its indices.
std::vector<uint32_t> cubePixels(const ColorCubeOrth& cube, const ColourMap& map) {
    std::vector<uint32_t> pixels(static_cast<size_t>(cube.size()));
    for (int i = 0; i < cube.size(); ++i) {
        Colour colour;
        cube.lookup(i, &colour);
        pixels[static_cast<size_t>(i)] = map.lookupPixel(colour);
    }
    return pixels;
}

std::unique_ptr<PixelTranslator> makeOneTable(const PixelFormat& in, const ColourMap* inMap, const PixelFormat& out,
                                              const ColourMap* outMap) {
    // Depth is at most 8 with a map, whatever the room for it.
    std::vector<uint32_t> table(in.bpp == 16 ? 65536 : 256);
    // Searching a map for each of 65536 values would be felt; a cube over it is as good as 16 bits need.
    const bool viaCube = !out.trueColour && outMap && in.bpp == 16 && !outMap->isCube();
    const ColorCubeOrth cube(viaCube ? std::max(1, cubeLevels(outMap->size())) : 1);
    const std::vector<uint32_t> pixels = viaCube ? cubePixels(cube, *outMap) : std::vector<uint32_t>();
    for (size_t i = 0; i < table.size(); ++i) {
        const Colour colour = colourFromPixel(in, static_cast<uint32_t>(i), inMap);
        table[i] = viaCube ? pixels[static_cast<size_t>(cube.index(colour))] : pixelFromColour(out, colour, outMap);
    }
    return std::make_unique<OneTable>(in.bytesPerPixel(), out.bytesPerPixel(), std::move(table));
}

int expand(unsigned v, unsigned max) { return max == 0 ? 0 : static_cast<int>((v * 255 + max / 2) / max); }

void fillCube(ChannelTables& tables, const PixelFormat& in, const ColourMap* outMap) {
    const int n = std::max(1, cubeLevels(outMap ? outMap->size() : 0));
    const auto contributions = [n](unsigned max, int weight) {
        std::vector<uint32_t> entries(max + 1);
        for (unsigned v = 0; v <= max; ++v)
            entries[v] = static_cast<uint32_t>(((n - 1) * expand(v, max) + 127) / 255 * weight);
        return entries;
    };
    tables.red = contributions(in.redMax, n * n);
    tables.green = contributions(in.greenMax, n);
    tables.blue = contributions(in.blueMax, 1);
    tables.last = outMap ? cubePixels(ColorCubeOrth(n), *outMap) : std::vector<uint32_t>(1, 0);
}

void fillTrueColour(ChannelTables& tables, const PixelFormat& in, const PixelFormat& out) {
    const auto entries = [&](unsigned max, Colour unit) {
        std::vector<uint32_t> made(max + 1);
        for (unsigned v = 0; v <= max; ++v) {
            const int c = expand(v, max);
            made[v] = pixelFromColour(out, Colour(unit.r * c, unit.g * c, unit.b * c, unit.a * c));
        }
        return made;
    };
    tables.red = entries(in.redMax, Colour(1, 0, 0, 0));
    tables.green = entries(in.greenMax, Colour(0, 1, 0, 0));
    tables.blue = entries(in.blueMax, Colour(0, 0, 1, 0));
    if (!out.alphaMax)
        return;
    tables.alpha = entries(in.alphaMax, Colour(0, 0, 0, 1));
    if (!in.alphaMax)
        tables.alpha[0] = pixelFromColour(out, Colour(0, 0, 0, 255));
}

} // namespace

std::unique_ptr<PixelTranslator> PixelTranslator::make(const PixelFormat& inPF, const ColourMap* inMap,
                                                       const PixelFormat& pf, const ColourMap* outMap,
                                                       bool channelTables16) {
    ASSERT(inPF.isValid());
    ASSERT(pf.isValid());
    const bool mapsDiffer = !inPF.trueColour && outMap && outMap != inMap;
    if (inPF.equal(pf) && !mapsDiffer)
        return nullptr;
    if (wholeBytes(inPF) && wholeBytes(pf))
        return makeByteMover(inPF, pf);
    if ((inPF.equal(pfRGB888()) || inPF.equal(pfARGB8888())) && pf.equal(pfRGB565()))
        return std::make_unique<Rgb888To565>();
    if (!inPF.trueColour || inPF.bpp == 8 || (inPF.bpp == 16 && !channelTables16))
        return makeOneTable(inPF, inMap, pf, outMap);
    auto tables = std::make_unique<ChannelTables>(inPF, pf.bytesPerPixel());
    if (pf.trueColour)
        fillTrueColour(*tables, inPF, pf);
    else
        fillCube(*tables, inPF, outMap);
    return tables;
}

} // namespace rfb
