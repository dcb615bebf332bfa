#include "plat/waitForFd.h"

#include "plat/Exception.h"
#include "plat/monoTime.h"

#include <sys/select.h>

#include <algorithm>
#include <cerrno>

namespace plat {

bool waitForFd(int fd, int timeoutMs, bool read, bool write) {
    if (fd < 0 || fd >= FD_SETSIZE)
        throw SystemException("select", fd < 0 ? EBADF : EMFILE);
    timeval left{timeoutMs / 1000, timeoutMs % 1000 * 1000L};
    for (;;) {
        fd_set readSet, writeSet;
        FD_ZERO(&readSet);
        FD_ZERO(&writeSet);
        if (read)
            FD_SET(fd, &readSet);
        if (write)
            FD_SET(fd, &writeSet);
        // Linux leaves in `left` what is left of the time, also when a signal ends the wait (select(2)).
        const int ready = select(fd + 1, &readSet, &writeSet, nullptr, timeoutMs < 0 ? nullptr : &left);
        if (ready >= 0)
            return ready > 0;
        if (errno != EINTR)
            throw SystemException("select", errno);
    }
}

void WaitLimit::setDeadline(int ms) { deadline = ms < 0 ? 0 : monoTicks() + ms * ticksPerMs; }

bool WaitLimit::hasPassed() const { return deadline != 0 && monoTicks() >= deadline; }

int WaitLimit::nextMs() const {
    if (deadline == 0)
        return timeoutMs;
    const int64_t leftMs = std::max<int64_t>((deadline - monoTicks() + ticksPerMs - 1) / ticksPerMs, 0);
    return timeoutMs < 0 ? static_cast<int>(leftMs) : static_cast<int>(std::min<int64_t>(timeoutMs, leftMs));
}

} // namespace plat
