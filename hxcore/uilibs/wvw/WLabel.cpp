#include "wvw/WLabel.h"

#include "wvw/WParent.h"
#include "wvw/WidgetWatch.h"

#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/drawText.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"

#include <algorithm>

namespace wvw {

using rfb::Point;
using rfb::Rect;

WLabel::WLabel(WLayout* layout, const char* text_, int hAlign_)
    : Widget(layout), hAlign(hAlign_), text(text_ ? text_ : ""), simple(!hxutil::TextLine::isNeeded(text.c_str())) {
    lines = split(/*width=*/0);
}

WLabel::~WLabel() = default;

void WLabel::setText(const char* newText) {
    if (text == (newText ? newText : ""))
        return;
    text = newText ? newText : "";
    simple = !hxutil::TextLine::isNeeded(text.c_str());
    anchor = caret = 0;
    layoutText();
}

// A setting of the layout: only a change costs a new one.
template <class T>
void WLabel::change(T& field, T value) {
    if (field == value)
        return;
    field = value;
    layoutText();
}

void WLabel::setHAlign(int align) { change(hAlign, align); }

void WLabel::setVAlign(int align) { change(vAlign, align); }

void WLabel::setMargin(int px) { change(margin, px); }

void WLabel::setWrap(bool on) { change(wrap, on); }

void WLabel::setTransparent(bool on) { change(transparent, on); }

void WLabel::setUnderline(bool on) { change(underline, on); }

void WLabel::setSelectable(bool on) {
    selectable = on;
    setCursor(on ? CursorShape::Text : CursorShape::Default);
    if (!on)
        setSelection(0, 0);
}

void WLabel::setSelection(size_t start, size_t lenBytes) {
    const size_t limit = shownText().size();
    const size_t newAnchor = std::min(start, limit);
    const size_t newCaret = newAnchor + std::min(lenBytes, limit - newAnchor);
    if (newAnchor == anchor && newCaret == caret)
        return;
    anchor = newAnchor;
    caret = newCaret;
    repaint();
}

size_t WLabel::selectionStart() const { return std::min({anchor, caret, shownText().size()}); }

size_t WLabel::selectionEnd() const { return std::min(std::max(anchor, caret), shownText().size()); }

plat::String WLabel::getSelectedText() const {
    const size_t start = selectionStart();
    return plat::String(std::string_view(shownText()).substr(start, selectionEnd() - start));
}

void WLabel::styleChanged() { layoutText(); }

void WLabel::layoutText() {
    lines = split(wrap ? getWidth() - 2 * margin : 0);
    repaint();
}

std::vector<WLabel::Line> WLabel::split(int width) const {
    const hxutil::Font& font = *getStyle().font;
    std::vector<plat::String> parts;
    hxutil::wrapText(font, text.c_str(), width, &parts, /*keepNewlines=*/true, /*breakAnywhere=*/true);
    std::vector<Line> result;
    size_t start = 0;
    size_t paragraph = 0; // its first line
    for (const plat::String& part : parts) {
        const std::string_view whole = part.view();
        // The blanks at which a line broke hang over its end, and do not count when it is aligned.
        const bool last = start + whole.size() == text.size();
        const size_t shown = last ? whole.find_last_not_of("\r\n") : whole.find_last_not_of(" \t\r\n");
        const size_t lenBytes = shown == std::string_view::npos ? 0 : shown + 1;
        result.push_back({start, lenBytes, 0, /*atEnd=*/false});
        result.back().width = textLine(result.back()).width();
        start += whole.size();
        if (!simple && (last || whole.find('\n') != std::string_view::npos)) {
            alignParagraph(result, paragraph);
            paragraph = result.size();
        }
    }
    return result;
}

void WLabel::alignParagraph(std::vector<Line>& all, size_t first) const {
    if (all.size() - first < 2 || !textLine(all[first]).isRightToLeft())
        return;
    for (size_t i = first; i < all.size(); ++i)
        all[i].atEnd = true;
}

hxutil::TextLine WLabel::textLine(const Line& line) const {
    const hxutil::Font& font = *getStyle().font;
    const char* start = text.c_str() + line.start;
    return simple ? hxutil::TextLine(font, start, start + line.lenBytes)
                  : hxutil::TextLine(font, text, line.start, line.lenBytes);
}

Point WLabel::getPreferredSize() {
    int width = 0;
    const std::vector<Line> natural = split(/*width=*/0);
    for (const Line& line : natural)
        width = std::max(width, line.width);
    return {width + 2 * margin, static_cast<int>(natural.size()) * getStyle().font->height};
}

int WLabel::getPreferredHeight(int width) {
    return static_cast<int>(split(wrap ? std::max(1, width - 2 * margin) : 0).size()) * getStyle().font->height;
}

Point WLabel::lineOrigin(size_t line) const {
    const int fontHeight = getStyle().font->height;
    const int free = getHeight() - static_cast<int>(lines.size()) * fontHeight;
    // Text that is too high keeps its beginning.
    const int top = std::max(0, free) * vAlign / 2;
    const int room = getWidth() - 2 * margin - lines[line].width;
    const int align = lines[line].atEnd && hAlign == 0 ? 2 : hAlign;
    return {margin + room * align / 2, top + static_cast<int>(line) * fontHeight};
}

size_t WLabel::indexAt(const Point& position) const {
    if (lines.empty())
        return 0;
    const hxutil::Font& font = *getStyle().font;
    const int row = (position.y - lineOrigin(0).y) / font.height;
    const auto index = static_cast<size_t>(std::clamp(row, 0, static_cast<int>(lines.size()) - 1));
    const Line& line = lines[index];
    return line.start + textLine(line).nearest(position.x - lineOrigin(index).x);
}

void WLabel::paintBackground(rfb::FullFramePixelBuffer& pb) {
    if (!transparent)
        fill(pb, getRect(), getStyle().canvas);
}

void WLabel::paint(rfb::FullFramePixelBuffer& pb) {
    paintBackground(pb);
    if (!lines.empty()) {
        // Of a long text, the lines that are exposed; a glyph may reach a little over its line.
        const int height = getStyle().font->height;
        const int top = lineOrigin(0).y;
        const auto end = static_cast<int>(lines.size());
        const int first = std::clamp((pb.getRect().tl.y - top) / height - 1, 0, end);
        const int last = std::clamp((pb.getRect().br.y - top) / height + 2, first, end);
        for (int i = first; i < last; ++i)
            paintLine(pb, static_cast<size_t>(i));
    }
    if (selectable && hasFocus())
        drawFocus(pb, getRect(), /*dotted=*/true);
}

void WLabel::paintLine(rfb::FullFramePixelBuffer& pb, size_t index) {
    const WStyle& look = getStyle();
    const Line& line = lines[index];
    const Point origin = lineOrigin(index);
    const uint32_t ink = pixel(pb, isEnabled() ? look.text : look.disabled);
    const int room = getWidth() - 2 * margin;
    if (!wrap && !selectable && line.width > room) {
        int width = room;
        const char* start = text.c_str() + line.start;
        const plat::String shown = hxutil::elide(*look.font, &width, start, start + line.lenBytes);
        look.font->drawString(pb, shown.c_str(), {margin, origin.y}, ink);
        return;
    }
    const hxutil::TextLine shown = textLine(line);
    shown.draw(pb, origin, ink);
    if (underline) {
        const int y = origin.y + look.font->height - 2;
        rfb::fillRect(pb, {origin.x, y, origin.x + line.width, y + 1}, ink);
    }
    const size_t from = std::clamp(selectionStart(), line.start, line.start + line.lenBytes) - line.start;
    const size_t to = std::clamp(selectionEnd(), line.start, line.start + line.lenBytes) - line.start;
    if (from < to)
        drawSelected(pb, shown, origin, from, to);
}

bool WLabel::sizeChanged(Widget* origin) {
    if (origin == this && wrap)
        layoutText();
    return Widget::sizeChanged(origin);
}

void WLabel::detach() {
    dragging = false;
    if (menu)
        menu->hide();
    Widget::detach();
}

bool WLabel::copy(Widget* origin) {
    if (origin != this || !selectable || selectionStart() == selectionEnd() || !parent)
        return Widget::copy(origin);
    parent->setCutText(getSelectedText().c_str());
    return true;
}

bool WLabel::focusChanged(bool backward, Widget* origin) {
    if (origin == this)
        repaint();
    return Widget::focusChanged(backward, origin);
}

bool WLabel::ownKey(uint32_t keysym) {
    if (!selectable || !isEnabled())
        return false;
    if (keysym == rfb::key::Menu || (keysym == rfb::key::F10 && shiftDown())) {
        showMenu({margin, getHeight()});
        return true;
    }
    if ((keysym != 'a' && keysym != 'A') || !ctrlDown())
        return false;
    setSelection(0, shownText().size());
    offerSelection();
    return true;
}

void WLabel::showMenu(const Point& position) {
    if (!menu)
        menu = std::make_unique<WEditMenu>(this, WEditMenu::Copy | WEditMenu::SelectAll);
    menu->show(this, position);
}

/// What the user has selected is what the middle button pastes.
void WLabel::offerSelection() {
    if (selectionStart() != selectionEnd() && parent)
        parent->setPrimaryText(getSelectedText().c_str());
}

bool WLabel::mouseMove(const Point& position, Widget* origin) {
    if (origin == this && dragging) {
        const size_t index = indexAt(position);
        if (index != caret) {
            caret = index;
            repaint();
        }
    }
    return Widget::mouseMove(position, origin);
}

bool WLabel::mouseDown(int button, Widget* origin) {
    if (origin == this && selectable && isEnabled() && button == 0) {
        caret = indexAt(mousePos);
        if (!shiftDown())
            anchor = caret;
        dragging = true;
        repaint();
    }
    return Widget::mouseDown(button, origin);
}

bool WLabel::mouseUp(int button, Widget* origin) {
    if (origin == this && button == 0 && dragging) {
        dragging = false;
        offerSelection();
    }
    const WidgetWatch self(this);
    const bool used = Widget::mouseUp(button, origin);
    if (!self.alive() || origin != this || button != 2 || !selectable || !isEnabled() || !parent)
        return used;
    showMenu(mousePos);
    return true;
}

void WLabel::editMenuChosen(int choice) {
    if (choice == WEditMenu::Copy && !copy(this))
        bell();
    if (choice == WEditMenu::SelectAll) {
        takeFocus();
        setSelection(0, shownText().size());
        offerSelection();
    }
}

} // namespace wvw
