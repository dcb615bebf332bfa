#include "hxutil/drawText.h"

#include "hxutil/Font.h"
#include "hxutil/textChars.h"
#include "plat/DString.h"
#include "rfb/PixelBuffer.h"

#include <algorithm>
#include <cstring>

namespace hxutil {
namespace {

constexpr int ellipsis = 0x2026;

bool isBlank(int code) { return code == ' ' || code == '\t'; }

/// Collects the lines of a wrapped text.
class Wrapper {
public:
    Wrapper(const Font& font_, int widthLimit, std::vector<plat::String>* out_, bool keepNewlines_, bool breakAnywhere_)
        : font(font_), limit(widthLimit), out(out_), keepNewlines(keepNewlines_), breakAnywhere(breakAnywhere_) {}

    int wrap(const char* text) {
        const char* pos = lineStart = text;
        int code;
        for (const char* start = pos; nextChar(&pos, nullptr, &code); start = pos)
            add(start, pos, code);
        endLine(pos, pos);
        return widest;
    }

private:
    void add(const char* start, const char* next, int code) {
        if (code == '\n') {
            endLine(keepNewlines ? next : start, next);
            return;
        }
        if (isBlank(code) || code == '\r') { // may hang over the edge
            afterBlank = true;
            width += font.charWidth(code);
            return;
        }
        if (afterBlank) {
            breakAt = start;
            inkAtBreak = ink;
            widthAtBreak = width;
            afterBlank = false;
        }
        const int advance = font.charWidth(code);
        makeRoom(start, advance);
        width += advance;
        ink = width;
    }

    void makeRoom(const char* start, int advance) {
        while (limit > 0 && width + advance > limit && start != lineStart) {
            if (breakAt) {
                const int rest = width - widthAtBreak;
                ink = inkAtBreak;
                endLine(breakAt, breakAt);
                width = ink = rest;
            } else if (breakAnywhere) {
                endLine(start, start);
            } else {
                return;
            }
        }
    }

    void endLine(const char* end, const char* next) {
        if (out)
            out->emplace_back(lineStart, static_cast<int>(end - lineStart));
        widest = std::max(widest, ink);
        lineStart = next;
        breakAt = nullptr;
        afterBlank = false;
        width = ink = 0;
    }

    const Font& font;
    int limit;
    std::vector<plat::String>* out;
    bool keepNewlines;
    bool breakAnywhere;

    const char* lineStart = nullptr;
    const char* breakAt = nullptr; // where the line may be cut; null for nowhere
    bool afterBlank = false;
    int width = 0; // of the line so far, and without the blanks at its end
    int ink = 0;
    int widthAtBreak = 0;
    int inkAtBreak = 0;
    int widest = 0;
};

int widthWithoutEnd(const Font& font, const plat::String& line) {
    const char* end = line.c_str() + line.len();
    while (end != line.c_str() && std::strchr(" \t\r\n", end[-1]))
        --end;
    return font.stringWidth(line.c_str(), end);
}

} // namespace

plat::String elide(const Font& font, int* width, const char* text, const char* end) {
    const int full = font.stringWidth(text, end);
    if (full <= *width) {
        *width = full;
        return plat::String();
    }
    const int dots = font.charWidth(ellipsis);
    const char* cut = font.stringAt(std::max(0, *width - dots), text, end);
    *width = font.stringWidth(text, cut) + dots;
    plat::DString shown;
    shown.append(text, static_cast<int>(cut - text)).appendChars(ellipsis, 1);
    return shown.take();
}

void drawAligned(const Font& font, rfb::WritablePixelBuffer& buffer, const char* text, const rfb::Rect& rect,
                 uint32_t pixel, int hAlign, int vAlign, const char* end) {
    int width = rect.width();
    const plat::String cut = elide(font, &width, text, end);
    const rfb::Point position(rect.tl.x + hAlign * (rect.width() - width) / 2,
                              rect.tl.y + vAlign * (rect.height() - font.height) / 2);
    if (cut.isNull())
        font.drawString(buffer, text, position, pixel, end);
    else
        font.drawString(buffer, cut.c_str(), position, pixel);
}

int wrapText(const Font& font, const char* text, int width, std::vector<plat::String>* out, bool keepNewlines,
             bool breakAnywhere) {
    return Wrapper(font, width, out, keepNewlines, breakAnywhere).wrap(text ? text : "");
}

rfb::Rect drawWrapped(const Font& font, rfb::WritablePixelBuffer& buffer, const char* text, const rfb::Rect& rect,
                      uint32_t pixel, int hAlign, int vAlign) {
    std::vector<plat::String> lines;
    wrapText(font, text, rect.width(), &lines);
    const int blockHeight = static_cast<int>(lines.size()) * font.height;
    int y = rect.tl.y + (rect.height() - blockHeight) * vAlign / 2;
    rfb::Rect drawn;
    for (const plat::String& line : lines) {
        const int width = widthWithoutEnd(font, line);
        const int x = rect.tl.x + (rect.width() - width) * hAlign / 2;
        font.drawString(buffer, line.c_str(), {x, y}, pixel);
        drawn = drawn.unionBoundary(rfb::Rect::xywh(x, y, width, font.height));
        y += font.height;
    }
    return drawn;
}

} // namespace hxutil
