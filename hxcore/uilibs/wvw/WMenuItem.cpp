#include "wvw/WMenu.h"

#include "wvw/WidgetWatch.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>

namespace wvw {
namespace {

constexpr int arrowUnits = 16;
constexpr int columnUnits = 20; // for checks, pictures and marks
constexpr int separatorHeight = 5;

/// A check mark in a square.
void drawCheck(rfb::FullFramePixelBuffer& pb, const rfb::Rect& r, uint32_t pixel) {
    const rfb::Point low(r.tl.x + r.width() * 2 / 5, r.br.y - r.height() / 5);
    const int thick = std::max(2, r.width() / 6);
    for (int i = 0; i < thick; ++i) {
        const rfb::Point up(0, -i);
        rfb::drawLine(pb, rfb::Point(r.tl.x + 1, r.tl.y + r.height() * 11 / 20) + up, low + up, pixel);
        rfb::drawLine(pb, low + up, rfb::Point(r.br.x - 1, r.tl.y + r.height() / 5) + up, pixel);
    }
}

} // namespace

using rfb::Point;
using rfb::Rect;

WMenuItem::WMenuItem(const char* markedText) {
    label.setTransparent(true);
    label.setWrap(false);
    addChild(&label);
    setText(markedText);
}

WMenuItem::~WMenuItem() {
    if (menu)
        menu->remove(this);
}

void WMenuItem::setText(const char* markedText) {
    label.setText(markedText);
    separator = !*label.getText() && imageName.isEmpty();
    changed();
}

void WMenuItem::setChecked(bool on) {
    checked = on;
    changed();
}

void WMenuItem::setElevated(bool on) {
    elevated = on;
    changed();
}

void WMenuItem::setImage(const char* name) {
    imageName = name;
    separator = !*label.getText() && imageName.isEmpty();
    changed();
}

void WMenuItem::setSubmenu(WMenu* newSubmenu) {
    submenu = newSubmenu;
    changed();
}

void WMenuItem::changed() {
    repaint();
    if (menu)
        menu->itemsChanged();
}

bool WMenuItem::hasMarks() const { return isVisible() && (checked || elevated || !imageName.isEmpty()); }

bool WMenuItem::matches(uint32_t keysym) const {
    return keysym && (foldKeysym(key) == keysym || label.getMnemonic() == keysym);
}

void WMenuItem::setVisible(bool on) {
    WButton::setVisible(on);
    changed();
}

void WMenuItem::setEnabled(bool on) {
    WButton::setEnabled(on);
    if (!on && menu && menu->getSelected() == this)
        menu->selectItem(nullptr);
}

void WMenuItem::showSelected(bool on) {
    WStyle look = getStyle();
    look.text = look.selectionText;
    label.setStyle(on ? &look : nullptr);
    repaint();
}

int WMenuItem::columnWidth() const { return menu && menu->hasColumn ? hxutil::scaled(columnUnits) : 0; }

Point WMenuItem::getPreferredSize() {
    if (separator)
        return {2, separatorHeight};
    const Point text = label.getPreferredSize();
    const int arrow = submenu ? hxutil::scaled(arrowUnits) : 0;
    return {text.x + arrow + 3 + columnWidth(), std::max(text.y, arrow) + 2};
}

bool WMenuItem::sizeChanged(Widget* origin) {
    if (origin == this)
        setChildRect(&label, Rect(columnWidth(), 0, std::max(columnWidth(), getWidth()), getHeight()));
    return WButton::sizeChanged(origin);
}

void WMenuItem::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    if (separator) {
        fill(pb, Rect::xywh(0, getHeight() / 2, getWidth(), 1), look.bevelDark);
        return;
    }
    const bool selected = menu && menu->getSelected() == this;
    if (selected)
        fill(pb, getRect(), look.selectionBg);
    paintChildren(pb);
    const rfb::Colour ink = !isEnabled() ? look.disabled : selected ? look.selectionText : look.text;
    paintMarks(pb, ink);
    if (submenu) {
        const int px = hxutil::scaled(arrowUnits);
        WArrow::draw(*this, pb, Rect::xywh(getWidth() - px, (getHeight() - px) / 2, px, px), WArrow::Direction::Right,
                     ink);
    }
}

void WMenuItem::paintMarks(rfb::FullFramePixelBuffer& pb, const rfb::Colour& ink) {
    const int px = hxutil::scaled(columnUnits);
    const Rect column = Rect::xywh(2, (getHeight() - px) / 2, px, px);
    if (checked)
        drawCheck(pb, column.expandBy(-std::max(1, px / 8)), pixel(pb, ink));
    const char* name = elevated ? "shield" : imageName.c_str();
    if (checked || !*name)
        return;
    const WImage::Image mark = hxutil::NamedImagePixelBuffer::getThemed(name, {px, px});
    const Point room = column.size() - mark->size();
    rfb::compose(pb, column.tl + Point(room.x / 2, room.y / 2), *mark, mark->getRect(),
                 isEnabled() ? rfb::overOp : rfb::ghostOp);
}

bool WMenuItem::activated(Widget* origin) {
    if (origin != this || !menu)
        return WButton::activated(origin);
    if (!canSelect())
        return true;
    if (submenu) {
        menu->openSubmenu(this, /*byKey=*/false);
        return true;
    }
    // The menus go first: what was chosen may open a window, or delete them.
    const WidgetWatch self(this);
    const WidgetWatch menuWatch(menu);
    menu->hideAll();
    if (!self.alive() || WButton::activated(this))
        return true;
    // Without a window the chain ends at the item, but whoever holds the menu listens as well.
    return self.alive() && !isAttached() && menuWatch.alive() && menuWatch.get()->activated(this);
}

} // namespace wvw
