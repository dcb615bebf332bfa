#include "ui/wvw/WFileList.h"

#include "hxutil/Font.h"
#include "hxutil/drawText.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <cctype>

namespace ui {
namespace {
namespace key = rfb::key;
constexpr int border = 2;  // pixels
constexpr int cellPad = 4; // pixels
} // namespace

WFileList::WFileList(wvw::WLayout* layout, Callback* callback_, ItemGetter* items_, bool vertical_)
    : WButton(layout), callback(callback_), getter(items_), vertical(vertical_), scrollbar(this, vertical_) {
    routeMouse = true; // the scrollbar is a child
}

void WFileList::refill() {
    items.clear();
    const int count = getter->itemCount();
    for (int i = 0; i < count; ++i)
        items.push_back(getter->itemText(i));
    current = items.empty() ? -1 : 0;
    scrollbar.setValue(0);
    arrange();
}

void WFileList::setCursor(int index) {
    current = std::clamp(index, items.empty() ? -1 : 0, static_cast<int>(items.size()) - 1);
    if (current >= 0) {
        const int line = current / itemsInLine();
        const int first = std::clamp(scrollbar.getValue(), line - linesInView() + 1, line);
        scrollbar.setValue(first);
    }
    repaint();
}

void WFileList::styleChanged() {
    WButton::styleChanged();
    arrange();
}

void WFileList::setSize(const rfb::Point& newSize) {
    WButton::setSize(newSize);
    arrange();
    setCursor(current);
}

void WFileList::paint(rfb::FullFramePixelBuffer& pb) {
    fill(pb, getRect().expandBy(-1), getStyle().contentBg);
    const rfb::Rect content = contentRect();
    const rfb::Rect part = content.intersect(pb.getRect());
    if (!part.isEmpty()) {
        rfb::FullFramePixelBuffer view(pb, part, part.tl);
        const int first = scrollbar.getValue() * itemsInLine();
        for (int i = first;
             i < static_cast<int>(items.size()) && itemRect(i).tl.x < content.br.x && itemRect(i).tl.y < content.br.y;
             ++i)
            paintItem(view, i);
        if (items.empty() && hasFocus())
            drawFocus(view, content.expandBy(-1), /*dotted=*/true);
    }
    paintChildren(pb);
    drawBevel(pb, getRect(), /*sunken=*/true, /*thin=*/false);
}

void WFileList::paintItem(rfb::FullFramePixelBuffer& pb, int index) {
    const rfb::Rect rect = itemRect(index);
    const rfb::Rect part = rect.intersect(pb.getRect());
    if (part.isEmpty())
        return;
    rfb::FullFramePixelBuffer view(pb, part, part.tl);
    const wvw::WStyle& look = getStyle();
    const bool isCurrent = index == current && isEnabled();
    if (isCurrent)
        fill(view, rect, look.selectionBg);
    const rfb::Colour ink = !isEnabled() ? look.disabled : isCurrent ? look.selectionText : look.text;
    hxutil::drawAligned(*look.font, view, items[static_cast<size_t>(index)].c_str(),
                        rfb::Rect(rect.tl.x + cellPad, rect.tl.y, rect.br.x - cellPad, rect.br.y), pixel(pb, ink),
                        /*hAlign=*/0, /*vAlign=*/1);
    if (isCurrent && hasFocus())
        drawFocus(view, rect.expandBy(-1), /*dotted=*/true);
}

bool WFileList::valueChanged(wvw::Widget* origin) {
    if (origin != &scrollbar)
        return WButton::valueChanged(origin);
    repaint();
    return true;
}

bool WFileList::mouseDown(int button, wvw::Widget* origin) {
    if (isEnabled() && (button == 3 || button == 4) && scrollbar.getRange() > 0) {
        scrollbar.stepBy(button == 3 ? -1 : 1);
        return true;
    }
    if (origin == this && button == 0 && isEnabled()) {
        const int target = itemAt(getPointer());
        onItem = target >= 0;
        if (onItem)
            setCursor(target);
    }
    return WButton::mouseDown(button, origin);
}

bool WFileList::ownKey(uint32_t keysym) {
    if (!isEnabled())
        return false;
    const int across = itemsInLine();
    const int page = std::max(1, linesInView() - 1) * across;
    switch (keysym) {
    case key::Up:
        return moveTo(current - (vertical ? across : 1));
    case key::Down:
        return moveTo(current + (vertical ? across : 1));
    case key::Left:
        return moveTo(current - (vertical ? 1 : across));
    case key::Right:
        return moveTo(current + (vertical ? 1 : across));
    case key::PageUp:
        return moveTo(current - page);
    case key::PageDown:
        return moveTo(current + page);
    case key::Home:
        return moveTo(0);
    case key::End:
        return moveTo(static_cast<int>(items.size()));
    case key::Return:
    case key::Space:
        onItem = current >= 0;
        return WButton::ownKey(keysym);
    default:
        return typeAhead(keysym);
    }
}

/// True also at the ends: the focus is not to leave by an arrow that found no further name.
bool WFileList::moveTo(int index) {
    setCursor(index);
    return true;
}

bool WFileList::typeAhead(uint32_t keysym) {
    const int count = static_cast<int>(items.size());
    if (keysym <= ' ' || keysym > '~' || ctrlDown() || altDown())
        return false;
    const int wanted = std::tolower(static_cast<int>(keysym));
    for (int i = 1; i <= count; ++i) {
        const int index = (current + i) % count;
        if (std::tolower(static_cast<unsigned char>(items[static_cast<size_t>(index)].c_str()[0])) == wanted) {
            setCursor(index);
            return true;
        }
    }
    return false;
}

void WFileList::pressedByUser() {
    const bool isChosen = onItem && current >= 0;
    onItem = false;
    if (isChosen)
        callback->itemChosen(this, current);
}

rfb::Rect WFileList::contentRect() const {
    rfb::Rect rect = getRect().expandBy(-border);
    if (scrollbar.isVisible())
        (vertical ? rect.br.x : rect.br.y) -= wvw::WScrollbar::thickness;
    return rect;
}

int WFileList::itemsInLine() const {
    const rfb::Rect content = contentRect();
    return std::max(1, vertical ? content.width() / cell.x : content.height() / cell.y);
}

int WFileList::linesInView() const {
    const rfb::Rect content = contentRect();
    return std::max(1, vertical ? content.height() / cell.y : content.width() / cell.x);
}

rfb::Rect WFileList::itemRect(int index) const {
    const int across = itemsInLine();
    const int line = index / across - scrollbar.getValue();
    const int place = index % across;
    const rfb::Point start = contentRect().tl;
    return vertical ? rfb::Rect::xywh(start.x + place * cell.x, start.y + line * cell.y, cell.x, cell.y)
                    : rfb::Rect::xywh(start.x + line * cell.x, start.y + place * cell.y, cell.x, cell.y);
}

int WFileList::itemAt(const rfb::Point& position) const {
    if (!contentRect().contains(position))
        return -1;
    for (size_t i = 0; i < items.size(); ++i) {
        if (itemRect(static_cast<int>(i)).contains(position))
            return static_cast<int>(i);
    }
    return -1;
}

void WFileList::arrange() {
    const hxutil::Font& font = *getStyle().font;
    const rfb::Rect inner = getRect().expandBy(-border);
    int widest = 0;
    for (const plat::String& item : items)
        widest = std::max(widest, font.stringWidth(item.c_str()));
    cell = {std::clamp(widest + 3 * cellPad, 1, std::max(1, inner.width())), font.height + cellPad};
    scrollbar.setVisible(false);
    const auto lines = [this] { return (static_cast<int>(items.size()) + itemsInLine() - 1) / itemsInLine(); };
    if (lines() > linesInView())
        scrollbar.setVisible(true); // which leaves less room
    scrollbar.setRange(std::max(0, lines() - linesInView()));
    scrollbar.setPage(linesInView());
    constexpr int thick = wvw::WScrollbar::thickness;
    setChildRect(&scrollbar, vertical ? rfb::Rect(inner.br.x - thick, inner.tl.y, inner.br.x, inner.br.y)
                                      : rfb::Rect(inner.tl.x, inner.br.y - thick, inner.br.x, inner.br.y));
    repaint();
}

} // namespace ui
