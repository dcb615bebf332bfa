// What the window manager is, can do and has done.
#pragma once

#include "rfb/Rect.h"
#include "tx/xlib.h"

namespace tx {

class TXWindow;

/// Questions to and orders for the window manager (ICCCM, EWMH, Motif hints).
///
/// Its answers come from properties that any client may write: each is checked for type, format and length.
class WindowManager {
public:
    static Window findWMWindow(); ///< of _NET_SUPPORTING_WM_CHECK, 0 for none
    static bool isWMRunning();
    static bool isNetHintSupported(Atom hint);

    /// Adds or removes states of a mapped window; nothing while it is unmapped. `state2` may be none.
    static void setNetWMState(TXWindow* window, bool add, Atom state1, Atom state2 = none);

    /// Whether `window` is minimised or otherwise out of sight; false, with `out` untouched, if nothing tells.
    static bool isHidden(Window window, bool* out);

    /// _MOTIF_WM_HINTS, five longs: flags, functions, decorations, input mode, status.
    static void setMotifHints(TXWindow* window, const long hints[5]);

    static rfb::Rect getWorkArea(); ///< of the current desktop, else the full screen
    static bool isWMAtom(Atom atom);
    static bool isWMChangeEvent(const XEvent* event);
};

} // namespace tx
