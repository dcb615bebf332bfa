#include "wvw/WMenu.h"

#include "wvw/WidgetWatch.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace wvw {
namespace {

constexpr int arrowUnits = 16;
constexpr int columnUnits = 20; // for checks, pictures and marks
constexpr int checkUnits = 24;  // of the box whose tick stands in the column
constexpr int separatorHeight = 5;

struct Spot {
    double x;
    double y;
};

double distance(const Spot& p, const Spot& a, const Spot& b) {
    const Spot way{b.x - a.x, b.y - a.y};
    const double along = ((p.x - a.x) * way.x + (p.y - a.y) * way.y) / (way.x * way.x + way.y * way.y);
    const double t = std::clamp(along, 0.0, 1.0);
    return std::hypot(p.x - a.x - t * way.x, p.y - a.y - t * way.y);
}

/// Draws the tick of a check box, as large as it is in a box of that rectangle, in a colour of its own.
void drawCheck(rfb::FullFramePixelBuffer& pb, const rfb::Rect& box, const rfb::Colour& ink) {
    constexpr int fine = 4; // sub-pixels to a side
    constexpr double grid = 32;
    constexpr double stroke = 5;
    constexpr Spot tick[] = {{8, 17}, {14, 23}, {25, 10}};
    const int size = box.width();
    std::vector<uint8_t> mask(static_cast<size_t>(size * size));
    for (int y = 0; y < size * fine; ++y) {
        for (int x = 0; x < size * fine; ++x) {
            const Spot p{(x + 0.5) * grid / (size * fine), (y + 0.5) * grid / (size * fine)};
            if (std::min(distance(p, tick[0], tick[1]), distance(p, tick[1], tick[2])) <= stroke / 2)
                ++mask[static_cast<size_t>(y / fine * size + x / fine)];
        }
    }
    for (uint8_t& coverage : mask)
        coverage = static_cast<uint8_t>(coverage * 255 / (fine * fine));
    rfb::alphaMask(pb, box, mask.data(), size, ink);
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
    const Rect column = Rect::xywh(1, (getHeight() - px) / 2, px, px);
    if (checked) {
        const int box = hxutil::scaled(checkUnits);
        drawCheck(pb, Rect::xywh(column.tl.x + (px - box) / 2, column.tl.y + (px - box) / 2, box, box), ink);
    }
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
