// A descriptor that closes itself.
#pragma once

#include "plat/NonCopyable.h"

#include <unistd.h>
#include <utility>

namespace os {

class OwnedFd : private plat::NonCopyable {
public:
    explicit OwnedFd(int fd_) : fd(fd_) {} ///< -1 for none
    ~OwnedFd() { reset(); }

    void reset() {
        if (fd >= 0)
            close(fd);
        fd = -1;
    }
    int release() { return std::exchange(fd, -1); } ///< the caller closes it
    int get() const { return fd; }

private:
    int fd;
};

} // namespace os
