#include "ui/MenuGrouper.h"

#include "plat/Assert.h"
#include "ui/MenuProxy.h"

#include <algorithm>

namespace ui {

MenuGrouper::MenuGrouper(MenuProxy* menu_) : menu(menu_) {}

MenuGrouper::~MenuGrouper() {
    for (const Section& section : sections) {
        if (section.separator)
            menu->removeItem(section.separator);
        for (Menu::Item* item : section.items)
            menu->removeItem(item);
    }
}

Menu::Item* MenuGrouper::addItem(int section, const char* markedText, const char* imageName,
                                 Menu::ActionCallback* action, unsigned flags) {
    ASSERT(section >= 0);
    const auto index = static_cast<size_t>(section);
    if (sections.size() <= index)
        sections.resize(index + 1);
    Menu::Item* before = nullptr;
    for (size_t next = index + 1; next < sections.size() && !before; ++next)
        before = firstOf(sections[next]);
    Menu::Item* item = menu->addItem(markedText, imageName, before, action, flags);
    sections[index].items.push_back(item);
    updateSeparators();
    return item;
}

void MenuGrouper::removeItem(Menu::Item* item) {
    for (Section& section : sections)
        if (const auto found = std::find(section.items.begin(), section.items.end(), item);
            found != section.items.end()) {
            section.items.erase(found);
            // The separator goes first, so that no menu ever shows one at its end.
            updateSeparators();
            menu->removeItem(item);
            return;
        }
    plat::assertFailed("an item of this menu", __FILE_NAME__, __LINE__);
}

void MenuGrouper::setShown(Menu::Item* item, bool on) {
    menu->setShown(item, on);
    updateSeparators();
}

Menu::Item* MenuGrouper::firstOf(const Section& section) const {
    if (section.separator)
        return section.separator;
    return section.items.empty() ? nullptr : section.items.front();
}

bool MenuGrouper::showsSomething(const Section& section) const {
    return std::any_of(section.items.begin(), section.items.end(),
                       [this](const Menu::Item* item) { return menu->isShown(item); });
}

void MenuGrouper::updateSeparators() {
    bool somethingAbove = false;
    for (Section& section : sections) {
        const bool shows = showsSomething(section);
        const bool wanted = shows && somethingAbove;
        if (wanted && !section.separator)
            section.separator = menu->addSeparator(section.items.front());
        if (!wanted && section.separator) {
            menu->removeItem(section.separator);
            section.separator = nullptr;
        }
        somethingAbove |= shows;
    }
}

} // namespace ui
