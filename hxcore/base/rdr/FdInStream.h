// Reading a file descriptor.
#pragma once

#include "plat/waitForFd.h"
#include "rdr/BufferedInStream.h"

namespace rdr {

/// Reads a descriptor that someone else closes. Starts in blocking mode.
///
/// On a non-blocking descriptor the blocking mode waits, up to the timeout, and then throws plat::TimedOut.
class FdInStream : public BufferedNonBlockableInStream {
public:
    explicit FdInStream(int fd, int timeoutMs = -1, int bufSize = -1, bool secure = false); ///< timeout -1: no limit

    int getFd() const { return fd; }
    void attachFd(int newFd) { fd = newFd; } ///< for a stream that was built with fd -1
    void setTimeout(int ms) { limit.setTimeout(ms); }
    void setDeadline(int ms) { limit.setDeadline(ms); } ///< from now, of all blocking reads; -1: none
    /// Makes each further read throw plat::TimedOut: the peer has been given up.
    void setTimedOut(bool on) { timedOut = on; }
    bool isTimedOut() const { return timedOut; }

protected:
    size_t readData(void* buf, size_t len) override;

private:
    int fd;
    plat::WaitLimit limit;
    bool timedOut = false;
};

/// The same, closing the descriptor at the end.
class FdInStreamOwn : public FdInStream {
public:
    using FdInStream::FdInStream;
    ~FdInStreamOwn() override;
};

} // namespace rdr
