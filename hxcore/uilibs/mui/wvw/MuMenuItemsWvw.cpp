#include "mui/wvw/MuMenuItemsWvw.h"

#include "plat/Assert.h"
#include "wvw/InputHandler.h"

#include <algorithm>

namespace mui {

/// One line and its widget.
class MuMenuItemsWvw::Item : public ui::Menu::Item, private wvw::WInputHandler {
public:
    Item(const char* markedText, const char* imageName, ui::Menu::ActionCallback* callback, unsigned itemFlags)
        : ui::Menu::Item(markedText, imageName, callback, itemFlags), widget(markedText) {
        widget.setHandler(this);
        show();
    }
    ~Item() override { widget.setHandler(nullptr); }

    void contentChanged() override { show(); }

    wvw::WMenuItem widget;

private:
    void show() {
        widget.setText(getText());
        widget.setImage(getImage());
        widget.setElevated((getFlags() & ui::Menu::NeedsElevation) != 0);
        widget.setChecked(checked());
        widget.setEnabled(enabled());
    }

    bool activated(wvw::Widget* origin) override {
        if (origin != &widget)
            return false;
        invoke(); // the item may be gone
        return true;
    }
};

MuMenuItemsWvw::MuMenuItemsWvw(wvw::WMenu& menu_) : menu(menu_) {}

MuMenuItemsWvw::~MuMenuItemsWvw() {
    for (const auto& item : items)
        menu.remove(&item->widget);
}

ui::Menu::Item* MuMenuItemsWvw::add(const char* markedText, const char* imageName, ui::Menu::Item* before,
                                    ui::Menu::ActionCallback* action, unsigned flags) {
    const auto next =
        before ? std::find_if(items.begin(), items.end(), [=](const auto& item) { return item.get() == before; })
               : items.end();
    ASSERT(!before || next != items.end());
    wvw::WMenuItem* nextWidget = next == items.end() ? nullptr : &(*next)->widget;
    const auto added = items.insert(next, std::make_unique<Item>(markedText, imageName, action, flags));
    menu.add(&(*added)->widget, nextWidget);
    return added->get();
}

void MuMenuItemsWvw::remove(ui::Menu::Item* item) {
    const auto found = std::find_if(items.begin(), items.end(), [=](const auto& entry) { return entry.get() == item; });
    ASSERT(found != items.end());
    menu.remove(&(*found)->widget);
    items.erase(found);
}

ui::Menu::Item* MuMenuItemsWvw::at(int index) const {
    return index >= 0 && index < count() ? items[static_cast<size_t>(index)].get() : nullptr;
}

} // namespace mui
