#include "wvw/WChoice.h"

#include "wvw/WArrow.h"
#include "wvw/WRoot.h"
#include "wvw/WidgetWatch.h"

#include "hxutil/Font.h"
#include "hxutil/drawText.h"
#include "hxutil/metrics.h"
#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

constexpr int arrowUnits = 40;
constexpr int overlap = 4; // pixels of the field under the arrow
constexpr int padX = 6;
constexpr int menuInset = 7;
constexpr int rowsShown = 12; // of a long list, before it goes on in a second column
constexpr int menuEdges = 8;  // pixels above and below the rows

} // namespace

WChoice::WChoice(WLayout* layout, bool editable_)
    : WLayout(layout, /*routeMouse=*/editable_, /*propagateEnable=*/true), editable(editable_), edit(nullptr, INT_MAX) {
    edit.setFrame(false);
    edit.setFocusable(editable);
    edit.setVisible(editable);
    addChild(&edit);
}

WChoice::~WChoice() = default;

int WChoice::arrowWidth() const { return hxutil::scaled(arrowUnits); }

Rect WChoice::arrowRect() const {
    const int left = std::max(2, getWidth() - arrowWidth());
    return {left, 2, std::max(left, getWidth() - 2), std::max(2, getHeight() - 2)};
}

Rect WChoice::textRect() const {
    return {padX, 2, std::max(padX, getWidth() - arrowWidth() + overlap - padX), std::max(2, getHeight() - 2)};
}

// The list.

void WChoice::addItem(int itemKey, const char* markedText) {
    auto& item = items[itemKey];
    if (item) {
        item->setText(markedText);
        return;
    }
    item = std::make_unique<WMenuItem>(markedText);
    item->setHandler(&itemHandler);
    if (menu) {
        const auto after = std::next(items.find(itemKey));
        menu->add(item.get(), after == items.end() ? nullptr : after->second.get());
    }
}

void WChoice::removeAll() {
    showList(/*show=*/false);
    items.clear();
    if (!editable)
        showText("");
}

plat::String WChoice::describeItem(size_t index) const {
    auto i = items.begin();
    std::advance(i, static_cast<std::ptrdiff_t>(std::min(index, items.size())));
    return i == items.end() ? plat::String() : plat::strFormat("%d:%s", i->first, i->second->getText());
}

void WChoice::showText(const char* text) {
    const bool was = std::exchange(settingText, true);
    edit.setText(text, /*cursorToEnd=*/false);
    settingText = was;
    repaint();
}

void WChoice::setSelected(int itemKey) {
    const auto i = items.find(itemKey);
    showText(i == items.end() ? "" : i->second->getText());
}

void WChoice::setSelectedText(const char* text) { showText(text); }

int WChoice::getSelected() const {
    const auto i = std::find_if(items.begin(), items.end(), [this](const auto& entry) {
        return plat::strEquals(entry.second->getText(), edit.getText());
    });
    return i == items.end() ? -1 : i->first;
}

int WChoice::next(bool forward) {
    if (items.empty())
        return -1;
    const auto end = items.end();
    auto i = items.find(getSelected());
    if (forward)
        i = i == end || std::next(i) == end ? items.begin() : std::next(i);
    else
        i = i == end || i == items.begin() ? std::prev(end) : std::prev(i);
    setSelected(i->first);
    return i->first;
}

void WChoice::choose(int itemKey) {
    const WidgetWatch self(this);
    const bool same = itemKey == getSelected();
    setSelected(itemKey);
    if (editable)
        edit.selectAll();
    if (!same)
        valueChanged(this);
}

// The popup.

bool WChoice::isDropped() const { return menu && menu->isShown(); }

void WChoice::buildMenu() {
    if (menu)
        return;
    menu = std::make_unique<WRootMenu>(static_cast<WRootMenu::Callback*>(this));
    for (const auto& [itemKey, item] : items)
        menu->add(item.get());
}

void WChoice::showList(bool show) {
    if (!show) {
        if (menu)
            menu->dismiss();
        return;
    }
    WRoot* root = getRootWindow();
    if (!root || !isEnabled() || items.empty() || isDropped())
        return;
    buildMenu();
    menu->setStyle(&getStyle());
    menu->setMinWidth(std::max(0, getWidth() - menuInset));
    menu->setMaxHeight(rowsShown * items.begin()->second->getPreferredSize().y + menuEdges);
    const Point corner = getRootPosition();
    // Over the field, where there is no room below it.
    const int height = menu->getPreferredSize().y;
    const bool below = corner.y + getHeight() + height <= root->screenSize().y || corner.y < height;
    menu->show(root, {corner.x, below ? corner.y + getHeight() : corner.y - height});
    if (isDropped())
        menu->selectItem(selectedItem());
    repaint();
}

bool WChoice::ItemHandler::activated(Widget* origin) {
    owner->chooseItem(origin);
    return true;
}

void WChoice::chooseItem(Widget* item) {
    const auto j =
        std::find_if(items.begin(), items.end(), [item](const auto& entry) { return entry.second.get() == item; });
    ASSERT(j != items.end());
    choose(j->first);
}

bool WChoice::valueChanged(Widget* origin) {
    if (origin != &edit)
        return WLayout::valueChanged(origin);
    return settingText || WLayout::valueChanged(this);
}

// Keyboard and mouse.

WMenuItem* WChoice::selectedItem() const {
    const auto i = items.find(getSelected());
    return i == items.end() ? nullptr : i->second.get();
}

bool WChoice::keyEvent(uint32_t keysym, bool down, Widget* origin) {
    // An editable field gives us the keys that it has no use for.
    const bool fromEdit = origin == &edit && down && isEnabled();
    const WidgetWatch self(this);
    if (fromEdit && (keysym == key::Up || keysym == key::Down || keysym == key::F4) && ownKey(keysym))
        return true;
    return !self.alive() || WLayout::keyEvent(keysym, down, origin);
}

bool WChoice::ownKey(uint32_t keysym) {
    if (isDropped())
        return menu->handleKey(keysym, /*down=*/true); // typed before the list had the keyboard
    if (!isEnabled() || items.empty())
        return false;
    const bool step = keysym == key::Up || keysym == key::Down;
    if (keysym == key::F4 || (keysym == key::Space && !ctrlDown()) || (step && altDown())) {
        showList(/*show=*/true);
        return true;
    }
    if (ctrlDown() || altDown())
        return false;
    const auto i = items.find(getSelected());
    const auto last = std::prev(items.end());
    switch (keysym) {
    case key::Up:
        if (i != items.begin())
            choose(i == items.end() ? last->first : std::prev(i)->first);
        return true;
    case key::Down:
        if (i != last)
            choose(i == items.end() ? items.begin()->first : std::next(i)->first);
        return true;
    case key::Home:
    case key::PageUp:
        choose(items.begin()->first);
        return true;
    case key::End:
    case key::PageDown:
        choose(last->first);
        return true;
    default:
        buildMenu();
        WMenuItem* found = menu->findByLetter(keysym, selectedItem());
        return found && itemHandler.activated(found);
    }
}

bool WChoice::mouseMove(const Point& position, Widget* origin) {
    if (origin == this)
        setHovered(isEnabled() && (!editable || arrowRect().contains(position)) && getRect().contains(position));
    return WLayout::mouseMove(position, origin);
}

bool WChoice::mouseExit(Widget* origin) {
    if (origin == this)
        setHovered(false);
    return WLayout::mouseExit(origin);
}

void WChoice::setHovered(bool on) {
    if (on == hovered)
        return;
    hovered = on;
    invalidate(rfb::Region(arrowRect()));
}

bool WChoice::mouseDown(int button, Widget* origin) {
    const WidgetWatch self(this);
    const bool used = WLayout::mouseDown(button, origin);
    if (!self.alive() || origin != this || button != 0 || !isEnabled())
        return used;
    showList(/*show=*/true);
    return true;
}

bool WChoice::focusChanged(bool backward, Widget* origin) {
    if (origin == this || origin == &edit)
        repaint();
    return WLayout::focusChanged(backward, origin);
}

void WChoice::setEnabled(bool on) {
    if (!on) {
        showList(/*show=*/false);
        setHovered(false);
    }
    WLayout::setEnabled(on);
}

void WChoice::detach() {
    showList(/*show=*/false);
    hovered = false;
    WLayout::detach();
}

// Looks.

bool WChoice::sizeChanged(Widget* origin) {
    if (origin == this)
        setChildRect(&edit, Rect(0, 0, std::max(0, getWidth() - arrowWidth() + overlap), getHeight()));
    return WLayout::sizeChanged(origin);
}

Point WChoice::getPreferredSize() {
    const hxutil::Font& font = *getStyle().font;
    int widest = 0;
    for (const auto& [itemKey, item] : items)
        widest = std::max(widest, font.stringWidth(item->getText()));
    return {widest + 8 + arrowWidth(), edit.getPreferredSize().y};
}

const char* WChoice::getTooltip() const {
    const char* own = WLayout::getTooltip();
    const bool cut = !editable && getStyle().font->stringWidth(getText()) > textRect().width();
    return *own || !cut ? own : getText();
}

void WChoice::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const rfb::Colour ink = isEnabled() ? look.text : look.disabled;
    fill(pb, getRect().expandBy(-1), isEnabled() ? look.contentBg : look.canvas);
    if (!editable)
        hxutil::drawAligned(*look.font, pb, edit.getText(), textRect(), pixel(pb, ink), 0, 1);
    paintChildren(pb);
    const Rect arrow = arrowRect();
    const FaceState face = !isEnabled()  ? FaceState::Disabled
                           : isDropped() ? FaceState::Pressed
                           : hovered     ? FaceState::Hover
                                         : FaceState::Normal;
    drawFace(pb, arrow, face);
    fill(pb, {arrow.tl.x, arrow.tl.y, arrow.tl.x + 1, arrow.br.y}, look.bevelDark);
    const int px = hxutil::scaled(16);
    const Point middle((arrow.tl.x + arrow.br.x + 1) / 2, (arrow.tl.y + arrow.br.y) / 2);
    WArrow::draw(*this, pb, Rect::xywh(middle.x - px / 2, middle.y - px / 2, px, px), WArrow::Direction::Down, ink);
    drawBevel(pb, getRect(), /*sunken=*/true, /*thin=*/false);
    if (edit.hasFocus())
        rfb::frameRect(pb, getRect().expandBy(-1), pixel(pb, themeColour("customBigBtnBg", look.selectionBg)));
    else if (hasFocus())
        drawFocus(pb, {4, 3, arrow.tl.x - 2, getHeight() - 3}, /*dotted=*/true);
}

} // namespace wvw
