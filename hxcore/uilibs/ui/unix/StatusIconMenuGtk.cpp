#include "ui/unix/StatusIconMenuGtk.h"

#include "ui/Menu.h"
#include "ui/gtkwrap/Pixbuf.h"
#include "ui/unix/StatusIconImage.h"

#include <string>

namespace ui {
namespace {
constexpr int markPx = 16; // GTK's own size of pictures in menus

gtkwrap::Menu::Item::Kind kindOf(const StatusIconMenu::Item& item) {
    using Kind = gtkwrap::Menu::Item::Kind;
    // With others under it, an item has no mark of its own.
    return item.isSeparator() ? Kind::Separator : item.checkable && item.children.empty() ? Kind::Check : Kind::Plain;
}
} // namespace

StatusIconMenuGtk::StatusIconMenuGtk(Callback* target, StatusIconMenu* model_) : callback(target), model(model_) {
    std::vector<const StatusIconMenu::Item*> todo(1, &model->root());
    while (!todo.empty()) {
        const StatusIconMenu::Item* item = todo.back();
        todo.pop_back();
        for (size_t place = 0; place < item->children.size(); ++place)
            makeWidget(*item->children[place], place);
        todo.insert(todo.end(), item->children.begin(), item->children.end());
    }
    model->addObserver(this);
}

StatusIconMenuGtk::~StatusIconMenuGtk() {
    model->removeObserver(this);
    // From the leaves up. Parents come before their children by handle, but not by id.
    std::vector<const StatusIconMenu::Item*> order(1, &model->root());
    for (size_t i = 0; i < order.size(); ++i) {
        const auto children = order[i]->children;
        order.insert(order.end(), children.begin(), children.end());
    }
    for (auto item = order.rbegin(); item != order.rend(); ++item)
        entries.erase((*item)->id);
}

gtkwrap::Menu& StatusIconMenuGtk::menuOf(const StatusIconMenu::Item& item) {
    const StatusIconMenu::Item& parent = *item.parent;
    return parent.parent ? entries.at(parent.id).widget->submenu() : root;
}

void StatusIconMenuGtk::makeWidget(const StatusIconMenu::Item& item, size_t place) {
    const std::string label = StatusIconMenu::withUnderscores(item.text.c_str());
    Entry entry{item.id, kindOf(item), nullptr};
    // Our base is private, so make_unique can't.
    entry.widget.reset(new gtkwrap::Menu::Item(menuOf(item), static_cast<int>(place), entry.kind, label.c_str(), this));
    entry.widget->setEnabled(item.enabled);
    entry.widget->setChecked(item.checked);
    if (item.flags & Menu::NeedsElevation && entry.kind == Kind::Plain) {
        const StatusIconImage mark = StatusIconImage::load("shield", markPx);
        if (!mark.isEmpty())
            entry.widget->setImage(gtkwrap::Pixbuf(mark.rgba.data(), mark.sizePx, mark.sizePx));
    }
    entries.insert_or_assign(item.id, std::move(entry));
}

void StatusIconMenuGtk::itemAdded(const StatusIconMenu::Item& item) {
    makeWidget(item, item.parent->children.size() - 1);
}

void StatusIconMenuGtk::itemToBeRemoved(const StatusIconMenu::Item& item) {
    entries.erase(item.id);
    if (item.parent->parent && item.parent->children.size() == 1)
        entries.at(item.parent->id).widget->removeSubmenu();
}

void StatusIconMenuGtk::itemChanged(const StatusIconMenu::Item& item) {
    Entry& entry = entries.at(item.id);
    if (entry.kind != kindOf(item) && item.children.empty()) {
        makeWidget(item, item.place()); // the old one still stands behind it, and goes when it is replaced
        return;
    }
    entry.widget->setLabel(StatusIconMenu::withUnderscores(item.text.c_str()).c_str());
    entry.widget->setEnabled(item.enabled);
    entry.widget->setChecked(item.checked);
}

void StatusIconMenuGtk::menuItemChosen(gtkwrap::Menu::Item* chosen) {
    for (const auto& [id, entry] : entries) {
        if (entry.widget.get() == chosen) {
            callback->gtkMenuItemChosen(id);
            return;
        }
    }
}

} // namespace ui
