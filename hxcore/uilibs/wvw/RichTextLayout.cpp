#include "wvw/RichTextLayout.h"

#include "hxutil/Font.h"
#include "hxutil/getFont.h"
#include "hxutil/metrics.h"
#include "plat/Exception.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace wvw {

using plat::Markup;
using rfb::Point;
using rfb::Rect;

namespace {

/// `plain` so that it means itself in markup.
std::string escaped(const char* plain) {
    std::string out;
    for (const char* p = plain; *p; ++p) {
        if (*p == '&')
            out += "&amp;";
        else if (*p == '<')
            out += "&lt;";
        else if (*p == '>')
            out += "&gt;";
        else
            out += *p;
    }
    return out;
}

} // namespace

void RichTextLayout::layOut(const char* markup, const WStyle& style, int wrapWidth) {
    runs.clear();
    laidOut.clear();
    look = &style;
    textPos = 0;
    Markup::Layout layout(this, std::max(0, wrapWidth));
    try {
        text = Markup::strip(markup).c_str();
        Markup::ParserHtml::instance().layout(markup, &layout);
    } catch (const plat::Exception& e) {
        text = e.what();
        Markup::ParserHtml::instance().layout(escaped(e.what()).c_str(), &layout);
    }
    size = {layout.getWidth(), layout.getHeight()};
    look = nullptr;
    plain = !hxutil::TextLine::isNeeded(text.c_str());
    if (plain)
        return;
    paragraphs.set(text);
    arrangeLines();
}

hxutil::TextLine RichTextLayout::textLine(const Run& run) const {
    const auto len = static_cast<size_t>(run.text.len());
    if (plain || text.compare(run.start, len, run.text.c_str()) != 0)
        return hxutil::TextLine(*run.font, run.text.c_str());
    return hxutil::TextLine(*run.font, text, paragraphs, run.start, len, /*wholeLine=*/false);
}

/// Lines were filled in the order of the text; what stands in them goes where its direction wants it.
void RichTextLayout::arrangeLines() {
    std::vector<Run> arranged;
    const auto paragraphOf = [this](const Run& run) { return paragraphs.at(run.start).start; };
    size_t paragraph = 0; // its first run, arranged
    for (size_t first = 0; first < runs.size();) {
        size_t end = first;
        while (end < runs.size() && runs[end].line == runs[first].line)
            ++end;
        if (paragraph < arranged.size() && paragraphOf(arranged[paragraph]) != paragraphOf(runs[first]))
            paragraph = arranged.size();
        arrangeLine(first, end, arranged);
        first = end;
        const bool several = arranged[paragraph].line != arranged.back().line;
        if (several && textLine(arranged[paragraph]).isRightToLeft()) {
            for (size_t i = paragraph; i < arranged.size(); ++i)
                arranged[i].atEnd = true;
        }
    }
    runs = std::move(arranged);
    laidOut.clear();
    for (const Run& run : runs)
        laidOut.push_back(run.rect);
}

/// Cuts the runs of one line where the direction changes, and places the pieces.
void RichTextLayout::arrangeLine(size_t first, size_t end, std::vector<Run>& arranged) const {
    const size_t lineStart = runs[first].start;
    const size_t lineEnd = runs[end - 1].start + static_cast<size_t>(runs[end - 1].text.len());
    const hxutil::TextLine line(*runs[first].font, text, paragraphs, lineStart, lineEnd - lineStart,
                                /*wholeLine=*/true);
    const auto& clusters = line.getClusters();
    const auto levelAt = [&](size_t pos) {
        const auto behind = std::upper_bound(clusters.begin(), clusters.end(), pos - lineStart,
                                             [](size_t value, const auto& cluster) { return value < cluster.start; });
        return behind == clusters.begin() ? 0 : std::prev(behind)->level;
    };
    struct Placed {
        size_t run; // arranged
        int level;
    };
    std::vector<Placed> order;
    for (size_t i = first; i < end; ++i) {
        const Run& run = runs[i];
        const size_t runEnd = run.start + static_cast<size_t>(run.text.len());
        int spare = run.rect.width() - textLine(run).width(); // of a justified blank
        for (size_t from = run.start; from < runEnd;) {
            const int level = levelAt(from);
            size_t to = from + 1;
            while (to < runEnd && ((text[to] & 0xc0) == 0x80 || levelAt(to) == level))
                ++to;
            Run piece = run;
            piece.start = from;
            piece.text = plat::String(std::string_view(run.text.c_str()).substr(from - run.start, to - from));
            const int width = textLine(piece).width() + std::exchange(spare, 0);
            piece.rect = Rect::xywh(0, run.rect.tl.y, std::max(0, width), run.rect.height());
            order.push_back({arranged.size(), level});
            arranged.push_back(std::move(piece));
            from = to;
        }
    }
    int deepest = 0;
    for (const Placed& placed : order)
        deepest = std::max(deepest, placed.level);
    for (int level = deepest; level > 0; --level) {
        const auto isDeep = [&](const Placed& placed) { return placed.level >= level; };
        for (auto from = order.begin(); from != order.end();) {
            from = std::find_if(from, order.end(), isDeep);
            const auto to = std::find_if_not(from, order.end(), isDeep);
            std::reverse(from, to);
            from = to;
        }
    }
    int x = runs[first].rect.tl.x;
    for (const Placed& placed : order) {
        Rect& rect = arranged[placed.run].rect;
        rect = rect.translate({x, 0});
        x = rect.br.x;
    }
}

int RichTextLayout::textWidth(const Markup::Style& style, const char* start, int lenBytes) {
    return fontFor(style)->stringWidth(start, start + lenBytes);
}

int RichTextLayout::lineHeight(const Markup::Style& style) { return fontFor(style)->height; }

int RichTextLayout::paddingWidth(double units) {
    return hxutil::scaled(static_cast<int>(std::lround(std::clamp(units, 0.0, 10000.0))));
}

const hxutil::Font* RichTextLayout::fontFor(const Markup::Style& style) const {
    // Text without a size or weight of its own follows the widget.
    if (style.size == Markup::Style::defaultSize && style.weight == Markup::Style::defaultWeight)
        return look->font;
    return hxutil::getFont(style.size, style.weight);
}

rfb::Colour RichTextLayout::colourFor(const Markup::Style& style) const {
    const rfb::Colour own = style.link.isNull() ? look->text : colours::blue;
    return style.color.isEmpty() ? own : themeColour(style.color.get(), own);
}

size_t RichTextLayout::findInText(const std::string& piece) {
    // Only the blanks at which a line broke lie between one run and the next.
    const size_t found = text.find(piece, textPos);
    const size_t start = found == std::string::npos ? std::min(textPos, text.size()) : found;
    textPos = std::min(start + piece.size(), text.size());
    return start;
}

void RichTextLayout::fragment(const Markup::Layout::Fragment& f) {
    const std::string piece(f.text, static_cast<size_t>(f.lenBytes));
    Run run;
    run.font = fontFor(f.style);
    run.colour = colourFor(f.style);
    run.underline = f.href || (f.style.flags & Markup::Underline);
    run.text = plat::String(std::string_view(piece));
    run.link = f.href;
    run.start = findInText(piece);
    run.line = f.line;
    run.align = f.align == Markup::Center || f.align == Markup::Right ? f.align : 0;
    run.lineWidth = f.lineWidth;
    run.atEnd = false;
    run.rect = Rect::xywh(f.x, f.y, f.width, f.height);
    laidOut.push_back(run.rect);
    runs.push_back(std::move(run));
}

void RichTextLayout::place(const Point& widget, int margin, int hAlign, int vAlign) {
    const int top = std::max(0, widget.y - size.y) * vAlign / 2;
    for (size_t i = 0; i < runs.size(); ++i) {
        int align = runs[i].align ? runs[i].align : hAlign;
        if (align == 0 && runs[i].atEnd)
            align = 2;
        const int free = widget.x - 2 * margin - runs[i].lineWidth;
        runs[i].rect = laidOut[i].translate({margin + free * align / 2, top});
    }
}

bool RichTextLayout::sameLink(int a, int b) const {
    if (a < 0 || b < 0)
        return false;
    const plat::String& target = runs[static_cast<size_t>(a)].link;
    return !target.isNull() && target == runs[static_cast<size_t>(b)].link;
}

int RichTextLayout::nextLink(int from, bool backward) const {
    const int count = static_cast<int>(runs.size());
    const int step = backward ? -1 : 1;
    bool same = from >= 0; // so far only runs of the link that it begins at
    for (int i = from < 0 ? (backward ? count - 1 : 0) : from + step; i >= 0 && i < count; i += step) {
        same = same && sameLink(from, i);
        if (!same && !runs[static_cast<size_t>(i)].link.isNull())
            return i;
    }
    return -1;
}

int RichTextLayout::runAt(const Point& position) const {
    const auto i = std::find_if(runs.begin(), runs.end(), [&](const Run& run) { return run.rect.contains(position); });
    return i == runs.end() ? -1 : static_cast<int>(i - runs.begin());
}

size_t RichTextLayout::indexAt(const Point& position) const {
    // The last line that begins above the position, and in it the last run that begins on its left.
    const Run* best = nullptr;
    for (const Run& run : runs) {
        const bool startsLine = !best || run.line != best->line;
        const bool onLeft = run.rect.tl.x <= position.x;
        if (startsLine ? !best || run.rect.tl.y <= position.y
            : onLeft   ? best->rect.tl.x > position.x || run.rect.tl.x >= best->rect.tl.x
                       : best->rect.tl.x > run.rect.tl.x)
            best = &run;
    }
    if (!best)
        return 0;
    return best->start + textLine(*best).nearest(position.x - best->rect.tl.x);
}

} // namespace wvw
