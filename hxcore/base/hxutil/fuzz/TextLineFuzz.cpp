// Lines of text in every script: each character has a place of its own, and so has the caret before and behind it.
#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/drawText.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "rfb/PixelBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

void require(bool condition) {
    if (!condition)
        abort();
}

class PlainFont : public hxutil::Font {
public:
    PlainFont() {
        height = 10;
        ascent = 8;
    }
    int drawGlyph(rfb::WritablePixelBuffer&, int code, rfb::Point, uint32_t) const override { return charWidth(code); }
    int drawString(rfb::WritablePixelBuffer&, const char* text, rfb::Point, uint32_t, const char* end) const override {
        return stringWidth(text, end);
    }
    int charWidth(int code) const override {
        return code == '\n' || hxutil::isMark(code) || hxutil::isHidden(code) ? 0 : 3 + (code & 7);
    }
    int stringWidth(const char* text, const char* end) const override {
        if (hxutil::TextLine::isNeeded(text, end))
            return hxutil::TextLine(*this, text, end).width();
        int code, width = 0;
        while (hxutil::nextChar(&text, end, &code))
            width += charWidth(code);
        return width;
    }
    const char* stringAt(int px, const char* text, const char* end) const override {
        if (hxutil::TextLine::isNeeded(text, end))
            return text + hxutil::TextLine(*this, text, end).fitting(px);
        int code;
        for (const char* next = text; hxutil::nextChar(&next, end, &code) && (px -= charWidth(code)) >= 0;)
            text = next;
        return text;
    }
    const char* nearestBoundary(int px, const char* text, const char* end) const override {
        return stringAt(px, text, end);
    }
    int markMiddle(int) const override { return -4; }
};

void check(const hxutil::TextLine& line, size_t lenBytes) {
    const auto& clusters = line.getClusters();
    if (clusters.empty())
        return;
    std::vector<std::pair<int, int>> places;
    for (size_t i = 0; i < clusters.size(); ++i) {
        require(clusters[i].start < lenBytes &&
                (i == 0 ? clusters[i].start == 0 : clusters[i].start > clusters[i - 1].start));
        if (clusters[i].advance > 0)
            places.emplace_back(clusters[i].x, clusters[i].advance);
    }
    std::sort(places.begin(), places.end());
    int x = 0;
    for (const auto& [at, advance] : places) {
        require(at == x);
        x += advance;
    }
    require(x == line.width() && line.fitting(x) == lenBytes);
    // From the left edge to the right, past every place of the caret once.
    size_t pos = 0;
    for (size_t i = 0; i <= clusters.size(); ++i)
        pos = line.placeBeside(pos, /*right=*/false);
    std::set<size_t> seen{pos};
    x = line.caretX(pos);
    require(x == 0);
    for (size_t i = 0; i < clusters.size(); ++i) {
        const size_t next = line.placeBeside(pos, /*right=*/true);
        require(next <= lenBytes && seen.insert(next).second && line.caretX(next) >= x);
        require(line.placeBeside(next, /*right=*/false) == pos);
        x = line.caretX(next);
        pos = next;
    }
    require(x == line.width() && line.placeBeside(pos, /*right=*/true) == pos);
    for (const int px : {-5, 0, x / 3, x / 2, x, x + 5})
        require(seen.count(line.nearest(px)) == 1);
    const size_t middle = line.nearest(x / 2);
    int selected = 0;
    for (const size_t from : {size_t{0}, middle})
        for (const auto& span : line.spans(from, from == middle ? lenBytes : middle))
            selected += span.to - span.from;
    require(middle == 0 ? selected == 2 * x : selected == x);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3 || size > 4096)
        return 0;
    const PlainFont font;
    const std::string text(reinterpret_cast<const char*>(data + 2), size - 2);
    const hxutil::TextLine whole(font, text.c_str());
    check(whole, std::string(text.c_str()).size());
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 8, 8);
    whole.draw(pb, {0, 0}, 1);
    whole.drawPart(pb, {0, 0}, 1, 2, whole.nextPlace(0), size);

    const std::string sane(text.c_str()); // a line never holds a NUL
    const size_t start = sane.empty() ? 0 : data[0] * sane.size() / 256;
    const size_t len = data[1] * (sane.size() - start) / 255;
    const hxutil::TextLine cut(font, sane, start, len, /*wholeLine=*/data[0] % 2 == 0);
    cut.draw(pb, {0, 0}, 1);

    std::vector<plat::String> lines;
    hxutil::wrapText(font, sane.c_str(), 5 + data[0], &lines, /*keepNewlines=*/true, /*breakAnywhere=*/true);
    std::string joined;
    for (const plat::String& line : lines)
        joined += line.c_str();
    require(joined == sane);
    int width = data[1];
    hxutil::elide(font, &width, sane.c_str());
    return 0;
}
