// Menu items in numbered sections.
#pragma once

#include "plat/NonCopyable.h"
#include "ui/Menu.h"

#include <vector>

namespace ui {

class MenuProxy;

/// Keeps the items of a menu in sections of ascending number, with exactly one separator between two sections that show
/// something, in whatever order they are filled, emptied or hidden.
class MenuGrouper : private plat::NonCopyable {
public:
    explicit MenuGrouper(MenuProxy* menu); ///< borrowed; all its items must come from here
    ~MenuGrouper();                        ///< takes its items out

    /// At the end of its section. `section` counts from 0; `action` is borrowed, may be null. The menu owns the item.
    Menu::Item* addItem(int section, const char* markedText, const char* imageName = nullptr,
                        Menu::ActionCallback* action = nullptr, unsigned flags = 0);
    void removeItem(Menu::Item* item); ///< deletes an item that addItem gave

    void setShown(Menu::Item* item, bool on); ///< an item that isn't shown is absent; shown at first

private:
    struct Section {
        std::vector<Menu::Item*> items;
        Menu::Item* separator = nullptr; // ahead of the items; null if there is nothing to separate
    };

    Menu::Item* firstOf(const Section& section) const; ///< null if it is empty
    bool showsSomething(const Section& section) const;
    void updateSeparators();

    MenuProxy* menu;
    std::vector<Section> sections;
};

} // namespace ui
