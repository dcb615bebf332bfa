#include "ui/gtkwrap/gtk.h"

#include "plat/LogSrc.h"
#include "ui/gtkwrap/ctypes.h"

#include <cstdlib>
#include <vector>

namespace gtkwrap {
namespace {
plat::LogSrc log("Gtk");

const Fn<c::Bool(int*, char***)> gtkInitCheck{Library::Gtk, "gtk_init_check"};
const Fn<c::LogFunc(c::LogFunc, c::Pointer)> logSetDefaultHandler{Library::Glib, "g_log_set_default_handler"};

const Fn<c::Pointer()> getDefaultXDisplay{Library::Gtk, "gdk_x11_get_default_xdisplay"}; // of GDK, which GTK loads

constexpr int fatalLevel = 1 << 1; // G_LOG_FLAG_FATAL
constexpr int errorLevel = 1 << 2; // G_LOG_LEVEL_ERROR: it aborts next

void takeMessage(const char* domain, int level, const char* message, c::Pointer) noexcept {
    const bool isFatal = (level & (fatalLevel | errorLevel)) != 0;
    log.write(isFatal ? plat::LogError : plat::LogInfo, "%s: %s", domain ? domain : "", message ? message : "");
}
} // namespace

bool startGtk(int argc, char** argv) {
    if (!allAvailable(gtkInitCheck, c::objectUnref, c::signalConnectData, c::widgetShow, c::widgetDestroy))
        return false;
    if (logSetDefaultHandler.isAvailable())
        logSetDefaultHandler(&takeMessage, nullptr);
    if (gtkVersion() == GtkVersion::Gtk3)
        setenv("GDK_BACKEND", "x11", /*overwrite=*/1); // icons of this kind exist on X only
    std::vector<char*> words(argv, argv + argc);       // it takes out what it knows
    words.push_back(nullptr);
    char** given = words.data();
    return gtkInitCheck(&argc, &given) != 0;
}

void* defaultXDisplay() { return getDefaultXDisplay.isAvailable() ? getDefaultXDisplay() : nullptr; }

} // namespace gtkwrap
