// How a pixel's bits make a colour.
#pragma once

#include <cstdint>

namespace rdr {
class InStream;
class OutStream;
} // namespace rdr

namespace rfb {

/// Describes pixels as RFB does (RFC 6143 7.4), with an alpha channel in what RFC 6143 calls padding.
struct PixelFormat {
    uint8_t bpp = 8;
    uint8_t depth = 8;
    uint8_t bigEndian = 0;
    uint8_t trueColour = 1; ///< 0: indexed through a colour map
    uint16_t redMax = 7;
    uint16_t greenMax = 7;
    uint16_t blueMax = 3;
    uint16_t alphaMax = 0; ///< 0: no alpha
    uint8_t redShift = 0;
    uint8_t greenShift = 3;
    uint8_t blueShift = 6;
    uint8_t alphaShift = 0;

    static constexpr int printSize = 128;

    constexpr PixelFormat() = default;

    /// A little-endian true colour format; alpha is left out with alphaMax 0.
    constexpr PixelFormat(int bpp_, int depth_, int redMax_, int greenMax_, int blueMax_, int redShift_,
                          int greenShift_, int blueShift_, int alphaMax_ = 0, int alphaShift_ = 0)
        : bpp(static_cast<uint8_t>(bpp_)), depth(static_cast<uint8_t>(depth_)), redMax(static_cast<uint16_t>(redMax_)),
          greenMax(static_cast<uint16_t>(greenMax_)), blueMax(static_cast<uint16_t>(blueMax_)),
          alphaMax(static_cast<uint16_t>(alphaMax_)), redShift(static_cast<uint8_t>(redShift_)),
          greenShift(static_cast<uint8_t>(greenShift_)), blueShift(static_cast<uint8_t>(blueShift_)),
          alphaShift(static_cast<uint8_t>(alphaShift_)) {}

    /// 16 bytes; alpha is kept only if the bit counts of the four channels add up to the depth. Says nothing about
    /// isValid: ask before use.
    void read(rdr::InStream& in);
    void write(rdr::OutStream& out) const;

    /// "pal" and a digit 1 to 8, or "rgb" or "bgr" and three digits 1 to 9. False leaves the format as it was.
    bool parse(const char* text);
    const char* print(char (&buffer)[printSize]) const; ///< gives buffer

    void setDepth();       ///< from the bits that the channels cover
    bool toNativeEndian(); ///< false, unchanged, where no little-endian format says the same

    bool isValid() const;
    bool equal(const PixelFormat& other) const; ///< stores the same bytes for the same colours
    bool isByteAligned() const;
    bool isNativeEndian() const { return !bigEndian || bpp == 8; }
    int bytesPerPixel() const { return bpp / 8; }
};

const PixelFormat& pfRGB888(); ///< 0x00rrggbb
const PixelFormat& pfBGR888();
const PixelFormat& pfRGB565();
const PixelFormat& pfRGB555();
const PixelFormat& pfRGB222();
const PixelFormat& pfRGB111();
const PixelFormat& pfIndexed8();
const PixelFormat& pfARGB8888(); ///< 0xaarrggbb, what images with alpha have
const PixelFormat& pfABGR8888();

// The same after toNativeEndian, for decoders that care about the order of bytes.
const PixelFormat& pfRGB888Native();
const PixelFormat& pfBGR888Native();
const PixelFormat& pfARGB8888Native();
const PixelFormat& pfABGR8888Native();

} // namespace rfb
