#include "mui/wvw/MuMenuBarWvw.h"

#include "mui/oneLine.h"
#include "plat/DString.h"

#include <algorithm>

namespace mui {

MuMenuBarWvwItem::MuMenuBarWvwItem(const char* markedText, int rank_)
    : ui::Menu::Item(markedText, nullptr, nullptr, 0), widget(markedText), items(widget.getMenu()), rank(rank_) {}

void MuMenuBarWvwItem::contentChanged() {
    widget.setTitle(getText());
    widget.setEnabled(enabled());
}

MuMenuBarWvw::MuMenuBarWvw() : MuElement("menubar"), commonWvw(this, &widget) { common = &commonWvw; }

MuMenuBarWvw::~MuMenuBarWvw() {
    widget.closeMenus();
    for (const auto& menu : menus)
        widget.removeMenu(&menu->getWidget());
    common = nullptr;
}

ui::Menu* MuMenuBarWvw::getMenu(Standard which) {
    for (const auto& menu : menus)
        if (menu->getRank() == which)
            return menu.get();
    return insert(standardText(which).c_str(), which);
}

ui::Menu* MuMenuBarWvw::addMenu(const char* markedText) { return insert(markedText, StandardCount); }

ui::Menu* MuMenuBarWvw::insert(const char* markedText, int rank) {
    const auto next =
        std::find_if(menus.begin(), menus.end(), [=](const auto& menu) { return menu->getRank() > rank; });
    wvw::WMenuBar::Menu* nextWidget = next == menus.end() ? nullptr : &(*next)->getWidget();
    const auto added = menus.insert(next, std::make_unique<MuMenuBarWvwItem>(markedText, rank));
    widget.addMenu(&(*added)->getWidget(), nextWidget);
    return added->get();
}

ui::Menu* MuMenuBarWvw::menuAt(int index) const {
    return index >= 0 && index < menuCount() ? menus[static_cast<size_t>(index)].get() : nullptr;
}

plat::String MuMenuBarWvw::getItems() {
    plat::DString list;
    for (size_t i = 0; i < menus.size(); ++i)
        list.format("%d:%s\n", static_cast<int>(i), oneLine(menus[i]->getText()).c_str());
    return list.isEmpty() ? plat::String() : list.take();
}

} // namespace mui
