// The menus at the top of a window.
#pragma once

#include "plat/NonCopyable.h"
#include "ui/Menu.h"

namespace ui {

/// The application's menu bar, with the menus that every application has. One in a process: asserts "!inst_".
class MenuBar : private plat::NonCopyable {
public:
    enum Standard { File, Edit, View, Window, Help, StandardCount };

    MenuBar();
    virtual ~MenuBar();

    static MenuBar* instance(); ///< null while there is none

    /// Made at the first call; they stand in the order of the enum, before those that addMenu makes.
    virtual Menu* getMenu(Standard which) = 0;
    virtual Menu* addMenu(const char* markedText) = 0; ///< ours
    virtual int menuCount() const = 0;
    virtual Menu* menuAt(int index) const = 0; ///< from the left; null if out of range

    /// "About..." at the end of the help menu. `action` is borrowed.
    Menu::Item* addAbout(Menu::ActionCallback* action);

    /// The text of a standard menu, with the mark of its key.
    static plat::String standardText(Standard which);

    /// An item of any of the menus: by the decimal number of its place in all of them, one after the other, or else by
    /// its text. Null if there is none.
    Menu::Item* findItem(const char* indexOrText) const;
};

} // namespace ui
