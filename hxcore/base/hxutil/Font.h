// Fonts to draw text with.
#pragma once

#include "plat/NonCopyable.h"
#include "rfb/Rect.h"

#include <cstdint>

namespace rfb {
class WritablePixelBuffer;
}

namespace hxutil {

/// A font of one size. Text is UTF-8; an `end` of null means up to the NUL, and a NUL before `end` ends it as well.
///
/// Strings stand as people read them: from right to left where the script does, Arabic joined, marks over their base
/// and without a width (see TextLine). What `stringAt` cuts off is the end of the text, wherever that stands.
///
/// Null text is empty text. Invalid bytes count as U+FFFD, one for each, save for a sequence that is cut off by `end`,
/// which is code -1. A code that the font lacks is drawn and measured as its glyph 0.
class Font : private plat::NonCopyable {
public:
    int height = 0; ///< of a line, in pixels
    int ascent = 0; ///< from a line's top to its baseline

    /// `position` is the top left of the line's cell. Gives the pen's advance.
    virtual int drawGlyph(rfb::WritablePixelBuffer& buffer, int codepoint, rfb::Point position,
                          uint32_t pixel) const = 0;

    /// Gives the width drawn.
    virtual int drawString(rfb::WritablePixelBuffer& buffer, const char* text, rfb::Point position, uint32_t pixel,
                           const char* end = nullptr) const = 0;
    virtual ~Font() = default;
    virtual int charWidth(int codepoint) const = 0;
    virtual int stringWidth(const char* text, const char* end = nullptr) const = 0;

    /// The end of the longest part that fits into `px` pixels.
    virtual const char* stringAt(int px, const char* text, const char* end = nullptr) const = 0;

    /// The boundary nearest to `px`: beyond half of its advance a character counts as passed.
    virtual const char* nearestBoundary(int px, const char* text, const char* end = nullptr) const = 0;

    /// Where the middle of a mark lies, from the pen; a mark has no advance.
    virtual int markMiddle(int /*codepoint*/) const { return 0; }
};

} // namespace hxutil
