// Writing to a file descriptor.
#pragma once

#include "plat/waitForFd.h"
#include "rdr/BufferedOutStream.h"

#include <sys/types.h>

namespace rdr {

/// Writes to a descriptor. Starts in blocking mode with a timeout of 30000 ms.
class FdOutStream : public BufferedLazyOutStream {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// After each write: true if it would have blocked.
        virtual void outputBlocked(FdOutStream*, bool) {}
        /// shutdownWrite has told the peer.
        virtual void outputShutdown(FdOutStream*) {}
    };

    FdOutStream(int fd, bool ownFd, Callback* callback = nullptr, int bufSize = -1);
    ~FdOutStream() override; ///< tries to flush, silently; closes the descriptor if owned

    int getFd() const { return fd; }
    void attachFd(int newFd) { fd = newFd; } ///< for a stream that was built with fd -1
    void setTimeout(int ms) { limit.setTimeout(ms); }
    void setDeadline(int ms) { limit.setDeadline(ms); }       ///< from now, of all blocking writes; -1: none
    void setCallback(Callback* target) { callback = target; } ///< borrowed, may be null

    // OutStream
    void waitUntilFlushed() override; ///< blocks up to the timeout at each write, whatever the mode
    void shutdownWrite() override;    ///< nothing if bytes are unsent: call again when they have gone

protected:
    size_t writeData(const void* buf, size_t len, bool needWrite) override;

private:
    ssize_t writeOnce(const void* buf, size_t len);
    size_t writeFailed(int errNo, bool needWrite);

    int fd;
    bool ownFd;
    bool isSocket = true; // until it turns out not to be one
    plat::WaitLimit limit{30000};
    Callback* callback;
};

} // namespace rdr
