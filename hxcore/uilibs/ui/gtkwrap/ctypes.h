// The C types of glib and GTK as far as they cross their interfaces: opaque objects, plain integers, callbacks.
//
// Declared here, so that a build needs no headers of theirs. The binary interface of both is frozen (GTK 2 and 3 are
// finished, glib keeps its own since 2.0).
#pragma once

#include "ui/gtkwrap/Symbol.h"

namespace gtkwrap::c {

using Bool = int;      // gboolean
using Pointer = void*; // gpointer

struct Object; // GObject and what derives from it: widgets, icons, pixbufs
struct IoChannel;
struct IconInfo;

using Callback = void (*)(); // GCallback: of any signature
using SourceFunc = Bool (*)(Pointer data);
using IoFunc = Bool (*)(IoChannel* source, int condition, Pointer data);
using LogFunc = void (*)(const char* domain, int level, const char* message, Pointer data);
using MenuPositionFunc = void(Object* menu, int* x, int* y, Bool* pushIn, Pointer data);

// GIOCondition
constexpr int ioIn = 1;
constexpr int ioOut = 4;
constexpr int ioHangUp = 16;

inline const Fn<Object*(Pointer)> objectRefSink{Library::Gobject, "g_object_ref_sink,g_object_ref"};
inline const Fn<void(Pointer)> objectUnref{Library::Gobject, "g_object_unref"};
inline const Fn<unsigned long(Pointer, const char*, Callback, Pointer, void*, int)> signalConnectData{
    Library::Gobject, "g_signal_connect_data"};

inline const Fn<void(Object*)> widgetShow{Library::Gtk, "gtk_widget_show"};
inline const Fn<void(Object*)> widgetDestroy{Library::Gtk, "gtk_widget_destroy"};

} // namespace gtkwrap::c

namespace gtkwrap {

/// Connects a signal to a C function whose last argument is `data`.
template <class F>
void connectSignal(c::Object* object, const char* signal, F* function, void* data) {
    c::signalConnectData(object, signal, reinterpret_cast<c::Callback>(function), data, static_cast<void*>(nullptr), 0);
}

/// One reference to an object of theirs.
class Ref : private plat::NonCopyable {
public:
    explicit Ref(c::Object* object_ = nullptr) : object(object_) {} ///< takes over the caller's reference; may be null
    Ref(Ref&& other) noexcept : object(other.object) { other.object = nullptr; }
    Ref& operator=(Ref&& other) noexcept {
        c::Object* old = object;
        object = other.object;
        other.object = old;
        return *this;
    }
    ~Ref() {
        if (object)
            c::objectUnref(object);
    }
    c::Object* get() const { return object; }

private:
    c::Object* object;
};

} // namespace gtkwrap
