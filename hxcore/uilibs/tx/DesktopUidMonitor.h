// Whose desktop it is.
#pragma once

#include "plat/Timer.h"
#include "tx/TXEventHandler.h"
#include "tx/WindowWatcher.h"

#include <string>
#include <sys/types.h>

namespace tx {

/// Writes the user id of the desktop's owner to the root window: property ZEF_DESKTOP_UID, CARDINAL, format 32, one
/// item.
void writeDesktopUid(uid_t uid);

/// Tells which user the desktop belongs to, for a process that is not that user's.
///
/// The property says it where somebody wrote it; else the processes of the desktop's windows do, those that use the
/// same authority file as we. A window counts whose _NET_WM_WINDOW_TYPE is normal or dock; they are looked at anew when
/// the list of windows or the property changes, at most twice a second. Other clients may claim anything: a hint, no
/// proof.
class DesktopUidMonitor : private TXEventHandler, private WindowWatcher::Callback, private plat::Timer::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void desktopUidChanged(DesktopUidMonitor*) = 0; ///< it is another, or known no longer; from the loop
    };

    explicit DesktopUidMonitor(Callback* target); ///< borrowed; the display must be open
    ~DesktopUidMonitor() override;

    bool isKnown() const { return known; }
    uid_t uid() const { return user; } ///< while it is known

private:
    // TXEventHandler
    bool handleEvent(XEvent* event) override;
    // WindowWatcher::Callback
    void windowDestroyed(WindowWatcher* which, Window window) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* which) override;

    bool findUser(uid_t* out);
    bool userOfWindow(Window window, uid_t* out) const;
    bool hasDesktopType(Window window) const;
    void setUser(bool isFound, uid_t found);

    Callback* callback;
    plat::Timer timer;
    WindowWatcher watcher; // on the window that told
    const Atom property;
    const Atom clientList;
    const Atom windowType;
    const Atom normalType;
    const Atom dockType;
    const std::string ownAuthFile;
    bool known = false;
    uid_t user = 0;
};

} // namespace tx
