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
///     4 n             first code of each extra page, a multiple of 128, ascending
///     10 128 (n + 1)  glyphs, of codes 0 to 127 first, then of each page: offset 4, advance 2, left 1, top 1 (both
///                     signed, from the pen at the top left of the cell), width 1, height 1
///     rest            bitmaps, one bit a pixel, rows padded to bytes, most significant bit leftmost
///
/// There is no count of bitmap bytes: the furthest glyph's end is it.
class FontZefBm : public Font {
public:
    explicit FontZefBm(rdr::InStream& in); ///< throws plat::Exception "Bad font data"

    /// Borrowed, outlives this: codes that this font lacks are looked for there, baseline on baseline.
    void setFallback(const Font* font) { fallback = font; }

    bool hasGlyph(int codepoint) const; ///< of this font alone

    // Font
    int drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel) const override;
    int drawString(rfb::WritablePixelBuffer& buffer, const char* text, rfb::Point position, uint32_t pixel,
                   const char* end = nullptr) const override;
    int charWidth(int codepoint) const override;
    int stringWidth(const char* text, const char* end = nullptr) const override;
    const char* stringAt(int px, const char* text, const char* end = nullptr) const override;
    const char* nearestBoundary(int px, const char* text, const char* end = nullptr) const override;

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

    void readPages(rdr::InStream& in);
    void readGlyphs(rdr::InStream& in);
    const Glyph* findGlyph(int codepoint) const; // null if there is none
    const Glyph& glyphFor(int codepoint) const;

    std::vector<uint32_t> pages; // first codes; entry 0 is 0, the last 0xffffffff
    std::vector<Glyph> glyphs;
    std::vector<uint8_t> bitmap;
    const Font* fallback = nullptr;
};

} // namespace hxutil
