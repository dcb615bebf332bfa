#include "wvw/WTabSheets.h"

#include "wvw/WidgetWatch.h"

#include "hxutil/metrics.h"
#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

constexpr int tabInset = 3; // pixels, on the left and right of a title
constexpr int tabPadY = 5;
constexpr int titleMarginUnits = 18;
constexpr int rowInsetUnits = 16; // of the first tab from the left edge of the sheet
constexpr int tabGap = 2;         // pixels
constexpr int scrollUnits = 32;   // of the buttons that scroll the tabs

} // namespace

// WSheet

WSheet::WSheet(WLayout* layout) : WLayout(layout) {}

void WSheet::setChild(Widget* newChild) {
    if (child)
        removeChild(child);
    child = newChild;
    if (!child)
        return;
    addChild(child);
    setChildRect(child, getRect().expandBy(-margin));
}

void WSheet::removeChild(Widget* gone) {
    if (gone == child)
        child = nullptr;
    WLayout::removeChild(gone);
}

bool WSheet::sizeChanged(Widget* origin) {
    if (origin == this && child)
        setChildRect(child, Rect::xywh(margin, margin, std::max(0, getWidth() - 2 * margin),
                                       std::max(0, getHeight() - 2 * margin)));
    return WLayout::sizeChanged(origin);
}

Point WSheet::getPreferredSize() {
    return (child ? child->getPreferredSize() : Point()) + Point(2 * margin, 2 * margin);
}

int WSheet::getPreferredHeight(int width) {
    return (child ? child->getPreferredHeight(std::max(0, width - 2 * margin)) : 0) + 2 * margin;
}

// WTab

WTab::WTab(WTabSheets* sheets, const char* markedTitle) : owner(sheets), label(nullptr, markedTitle, /*hAlign=*/1) {
    label.setTransparent(true);
    label.setWrap(false);
    label.setMargin(hxutil::scaled(titleMarginUnits));
    setChild(&label);
}

void WTab::setTitle(const char* markedTitle) { label.setText(markedTitle); }

void WTab::setCurrent(bool on) {
    current = on;
    repaint();
}

Point WTab::getPreferredSize() { return getChild()->getPreferredSize() + Point(2 * tabInset, 2 * tabPadY); }

Rect WTab::childRect() const {
    return {tabInset, tabPadY, std::max(tabInset, getWidth() - tabInset), std::max(tabPadY, getHeight() - tabPadY)};
}

bool WTab::ownKey(uint32_t keysym) {
    const int last = owner->count() - 1;
    switch (keysym) {
    case key::Left:
        owner->chooseSheet(std::max(0, owner->current() - 1), /*focusTab=*/true);
        return true;
    case key::Right:
        owner->chooseSheet(std::min(last, owner->current() + 1), /*focusTab=*/true);
        return true;
    case key::Home:
        owner->chooseSheet(0, /*focusTab=*/true);
        return true;
    case key::End:
        owner->chooseSheet(last, /*focusTab=*/true);
        return true;
    default:
        return WBevelButton::ownKey(keysym);
    }
}

void WTab::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const int right = getWidth() - 1;
    const int bottom = getHeight();
    const Rect face(1, 1, right, bottom);
    if (current)
        fill(pb, face, look.bevelLight);
    else
        drawFace(pb, face, isHovered() && isEnabled() ? FaceState::Hover : FaceState::Disabled);
    for (const Rect& edge : {Rect(1, 0, right, 1), Rect(0, 1, 1, bottom), Rect(right, 1, right + 1, bottom)})
        fill(pb, edge, look.bevelDark);
    paintChildren(pb);
    if (hasFocus())
        drawFocus(pb, {3, 3, getWidth() - 3, bottom - 3}, /*dotted=*/true);
}

// WTabSheets

WTabSheets::WTabSheets(WLayout* layout, Callback* target)
    : WLayout(layout, /*routeMouse=*/true, /*propagateEnable=*/true), callback(target),
      tabRow(nullptr, /*routeMouse=*/true, /*propagateEnable=*/true), back(nullptr, WArrow::Direction::Left),
      forth(nullptr, WArrow::Direction::Right) {
    back.setVisible(false);
    forth.setVisible(false);
    addChild(&tabRow);
    addChild(&back);
    addChild(&forth);
}

WTabSheets::~WTabSheets() = default;

int WTabSheets::addSheet(const char* markedTitle, Widget* child) {
    sheets.push_back(std::make_unique<WSheet>());
    sheets.back()->setChild(child);
    sheets.back()->setVisible(false);
    addChild(sheets.back().get());
    tabs.push_back(std::make_unique<WTab>(this, markedTitle));
    tabs.back()->setEnabled(isEnabled());
    tabRow.addChild(tabs.back().get());
    const int index = count() - 1;
    if (currentIndex < 0)
        setSheet(index);
    arrange();
    return index;
}

void WTabSheets::removeSheet(int index) {
    ASSERT(index >= 0);
    ASSERT(index < (int)sheets.size());
    const int next = currentIndex > index || currentIndex == count() - 1 ? currentIndex - 1 : currentIndex;
    sheets[static_cast<size_t>(index)]->setChild(nullptr);
    sheets.erase(sheets.begin() + index);
    tabs.erase(tabs.begin() + index);
    currentIndex = -1;
    if (!sheets.empty())
        setSheet(std::max(0, next));
    arrange();
}

void WTabSheets::setTitle(int index, const char* markedTitle) {
    getTab(index)->setTitle(markedTitle);
    arrange();
}

WSheet* WTabSheets::getSheet(int index) const {
    ASSERT(index >= 0);
    ASSERT(index < (int)sheets.size());
    return sheets[static_cast<size_t>(index)].get();
}

WTab* WTabSheets::getTab(int index) const {
    ASSERT(index >= 0);
    ASSERT(index < (int)tabs.size());
    return tabs[static_cast<size_t>(index)].get();
}

void WTabSheets::setSheet(int index) {
    WSheet* shown = getSheet(index);
    WTab* tab = getTab(index);
    if (index == currentIndex)
        return;
    // What is shown comes first, so that the focus of what goes has somewhere to go.
    WSheet* old = currentIndex >= 0 ? getSheet(currentIndex) : nullptr;
    WTab* oldTab = currentIndex >= 0 ? getTab(currentIndex) : nullptr;
    const bool tabHadFocus = oldTab && oldTab->hasFocus();
    currentIndex = index;
    revealTab(index);
    placeTabs();
    shown->setVisible(true);
    tab->setCurrent(true);
    if (tabHadFocus || (old && old->hasFocus()))
        tab->takeFocus();
    if (oldTab)
        oldTab->setCurrent(false);
    if (old)
        old->setVisible(false);
    placeTabs();
    repaint();
}

void WTabSheets::chooseSheet(int index, bool focusTab) {
    if (index < 0 || index >= count() || !isEnabled())
        return;
    const WidgetWatch self(this);
    const bool changed = index != currentIndex;
    setSheet(index);
    if (focusTab && self.alive() && isAttached())
        getTab(index)->takeFocus();
    if (changed && self.alive() && callback)
        callback->sheetChanged(this, index);
}

bool WTabSheets::hotKey(uint32_t keysym) {
    if (!altDown() || !isEnabled())
        return false;
    for (int i = 0; i < count(); ++i) {
        const uint32_t mnemonic = getTab(i)->getLabel().getMnemonic();
        if (mnemonic && mnemonic == foldKeysym(keysym)) {
            chooseSheet(i, /*focusTab=*/true);
            return true;
        }
    }
    return false;
}

int WTabSheets::indexOf(const Widget* tab) const {
    const auto i = std::find_if(tabs.begin(), tabs.end(), [tab](const auto& entry) { return entry.get() == tab; });
    return i == tabs.end() ? -1 : static_cast<int>(i - tabs.begin());
}

bool WTabSheets::activated(Widget* origin) {
    const int index = indexOf(origin);
    if (index >= 0) {
        chooseSheet(index, /*focusTab=*/true);
        return true;
    }
    if (origin == &back || origin == &forth) {
        firstTab += origin == &back ? -1 : 1;
        placeTabs();
        return true;
    }
    return WLayout::activated(origin);
}

bool WTabSheets::keyEvent(uint32_t keysym, bool down, Widget* origin) {
    const bool turns = keysym == key::PageUp || keysym == key::PageDown || keysym == key::Tab;
    if (down && turns && ctrlDown() && count() > 0) {
        const bool forward = keysym == key::Tab ? !shiftDown() : keysym == key::PageDown;
        const int step = forward ? 1 : count() - 1;
        // Who was in the page goes on in the next one; who stood on the tabs stays there.
        chooseSheet((currentIndex + step) % count(), /*focusTab=*/indexOf(origin) >= 0);
        return true;
    }
    return WLayout::keyEvent(keysym, down, origin);
}

bool WTabSheets::mouseDown(int button, Widget* origin) {
    if ((button == 3 || button == 4) && (indexOf(origin) >= 0 || origin == &tabRow) && back.isVisible()) {
        firstTab += button == 3 ? -1 : 1;
        placeTabs();
        return true;
    }
    return WLayout::mouseDown(button, origin);
}

// Layout and looks.

int WTabSheets::tabHeight() const {
    int height = 0;
    for (const auto& tab : tabs)
        height = std::max(height, tab->getPreferredSize().y);
    return height;
}

Rect WTabSheets::sheetRect() const {
    const int top = tabHeight();
    return {0, top, getWidth(), std::max(top, getHeight())};
}

void WTabSheets::arrange() {
    const Rect area = sheetRect();
    for (const auto& sheet : sheets)
        setChildRect(sheet.get(), area);
    placeTabs();
    repaint();
}

int WTabSheets::tabWidths(int from, int to) const {
    int width = 0;
    for (int i = from; i < to; ++i)
        width += getTab(i)->getPreferredSize().x + (i > from ? tabGap : 0);
    return width;
}

int WTabSheets::tabRoom() const {
    const int room = std::max(0, getWidth() - 2 * hxutil::scaled(rowInsetUnits));
    const bool whole = count() < 2 || tabWidths(0, count()) <= room;
    return whole ? room : std::max(0, room - 2 * buttonWidth() - tabGap);
}

int WTabSheets::buttonWidth() const { return std::min({tabHeight(), hxutil::scaled(scrollUnits), getWidth() / 4}); }

void WTabSheets::revealTab(int index) {
    firstTab = std::min(firstTab, index);
    while (firstTab < index && tabWidths(firstTab, index + 1) > tabRoom())
        ++firstTab;
}

void WTabSheets::placeTabs() {
    const int height = tabHeight();
    const int inset = hxutil::scaled(rowInsetUnits);
    const int room = tabRoom();
    const bool scrolls = room < getWidth() - 2 * inset;
    // No further than until the last tab is whole.
    firstTab = scrolls ? std::clamp(firstTab, 0, count() - 1) : 0;
    while (firstTab > 0 && tabWidths(firstTab - 1, count()) <= room)
        --firstTab;
    back.setVisible(scrolls);
    forth.setVisible(scrolls);
    back.setEnabled(isEnabled() && firstTab > 0);
    forth.setEnabled(isEnabled() && scrolls && tabWidths(firstTab, count()) > room);
    const int px = buttonWidth();
    const Rect button = Rect::xywh(getWidth() - inset - 2 * px, (height - px) / 2, px, px);
    setChildRect(&back, button);
    setChildRect(&forth, button.translate({px, 0}));
    setChildRect(&tabRow, Rect::xywh(inset, 0, room, height));
    int x = 0;
    for (int i = 0; i < count(); ++i) {
        WTab* tab = getTab(i);
        const int width = tab->getPreferredSize().x;
        tab->setVisible(i >= firstTab);
        if (i < firstTab)
            continue;
        const int drop = i == currentIndex ? 0 : 1;
        tabRow.setChildRect(tab, Rect::xywh(x, drop, width, height - drop));
        x += width + tabGap;
    }
}

bool WTabSheets::sizeChanged(Widget* origin) {
    if (origin == this) {
        if (currentIndex >= 0)
            revealTab(currentIndex);
        arrange();
    }
    return WLayout::sizeChanged(origin);
}

void WTabSheets::styleChanged() {
    WLayout::styleChanged();
    arrange();
}

Point WTabSheets::getPreferredSize() {
    Point largest;
    for (const auto& sheet : sheets) {
        const Point wanted = sheet->getPreferredSize();
        largest = {std::max(largest.x, wanted.x), std::max(largest.y, wanted.y)};
    }
    int row = 2 * hxutil::scaled(rowInsetUnits);
    for (const auto& tab : tabs)
        row += tab->getPreferredSize().x + tabGap;
    return {std::max(largest.x, row), largest.y + tabHeight()};
}

int WTabSheets::getPreferredHeight(int width) {
    int height = 0;
    for (const auto& sheet : sheets)
        height = std::max(height, sheet->getPreferredHeight(width));
    return height + tabHeight();
}

void WTabSheets::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const Rect area = sheetRect();
    fill(pb, area.expandBy(-2), look.canvas);
    drawBevel(pb, area, /*sunken=*/false, /*thin=*/false);
    // The frame is open where the current tab meets it.
    if (currentIndex >= firstTab) {
        const Rect row = getChildRect(&tabRow);
        const Rect tab = tabRow.getChildRect(getTab(currentIndex)).translate(row.tl);
        fill(pb, {tab.tl.x + 1, area.tl.y, std::min(tab.br.x - 1, row.br.x), area.tl.y + 1}, look.bevelLight);
    }
    paintChildren(pb);
}

} // namespace wvw
