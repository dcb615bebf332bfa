// The menu bar of a dialog.
#pragma once

#include "mui/MuElement.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuMenuItemsWvw.h"
#include "ui/MenuBar.h"
#include "wvw/WMenuBar.h"

#include <memory>
#include <vector>

namespace mui {

/// A title in the bar, and the menu under it.
class MuMenuBarWvwItem : public ui::Menu::Item, public ui::Menu {
public:
    MuMenuBarWvwItem(const char* markedText, int rank);

    int getRank() const { return rank; } ///< a smaller one stands further left
    wvw::WMenuBar::Menu& getWidget() { return widget; }

    // ui::Menu::Item
    void contentChanged() override;

    // ui::Menu
    ui::Menu::Item* addItem(const char* markedText, const char* imageName, ui::Menu::Item* before,
                            ActionCallback* callback, unsigned itemFlags) override {
        return items.add(markedText, imageName, before, callback, itemFlags);
    }
    void removeItem(ui::Menu::Item* item) override { items.remove(item); }
    int itemCount() const override { return items.count(); }
    ui::Menu::Item* itemAt(int index) const override { return items.at(index); }

private:
    wvw::WMenuBar::Menu widget;
    MuMenuItemsWvw items;
    int rank;
};

/// An element "menubar". Made by a dialog's menuBar(), which also gives it the keys that nobody used.
class MuMenuBarWvw : public MuElement, public ui::MenuBar {
public:
    MuMenuBarWvw();
    ~MuMenuBarWvw() override;

    bool hotKey(uint32_t keysym) { return widget.hotKey(keysym); }

    // ui::MenuBar
    ui::Menu* getMenu(Standard which) override;
    ui::Menu* addMenu(const char* markedText) override;
    int menuCount() const override { return static_cast<int>(menus.size()); }
    ui::Menu* menuAt(int index) const override;

    // MuElement
    const char* getType() override { return "menubar"; }
    plat::String getItems() override; ///< the titles

private:
    ui::Menu* insert(const char* markedText, int rank);

    wvw::WMenuBar widget;
    MuCommonWvw commonWvw;
    std::vector<std::unique_ptr<MuMenuBarWvwItem>> menus; // by rank
};

} // namespace mui
