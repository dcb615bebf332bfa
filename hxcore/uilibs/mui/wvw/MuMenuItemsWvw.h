// The lines of a menu that a widget shows.
#pragma once

#include "plat/NonCopyable.h"
#include "ui/Menu.h"
#include "wvw/WMenu.h"

#include <memory>
#include <vector>

namespace mui {

/// Keeps the items of a ui::Menu in a wvw::WMenu.
class MuMenuItemsWvw : private plat::NonCopyable {
public:
    explicit MuMenuItemsWvw(wvw::WMenu& menu); ///< borrowed, outlives this
    ~MuMenuItemsWvw();

    // As those of ui::Menu
    ui::Menu::Item* add(const char* markedText, const char* imageName, ui::Menu::Item* before,
                        ui::Menu::ActionCallback* action, unsigned flags);
    void remove(ui::Menu::Item* item);
    int count() const { return static_cast<int>(items.size()); }
    ui::Menu::Item* at(int index) const;

private:
    class Item;

    wvw::WMenu& menu;
    std::vector<std::unique_ptr<Item>> items;
};

} // namespace mui
