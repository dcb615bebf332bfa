// Hears the bell of the desktop.
#pragma once

#include "tx/TXEventHandler.h"

namespace tx {

/// Tells of each bell that a client of the X server rings, by the events of the XKB extension.
class BellMonitor : private TXEventHandler {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void bellRang() = 0; ///< may destroy the monitor
    };

    explicit BellMonitor(Callback* callback); ///< borrowed; without XKB nothing is heard. The display must be open.
    ~BellMonitor() override;

private:
    bool handleEvent(XEvent* event) override;
    static void selectBell(bool on);

    Callback* callback;
    int eventBase = -1; // -1 without XKB
};

} // namespace tx
