// Which desktop runs on the X display.
#pragma once

#include "plat/String.h"
#include "plat/Timer.h"
#include "tx/TXEventHandler.h"
#include "tx/WindowWatcher.h"
#include "ui/unix/WindowScan.h"

#include <cstdint>
#include <string_view>

namespace ui {

/// Watches the desktop: its kind, and the address of its session bus.
///
/// It looks at the names that windows give themselves, once at the start and again some times after each change of the
/// window manager. Any client may claim any name, so the kind is a hint and decides no more than how the icon is shown.
/// A scan runs in pieces of some milliseconds, from timers.
class DesktopEnvironment : private tx::TXEventHandler,
                           private tx::WindowWatcher::Callback,
                           private plat::Timer::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// The kind is another than before, or known for the first time. From the loop; may delete the environment.
        virtual void desktopChanged() = 0;
    };

    /// The higher value wins where the windows of several are there.
    enum class Kind {
        None,
        TwmCompatible, ///< a window manager that is none of the others
        Cde,
        Mwm,
        Enlightenment,
        Fvwm,
        Xfce,
        Lxde,
        GnomeClassic,
        GnomeShell,
        Mate,
        Cinnamon,
        Unity,
        Unity2D,
        KdeClassic,
        KdePlasma,
        Count
    };

    explicit DesktopEnvironment(Callback* target); ///< borrowed; the display must be open
    ~DesktopEnvironment() override;

    Kind kind() const { return current; } ///< None until the first scan is over
    const char* name() const { return kindName(current); }

    /// DBUS_SESSION_BUS_ADDRESS of the desktop's own processes, "" if none is known.
    const plat::String& dbusAddress() const { return address; }

    static const char* kindName(Kind kind); ///< "None", "GNOME Shell", ...

    /// The kind that a window of this WM_CLASS instance name stands for, None for others.
    static Kind kindOfInstance(std::string_view name);

    /// Whether an address that some process has in its environment may be used: each of its alternatives, parted by
    /// ";", is "unix:path=" or "unix:abstract=" and more, all in printable ASCII without blanks, 1,024 bytes at most.
    static bool isUsableAddress(std::string_view address);

private:
    // tx::TXEventHandler
    bool handleEvent(XEvent* event) override;
    // tx::WindowWatcher::Callback
    void windowDestroyed(tx::WindowWatcher* watcher, Window window) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    bool isUnframed(const XEvent& event) const;
    void trigger(int scans);
    void schedule(uint32_t delayMs);
    void beginScan();
    void watchManager();
    void endScan(Kind found);

    Callback* callback;
    plat::Timer timer;
    WindowScan scan;
    tx::WindowWatcher watcher;
    const Atom managerMessage;
    const Atom managerSelection;
    Window manager = tx::none; // the window that stands for the window manager
    int scansLeft = 0;
    bool isDue = false;           // something changed while a scan ran
    int64_t lastScan = INT64_MIN; // when it began, monotonic ticks
    bool isFirst = true;
    Kind current = Kind::None;
    Kind reported = Kind::None;
    plat::String address;
};

} // namespace ui
