// Names of local sockets in a user's own directory.
#pragma once

#include "plat/String.h"

#include <cstdint>
#include <sys/types.h>

namespace os {

/// The path /tmp/.<pathComp>-<user>/<app><name>[.<pid>[.<counter>]] of a local socket.
class PipeNameScoped {
public:
    static constexpr int64_t noPid = 0;
    static constexpr int64_t ownPid = -1;
    static constexpr int noCounter = -1;
    static constexpr uid_t thisUser = static_cast<uid_t>(-1);

    /// `pid` may be any 32-bit number that stands for a process. For the calling user the directory is made on the
    /// spot, private. Throws plat::SystemException: ENAMETOOLONG (36) for a path of 108 bytes or more, EINVAL for a
    /// name with a "/", and what os::SocketDir throws.
    explicit PipeNameScoped(const char* name, int64_t pid = noPid, int counter = noCounter, uid_t user = thisUser);

    const char* path() const { return path_.c_str(); }
    const char* dir() const { return dir_.c_str(); }

    /// Removes the sockets of that name and pid, with any counter, at which nobody answers.
    static void clearStale(const char* name, int64_t pid, uid_t user = thisUser);

    /// Whether `file`, in the directory, is the socket of that name and pid, with any counter or none.
    static bool isFileOf(const char* file, const char* name, int64_t pid);

private:
    plat::String dir_;
    plat::String path_;
};

} // namespace os
