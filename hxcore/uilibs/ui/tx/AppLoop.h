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
    /// Opens the display, `displayName` or, if that is null or empty, what DISPLAY says, unless
    /// ui::setOpenDisplay(false) was called. Throws plat::Exception.
    explicit AppLoopImpl(const char* displayName = nullptr);
    ~AppLoopImpl() override;

    // os::AppLoop::Impl
    int run(os::AppLoop& loop) override;

private:
    std::unique_ptr<tx::TXDisplayManager> displayManager; // null with no display
};

/// os::AppLoop on an AppLoopImpl.
class AppLoop : public os::AppLoop {
public:
    explicit AppLoop(const char* displayName = nullptr);
};

} // namespace ui
