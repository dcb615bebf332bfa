// A menu that nobody sees.
#pragma once

#include "ui/Menu.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace ui {

class FakeMenu : public Menu {
public:
    class FakeItem : public Menu::Item {
    public:
        FakeItem(const char* markedText, const char* imageName, ActionCallback* action_, unsigned flags_)
            : Item(markedText, imageName, action_, flags_) {}
    };

    Item* addItem(const char* text, const char* image, Item* before, ActionCallback* action, unsigned flags) override {
        const auto at =
            std::find_if(items.begin(), items.end(), [&](const auto& each) { return each.get() == before; });
        return items.insert(at, std::make_unique<FakeItem>(text, image, action, flags))->get();
    }
    void removeItem(Item* item) override {
        items.erase(std::find_if(items.begin(), items.end(), [&](const auto& each) { return each.get() == item; }));
    }
    int itemCount() const override { return static_cast<int>(items.size()); }
    Item* itemAt(int index) const override {
        return index >= 0 && index < itemCount() ? items[static_cast<size_t>(index)].get() : nullptr;
    }

    std::vector<std::unique_ptr<Item>> items;
};

/// The texts in a row: "a b - c*!", "-" for a separator, "*" for checked, "!" for disabled.
inline std::string shape(const Menu& menu) {
    std::string out;
    for (int i = 0; i < menu.itemCount(); ++i) {
        const Menu::Item& item = *menu.itemAt(i);
        out += out.empty() ? "" : " ";
        out += item.isSeparator() ? "-" : item.getText();
        out += item.checked() ? "*" : "";
        out += item.enabled() ? "" : "!";
    }
    return out;
}

} // namespace ui
