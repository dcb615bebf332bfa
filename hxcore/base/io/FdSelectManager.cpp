#include "io/FdSelectManager.h"

#include "io/FdHandler.h"
#include "plat/Exception.h"

#include <algorithm>
#include <cerrno>
#include <sys/select.h>

namespace io {
namespace {

bool fitsSelect(int fd) { return fd >= 0 && fd < FD_SETSIZE; }

void fillSet(fd_set& set, const FdHandlerSet& from, int& nFds) {
    FD_ZERO(&set);
    for (const FdHandler* handler : from) {
        const int fd = handler->getFd();
        if (!fitsSelect(fd))
            continue;
        FD_SET(fd, &set);
        nFds = std::max(nFds, fd + 1);
    }
}

void collect(FdHandlerSet& ready, const FdHandlerSet& from, const fd_set& set) {
    for (FdHandler* handler : from) {
        if (fitsSelect(handler->getFd()) && FD_ISSET(handler->getFd(), &set))
            ready.add(handler);
    }
}

void change(FdHandlerSet& set, FdHandler* handler, bool in) {
    if (in)
        set.add(handler);
    else
        set.remove(handler);
}

/// Waits; the number of ready descriptors, 0 also after a signal. Throws "select".
int waitSelect(int nFds, fd_set& read, fd_set& write, fd_set& except, int timeoutMs) {
    // A millisecond more, or select may return just before the timer is due.
    if (timeoutMs >= 1 && timeoutMs <= 0x7ffffffe)
        ++timeoutMs;
    timeval limit{timeoutMs / 1000, (timeoutMs % 1000) * 1000L};
    const int ready = select(nFds, &read, &write, &except, timeoutMs < 0 ? nullptr : &limit);
    if (ready < 0 && errno != EINTR)
        throw plat::SystemException("select", errno);
    return std::max(ready, 0);
}

} // namespace

struct FdSelectManager::Sets {
    fd_set read, write, except;
};

FdSelectManager::FdSelectManager(bool nested) : FdManager(nested) {}

FdSelectManager::~FdSelectManager() { dismissHandlers(); }

bool FdSelectManager::setInterest(FdHandler* handler, bool read, bool write, bool except, bool accept,
                                  bool connectInterest) {
    const bool wasReading = readSet.contains(handler);
    const bool wasWriting = writeSet.contains(handler);
    change(readSet, handler, read || accept);
    change(writeSet, handler, write);
    change(exceptSet, handler, except);
    if (wasReading && !read && !accept)
        loseRead(handler);
    if (wasWriting && !write)
        loseWrite(handler);
    return !connectInterest;
}

bool FdSelectManager::poll(int timeoutMs) {
    Sets sets;
    const int nFds = fillSets(sets);
    const int untilTimer = timers.timeUntilNext();
    if (untilTimer != -1 && (timeoutMs == -1 || timeoutMs > untilTimer))
        timeoutMs = untilTimer;
    const bool marked = !readReady.isEmpty() || !writeReady.isEmpty();
    if (marked)
        timeoutMs = 0;
    const int ready = waitSelect(nFds, sets.read, sets.write, sets.except, timeoutMs);
    if (ready > 0)
        collectReady(sets);
    const bool timerDue = timers.timeUntilNext() == 0;
    dispatch();
    return ready > 0 || marked || timerDue;
}

void FdSelectManager::forget(FdHandler* handler) {
    readSet.remove(handler);
    writeSet.remove(handler);
    exceptSet.remove(handler);
}

int FdSelectManager::fillSets(Sets& sets) const {
    int nFds = 0;
    fillSet(sets.read, readSet, nFds);
    fillSet(sets.write, writeSet, nFds);
    fillSet(sets.except, exceptSet, nFds);
    return nFds;
}

void FdSelectManager::collectReady(const Sets& sets) {
    collect(readReady, readSet, sets.read);
    collect(readReady, exceptSet, sets.except);
    collect(writeReady, writeSet, sets.write);
}

} // namespace io
