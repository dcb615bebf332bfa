#include "wvw/WEditMenu.h"

#include "wvw/WMenu.h"

#include "loc/Localize.h"

namespace wvw {

WEditMenu::WEditMenu(Callback* target, int mask) : callback(target), menu(std::make_unique<WRootMenu>()) {
    addItem(mask & Copy, LOC_TEXT("hxutil_editmenu_copy"));
    addItem(mask & Paste, LOC_TEXT("hxutil_editmenu_paste"));
    addItem(mask & SelectAll, LOC_TEXT("hxutil_editmenu_select_all"));
}

WEditMenu::~WEditMenu() = default;

void WEditMenu::addItem(int choice, const char* text) {
    if (!choice)
        return;
    items.push_back(std::make_unique<WMenuItem>(text));
    values.push_back(choice);
    items.back()->setHandler(this);
    menu->add(items.back().get());
}

void WEditMenu::show(Widget* widget, const rfb::Point& position) {
    if (WRoot* root = widget->getRootWindow())
        menu->show(root, widget->getRootPosition(position));
}

void WEditMenu::hide() { menu->dismiss(); }

bool WEditMenu::activated(Widget* origin) {
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i].get() == origin) {
            callback->editMenuChosen(values[i]);
            return true;
        }
    }
    return false;
}

} // namespace wvw
