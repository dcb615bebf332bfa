#include "rdr/FdOutStream.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace rdr {
namespace {
plat::LogSrc log("FdOutStream");
} // namespace

FdOutStream::FdOutStream(int fd_, bool ownFd_, Callback* target, int size)
    : BufferedLazyOutStream(size), fd(fd_), ownFd(ownFd_), callback(target) {}

FdOutStream::~FdOutStream() {
    callback = nullptr;          // its owner may be half gone
    setThrowErrors(/*on=*/true); // so that a failure ends here
    try {
        flush();
    } catch (const plat::Exception&) {
        // The peer has left; there is nobody to tell.
    }
    if (ownFd && fd >= 0)
        ::close(fd);
}

void FdOutStream::waitUntilFlushed() {
    send(/*wait=*/true);
    flush();
}

void FdOutStream::shutdownWrite() {
    if (bytesInBuffer() > 0)
        return;
    if (::shutdown(fd, SHUT_WR) != 0)
        throw plat::SystemException("shutdown(SHUT_WR)", errno);
    if (callback)
        callback->outputShutdown(this);
}

// Where the descriptor is a socket, a peer that has gone gives EPIPE and no signal.
ssize_t FdOutStream::writeOnce(const void* buf, size_t len) {
    if (isSocket) {
        const ssize_t count = ::send(fd, buf, len, MSG_NOSIGNAL);
        if (count >= 0 || errno != ENOTSOCK)
            return count;
        isSocket = false;
    }
    return ::write(fd, buf, len);
}

size_t FdOutStream::writeData(const void* buf, size_t len, bool needWrite) {
    for (;;) {
        const ssize_t count = writeOnce(buf, len);
        if (count >= 0) {
            if (callback)
                callback->outputBlocked(this, count == 0);
            return static_cast<size_t>(count);
        }
        const int errNo = errno;
        if (errNo == EINTR)
            continue;
        if (errNo != EAGAIN && errNo != EWOULDBLOCK)
            return writeFailed(errNo, needWrite);
        if (!needWrite) {
            if (callback)
                callback->outputBlocked(this, /*isBlocked=*/true);
            return 0;
        }
        ASSERT(doesThrowErrors());
        if (!plat::waitForFd(fd, limit.nextMs(), /*read=*/false, /*write=*/true))
            throw plat::TimedOut();
    }
}

size_t FdOutStream::writeFailed(int errNo, bool needWrite) {
    const plat::SystemException failure("write", errNo);
    if (doesThrowErrors())
        throw failure;
    log.debug("%s", failure.what());
    ASSERT(!needWrite);
    return 0;
}

} // namespace rdr
