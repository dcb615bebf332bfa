// The child's end of a launch.
#pragma once

#include "plat/NonCopyable.h"

namespace io {
class FdIo;
}

namespace os {

/// Connects a process to the parent that launched it, as the words of its command line say (os::LaunchArgs).
///
/// With "-fork" the calling process ends and its child goes on, in a session of its own. By a named socket it waits for
/// the parent's 32 bytes of proof, for a minute at most; that and the connect are all that blocks.
class LaunchedProcessPipe : private plat::NonCopyable {
public:
    /// `argv`: null-terminated, from the first of these words on.
    ///
    /// Throws what LaunchArgs::read throws; plat::SystemException for a descriptor that isn't there or a socket that
    /// can't be reached; rdr::EndOfStream if the parent leaves before all 32 bytes, plat::TimedOut if it doesn't send
    /// them, plat::Exception "Bad hash" if they are wrong.
    explicit LaunchedProcessPipe(const char* const* argv);
    ~LaunchedProcessPipe(); ///< ends a connection that nobody took

    io::FdIo* takeIo(); ///< the caller's from here on; null the second time

    int argCount() const { return count; } ///< words that were understood
    bool isDummy() const { return dummy; } ///< there is no parent; descriptor 0 stands in for it

private:
    io::FdIo* io = nullptr;
    int count = 0;
    bool dummy = false;
};

/// Makes `fd` (2, but for tests) write to the end of `path`, which is made if need be.
///
/// False, with errno set and nothing changed, where the file is not our own: a link of either kind, another user's
/// (EPERM), or no regular file. It never waits.
bool redirectToDebugFile(const char* path, int fd);

} // namespace os
