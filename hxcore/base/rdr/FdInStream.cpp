#include "rdr/FdInStream.h"

#include "plat/Exception.h"
#include "rdr/exceptions.h"

#include <cerrno>
#include <unistd.h>

namespace rdr {

FdInStream::FdInStream(int fd_, int timeout, int size, bool isSecure)
    : BufferedNonBlockableInStream(size, isSecure), fd(fd_), limit(timeout) {}

size_t FdInStream::readData(void* buf, size_t len) {
    if (timedOut || (!nonBlocking && limit.hasPassed()))
        throw plat::TimedOut();
    for (;;) {
        const ssize_t count = ::read(fd, buf, len);
        if (count > 0)
            return static_cast<size_t>(count);
        if (count == 0)
            throw EndOfStream();
        const int errNo = errno;
        if (errNo == EINTR)
            continue;
        if (errNo != EAGAIN && errNo != EWOULDBLOCK)
            throw plat::SystemException("read", errNo);
        if (nonBlocking)
            return 0;
        if (!plat::waitForFd(fd, limit.nextMs(), /*read=*/true, /*write=*/false))
            throw plat::TimedOut();
    }
}

FdInStreamOwn::~FdInStreamOwn() {
    if (getFd() >= 0)
        ::close(getFd());
}

} // namespace rdr
