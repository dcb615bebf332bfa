// A walk over all windows of the display, in pieces.
#pragma once

#include "tx/xlib.h"

#include <string_view>
#include <sys/types.h>
#include <vector>

namespace ui {

/// Finds the windows that have one of the wanted names.
///
/// The tree changes meanwhile: a window that vanishes is passed by. At most 16,384 windows are looked at, at most 32
/// levels deep, from the root down level by level; of each the first 256 bytes of WM_CLASS (ICCCM 4.1.2.5).
class WindowScan {
public:
    struct Hit {
        int value;
        pid_t pid; ///< of _NET_WM_PID, as the window says; 0 if it says none
    };

    using Valuer = int (*)(std::string_view instanceName); ///< 0: not wanted

    explicit WindowScan(Valuer valuer_) : valuer(valuer_) {}

    void start(); ///< anew, from the root
    void stop();

    /// Goes on for `budgetMs`, or until it is done. Returns true when it is done.
    bool run(int budgetMs);
    bool isActive() const { return active; }

    const std::vector<Hit>& hits() const { return found; } ///< with the greatest value only, as far as the scan came
    int looked() const { return windows; }                 ///< windows so far

private:
    struct Place {
        Window window;
        int depth;
    };

    void visit(Place place);

    Valuer valuer;
    bool active = false;
    std::vector<Place> queue; // seen, in the order of their levels; looked at up to `next`
    size_t next = 0;
    int windows = 0;
    std::vector<Hit> found;
};

} // namespace ui
