// A menu of GTK.
#pragma once

#include "ui/gtkwrap/ctypes.h"

#include <memory>

namespace gtkwrap {

class Pixbuf;

class Menu {
public:
    class Item;

    static bool available();

    Menu();
    ~Menu(); ///< its items must have gone
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    /// Shows it until something is chosen; `position` is a GtkMenuPositionFunc for `data`, or null for the pointer.
    void popup(c::MenuPositionFunc* position, c::Object* data, unsigned button, unsigned time);

    c::Object* get() const { return menu.get(); }

private:
    Ref menu;
};

/// A line of a menu. It leaves the menu when it dies, and takes its own menu along.
class Menu::Item {
public:
    enum class Kind { Separator, Plain, Check };

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void menuItemChosen(Item* item) = 0; ///< from GTK: must not throw, nor destroy the item
    };

    /// Put at `place`, counted from 0, of a menu. `label` has "_" in front of its key, "__" for an underscore.
    Item(Menu& owner, int place, Kind kind, const char* label, Callback* target);
    ~Item();
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;

    void setLabel(const char* label);
    void setEnabled(bool on);
    void setChecked(bool on);           ///< of Kind::Check; choosing it does not change the mark
    void setImage(const Pixbuf& image); ///< of Kind::Plain

    Menu& submenu();      ///< made by the first call
    void removeSubmenu(); ///< its items must have gone

private:
    static void activate(c::Object*, void* self);

    Callback* callback;
    Kind kind;
    c::Object* widget; // the menu's
    bool checked = false;
    bool settling = false; // the mark is being put right
    std::unique_ptr<Menu> sub;
};

} // namespace gtkwrap
