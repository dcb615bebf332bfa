// Where the text of an edit stands, and how it is painted.
#include "wvw/WEdit.h"

#include "wvw/WParent.h"
#include "wvw/editText.h"

#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/drawText.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace wvw {
namespace {

using rfb::Point;
using rfb::Rect;

constexpr int padX = 6;
constexpr int padY = 4;

} // namespace

std::string WEdit::shown() const {
    if (!password)
        return text;
    return std::string(static_cast<size_t>(plat::utf8::countChars(text.c_str())), '*');
}

size_t WEdit::shownIndex(int position) const {
    return static_cast<size_t>(password ? plat::utf8::countChars(text.c_str(), text.c_str() + position) : position);
}

int WEdit::starsWidth(int position) const {
    return plat::utf8::countChars(text.c_str(), text.c_str() + position) * getStyle().font->charWidth('*');
}

int WEdit::caretX(int position) const {
    return password ? starsWidth(position) : line().caretX(static_cast<size_t>(position));
}

int WEdit::textWidth() const { return password ? starsWidth(lengthOf(text)) : line().width(); }

int WEdit::positionAt(int x) const {
    const hxutil::Font& font = *getStyle().font;
    const int px = x - textOrigin().x;
    const char* start = text.c_str();
    if (!password)
        return static_cast<int>(font.nearestBoundary(px, start) - start);
    const int advance = std::max(1, font.charWidth('*'));
    int position = 0;
    for (int chars = std::max(0, (px + advance / 2) / advance); chars > 0; --chars)
        position = step(position, /*forward=*/true);
    return position;
}

Rect WEdit::textArea() const {
    return {padX, padY, std::max(padX, getWidth() - padX), std::max(padY, getHeight() - padY)};
}

Point WEdit::textOrigin() const {
    const Rect area = textArea();
    const int free = area.width() - textWidth();
    const int align = !password && line().isRightToLeft() ? 2 - hAlign : hAlign;
    const int fontHeight = getStyle().font->height;
    return {free > 0 ? area.tl.x + free * align / 2 : area.tl.x - scroll,
            area.tl.y + (area.height() - fontHeight) * vAlign / 2};
}

void WEdit::keepCursorInside() {
    const int room = textArea().width();
    const int whole = textWidth();
    const int at = caretX(insertionPoint());
    scroll = std::clamp(scroll, at - room, at);
    scroll = std::clamp(scroll, 0, std::max(0, whole - room));
    tellCaret();
}

void WEdit::tellCaret() {
    if (!hasFocus())
        return;
    const Point origin = textOrigin();
    parent->setTextCursor(this, Rect::xywh(origin.x + caretX(insertionPoint()), origin.y, 1, getStyle().font->height),
                          password);
}

/// Typing at the end of a long field changes a few pixels of it.
void WEdit::repaintChange() {
    if (password) {
        wipe(invalidated.text); // no second copy of it
        invalidated.originX = std::numeric_limits<int>::min();
        repaint();
        return;
    }
    const Look before = std::exchange(invalidated, Look{text, textOrigin().x, cursor, selection});
    const bool hint = !placeholder.isEmpty() && (text.empty() || before.text.empty());
    if (hint || before.originX != invalidated.originX || hxutil::TextLine::isNeeded(text.c_str()) ||
        hxutil::TextLine::isNeeded(before.text.c_str())) {
        repaint();
        return;
    }
    const auto ends = std::mismatch(text.begin(), text.end(), before.text.begin(), before.text.end());
    const bool sameText = ends.first == text.end() && ends.second == before.text.end();
    int from = std::min({cursor, insertionPoint(), before.cursor, before.cursor + before.selection});
    int to = std::max({cursor, insertionPoint(), before.cursor, before.cursor + before.selection});
    if (!sameText) {
        from = std::min(from, static_cast<int>(ends.first - text.begin()));
        to = std::max(lengthOf(text), lengthOf(before.text));
    }
    from = plat::utf8::cutPartial(text.c_str(), from);
    const hxutil::Font& font = *getStyle().font;
    const auto widthIn = [&font](const std::string& s, int bytes) {
        return font.stringWidth(s.c_str(), s.c_str() + std::min(bytes, lengthOf(s)));
    };
    constexpr int overhang = 8; // of a glyph beyond its cell, and the caret
    const int left = widthIn(text, from) - overhang;
    const int right = std::max(widthIn(text, to), widthIn(before.text, to)) + overhang;
    const Rect changed(invalidated.originX + left, 0, invalidated.originX + right, getHeight());
    invalidate(rfb::Region(changed.intersect(getRect())));
}

bool WEdit::sizeChanged(Widget* origin) {
    if (origin == this)
        keepCursorInside();
    return Widget::sizeChanged(origin);
}

Point WEdit::getPreferredSize() { return {textWidth() + 2 * padX, getStyle().font->height + 2 * padY}; }

void WEdit::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    if (frame) {
        fill(pb, getRect().expandBy(-1), isEnabled() ? look.contentBg : look.canvas);
        drawBevel(pb, getRect(), /*sunken=*/true, /*thin=*/false);
    }
    if (frame && hasFocus())
        rfb::frameRect(pb, getRect().expandBy(-1), pixel(pb, themeColour("customBigBtnBg", look.selectionBg)));
    // The text may touch the frame, and nothing beyond.
    const Rect inner = getRect().expandBy(-2).intersect(pb.getRect());
    if (inner.isEmpty())
        return;
    rfb::FullFramePixelBuffer view(pb, inner, inner.tl);
    paintText(view);
}

Rect WEdit::opaqueWithin(const Rect& part) const { return frame ? part.intersect(getRect().expandBy(-1)) : Rect(); }

void WEdit::paintText(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const hxutil::Font& font = *look.font;
    const Point origin = textOrigin();
    if (text.empty() && !placeholder.isEmpty()) {
        const bool rightToLeft = hxutil::TextLine(font, placeholder.c_str()).isRightToLeft();
        hxutil::drawAligned(font, pb, placeholder.c_str(), textArea(), pixel(pb, look.disabled),
                            rightToLeft ? 2 - hAlign : hAlign, vAlign);
    }
    const std::string glyphs = shown();
    const hxutil::TextLine shownLine(font, glyphs.c_str());
    // Stars stand at the top of their cells: lowered, they are in the middle of the field.
    const Point at(origin.x, origin.y + (password ? font.height / 5 : 0));
    shownLine.draw(pb, at, pixel(pb, isEnabled() ? look.text : look.disabled));
    const int from = std::min(cursor, insertionPoint());
    const int to = std::max(cursor, insertionPoint());
    if (from < to && isEnabled() && password) {
        const Rect marked(origin.x + caretX(from), origin.y, origin.x + caretX(to), origin.y + font.height);
        const Rect part = marked.intersect(pb.getRect());
        fill(pb, part, look.selectionBg);
        rfb::FullFramePixelBuffer view(pb, part, part.tl);
        shownLine.draw(view, at, pixel(pb, look.selectionText));
    } else if (from < to && isEnabled())
        drawSelected(pb, shownLine, origin, shownIndex(from), shownIndex(to));
    else if (hasFocus())
        fill(pb, Rect::xywh(origin.x + caretX(from), origin.y, 1, font.height), look.text);
}

} // namespace wvw
