// Functions of GTK and its kin, looked up by name at the first use.
#pragma once

#include "plat/NonCopyable.h"

namespace gtkwrap {

/// The sets of libraries, each of which may be missing.
enum class Library { GdkPixbuf, Glib, Gobject, Gtk, Gio, GnomeVfs, GnomeUi, AppIndicator };

/// Which GTK this process uses. The two define the same names for different things, so one process has one of them.
enum class GtkVersion { None, Gtk2, Gtk3 };

/// Decided by the first call and never again: the one that is mapped into the process already; else GTK 2 if it loads;
/// else GTK 3.
GtkVersion gtkVersion();

/// The library set in the notation of plat::findDynamicSymbol, as "appindicator[1],ayatana-appindicator[1]".
///
/// The indicator libraries of one GTK load that GTK, so only those of `version` are named; "" where there is none.
const char* libraryNames(Library library, GtkVersion version);

/// The untyped half of Fn.
class Symbol : private plat::NonCopyable {
public:
    constexpr Symbol(Library library_, const char* names_) : library(library_), names(names_) {}

    bool isAvailable() const; ///< looks it up at the first use, once

protected:
    void* resolve() const; ///< throws plat::DynamicFnLoadFailed

private:
    Library library;
    const char* names;
    mutable void* symbol = nullptr;
    mutable bool looked = false;
};

/// A function of type T in one of the sets; `names` are alternatives after commas ("g_object_ref_sink,g_object_ref").
///
/// Calling one that is missing throws plat::DynamicFnLoadFailed: ask isAvailable first.
template <class T>
class Fn : public Symbol {
public:
    using Symbol::Symbol;

    T* get() const { return reinterpret_cast<T*>(resolve()); }

    template <class... Args>
    auto operator()(Args... args) const {
        return get()(args...);
    }
};

/// Whether all of them are there.
template <class... Fns>
bool allAvailable(const Fns&... fns) {
    return (fns.isAvailable() && ...);
}

} // namespace gtkwrap
