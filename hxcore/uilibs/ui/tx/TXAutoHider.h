// Tells when the pointer has been away from an X window for a while.
#pragma once

#include "tx/TXEventHandler.h"
#include "ui/AutoHider.h"

namespace tx {
class TXWindow;
}

namespace ui {

/// Away is also a window that isn't mapped.
class TXAutoHider : public AutoHider, private tx::TXEventHandler {
public:
    explicit TXAutoHider(tx::TXWindow* window); ///< borrowed, outlives this
    ~TXAutoHider() override;

private:
    // AutoHider
    bool isPointerInside() override;

    // tx::TXEventHandler
    bool handleEvent(XEvent* event) override;

    tx::TXWindow* window;
};

} // namespace ui
