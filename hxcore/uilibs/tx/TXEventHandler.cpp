#include "tx/TXEventHandler.h"

#include "tx/TX.h"

#include <algorithm>

namespace tx {

/// The copy that one dispatch works through; removal reaches into all copies.
struct EventHandlerList::Walk {
    explicit Walk(EventHandlerList* list_) : pending(list_->handlers), outer(list_->walks), list(list_) {
        list->walks = this;
    }
    ~Walk() {
        if (list)
            list->walks = outer;
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    std::vector<TXEventHandler*> pending; // removed ones become null
    Walk* outer;
    EventHandlerList* list; // null once it has died
};

bool TXEventHandler::processEvents() { return tx::processEvents(); }

EventHandlerList::~EventHandlerList() {
    for (Walk* walk = walks; walk; walk = walk->outer) {
        walk->list = nullptr;
        walk->pending.clear();
    }
}

void EventHandlerList::add(TXEventHandler* handler) {
    if (std::find(handlers.begin(), handlers.end(), handler) == handlers.end())
        handlers.push_back(handler);
}

void EventHandlerList::remove(TXEventHandler* handler) {
    std::erase(handlers, handler);
    for (Walk* walk = walks; walk; walk = walk->outer)
        std::replace(walk->pending.begin(), walk->pending.end(), handler, static_cast<TXEventHandler*>(nullptr));
}

bool EventHandlerList::dispatch(XEvent* event, bool stopAtTrue) {
    if (handlers.empty())
        return true;
    Walk walk(this);
    for (size_t i = 0; i < walk.pending.size(); i++) {
        TXEventHandler* handler = walk.pending[i];
        if (handler && handler->handleEvent(event) && stopAtTrue)
            break;
    }
    return walk.list != nullptr;
}

} // namespace tx
