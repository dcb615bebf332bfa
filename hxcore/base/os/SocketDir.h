// The private directory in which local sockets are made.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <sys/stat.h>
#include <sys/types.h>

namespace os {

/// A directory that is one user's alone, held open: what happens to its path later leads nowhere else.
class SocketDir : private plat::NonCopyable {
public:
    /// Opens it, made on the spot if it is missing. Throws plat::SystemException if it is a link or no directory, if
    /// it is another's, or if others have any right to it.
    SocketDir(const char* path, uid_t owner);
    ~SocketDir();

    bool stat(const char* file, struct stat* out) const; ///< of the name itself; false if it isn't there
    void unlinkSocket(const char* file) const;           ///< a missing one is no error; throws for what is no socket

    int fd() const { return dirFd; }
    plat::String pathTo(const char* file) const; ///< a path to `file` by way of the open directory

private:
    void check(const char* path, uid_t owner) const;

    int dirFd;
};

} // namespace os
