// The menu of the icon in GTK.
#pragma once

#include "ui/gtkwrap/Menu.h"
#include "ui/unix/StatusIconMenu.h"

#include <map>
#include <memory>

namespace ui {

/// Follows a StatusIconMenu with a menu of GTK.
class StatusIconMenuGtk : private StatusIconMenu::Observer, private gtkwrap::Menu::Item::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void gtkMenuItemChosen(uint32_t id) = 0; ///< from GTK: must not throw
    };

    StatusIconMenuGtk(Callback* target, StatusIconMenu* model); ///< both borrowed
    ~StatusIconMenuGtk() override;

    gtkwrap::Menu& menu() { return root; }

private:
    // StatusIconMenu::Observer
    void itemAdded(const StatusIconMenu::Item& item) override;
    void itemToBeRemoved(const StatusIconMenu::Item& item) override;
    void itemChanged(const StatusIconMenu::Item& item) override;
    // gtkwrap::Menu::Item::Callback
    void menuItemChosen(gtkwrap::Menu::Item* item) override;

    using Kind = gtkwrap::Menu::Item::Kind;
    struct Entry {
        uint32_t id;
        Kind kind;
        std::unique_ptr<gtkwrap::Menu::Item> widget;
    };

    gtkwrap::Menu& menuOf(const StatusIconMenu::Item& item);
    void makeWidget(const StatusIconMenu::Item& item, size_t place);

    Callback* callback;
    StatusIconMenu* model;
    gtkwrap::Menu root;
    std::map<uint32_t, Entry> entries;
};

} // namespace ui
