#include "wvw/WMenu.h"

#include "wvw/WRoot.h"
#include "wvw/WidgetWatch.h"
#include "wvw/foldText.h"

#include "plat/Assert.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace wvw {
namespace {
constexpr int spacing = 4; // pixels, around the items and between columns
constexpr int dragPx = 4;  // a held button that moved less meant to open the menu, not to choose
} // namespace

using rfb::Point;
using rfb::Rect;

WMenu::WMenu() : WLayout(nullptr, /*routeMouse=*/false) {}

WMenu::~WMenu() {
    hide();
    for (WMenuItem* item : items)
        item->menu = nullptr;
    if (parentMenu)
        parentMenu->openMenu = nullptr;
}

void WMenu::add(WMenuItem* item, WMenuItem* before) {
    ASSERT(!item->menu);
    const auto i = before ? std::find(items.begin(), items.end(), before) : items.end();
    items.insert(i, item);
    item->menu = this;
    addChild(item, before);
    itemsChanged();
}

void WMenu::remove(WMenuItem* item) {
    if (item->menu != this)
        return;
    if (openMenu && openMenu == item->getSubmenu())
        closeSubmenu();
    if (selected == item)
        selected = nullptr;
    items.erase(std::find(items.begin(), items.end(), item));
    item->menu = nullptr;
    removeChild(item);
    itemsChanged();
}

void WMenu::setMinWidth(int px) {
    minWidth = px;
    itemsChanged();
}

void WMenu::setMaxHeight(int px) {
    maxHeight = px;
    itemsChanged();
}

void WMenu::itemsChanged() {
    if (!isShown())
        return;
    layoutItems();
    setSize(laidOut);
    repaint();
}

void WMenu::selectItem(WMenuItem* item) {
    if (item == selected)
        return;
    WMenuItem* old = std::exchange(selected, item);
    if (old)
        old->showSelected(false);
    if (!selected)
        return;
    selected->showSelected(true);
    const Rect place = getChildRect(selected);
    if (place.tl.x < 0)
        scrollTo(scroll + place.tl.x - spacing);
    else if (place.br.x > laidOut.x)
        scrollTo(scroll + place.br.x + spacing - laidOut.x);
}

void WMenu::moveSelection(bool down) {
    const size_t count = items.size();
    if (!count)
        return;
    const auto at = std::find(items.begin(), items.end(), selected);
    // From nowhere, the first step leads to the first or the last one.
    size_t index = static_cast<size_t>(at - items.begin());
    if (at == items.end())
        index = down ? count - 1 : 0;
    for (size_t i = 0; i < count; ++i) {
        index = (index + (down ? 1 : count - 1)) % count;
        if (items[index]->canSelect()) {
            selectItem(items[index]);
            return;
        }
    }
}

void WMenu::selectEnd(bool last) {
    selectItem(nullptr);
    moveSelection(/*down=*/!last);
}

WMenu* WMenu::topMenu() {
    WMenu* top = this;
    while (top->parentMenu)
        top = top->parentMenu;
    return top;
}

void WMenu::hideAll() { topMenu()->hide(); }

void WMenu::showAt(WRoot* onRoot, const Point& position, bool grab) {
    shownRoot = onRoot;
    hoverSeen = dragSeen = false;
    scroll = 0;
    layoutItems();
    setSize(laidOut);
    onRoot->showPopup(this, /*show=*/true, grab, position);
}

void WMenu::hide() {
    closeSubmenu();
    WRoot* root = std::exchange(shownRoot, nullptr);
    if (!root)
        return;
    const WidgetWatch self(this);
    root->showPopup(this, /*show=*/false, /*grab=*/false, {0, 0});
    if (self.alive())
        gone();
}

void WMenu::gone() {
    selectItem(nullptr);
    if (parentMenu)
        std::exchange(parentMenu, nullptr)->openMenu = nullptr;
    hidden();
}

void WMenu::detach() {
    WLayout::detach();
    // Somebody else took the window from the screen, as a press outside does.
    if (std::exchange(shownRoot, nullptr)) {
        closeSubmenu();
        gone();
    }
}

void WMenu::closeSubmenu() {
    if (openMenu)
        openMenu->hide();
}

void WMenu::openSubmenu(WMenuItem* item, bool byKey) {
    WMenu* sub = item->getSubmenu();
    selectItem(item);
    if (!sub || !shownRoot || sub->isShown())
        return;
    closeSubmenu();
    openMenu = sub;
    sub->parentMenu = this;
    const Point corner = getRootPosition();
    const Rect place = getChildRect(item).translate(corner);
    const Point screen = shownRoot->screenSize();
    const Point wanted = sub->sizeOn(shownRoot);
    const int right = place.br.x;
    const int x = right + wanted.x > screen.x ? std::max(0, corner.x - wanted.x) : right;
    const int y = std::max(0, std::min(place.tl.y - spacing, screen.y - wanted.y));
    // It takes the pointer over: what grabs gets the presses that happen in it.
    sub->showAt(shownRoot, {x, y}, /*grab=*/true);
    if (byKey)
        sub->moveSelection(/*down=*/true);
}

Point WMenu::sizeOn(WRoot* root) {
    WRoot* before = std::exchange(shownRoot, root);
    layoutItems();
    shownRoot = before;
    return laidOut;
}

Point WMenu::getPreferredSize() {
    layoutItems();
    return laidOut;
}

void WMenu::layoutItems() {
    hasColumn = std::any_of(items.begin(), items.end(), [](WMenuItem* item) { return item->hasMarks(); });
    int widest = 0;
    for (WMenuItem* item : items) {
        if (item->isVisible())
            widest = std::max(widest, item->getPreferredSize().x);
    }
    const Point screen = shownRoot ? shownRoot->screenSize() : Point();
    int limit = screen.y;
    if (maxHeight > 0 && (!limit || maxHeight < limit))
        limit = maxHeight;
    const auto layOut = [&](int bottom) {
        const int columns = layoutColumns(std::max(minWidth, widest), bottom);
        if (columns > 1)
            layoutColumns(std::max((minWidth + spacing) / columns - spacing, widest), bottom);
    };
    layOut(limit);
    if (screen.x > 0 && wholeWidth > screen.x)
        layOut(screen.y);
    // What is wider than the screen all the same is scrolled to.
    laidOut.x = screen.x > 0 ? std::min(wholeWidth, screen.x) : wholeWidth;
    scrollTo(scroll);
}

int WMenu::layoutColumns(int width, int limit) {
    Point at(spacing - scroll, spacing);
    int columns = 1;
    int bottom = spacing;
    for (WMenuItem* item : items) {
        if (!item->isVisible())
            continue;
        const int height = item->getPreferredSize().y;
        if (limit > 0 && at.y > spacing && at.y + height + spacing > limit) {
            at = {at.x + width + spacing, spacing};
            ++columns;
        }
        setChildRect(item, Rect::xywh(at.x, at.y, width, height));
        at.y += height;
        bottom = std::max(bottom, at.y);
    }
    wholeWidth = at.x + width + spacing + scroll;
    laidOut.y = bottom + spacing;
    return columns;
}

void WMenu::scrollTo(int wanted) {
    const int by = std::clamp(wanted, 0, wholeWidth - laidOut.x) - scroll;
    scroll += by;
    for (WMenuItem* item : items)
        moveChild(item, getChildPosition(item) - Point(by, 0));
}

void WMenu::paint(rfb::FullFramePixelBuffer& pb) {
    fill(pb, getRect(), getStyle().contentBg);
    paintChildren(pb);
    drawBevel(pb, getRect(), /*sunken=*/false, /*thin=*/true);
    // A popup has nothing of its own behind its corners.
    const Rect corners[] = {Rect::xywh(0, 0, 1, 1), Rect::xywh(getWidth() - 1, 0, 1, 1),
                            Rect::xywh(0, getHeight() - 1, 1, 1), Rect::xywh(getWidth() - 1, getHeight() - 1, 1, 1)};
    for (const Rect& corner : corners)
        fill(pb, corner, getStyle().bevelDark);
}

bool WMenu::handleKey(uint32_t keysym, bool down) {
    // Whoever gets the key, the deepest menu that is open is meant.
    WMenu* deepest = this;
    while (deepest->openMenu)
        deepest = deepest->openMenu;
    return !down || deepest->navigate(foldKeysym(rfb::canonicalKeysym(keysym)));
}

bool WMenu::navigate(uint32_t keysym) {
    switch (keysym) {
    case rfb::key::Escape:
        hideAll();
        return true;
    case rfb::key::Return:
    case rfb::key::Space:
        if (selected)
            selected->press();
        return true;
    case rfb::key::Home:
    case rfb::key::End:
        selectEnd(keysym == rfb::key::End);
        return true;
    case rfb::key::Up:
    case rfb::key::Down:
        moveSelection(keysym == rfb::key::Down);
        return true;
    case rfb::key::PageUp:
    case rfb::key::PageDown:
        selectEnd(keysym == rfb::key::PageDown);
        return true;
    case rfb::key::Right:
        if (selected && selected->getSubmenu()) {
            openSubmenu(selected, /*byKey=*/true);
            return true;
        }
        return selectBeside(/*right=*/true) || topMenu()->unusedKey(keysym);
    case rfb::key::Left:
        if (selectBeside(/*right=*/false))
            return true;
        if (!parentMenu)
            return unusedKey(keysym);
        hide();
        return true;
    default:
        return activateByLetter(keysym) || selectByLetter(keysym) || topMenu()->unusedKey(keysym);
    }
}

/// In the next column, the item that is nearest in height.
bool WMenu::selectBeside(bool right) {
    if (!selected)
        return false;
    const Rect from = getChildRect(selected);
    WMenuItem* best = nullptr;
    int bestAway = 0;
    for (WMenuItem* item : items) {
        const Rect rect = getChildRect(item);
        const bool next = right ? rect.tl.x > from.tl.x : rect.tl.x < from.tl.x;
        const int away = std::abs(rect.tl.x - from.tl.x) + std::abs(rect.tl.y - from.tl.y);
        if (item->canSelect() && next && (!best || away < bestAway)) {
            best = item;
            bestAway = away;
        }
    }
    if (best)
        selectItem(best);
    return best != nullptr;
}

WMenuItem* WMenu::findByLetter(uint32_t keysym, const WMenuItem* from) const {
    const uint32_t letter = foldCodepoint(rfb::unicodeFromKeysym(keysym));
    if (letter <= rfb::key::Space || items.empty())
        return nullptr;
    const auto begins = [letter](const WMenuItem& item) {
        const char* text = item.getText();
        uint32_t first = 0;
        return *text && plat::utf8::decode(&text, nullptr, &first) && foldCodepoint(first) == letter;
    };
    const auto at = std::find(items.begin(), items.end(), from);
    const size_t start = at == items.end() ? 0 : static_cast<size_t>(at - items.begin()) + 1;
    for (size_t n = 0; n < items.size(); ++n) {
        WMenuItem* item = items[(start + n) % items.size()];
        if (item->canSelect() && begins(*item))
            return item;
    }
    return nullptr;
}

bool WMenu::selectByLetter(uint32_t letter) {
    WMenuItem* found = findByLetter(letter, selected);
    if (found)
        selectItem(found);
    return found != nullptr;
}

bool WMenu::activateByLetter(uint32_t letter) {
    const auto i = std::find_if(items.begin(), items.end(),
                                [=](WMenuItem* item) { return item->canSelect() && item->matches(letter); });
    if (i == items.end())
        return false;
    selectItem(*i);
    (*i)->press();
    return true;
}

WMenuItem* WMenu::itemUnder(const Point& position) const {
    const auto i = std::find_if(items.begin(), items.end(), [&](WMenuItem* item) {
        return item->canSelect() && getChildRect(item).contains(position);
    });
    return i == items.end() ? nullptr : *i;
}

void WMenu::mouseEvent(const Point& position, int mask) {
    if (mask && !dragSeen)
        dragStart = position;
    dragSeen = dragSeen || mask;
    hoverSeen = hoverSeen || (!mask && !mouseMask);
    WLayout::mouseEvent(position, mask);
}

bool WMenu::mouseMove(const Point& position, Widget* origin) {
    WMenuItem* item = origin == this ? itemUnder(position) : nullptr;
    if (item && item != selected) {
        if (openMenu && openMenu != item->getSubmenu())
            closeSubmenu();
        openSubmenu(item, /*byKey=*/false);
    }
    return WLayout::mouseMove(position, origin);
}

bool WMenu::mouseDown(int button, Widget* origin) {
    if (origin != this || (button != 3 && button != 4) || wholeWidth <= laidOut.x || items.empty())
        return WLayout::mouseDown(button, origin);
    const int column = items.front()->getWidth() + spacing;
    scrollTo(scroll + (button == 3 ? -column : column));
    return true;
}

bool WMenu::mouseUp(int button, Widget* origin) {
    const WidgetWatch self(this);
    const bool used = WLayout::mouseUp(button, origin);
    if (!self.alive() || origin != this || button > 2 || !isShown())
        return used;
    const Point way = mousePos - dragStart;
    const bool meant = hoverSeen || std::abs(way.x) >= dragPx || std::abs(way.y) >= dragPx;
    WMenuItem* item = itemUnder(mousePos);
    if (!item || !meant)
        return used;
    selectItem(item);
    item->press();
    return true;
}

bool WMenu::mouseExit(Widget* origin) {
    if (!openMenu)
        selectItem(nullptr);
    return WLayout::mouseExit(origin);
}

WRootMenu::WRootMenu(Callback* target) : callback(target) {}

void WRootMenu::show(WRoot* root, const Point& position) {
    ASSERT(root);
    hideAll();
    const Point wanted = sizeOn(root);
    const Point room = root->screenSize() - wanted;
    showAt(root, {std::max(0, std::min(position.x, room.x)), std::max(0, std::min(position.y, room.y))},
           /*grab=*/true);
}

void WRootMenu::showRightAligned(WRoot* root, const Point& position) {
    ASSERT(root);
    show(root, {position.x - sizeOn(root).x, position.y});
}

void WRootMenu::hidden() {
    if (callback)
        callback->menuHidden(this);
}

} // namespace wvw
