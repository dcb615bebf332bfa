#include "ui/MenuBar.h"

#include "loc/Localize.h"
#include "plat/Assert.h"
#include "plat/numbers.h"

#include <climits>

namespace ui {
namespace {
MenuBar* theBar = nullptr;
}

MenuBar::MenuBar() {
    const MenuBar* inst_ = theBar;
    ASSERT(!inst_);
    theBar = this;
}

MenuBar::~MenuBar() { theBar = nullptr; }

MenuBar* MenuBar::instance() { return theBar; }

Menu::Item* MenuBar::addAbout(Menu::ActionCallback* action) {
    return getMenu(Help)->addItem(LOC_TEXT("ui_menu_about"), nullptr, nullptr, action);
}

plat::String MenuBar::standardText(Standard which) {
    constexpr const char* keys[] = {"ui_menu_file", "ui_menu_edit", "ui_menu_view", "ui_menu_window", "ui_menu_help"};
    static_assert(std::size(keys) == StandardCount);
    return LOC_TEXT(keys[which]);
}

Menu::Item* MenuBar::findItem(const char* indexOrText) const {
    int index = 0;
    if (plat::parseIntInRange(indexOrText, 0, INT_MAX, index)) {
        for (int i = 0; i < menuCount(); ++i) {
            if (index < menuAt(i)->itemCount())
                return menuAt(i)->itemAt(index);
            index -= menuAt(i)->itemCount();
        }
    }
    for (int i = 0; i < menuCount(); ++i)
        if (Menu::Item* item = menuAt(i)->findText(indexOrText))
            return item;
    return nullptr;
}

} // namespace ui
