#include "ui/gtkwrap/StatusIcon.h"

#include "ui/gtkwrap/Menu.h"
#include "ui/gtkwrap/Pixbuf.h"

namespace gtkwrap {
namespace {
const Fn<c::Object*()> statusIconNew{Library::Gtk, "gtk_status_icon_new"};
const Fn<void(c::Object*, c::Object*)> setFromPixbuf{Library::Gtk, "gtk_status_icon_set_from_pixbuf"};
const Fn<void(c::Object*, const char*)> setTooltipText{Library::Gtk,
                                                       "gtk_status_icon_set_tooltip_text,gtk_status_icon_set_tooltip"};
const Fn<void(c::Object*, c::Bool)> iconSetVisible{Library::Gtk, "gtk_status_icon_set_visible"};
const Fn<c::Bool(c::Object*)> getVisible{Library::Gtk, "gtk_status_icon_get_visible"};
const Fn<c::Bool(c::Object*)> isEmbedded{Library::Gtk, "gtk_status_icon_is_embedded"};
const Fn<c::MenuPositionFunc> positionMenu{Library::Gtk, "gtk_status_icon_position_menu"};
} // namespace

bool StatusIcon::available() {
    return Pixbuf::available() && Menu::available() &&
           allAvailable(statusIconNew, setFromPixbuf, setTooltipText, iconSetVisible, getVisible, isEmbedded,
                        positionMenu);
}

StatusIcon::StatusIcon(Callback* target, Menu* menu_) : callback(target), menu(menu_), icon(statusIconNew()) {
    connectSignal(icon.get(), "notify::embedded", &changed, this);
    connectSignal(icon.get(), "notify::visible", &changed, this);
    connectSignal(icon.get(), "activate", &activate, this);
    connectSignal(icon.get(), "popup-menu", &popupMenu, this);
}

StatusIcon::~StatusIcon() {
    callback = nullptr; // making it invisible tells
    iconSetVisible(icon.get(), 0);
}

void StatusIcon::setImage(const Pixbuf& image) { setFromPixbuf(icon.get(), image.get()); }

void StatusIcon::setTooltip(const char* text) { setTooltipText(icon.get(), text); }

void StatusIcon::setVisible(bool on) { iconSetVisible(icon.get(), on ? 1 : 0); }

bool StatusIcon::isShown() const { return isVisible() && isEmbedded(icon.get()); }

bool StatusIcon::isVisible() const { return getVisible(icon.get()) != 0; }

void StatusIcon::changed(c::Object*, void*, void* self) {
    if (auto* icon = static_cast<StatusIcon*>(self); icon->callback)
        icon->callback->statusIconChanged();
}

void StatusIcon::activate(c::Object*, void* self) {
    if (auto* icon = static_cast<StatusIcon*>(self); icon->callback)
        icon->callback->statusIconActivated();
}

void StatusIcon::popupMenu(c::Object*, unsigned button, unsigned time, void* self) {
    auto* icon = static_cast<StatusIcon*>(self);
    icon->menu->popup(positionMenu.get(), icon->icon.get(), button, time);
}

} // namespace gtkwrap
