#include "hxutil/drawText.h"

#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/textChars.h"
#include "plat/DString.h"
#include "rfb/PixelBuffer.h"

#include <algorithm>
#include <string_view>

namespace hxutil {
namespace {

constexpr int ellipsis = 0x2026;

bool isBlank(int code) { return code == ' ' || code == '\t'; }

/// How far each character of a text moves the pen, in the shape that its neighbours give it.
class Advances {
public:
    Advances(const Font& font_, std::string_view text_)
        : font(font_), text(text_), plain(!TextLine::isNeeded(text_.data(), text_.data() + text_.size())) {}

    int of(const char* start, int code) {
        if (plain)
            return font.charWidth(code);
        const Place& place = at(start);
        return place.joined ? 0 : place.advance;
    }

    /// False where no line may end: before a mark, within a sign.
    bool maySplit(const char* start) { return plain || !at(start).joined; }

private:
    struct Place {
        int advance = 0;
        bool joined = true;
    };

    const Place& at(const char* start) {
        const auto pos = static_cast<size_t>(start - text.data());
        if (pos < from || pos >= from + places.size())
            loadParagraph(pos);
        return places[pos - from];
    }

    void loadParagraph(size_t pos) {
        from = pos; // the walk comes to each paragraph at its start
        const size_t newline = text.find('\n', pos);
        const size_t len = (newline == std::string_view::npos ? text.size() : newline + 1) - pos;
        places.assign(len, Place());
        const TextLine line(font, text.data() + pos, text.data() + pos + len);
        size_t base = 0; // of the sign
        for (const TextLine::Cluster& cluster : line.getClusters()) {
            base = cluster.joined ? base : cluster.start;
            places[cluster.start].joined = cluster.joined;
            places[base].advance += cluster.advance;
        }
        if (!line.getClusters().empty())
            return;
        const char* next = text.data() + pos;
        int code;
        for (const char* p = next; nextChar(&next, text.data() + pos + len, &code); p = next)
            places[static_cast<size_t>(p - text.data()) - pos] = {font.charWidth(code), false};
    }

    const Font& font;
    std::string_view text;
    bool plain;
    size_t from = 0;
    std::vector<Place> places; // by byte
};

/// Collects the lines of a wrapped text.
class Wrapper {
public:
    Wrapper(const Font& font, const char* text_, int widthLimit, std::vector<plat::String>* out_, bool keepNewlines_,
            bool breakAnywhere_)
        : text(text_), advances(font, text_), limit(widthLimit), out(out_), keepNewlines(keepNewlines_),
          breakAnywhere(breakAnywhere_) {}

    int wrap() {
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
            width += advances.of(start, code);
            return;
        }
        if (afterBlank) {
            breakAt = start;
            inkAtBreak = ink;
            widthAtBreak = width;
            afterBlank = false;
        }
        const int advance = advances.of(start, code);
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
            } else if (breakAnywhere && advances.maySplit(start)) {
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

    const char* text;
    Advances advances;
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

size_t lengthWithoutEnd(std::string_view line) {
    const size_t last = line.find_last_not_of(" \t\r\n");
    return last == std::string_view::npos ? 0 : last + 1;
}

} // namespace

plat::String elide(const Font& font, int* width, const char* text, const char* end) {
    const int full = font.stringWidth(text, end);
    if (full <= *width) {
        *width = full;
        return plat::String();
    }
    const int dots = font.charWidth(ellipsis);
    int room = *width;
    for (;;) {
        const char* cut = font.stringAt(std::max(0, room - dots), text, end);
        plat::DString shown;
        shown.append(text, static_cast<int>(cut - text)).appendChars(ellipsis, 1);
        const int used = font.stringWidth(shown.c_str());
        // A letter that lost its neighbour may have become wider. What fits where no room is left has no width.
        if (used > *width && cut != text && room > dots) {
            room -= std::max(1, used - *width);
            continue;
        }
        *width = used;
        return shown.take();
    }
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
    return Wrapper(font, text ? text : "", width, out, keepNewlines, breakAnywhere).wrap();
}

rfb::Rect drawWrapped(const Font& font, rfb::WritablePixelBuffer& buffer, const char* text, const rfb::Rect& rect,
                      uint32_t pixel, int hAlign, int vAlign) {
    std::vector<plat::String> lines;
    wrapText(font, text, rect.width(), &lines, /*keepNewlines=*/true);
    const int blockHeight = static_cast<int>(lines.size()) * font.height;
    int y = rect.tl.y + (rect.height() - blockHeight) * vAlign / 2;
    rfb::Rect drawn;
    size_t start = 0;
    for (const plat::String& part : lines) {
        const TextLine line(font, text ? text : "", start, lengthWithoutEnd(part.view()));
        const int width = line.width();
        const int x = rect.tl.x + (rect.width() - width) * hAlign / 2;
        line.draw(buffer, {x, y}, pixel);
        drawn = drawn.unionBoundary(rfb::Rect::xywh(x, y, width, font.height));
        y += font.height;
        start += part.view().size();
    }
    return drawn;
}

} // namespace hxutil
