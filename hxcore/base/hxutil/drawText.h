// Text in rectangles: cut short, aligned, wrapped.
#pragma once

#include "plat/String.h"
#include "rfb/Rect.h"

#include <cstdint>
#include <vector>

namespace rfb {
class WritablePixelBuffer;
}

namespace hxutil {

class Font;

/// Alignment, in halves of the free space.
enum Align { AlignStart = 0, AlignCentre = 1, AlignEnd = 2 };

/// Null if the text fits into `*width`, else the part that fits, with "…" added. Sets `*width` to what is shown.
plat::String elide(const Font& font, int* width, const char* text, const char* end = nullptr);

/// One line, cut short to the width of `rect`.
void drawAligned(const Font& font, rfb::WritablePixelBuffer& buffer, const char* text, const rfb::Rect& rect,
                 uint32_t pixel, int hAlign, int vAlign, const char* end = nullptr);

/// Cuts text into lines of at most `width` pixels (below 1: without limit) at blanks and newlines; with
/// `breakAnywhere` also within words that do not fit. Gives the widest line's width. `out` may be null.
/// Joined together the lines are the text, less its newlines unless `keepNewlines`.
int wrapText(const Font& font, const char* text, int width, std::vector<plat::String>* out, bool keepNewlines = false,
             bool breakAnywhere = false);

/// Wrapped to the width of `rect`. Gives the rectangle around what was drawn.
rfb::Rect drawWrapped(const Font& font, rfb::WritablePixelBuffer& buffer, const char* text, const rfb::Rect& rect,
                      uint32_t pixel, int hAlign, int vAlign);

} // namespace hxutil
