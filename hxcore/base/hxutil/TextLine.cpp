#include "hxutil/TextLine.h"

#include "hxutil/Font.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace hxutil {
namespace {

constexpr int dottedCircle = 0x25cc;      // stands in for the base that a mark lacks
constexpr int fill = 0xfeff;              // the first half of a ligature
constexpr unsigned char firstLead = 0xcc; // of U+0300, from where on characters may need layout

std::string_view upToNul(const char* text, const char* end) {
    if (!text)
        return {};
    const size_t len = end ? strnlen(text, static_cast<size_t>(end - text)) : std::strlen(text);
    return {text, len};
}

/// The first byte of `text` that is no ASCII, or its length.
size_t asciiLength(std::string_view text) {
    size_t at = 0;
    for (uint64_t word; at + sizeof word <= text.size(); at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if (word & 0x8080808080808080U)
            break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80)
        ++at;
    return at;
}

bool isNeededFor(std::string_view text) {
    const char* const end = text.data() + text.size();
    for (const char* pos = text.data() + asciiLength(text); pos < end;) {
        if (static_cast<unsigned char>(*pos) < firstLead) {
            ++pos;
            continue;
        }
        int code;
        if (!nextChar(&pos, end, &code))
            return false;
        if (needsLayout(code))
            return true;
    }
    return false;
}

} // namespace

void Paragraphs::set(std::string_view text) {
    parts.clear();
    for (size_t start = 0;;) {
        const size_t newline = text.find('\n', start);
        const std::string_view paragraph = text.substr(start, newline - start);
        parts.push_back({start, isNeededFor(paragraph) ? Paragraph::of(paragraph) : nullptr});
        if (newline == std::string_view::npos)
            return;
        start = newline + 1;
    }
}

const Paragraphs::Part& Paragraphs::at(size_t pos) const {
    const auto behind = std::upper_bound(parts.begin(), parts.end(), pos,
                                         [](size_t value, const Part& part) { return value < part.start; });
    return *std::prev(behind);
}

bool TextLine::isNeeded(const char* text, const char* end) { return isNeededFor(upToNul(text, end)); }

TextLine::TextLine(const Font& font_, const char* text_, const char* end) : font(font_), text(text_) {
    const std::string_view whole = upToNul(text_, end);
    lenBytes = whole.size();
    if (isNeededFor(whole))
        arrange(*Paragraph::of(whole), 0, /*wholeLine=*/true);
}

TextLine::TextLine(const Font& font_, std::string_view text_, size_t start, size_t lenBytes_, bool wholeLine)
    : font(font_) {
    start = std::min(start, text_.size());
    lenBytes = std::min(lenBytes_, text_.size() - start);
    text = text_.data() + start;
    const size_t newline = start == 0 ? std::string_view::npos : text_.rfind('\n', start - 1);
    const size_t from = newline == std::string_view::npos ? 0 : newline + 1;
    const std::string_view paragraph = text_.substr(from, text_.find('\n', start + lenBytes) - from);
    if (isNeededFor(paragraph))
        arrange(*Paragraph::of(paragraph), start - from, wholeLine);
}

TextLine::TextLine(const Font& font_, std::string_view text_, const Paragraphs& paragraphs, size_t start,
                   size_t lenBytes_, bool wholeLine)
    : font(font_) {
    start = std::min(start, text_.size());
    lenBytes = std::min(lenBytes_, text_.size() - start);
    text = text_.data() + start;
    const Paragraphs::Part& part = paragraphs.at(start);
    if (part.paragraph)
        arrange(*part.paragraph, start - part.start, wholeLine);
}

void TextLine::arrange(const Paragraph& whole, size_t start, bool wholeLine) {
    plain = false;
    rightToLeft = whole.rightToLeft;
    baseLevel = rightToLeft ? 1 : 0;
    const auto& units = whole.units;
    const auto before = [](const Paragraph::Unit& unit, size_t pos) { return unit.start < pos; };
    auto unit = std::lower_bound(units.begin(), units.end(), start, before);
    const auto last = std::lower_bound(unit, units.end(), start + lenBytes, before);
    clusters.reserve(static_cast<size_t>(last - unit));
    for (; unit != last; ++unit)
        addUnit(*unit, start);
    // Rule L1: blanks at the end of a line stand at its end.
    for (size_t i = clusters.size(); wholeLine && i > 0 && clusters[i - 1].blank; --i)
        clusters[i - 1].level = baseLevel;
    order();
    findEdges();
}

void TextLine::addUnit(const Paragraph::Unit& unit, size_t start) {
    const bool hidden = isHidden(unit.code);
    const bool mark = !hidden && isMark(unit.code);
    if (!unit.extends || clusters.empty()) {
        Cluster cluster{unit.start - start, 0, 0, unit.level, unit.blank, /*joined=*/false};
        if (!hidden) {
            const int code = mark ? dottedCircle : unit.code;
            cluster.advance = font.charWidth(code);
            glyphs.push_back({code, clusters.size(), 0});
        }
        if (unit.ligature && !clusters.empty()) { // each letter has a half of it
            const int half = cluster.advance / 2;
            clusters.back().advance = cluster.advance - half;
            cluster.advance = half;
            cluster.joined = true;
        }
        clusters.push_back(cluster);
    }
    if (mark)
        glyphs.push_back({unit.code, clusters.size() - 1, clusters.back().advance / 2 - font.markMiddle(unit.code)});
}

/// Rule L2: from the deepest level to the lowest odd one, what lies at it or deeper is reversed.
void TextLine::order() {
    visual.resize(clusters.size());
    std::iota(visual.begin(), visual.end(), size_t{0});
    uint8_t deepest = 0;
    for (const Cluster& cluster : clusters)
        deepest = std::max(deepest, cluster.level);
    for (uint8_t level = deepest; level > 0; --level) {
        const auto isDeep = [&](size_t index) { return clusters[index].level >= level; };
        for (auto from = visual.begin(); from != visual.end();) {
            from = std::find_if(from, visual.end(), isDeep);
            const auto to = std::find_if_not(from, visual.end(), isDeep);
            std::reverse(from, to);
            from = to;
        }
    }
    for (const size_t index : visual) {
        clusters[index].x = total;
        total += clusters[index].advance;
    }
}

void TextLine::findEdges() {
    const size_t count = clusters.size();
    std::vector<size_t> rank(count);
    for (size_t i = 0; i < count; ++i)
        rank[visual[i]] = i;
    edgeOf.resize(count + 1);
    boundaryOf.resize(count + 1);
    for (size_t i = 0; i <= count; ++i) {
        const uint8_t before = i > 0 ? clusters[i - 1].level : baseLevel;
        const uint8_t behind = i < count ? clusters[i].level : baseLevel;
        size_t edge;
        if (before <= behind)
            edge = i == 0 ? (rightToLeft ? count : 0) : rank[i - 1] + (before % 2 ? 0 : 1);
        else
            edge = i == count ? (rightToLeft ? 0 : count) : rank[i] + (behind % 2 ? 1 : 0);
        edgeOf[i] = edge;
        boundaryOf[edge] = i;
    }
}

int TextLine::edgeX(size_t edge) const { return edge < visual.size() ? clusters[visual[edge]].x : total; }

size_t TextLine::boundaryAt(size_t pos) const {
    if (pos >= lenBytes)
        return clusters.size();
    const auto behind = std::upper_bound(clusters.begin(), clusters.end(), pos,
                                         [](size_t value, const Cluster& cluster) { return value < cluster.start; });
    return behind == clusters.begin() ? 0 : static_cast<size_t>(behind - clusters.begin()) - 1;
}

int TextLine::width() const { return plain ? font.stringWidth(text, text + lenBytes) : total; }

void TextLine::draw(rfb::WritablePixelBuffer& buffer, rfb::Point position, uint32_t pixel) const {
    if (plain) {
        font.drawString(buffer, text, position, pixel, text + lenBytes);
        return;
    }
    for (const Glyph& glyph : glyphs) {
        if (glyph.code != fill)
            font.drawGlyph(buffer, glyph.code, {position.x + clusters[glyph.cluster].x + glyph.dx, position.y}, pixel);
    }
}

void TextLine::drawPart(rfb::FullFramePixelBuffer& buffer, rfb::Point position, uint32_t pixel, uint32_t background,
                        size_t from, size_t to) const {
    for (const Span& span : spans(from, to)) {
        const rfb::Rect place = rfb::Rect::xywh(position.x + span.from, position.y, span.to - span.from, font.height);
        rfb::fillRect(buffer, place, background);
        if (plain) {
            font.drawString(buffer, text + from, place.tl, pixel, text + to);
            return;
        }
        // Half of a sign may be in it.
        const rfb::Rect part = place.intersect(buffer.getRect());
        if (part.isEmpty())
            continue;
        rfb::FullFramePixelBuffer view(buffer, part, part.tl);
        draw(view, position, pixel);
    }
}

size_t TextLine::fitting(int px) const {
    if (plain)
        return static_cast<size_t>(font.stringAt(px, text, text + lenBytes) - text);
    size_t fits = 0;
    for (size_t i = 0; i < clusters.size(); ++i) {
        px -= clusters[i].advance;
        if (px < 0)
            break;
        if (i + 1 == clusters.size() || !clusters[i + 1].joined)
            fits = placeOf(i + 1);
    }
    return fits;
}

size_t TextLine::nearest(int px) const {
    if (plain)
        return static_cast<size_t>(font.nearestBoundary(px, text, text + lenBytes) - text);
    size_t edge = 0;
    while (edge < visual.size()) {
        const Cluster& cluster = clusters[visual[edge]];
        if (px < cluster.x + cluster.advance) {
            edge += 2 * (px - cluster.x) > cluster.advance ? 1 : 0;
            break;
        }
        ++edge;
    }
    return placeOf(boundaryOf[edge]);
}

int TextLine::caretX(size_t pos) const {
    if (plain)
        return font.stringWidth(text, text + std::min(pos, lenBytes));
    return edgeX(edgeOf[boundaryAt(pos)]);
}

std::vector<TextLine::Span> TextLine::spans(size_t from, size_t to) const {
    std::vector<Span> result;
    if (plain) {
        const int left = caretX(from);
        const int right = caretX(to);
        if (left < right)
            result.push_back({left, right});
        return result;
    }
    for (const size_t index : visual) {
        const Cluster& cluster = clusters[index];
        if (cluster.start < from || cluster.start >= to || cluster.advance == 0)
            continue;
        if (!result.empty() && result.back().to == cluster.x)
            result.back().to += cluster.advance;
        else
            result.push_back({cluster.x, cluster.x + cluster.advance});
    }
    return result;
}

size_t TextLine::nextPlace(size_t pos) const {
    if (pos >= lenBytes)
        return lenBytes;
    if (!plain)
        return placeOf(boundaryAt(pos) + 1);
    const char* p = text + pos;
    uint32_t ignored = 0;
    plat::utf8::decode(&p, text + lenBytes, &ignored);
    return static_cast<size_t>(p - text);
}

size_t TextLine::previousPlace(size_t pos) const {
    if (pos == 0)
        return 0;
    if (!plain)
        return placeOf(boundaryAt(pos - 1));
    const char* p = text + std::min(pos, lenBytes);
    plat::utf8::stepBack(&p, text);
    return static_cast<size_t>(p - text);
}

size_t TextLine::placeBeside(size_t pos, bool right) const {
    if (plain)
        return right ? nextPlace(pos) : previousPlace(pos);
    size_t edge = edgeOf[boundaryAt(pos)];
    if (right ? edge == clusters.size() : edge == 0)
        return pos;
    edge = right ? edge + 1 : edge - 1;
    return placeOf(boundaryOf[edge]);
}

} // namespace hxutil
