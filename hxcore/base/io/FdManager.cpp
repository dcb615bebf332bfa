#include "io/FdManager.h"

#include "io/FdHandler.h"
#include "plat/Assert.h"

#include <algorithm>
#include <functional>

namespace io {
namespace {
thread_local FdManager* currentManager = nullptr;
} // namespace

bool FdHandlerSet::add(FdHandler* handler) {
    const auto place = std::lower_bound(items.begin(), items.end(), handler, std::less<>());
    if (place != items.end() && *place == handler)
        return false;
    items.insert(place, handler);
    return true;
}

bool FdHandlerSet::remove(FdHandler* handler) {
    const auto place = std::lower_bound(items.begin(), items.end(), handler, std::less<>());
    if (place == items.end() || *place != handler)
        return false;
    items.erase(place);
    return true;
}

bool FdHandlerSet::contains(FdHandler* handler) const {
    return std::binary_search(items.begin(), items.end(), handler, std::less<>());
}

FdHandler* FdHandlerSet::takeLast() {
    if (items.empty())
        return nullptr;
    FdHandler* handler = items.back();
    items.pop_back();
    return handler;
}

void FdHandlerSet::takeFrom(FdHandlerSet& other) {
    while (FdHandler* handler = other.takeLast())
        add(handler);
}

FdManager::FdManager(bool nested) : timers(nested), previous(currentManager) { currentManager = this; }

FdManager::~FdManager() {
    ASSERT(handlers.isEmpty());
    currentManager = previous;
}

FdManager* FdManager::current() { return currentManager; }

void FdManager::addHandler(FdHandler* handler, bool add) {
    if (add) {
        handlers.add(handler);
        return;
    }
    unmark(handler);
    forget(handler);
    handlers.remove(handler);
}

bool FdManager::setInterest(FdHandler*, bool, bool, bool, bool, bool connectInterest) { return !connectInterest; }

void FdManager::markReadable(FdHandler* handler) {
    readReady.add(handler);
    kick();
}

void FdManager::markWritable(FdHandler* handler) {
    writeReady.add(handler);
    kick();
}

void FdManager::unmark(FdHandler* handler) {
    loseRead(handler);
    loseWrite(handler);
}

void FdManager::kick() { startTimer(kickTimer, 0); }

void FdManager::startTimer(plat::Timer& timer, uint32_t ms) { timer.start(ms, timers); }

void FdManager::closeFds(const FdHandler* except) {
    for (FdHandler* handler : handlers) {
        if (handler != except)
            handler->closeFd();
    }
}

void FdManager::dispatch() {
    timers.processTimers();
    readReady.takeFrom(readPending); // what an exception left of an earlier round
    readReady.swap(readPending);
    while (FdHandler* handler = readPending.takeLast())
        handler->fdReadable();
    writeReady.takeFrom(writePending);
    writeReady.swap(writePending);
    while (FdHandler* handler = writePending.takeLast())
        handler->fdWritable();
}

void FdManager::dismissHandlers() {
    // What a handler does when it is told may take others out, or mark them.
    while (!handlers.isEmpty()) {
        FdHandler* handler = handlers.takeLast();
        unmark(handler);
        forget(handler);
        handler->fdManagerGone();
    }
}

void FdManager::dismissAll() {
    for (FdManager* manager = currentManager; manager; manager = manager->previous)
        manager->dismissHandlers();
}

void FdManager::loseRead(FdHandler* handler) {
    readReady.remove(handler);
    readPending.remove(handler);
}

void FdManager::loseWrite(FdHandler* handler) {
    writeReady.remove(handler);
    writePending.remove(handler);
}

bool FdManager::timerExpired(plat::Timer*) { return false; }

} // namespace io
