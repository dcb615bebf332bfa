#include "ui/gtkwrap/Menu.h"

#include "ui/gtkwrap/Pixbuf.h"

namespace gtkwrap {
namespace {
const Fn<c::Object*()> menuNew{Library::Gtk, "gtk_menu_new"};
const Fn<void(c::Object*, c::Object*, c::Object*, c::MenuPositionFunc*, void*, unsigned, unsigned)> menuPopup{
    Library::Gtk, "gtk_menu_popup"};
const Fn<void(c::Object*, c::Object*, int)> shellInsert{Library::Gtk, "gtk_menu_shell_insert"};
const Fn<c::Object*()> separatorNew{Library::Gtk, "gtk_separator_menu_item_new"};
const Fn<c::Object*(const char*)> plainNew{Library::Gtk,
                                           "gtk_image_menu_item_new_with_mnemonic,gtk_menu_item_new_with_mnemonic"};
const Fn<c::Object*(const char*)> checkNew{Library::Gtk, "gtk_check_menu_item_new_with_mnemonic"};
const Fn<void(c::Object*, const char*)> itemSetLabel{Library::Gtk, "gtk_menu_item_set_label"};
const Fn<void(c::Object*, c::Object*)> itemSetSubmenu{Library::Gtk, "gtk_menu_item_set_submenu"};
const Fn<void(c::Object*, c::Bool)> checkSetActive{Library::Gtk, "gtk_check_menu_item_set_active"};
const Fn<void(c::Object*, c::Bool)> setSensitive{Library::Gtk, "gtk_widget_set_sensitive"};
// Without these an item has no picture.
const Fn<c::Object*(c::Object*)> imageFromPixbuf{Library::Gtk, "gtk_image_new_from_pixbuf"};
const Fn<void(c::Object*, c::Object*)> itemSetImage{Library::Gtk, "gtk_image_menu_item_set_image"};
const Fn<void(c::Object*, c::Bool)> itemAlwaysShowImage{Library::Gtk, "gtk_image_menu_item_set_always_show_image"};

c::Object* makeWidget(Menu::Item::Kind kind, const char* label) {
    switch (kind) {
    case Menu::Item::Kind::Separator:
        return separatorNew();
    case Menu::Item::Kind::Check:
        return checkNew(label);
    case Menu::Item::Kind::Plain:
        break;
    }
    return plainNew(label);
}
} // namespace

bool Menu::available() {
    return allAvailable(menuNew, menuPopup, shellInsert, separatorNew, plainNew, checkNew, itemSetLabel, itemSetSubmenu,
                        checkSetActive, setSensitive);
}

Menu::Menu() : menu(c::objectRefSink(static_cast<void*>(menuNew()))) {}

Menu::~Menu() { c::widgetDestroy(menu.get()); }

void Menu::popup(c::MenuPositionFunc* position, c::Object* data, unsigned button, unsigned time) {
    c::Object* const none = nullptr;
    menuPopup(get(), none, none, position, static_cast<void*>(data), button, time);
}

Menu::Item::Item(Menu& owner, int place, Kind kind_, const char* label, Callback* target)
    : callback(target), kind(kind_), widget(makeWidget(kind_, label)) {
    connectSignal(widget, "activate", &activate, this);
    shellInsert(owner.get(), widget, place);
    c::widgetShow(widget);
}

Menu::Item::~Item() {
    removeSubmenu();
    c::widgetDestroy(widget);
}

void Menu::Item::setLabel(const char* label) {
    if (kind != Kind::Separator)
        itemSetLabel(widget, label);
}

void Menu::Item::setEnabled(bool on) { setSensitive(widget, on ? 1 : 0); }

void Menu::Item::setChecked(bool on) {
    checked = on;
    if (kind != Kind::Check)
        return;
    settling = true; // setting it activates it
    checkSetActive(widget, on ? 1 : 0);
    settling = false;
}

void Menu::Item::setImage(const Pixbuf& image) {
    if (kind != Kind::Plain || !allAvailable(imageFromPixbuf, itemSetImage))
        return;
    itemSetImage(widget, imageFromPixbuf(image.get()));
    if (itemAlwaysShowImage.isAvailable())
        itemAlwaysShowImage(widget, 1);
}

Menu& Menu::Item::submenu() {
    if (!sub) {
        sub = std::make_unique<Menu>();
        itemSetSubmenu(widget, sub->get());
    }
    return *sub;
}

void Menu::Item::removeSubmenu() {
    if (!sub)
        return;
    itemSetSubmenu(widget, static_cast<c::Object*>(nullptr));
    sub.reset();
}

void Menu::Item::activate(c::Object*, void* self) {
    auto* item = static_cast<Item*>(self);
    if (item->settling || item->sub)
        return;
    item->setChecked(item->checked); // the choice has turned the mark over, which is not for GTK to decide
    item->callback->menuItemChosen(item);
}

} // namespace gtkwrap
