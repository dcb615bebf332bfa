#include "hxutil/FontPieces.h"

#include "hxutil/getFont.h"
#include "hxutil/scripts.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace hxutil {
namespace {

plat::LogSrc log("Font");

constexpr int pieceAscent = 14;
constexpr int pieceHeight = 16;

struct Piece {
    bool tried = false;
    std::unique_ptr<FontZefBm> font; // null also if there is none
};

/// Null for a character that no piece has.
const FontZefBm* pieceFor(int codepoint) {
    static std::array<Piece, 16> pieces; // for the life of the process, as all fonts
    if (codepoint < 0 || codepoint > 0xffff)
        return nullptr;
    Piece& piece = pieces[static_cast<size_t>(codepoint >> 12)];
    if (!piece.tried) {
        piece.tried = true;
        char name[16];
        std::snprintf(name, sizeof name, "unifont%x", static_cast<unsigned>(codepoint >> 12));
        try {
            piece.font = unpackFont(name);
        } catch (const plat::Exception& e) {
            log.debug("%s", e.what());
        }
    }
    return piece.font && piece.font->hasGlyph(codepoint) ? piece.font.get() : nullptr;
}

/// Half of the free space, rounded down.
int centred(int space) { return space >= 0 ? space / 2 : -((1 - space) / 2); }

} // namespace

// On the host's baseline where that keeps ideographs, which fill their cell, inside the line; else in the middle.
FontPieces::FontPieces(int hostHeight, int hostAscent)
    : scale(hostHeight >= 30 ? 2 : 1),
      top(std::max(hostAscent - scale * pieceAscent, centred(hostHeight - scale * pieceHeight))) {}

bool FontPieces::charWidth(int codepoint, int* width) const {
    if (isHidden(codepoint)) { // the pieces have pictures of these
        *width = 0;
        return true;
    }
    const FontZefBm* font = pieceFor(codepoint);
    if (font)
        *width = scale * font->charWidth(codepoint);
    return font != nullptr;
}

void FontPieces::drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel) const {
    const FontZefBm* font = isHidden(codepoint) ? nullptr : pieceFor(codepoint);
    if (font)
        font->drawGlyphScaled(buffer, codepoint, {position.x, position.y + top}, pixel, scale);
}

// The pieces' cells are 8 or 16 wide, and a mark stands behind the cell that it was drawn in.
int FontPieces::markMiddle(int codepoint) const {
    const FontZefBm* font = pieceFor(codepoint);
    return font ? scale * (font->leftOf(codepoint) < -8 ? -8 : -4) : 0;
}

} // namespace hxutil
