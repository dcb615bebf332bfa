// Whoever gets X events.
#pragma once

#include "tx/xlib.h"

#include <vector>

namespace tx {

/// Borrowed by the list that it is in: remove it before it dies.
class TXEventHandler {
public:
    virtual ~TXEventHandler() = default;

    /// True stops further handlers of the same window; other lists ignore the result.
    virtual bool handleEvent(XEvent* event) = 0;

    /// tx::processEvents: called by the loop and by nested modal loops.
    static bool processEvents();
};

/// A list of handlers that may change while it is being walked.
///
/// Dispatch walks a copy. A handler removed meanwhile is not called, one added meanwhile waits for the next event, and
/// the list itself may die in a call.
class EventHandlerList {
public:
    EventHandlerList() = default;
    ~EventHandlerList();
    EventHandlerList(const EventHandlerList&) = delete;
    EventHandlerList& operator=(const EventHandlerList&) = delete;

    void add(TXEventHandler* handler); ///< at the end; nothing if it is in the list
    void remove(TXEventHandler* handler);
    bool isEmpty() const { return handlers.empty(); }

    /// Calls each handler, ending at the first true if `stopAtTrue`. Returns false if the list died in a call.
    bool dispatch(XEvent* event, bool stopAtTrue);

private:
    struct Walk; // one dispatch under way; they nest

    std::vector<TXEventHandler*> handlers;
    Walk* walks = nullptr;
};

} // namespace tx
