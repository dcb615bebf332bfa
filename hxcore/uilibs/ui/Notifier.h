// Short messages to the user that stand beside the work.
#pragma once

#include "plat/String.h"

namespace ui {

/// Shows notifications.
class Notifier {
public:
    using Handle = unsigned; ///< never 0, never used again

    enum Reason { Clicked = 0, Ended = 1 }; ///< its time was up, or what shows it has gone

    class Callback {
    public:
        virtual ~Callback() = default;
        /// The user clicked it, or it ended by itself; not called after cancel. True for a click keeps it up.
        /// It may cancel this or any other notification.
        virtual bool notified(Handle handle, int reason) = 0;
    };

    struct Notification {
        plat::String text;            ///< markup
        int timeoutMs = -1;           ///< -1 or 0 for none
        Callback* callback = nullptr; ///< borrowed, may be null
        unsigned flags = 0;           ///< for whoever raises it
    };

    virtual ~Notifier() = default;
    virtual Handle notify(const Notification& notification) = 0;
    virtual void cancel(Handle handle) = 0; ///< nothing happens if it has ended
};

} // namespace ui
