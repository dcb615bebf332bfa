// Bitmap fonts in our own format.
#pragma once

#include "hxutil/Font.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace rdr {
class InStream;
}

namespace hxutil {

/// A bitmap font in memory. Its file, all numbers big-endian:
///
///     4               magic 7c cf 0c 72
///     2 2             ascent, descent
///     2               number n of extra pages, at most 1023
///     4 n             first code of each extra page, a multiple of 128
///     10 128 (n + 1)  glyphs, of codes 0 to 127 first, then of each page: offset 4, advance 2, left 1, top 1 (both
///                     signed, from the pen at the top left of the cell), width 1, height 1
///     rest            bitmaps, one bit a pixel, rows padded to bytes, most significant bit leftmost
///
/// There is no count of bitmap bytes: the furthest glyph's end is it.
class FontZefBm : public Font {
public:
    /// Where characters come from that the font lacks.
    class Fallback {
    public:
        virtual ~Fallback() = default;
        virtual bool charWidth(int codepoint, int* width) const = 0; ///< false if it lacks the character too

        /// `position` is the top left of a line of the font that asks. Called after charWidth gave true.
        virtual void drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position,
                               uint32_t pixel) const = 0;
        virtual int markMiddle(int /*codepoint*/) const { return 0; } ///< as that of the font
    };

    /// Throws plat::Exception "Bad font data", or what the stream throws at its end.
    explicit FontZefBm(rdr::InStream& in);
    ~FontZefBm() override;

    /// Characters that have neither ink nor advance here come from the fallback, control characters apart.
    void setFallback(std::unique_ptr<Fallback> fallback_);

    bool hasGlyph(int codepoint) const; ///< of this font alone, with ink or advance
    int leftOf(int codepoint) const;    ///< where the ink of this font's glyph begins, from the pen

    /// One glyph of this font, each pixel `scale` (1 or 2) wide and high; gives the advance.
    int drawGlyphScaled(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel,
                        int scale) const;

    // Font
    int drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel) const override;
    int drawString(rfb::WritablePixelBuffer& buffer, const char* text, rfb::Point position, uint32_t pixel,
                   const char* end = nullptr) const override;
    int charWidth(int codepoint) const override;
    int stringWidth(const char* text, const char* end = nullptr) const override;
    const char* stringAt(int px, const char* text, const char* end = nullptr) const override;
    const char* nearestBoundary(int px, const char* text, const char* end = nullptr) const override;
    int markMiddle(int codepoint) const override;

private:
    struct Glyph {
        uint32_t offset;
        uint16_t advance;
        int8_t left;
        int8_t top;
        uint8_t width;
        uint8_t height;
    };
    static_assert(sizeof(Glyph) == 12);

    void readGlyphs(rdr::InStream& in);
    void readBitmap(rdr::InStream& in);
    const Glyph& glyphFor(int codepoint) const;
    bool useFallback(int codepoint, const Glyph& glyph, int* width) const;
    void blit(rfb::WritablePixelBuffer& buffer, const Glyph& glyph, rfb::Point position, uint32_t pixel) const;

    std::vector<uint32_t> pages; // first codes; entry 0 is 0, the last 0xffffffff
    std::vector<Glyph> glyphs;
    std::vector<uint8_t> bitmap;
    std::unique_ptr<Fallback> fallback;
};

} // namespace hxutil
