#include "ui/gtkwrap/Symbol.h"

#include "plat/DynamicFn.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <dlfcn.h>

namespace gtkwrap {
namespace {
plat::LogSrc log("gtkwrap");

constexpr const char* gtk2Name = "gtk-x11-2.0[0]";
constexpr const char* gtk3Name = "gtk-3[0]";

bool isMapped(const char* file) {
    void* handle = dlopen(file, RTLD_LAZY | RTLD_NOLOAD);
    if (handle)
        dlclose(handle); // the count that this took
    return handle != nullptr;
}

bool loads(const char* library) {
    char error[256];
    if (plat::findDynamicSymbol(library, "gtk_init_check", error, sizeof error))
        return true;
    log.debug("%s", error);
    return false;
}

GtkVersion chooseVersion() {
    if (isMapped("libgtk-3.so.0"))
        return GtkVersion::Gtk3;
    if (isMapped("libgtk-x11-2.0.so.0") || loads(gtk2Name))
        return GtkVersion::Gtk2;
    return loads(gtk3Name) ? GtkVersion::Gtk3 : GtkVersion::None;
}

} // namespace

GtkVersion gtkVersion() {
    static const GtkVersion version = chooseVersion();
    return version;
}

const char* libraryNames(Library library, GtkVersion version) {
    switch (library) {
    case Library::GdkPixbuf:
        return "gdk_pixbuf-2.0[0]";
    case Library::Glib:
        return "glib-2.0[0]";
    case Library::Gobject:
        return "gobject-2.0[0]";
    case Library::Gio:
        return "gio-2.0[0]";
    case Library::GnomeVfs:
        return "gnomevfs-2[0]";
    case Library::GnomeUi:
        return "gnomeui-2[0]";
    case Library::Gtk:
        return version == GtkVersion::Gtk2 ? gtk2Name : version == GtkVersion::Gtk3 ? gtk3Name : "";
    case Library::AppIndicator:
        return version == GtkVersion::Gtk2   ? "appindicator[1],ayatana-appindicator[1]"
               : version == GtkVersion::Gtk3 ? "appindicator3[1],ayatana-appindicator3[1]"
                                             : "";
    }
    return "";
}

bool Symbol::isAvailable() const {
    if (looked)
        return symbol != nullptr;
    looked = true;
    char error[256];
    const char* libraries = libraryNames(library, gtkVersion());
    if (*libraries)
        symbol = plat::findDynamicSymbol(libraries, names, error, sizeof error);
    if (*libraries && !symbol)
        log.debug("%s", error);
    return symbol != nullptr;
}

void* Symbol::resolve() const {
    if (!isAvailable())
        throw plat::DynamicFnLoadFailed(plat::strFormat("%s is not there", names).c_str());
    return symbol;
}

} // namespace gtkwrap
