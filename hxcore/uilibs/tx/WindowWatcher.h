// Watches a window of another client.
#pragma once

#include "tx/TXEventHandler.h"

namespace tx {

/// Tells when a foreign window is gone.
class WindowWatcher : public TXEventHandler {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// The window is destroyed and no longer watched. The watcher may be deleted here.
        virtual void windowDestroyed(WindowWatcher*, Window /*window*/) {}
    };

    explicit WindowWatcher(Callback* target); ///< borrowed
    ~WindowWatcher() override;

    /// Watches this window instead of any other, none to stop. False if there is no such window.
    bool watch(Window window);
    Window watched() const { return window; }

    // TXEventHandler
    bool handleEvent(XEvent* event) override;

private:
    Callback* callback;
    Window window = none;
};

} // namespace tx
