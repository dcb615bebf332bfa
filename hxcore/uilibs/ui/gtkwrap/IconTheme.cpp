#include "ui/gtkwrap/IconTheme.h"

namespace gtkwrap {
namespace {
const Fn<c::Object*(const char*)> themedIconNew{Library::Gio, "g_themed_icon_new_with_default_fallbacks"};
const Fn<const char*(c::IconInfo*)> infoGetFilename{Library::Gtk, "gtk_icon_info_get_filename"};
const Fn<void(c::IconInfo*)> infoFree{Library::Gtk, "gtk_icon_info_free"};
const Fn<c::Object*()> themeGetDefault{Library::Gtk, "gtk_icon_theme_get_default"};
const Fn<c::Bool(c::Object*, const char*)> themeHasIcon{Library::Gtk, "gtk_icon_theme_has_icon"};
const Fn<c::IconInfo*(c::Object*, const char*, int, int)> themeLookupIcon{Library::Gtk, "gtk_icon_theme_lookup_icon"};
const Fn<c::IconInfo*(c::Object*, c::Object*, int, int)> themeLookupByGicon{Library::Gtk,
                                                                            "gtk_icon_theme_lookup_by_gicon"};
} // namespace

bool ThemedIcon::available() { return allAvailable(themedIconNew, c::objectUnref); }

ThemedIcon::ThemedIcon(const char* name) : icon(themedIconNew(name)) {}

bool IconInfo::available() { return allAvailable(infoGetFilename, infoFree); }

IconInfo::~IconInfo() {
    if (info)
        infoFree(info);
}

plat::String IconInfo::fileName() const { return {info ? infoGetFilename(info) : nullptr}; }

bool IconTheme::available() {
    return IconInfo::available() && allAvailable(themeGetDefault, themeHasIcon, themeLookupIcon, themeLookupByGicon);
}

bool IconTheme::hasIcon(const char* name) { return themeHasIcon(themeGetDefault(), name) != 0; }

IconInfo IconTheme::find(const char* name, int sizePx) {
    return IconInfo(themeLookupIcon(themeGetDefault(), name, sizePx, /*flags=*/0));
}

IconInfo IconTheme::find(const ThemedIcon& icon, int sizePx) {
    return IconInfo(themeLookupByGicon(themeGetDefault(), icon.get(), sizePx, /*flags=*/0));
}

} // namespace gtkwrap
