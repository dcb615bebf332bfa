// What a descriptor manager watches.
#pragma once

#include "plat/NonCopyable.h"

namespace io {

/// A descriptor and what to do when something happens on it.
///
/// Register it with FdManager::addHandler, and take it out before it dies. The default operations do nothing.
class FdHandler : private plat::NonCopyable {
public:
    explicit FdHandler(int fd_ = -1, bool ownFd_ = true) : fd(fd_), ownFd(ownFd_) {} ///< -1: none yet
    virtual ~FdHandler();                                                            ///< closes an owned descriptor

    virtual void fdReadable() {} ///< also when there is a connection to accept, or an exceptional condition
    virtual void fdWritable() {}
    virtual void fdError(int /*errNo*/) {} ///< for managers that see failures by themselves; select doesn't

    /// The manager is being destroyed and has forgotten this handler.
    virtual void fdManagerGone() {}

    int getFd() const { return fd; } ///< -1 for none
    void closeFd();                  ///< closes it, owned or not; none remains

protected:
    int fd;
    bool ownFd; ///< closed with the object
};

} // namespace io
