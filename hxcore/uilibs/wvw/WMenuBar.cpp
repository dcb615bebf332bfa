#include "wvw/WMenuBar.h"

#include "wvw/WRoot.h"

#include "hxutil/metrics.h"
#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <utility>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

constexpr int marginUnits = 16; // beside a title
constexpr int padY = 4;         // pixels

Widget* topOf(Widget* widget) {
    while (widget->getParentLayout())
        widget = widget->getParentLayout();
    return widget;
}

} // namespace

/// The menu under a title; hands on the keys that lead to the next one.
class WMenuBar::Menu::Popup : public WRootMenu {
public:
    explicit Popup(Menu* owner_) : WRootMenu(static_cast<WRootMenu::Callback*>(owner_)), owner(owner_) {}

    // Widget: what was chosen is told as if it had happened in the bar, since the window of the menu has gone.
    bool activated(Widget* origin) override {
        return WRootMenu::activated(origin) || (owner->bar && owner->bar->activated(origin));
    }

protected:
    bool unusedKey(uint32_t keysym) override {
        if (!owner->bar || (keysym != key::Left && keysym != key::Right))
            return false;
        owner->bar->go(owner, keysym == key::Right, /*openIt=*/true);
        return true;
    }

private:
    Menu* owner;
};

// A title

WMenuBar::Menu::Menu(const char* markedTitle)
    : label(nullptr, markedTitle, /*hAlign=*/1), popup(std::make_unique<Popup>(this)) {
    label.setTransparent(true);
    label.setWrap(false);
    label.setMargin(0);
    addChild(&label);
}

WMenuBar::Menu::~Menu() {
    if (bar)
        bar->removeMenu(this);
}

WMenu& WMenuBar::Menu::getMenu() { return *popup; }

void WMenuBar::Menu::setTitle(const char* markedTitle) {
    label.setText(markedTitle);
    if (bar)
        bar->arrange();
}

bool WMenuBar::Menu::isOpen() const { return popup->isShown(); }

void WMenuBar::Menu::open(bool byKey) {
    WRoot* root = getRootWindow();
    if (!root || !isEnabled() || isOpen() || popup->itemCount() == 0)
        return;
    if (bar)
        bar->closeMenus();
    if (acceptsFocus())
        takeFocus();
    popup->setStyle(&getStyle());
    const Point corner = getRootPosition();
    popup->show(root, {corner.x, corner.y + getHeight()});
    if (byKey && isOpen())
        popup->moveSelection(/*down=*/true);
    updateLook();
}

void WMenuBar::Menu::menuHidden(WRootMenu*) { updateLook(); }

void WMenuBar::Menu::updateLook() {
    WStyle look = getStyle();
    look.text = look.selectionText;
    label.setStyle(isOpen() ? &look : nullptr);
    repaint();
}

bool WMenuBar::Menu::acceptsFocus() { return bar && bar->cameFrom && WButton::acceptsFocus(); }

void WMenuBar::Menu::setEnabled(bool on) {
    if (!on)
        popup->dismiss();
    WButton::setEnabled(on);
}

void WMenuBar::Menu::detach() {
    popup->dismiss();
    WButton::detach();
}

Point WMenuBar::Menu::getPreferredSize() {
    return label.getPreferredSize() + Point(2 * hxutil::scaled(marginUnits), 2 * padY);
}

bool WMenuBar::Menu::sizeChanged(Widget* origin) {
    if (origin == this)
        setChildRect(&label, getRect());
    return WButton::sizeChanged(origin);
}

bool WMenuBar::Menu::mouseMove(const Point& position, Widget* origin) {
    // While a menu is open, the pointer alone goes on to the next.
    const Menu* other = bar ? bar->openMenu() : nullptr;
    const WidgetWatch self(this);
    if (origin == this && other && other != this && getRect().contains(position))
        open(/*byKey=*/false);
    return !self.alive() || WButton::mouseMove(position, origin);
}

bool WMenuBar::Menu::mouseDown(int button, Widget* origin) {
    if (origin != this || button != 0 || !isEnabled())
        return WButton::mouseDown(button, origin);
    // Not as a button: the release goes to the menu, which has the pointer by then.
    open(/*byKey=*/false);
    return true;
}

bool WMenuBar::Menu::ownKey(uint32_t keysym) {
    switch (keysym) {
    case key::Return:
    case key::Space:
    case key::Down:
    case key::Up:
        open(/*byKey=*/true);
        return true;
    case key::Left:
    case key::Right:
        if (bar)
            bar->go(this, keysym == key::Right, /*openIt=*/false);
        return true;
    case key::Escape:
    case key::F10:
        if (bar)
            bar->leaveByKey();
        return true;
    default:
        return false;
    }
}

void WMenuBar::Menu::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    if (isOpen())
        fill(pb, getRect(), look.selectionBg);
    else if (isHovered() && isEnabled())
        drawFace(pb, getRect(), FaceState::Hover);
    paintChildren(pb);
    if (hasFocus() && !isOpen())
        drawFocus(pb, getRect().expandBy(-1), /*dotted=*/true);
}

// The bar

WMenuBar::WMenuBar(WLayout* layout) : WLayout(layout, /*routeMouse=*/true, /*propagateEnable=*/true) {}

WMenuBar::~WMenuBar() {
    for (Menu* menu : menus)
        menu->bar = nullptr;
}

void WMenuBar::addMenu(Menu* menu, Menu* before) {
    ASSERT(!menu->bar);
    const auto i = before ? std::find(menus.begin(), menus.end(), before) : menus.end();
    menus.insert(i, menu);
    menu->bar = this;
    addChild(menu, before);
    arrange();
}

void WMenuBar::removeMenu(Menu* menu) {
    if (menu->bar != this)
        return;
    menu->popup->dismiss();
    menus.erase(std::find(menus.begin(), menus.end(), menu));
    menu->bar = nullptr;
    removeChild(menu);
    arrange();
}

WMenuBar::Menu* WMenuBar::openMenu() const {
    const auto i = std::find_if(menus.begin(), menus.end(), [](const Menu* menu) { return menu->isOpen(); });
    return i == menus.end() ? nullptr : *i;
}

void WMenuBar::closeMenus() {
    if (Menu* menu = openMenu())
        menu->popup->dismiss();
}

void WMenuBar::go(Menu* from, bool forward, bool openIt) {
    const auto count = menus.size();
    auto index = static_cast<size_t>(std::find(menus.begin(), menus.end(), from) - menus.begin());
    for (size_t n = 0; n < count; ++n) {
        index = (index + (forward ? 1 : count - 1)) % count;
        Menu* menu = menus[index];
        if (!menu->isEnabled() || !menu->isVisible())
            continue;
        if (openIt)
            menu->open(/*byKey=*/true);
        else
            menu->takeFocus();
        return;
    }
}

void WMenuBar::enter(Menu* menu) {
    auto* top = dynamic_cast<WLayout*>(topOf(this));
    Widget* focus = top ? top->findFocus() : nullptr;
    cameFrom = std::make_unique<WidgetWatch>(focus == top ? nullptr : focus);
    if (!menu->takeFocus())
        cameFrom.reset();
}

void WMenuBar::leaveByKey() {
    const std::unique_ptr<WidgetWatch> back = std::move(cameFrom);
    if (!back || !back->alive() || !back->get()->takeFocus())
        setFocusChild(nullptr);
}

bool WMenuBar::hotKey(uint32_t keysym) {
    if (!isEnabled() || !isVisible() || !isAttached())
        return false;
    for (Menu* menu : menus) {
        if (!menu->isEnabled() || !menu->isVisible())
            continue;
        const uint32_t mnemonic = menu->label.getMnemonic();
        if (keysym == key::F10 && !shiftDown()) {
            enter(menu);
            return true;
        }
        if (altDown() && mnemonic && mnemonic == foldKeysym(keysym)) {
            menu->open(/*byKey=*/true);
            return true;
        }
    }
    return false;
}

bool WMenuBar::focusChanged(bool backward, Widget* origin) {
    // The titles can have the focus only until it goes elsewhere.
    if (origin == this && !hasFocus() && !openMenu())
        cameFrom.reset();
    return WLayout::focusChanged(backward, origin);
}

void WMenuBar::arrange() {
    int x = 0;
    for (Menu* menu : menus) {
        const int width = menu->isVisible() ? menu->getPreferredSize().x : 0;
        setChildRect(menu, Rect::xywh(x, 0, width, std::max(0, getHeight() - 1)));
        x += width;
    }
    repaint();
}

bool WMenuBar::sizeChanged(Widget* origin) {
    if (origin == this)
        arrange();
    return WLayout::sizeChanged(origin);
}

Point WMenuBar::getPreferredSize() {
    Point all;
    for (Menu* menu : menus) {
        const Point one = menu->getPreferredSize();
        all = {all.x + one.x, std::max(all.y, one.y + 1)};
    }
    return all;
}

void WMenuBar::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    fill(pb, getRect(), look.canvas);
    fill(pb, {0, getHeight() - 1, getWidth(), getHeight()}, look.bevelShadow);
    paintChildren(pb);
}

} // namespace wvw
