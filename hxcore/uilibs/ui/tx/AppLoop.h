// The application's event loop with an X display.
#pragma once

#include "os/AppLoop.h"

#include <memory>

namespace tx {
class TXDisplayManager;
}

namespace ui {

/// Serves X events between the waits of the descriptor loop.
class AppLoopImpl : public os::AppLoopImpl {
public:
    AppLoopImpl(); ///< opens the display, unless it is to stay closed; throws plat::Exception
    ~AppLoopImpl() override;

    int run() override;

private:
    std::unique_ptr<tx::TXDisplayManager> displayManager; // null with no display
};

/// os::AppLoop on an AppLoopImpl.
class AppLoop : public os::AppLoop {
public:
    AppLoop();

    /// Whether loops built from then on open the display; they do by default.
    static void setOpenDisplay(bool open);

    /// The display that loops built from then on open; null for what DISPLAY says.
    static void setDisplayName(const char* name);
};

} // namespace ui
