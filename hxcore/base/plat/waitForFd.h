// A small wait on one descriptor, and how long it may be.
#pragma once

#include <cstdint>

namespace plat {

/// Waits until `fd` can be read or written, as asked, or has failed; -1 ms is no limit. False on timeout.
///
/// Throws plat::SystemException "select", with EMFILE for a descriptor above 1023. Signals don't end it.
bool waitForFd(int fd, int timeoutMs, bool read, bool write);

/// How long waits may be, each of them and all together.
class WaitLimit {
public:
    explicit WaitLimit(int timeoutMs_) : timeoutMs(timeoutMs_) {} ///< of each wait; -1: no limit
    void setTimeout(int ms) { timeoutMs = ms; }
    void setDeadline(int ms); ///< from now, for all waits that follow; -1: none
    int nextMs() const;       ///< of the next wait; -1: no limit
    bool hasPassed() const;   ///< the deadline

private:
    int timeoutMs;
    int64_t deadline = 0; // monotonic ticks; 0 for none
};

} // namespace plat
