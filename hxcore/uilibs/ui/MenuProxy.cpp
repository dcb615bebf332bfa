#include "ui/MenuProxy.h"

#include "plat/Assert.h"

#include <algorithm>

namespace ui {

/// A real menu, and which of its items stands for which of ours.
struct MenuProxy::Attachment {
    struct Pair {
        const Item* ours;
        Menu::Item* real;
    };

    Menu::Item* realOf(const Item* item) const {
        for (const Pair& each : pairs)
            if (each.ours == item)
                return each.real;
        return nullptr;
    }

    Menu* menu;
    Menu::Item* before; // null: the end
    std::vector<Pair> pairs;
};

/// Passes every change on to the real items.
class MenuProxy::Item : public Menu::Item {
public:
    Item(MenuProxy* owner_, const char* markedText, const char* imageName, Menu::ActionCallback* action_,
         unsigned flags_)
        : Menu::Item(markedText, imageName, action_, flags_), owner(owner_) {}

    void setText(const char* markedText) override {
        Menu::Item::setText(markedText);
        forEachReal([this](Menu::Item* real) { real->setText(getText()); });
    }
    void setImage(const char* imageName) override {
        Menu::Item::setImage(imageName);
        forEachReal([this](Menu::Item* real) { real->setImage(getImage()); });
    }
    void setEnabled(bool on) override {
        Menu::Item::setEnabled(on);
        forEachReal([on](Menu::Item* real) { real->setEnabled(on); });
    }
    void setChecked(bool on) override {
        Menu::Item::setChecked(on);
        forEachReal([on](Menu::Item* real) { real->setChecked(on); });
    }

    bool shown = true;

private:
    template <class Function>
    void forEachReal(Function change) {
        for (const auto& each : owner->attached)
            if (Menu::Item* real = each->realOf(this))
                change(real);
    }

    MenuProxy* owner;
};

MenuProxy::MenuProxy() = default;

MenuProxy::~MenuProxy() {
    while (!attached.empty())
        detach(attached.back()->menu);
}

Menu::Item* MenuProxy::addItem(const char* markedText, const char* imageName, Menu::Item* before,
                               Menu::ActionCallback* action, unsigned flags) {
    const size_t place = placeOf(before);
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(place),
                 std::make_unique<Item>(this, markedText, imageName, action, flags));
    for (const auto& each : attached)
        addReal(*each, place);
    return items[place].get();
}

void MenuProxy::removeItem(Menu::Item* item) {
    const size_t place = placeOf(item);
    ASSERT(place < items.size());
    for (const auto& each : attached)
        removeReal(*each, items[place].get());
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(place));
}

int MenuProxy::itemCount() const {
    return static_cast<int>(std::count_if(items.begin(), items.end(), [](const auto& each) { return each->shown; }));
}

Menu::Item* MenuProxy::itemAt(int index) const {
    for (const auto& each : items)
        if (each->shown && index-- == 0)
            return each.get();
    return nullptr;
}

void MenuProxy::setShown(Menu::Item* item, bool on) {
    const size_t place = placeOf(item);
    ASSERT(place < items.size());
    if (items[place]->shown == on)
        return;
    items[place]->shown = on;
    for (const auto& each : attached) {
        if (on)
            addReal(*each, place);
        else
            removeReal(*each, items[place].get());
    }
}

bool MenuProxy::isShown(const Menu::Item* item) const {
    const size_t place = placeOf(item);
    return place < items.size() && items[place]->shown;
}

void MenuProxy::attach(Menu* menu, Menu::Item* before) {
    attached.push_back(std::make_unique<Attachment>(Attachment{menu, before, {}}));
    for (size_t place = 0; place < items.size(); ++place)
        addReal(*attached.back(), place);
}

void MenuProxy::detach(Menu* menu) {
    const auto found =
        std::find_if(attached.begin(), attached.end(), [menu](const auto& each) { return each->menu == menu; });
    if (found == attached.end())
        return;
    for (const Attachment::Pair& each : (*found)->pairs)
        menu->removeItem(each.real);
    attached.erase(found);
}

void MenuProxy::menuAction(Menu::Item* real) {
    for (const auto& each : attached)
        for (const Attachment::Pair& pair : each->pairs)
            if (pair.real == real) {
                // Its callback may change both lists, so nothing here is touched after it.
                items[placeOf(pair.ours)]->invoke();
                return;
            }
}

size_t MenuProxy::placeOf(const Menu::Item* item) const {
    return static_cast<size_t>(
        std::find_if(items.begin(), items.end(), [item](const auto& each) { return each.get() == item; }) -
        items.begin());
}

void MenuProxy::addReal(Attachment& to, size_t place) {
    const Item* item = items[place].get();
    if (!item->shown)
        return;
    Menu::Item* before = nullptr;
    for (size_t next = place + 1; next < items.size() && !before; ++next)
        before = to.realOf(items[next].get());
    Menu::Item* real =
        to.menu->addItem(item->getText(), item->getImage(), before ? before : to.before,
                         item->isSeparator() ? nullptr : static_cast<Menu::ActionCallback*>(this), item->getFlags());
    if (!item->enabled())
        real->setEnabled(false);
    if (item->checked())
        real->setChecked(true);
    to.pairs.push_back({item, real});
}

void MenuProxy::removeReal(Attachment& from, const Item* item) {
    const auto found = std::find_if(from.pairs.begin(), from.pairs.end(),
                                    [item](const Attachment::Pair& each) { return each.ours == item; });
    if (found == from.pairs.end())
        return;
    from.menu->removeItem(found->real);
    from.pairs.erase(found);
}

} // namespace ui
