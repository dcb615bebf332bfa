#include "hxutil/FontZefBm.h"

#include "hxutil/TextLine.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "plat/Exception.h"
#include "rdr/InStream.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <cstring>

namespace hxutil {
namespace {

constexpr uint8_t magic[] = {0x7c, 0xcf, 0x0c, 0x72};
constexpr unsigned maxExtraPages = 1023;
constexpr uint32_t maxBitmapBytes = 0x400000;
constexpr size_t pageSize = 128;
constexpr size_t recordBytes = 10;
constexpr uint32_t endOfPages = 0xffffffff;

uint32_t u16(const uint8_t* p) { return static_cast<uint32_t>(p[0]) << 8 | p[1]; }
uint32_t u32(const uint8_t* p) { return u16(p) << 16 | u16(p + 2); }

bool isControl(int code) { return code < 0x20 || (code >= 0x7f && code < 0xa0); }

/// A row of a bitmap with every pixel twice.
void doubleRow(const uint8_t* in, int inBytes, uint8_t* out) {
    const auto spread = [](unsigned nibble) {
        unsigned wide = 0;
        for (unsigned bit = 0; bit < 4; ++bit)
            wide |= (nibble >> bit & 1) * 3U << (2 * bit);
        return static_cast<uint8_t>(wide);
    };
    for (int i = 0; i < inBytes; ++i) {
        *out++ = spread(in[i] >> 4);
        *out++ = spread(in[i] & 15U);
    }
}

} // namespace

FontZefBm::FontZefBm(rdr::InStream& in) {
    uint8_t head[sizeof magic];
    in.readBytes(head, sizeof head);
    if (std::memcmp(head, magic, sizeof magic) != 0)
        throw plat::Exception("Bad font data");
    ascent = in.readU16();
    height = ascent + in.readU16();
    const unsigned extraPages = in.readU16();
    if (extraPages > maxExtraPages)
        throw plat::Exception("Bad font data");
    pages.reserve(extraPages + 2);
    pages.push_back(0);
    for (unsigned i = 0; i < extraPages; ++i)
        pages.push_back(in.readU32());
    readGlyphs(in);
    pages.push_back(endOfPages);
    readBitmap(in);
}

FontZefBm::~FontZefBm() = default;

void FontZefBm::setFallback(std::unique_ptr<Fallback> fallback_) { fallback = std::move(fallback_); }

void FontZefBm::readGlyphs(rdr::InStream& in) {
    uint8_t page[pageSize * recordBytes];
    for (size_t i = 0; i < pages.size(); ++i) { // memory grows with the pages that are there
        in.readBytes(page, sizeof page);
        for (const uint8_t* p = page; p != page + sizeof page; p += recordBytes)
            glyphs.push_back({u32(p), static_cast<uint16_t>(u16(p + 4)), static_cast<int8_t>(p[6]),
                              static_cast<int8_t>(p[7]), p[8], p[9]});
    }
}

void FontZefBm::readBitmap(rdr::InStream& in) {
    uint64_t size = 0;
    for (const Glyph& glyph : glyphs)
        size = std::max<uint64_t>(size, glyph.offset + uint64_t{(glyph.width + 7U) / 8} * glyph.height);
    if (size > maxBitmapBytes)
        throw plat::Exception("Bad font data");
    bitmap.resize(size);
    in.readBytes(bitmap.data(), bitmap.size());
}

const FontZefBm::Glyph& FontZefBm::glyphFor(int codepoint) const {
    const auto code = static_cast<uint32_t>(codepoint);
    if (codepoint < 0)
        return glyphs[0];
    if (code < pageSize)
        return glyphs[code];
    const uint32_t base = code & ~127U;
    for (size_t i = 1; pages[i] != endOfPages; ++i)
        if (pages[i] == base)
            return glyphs[i * pageSize + (code & 127)];
    return glyphs[0];
}

bool FontZefBm::hasGlyph(int codepoint) const {
    const Glyph& glyph = glyphFor(codepoint);
    return (codepoint == 0 || &glyph != &glyphs[0]) && (glyph.advance || glyph.width);
}

int FontZefBm::leftOf(int codepoint) const { return glyphFor(codepoint).left; }

bool FontZefBm::useFallback(int codepoint, const Glyph& glyph, int* width) const {
    if (!fallback || isControl(codepoint))
        return false;
    const bool lacking = &glyph == &glyphs[0] || (glyph.advance == 0 && glyph.width == 0);
    return lacking && fallback->charWidth(codepoint, width);
}

void FontZefBm::blit(rfb::WritablePixelBuffer& buffer, const Glyph& glyph, rfb::Point position, uint32_t pixel) const {
    const rfb::Rect r = rfb::Rect::xywh(position.x + glyph.left, position.y + glyph.top, glyph.width, glyph.height);
    if (r.overlaps(buffer.getRect()))
        rfb::monoBlit(buffer, r, pixel, bitmap.data() + glyph.offset, (glyph.width + 7) / 8);
}

int FontZefBm::drawGlyphScaled(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel,
                               int scale) const {
    const Glyph& glyph = glyphFor(codepoint);
    if (scale == 1) {
        blit(buffer, glyph, position, pixel);
        return glyph.advance;
    }
    uint8_t row[2 * 32]; // a width of 255 takes 32 bytes
    const int rowBytes = (glyph.width + 7) / 8;
    const rfb::Point corner(position.x + 2 * glyph.left, position.y + 2 * glyph.top);
    for (int y = 0; y < glyph.height; ++y) {
        doubleRow(bitmap.data() + glyph.offset + y * rowBytes, rowBytes, row);
        rfb::monoBlit(buffer, rfb::Rect::xywh(corner.x, corner.y + 2 * y, 2 * glyph.width, 2), pixel, row, 0);
    }
    return 2 * glyph.advance;
}

int FontZefBm::drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel) const {
    const Glyph& glyph = glyphFor(codepoint);
    int width;
    if (useFallback(codepoint, glyph, &width)) {
        fallback->drawGlyph(buffer, codepoint, position, pixel);
        return width;
    }
    blit(buffer, glyph, position, pixel);
    return glyph.advance;
}

int FontZefBm::drawString(rfb::WritablePixelBuffer& buffer, const char* text, rfb::Point position, uint32_t pixel,
                          const char* end) const {
    if (TextLine::isNeeded(text, end)) {
        const TextLine line(*this, text, end);
        line.draw(buffer, position, pixel);
        return line.width();
    }
    const int start = position.x;
    int code;
    while (nextChar(&text, end, &code))
        position.x += drawGlyph(buffer, code, position, pixel);
    return position.x - start;
}

int FontZefBm::charWidth(int codepoint) const {
    const Glyph& glyph = glyphFor(codepoint);
    int width;
    return useFallback(codepoint, glyph, &width) ? width : glyph.advance;
}

int FontZefBm::stringWidth(const char* text, const char* end) const {
    const char* const start = text;
    int width = 0;
    int code;
    while (nextChar(&text, end, &code)) {
        if (needsLayout(code))
            return TextLine(*this, start, end).width();
        width += charWidth(code);
    }
    return width;
}

const char* FontZefBm::stringAt(int px, const char* text, const char* end) const {
    const char* const start = text;
    const char* fits = text;
    int code;
    while (nextChar(&text, end, &code)) {
        if (needsLayout(code))
            return start + TextLine(*this, start, end).fitting(px);
        px -= charWidth(code);
        if (px < 0)
            break;
        fits = text;
    }
    return fits;
}

const char* FontZefBm::nearestBoundary(int px, const char* text, const char* end) const {
    if (TextLine::isNeeded(text, end))
        return text + TextLine(*this, text, end).nearest(px);
    const char* before = text;
    int code;
    while (nextChar(&text, end, &code)) {
        const int advance = charWidth(code);
        if (px < advance)
            return 2 * px > advance ? text : before;
        px -= advance;
        before = text;
    }
    return before;
}

int FontZefBm::markMiddle(int codepoint) const {
    int width;
    return useFallback(codepoint, glyphFor(codepoint), &width) ? fallback->markMiddle(codepoint) : 0;
}

} // namespace hxutil
