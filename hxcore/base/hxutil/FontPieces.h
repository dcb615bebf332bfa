// The characters of all scripts, for fonts that lack them.
#pragma once

#include "hxutil/FontZefBm.h"
#include "plat/NonCopyable.h"

namespace hxutil {

/// Draws characters of the Basic Multilingual Plane from built-in fonts of 4096 codes each, "unifont0.gz" to
/// "unifontf.gz", 16 pixels high. A piece is unpacked when one of its characters is first met.
class FontPieces : public FontZefBm::Fallback, private plat::NonCopyable {
public:
    FontPieces(int hostHeight, int hostAscent); ///< of the font that is helped out; from 30 pixels on drawn doubled

    // FontZefBm::Fallback
    bool charWidth(int codepoint, int* width) const override;
    void drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position, uint32_t pixel) const override;
    int markMiddle(int codepoint) const override;

private:
    int scale;
    int top; // of the piece's cell below the host's
};

} // namespace hxutil
