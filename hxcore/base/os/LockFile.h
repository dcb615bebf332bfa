// A file that says who is at work.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <sys/types.h>

namespace os {

/// Makes a file that was not there, with the process id in it as a line, and removes it at the end.
///
/// A file that is there belongs to somebody, though he may be long gone: it is never replaced.
class LockFile : private plat::NonCopyable {
public:
    /// Throws plat::SystemException, with EEXIST if it is there, and plat::Exception "Failed to write lockfile
    /// contents: %s"; then there is no new file.
    explicit LockFile(const char* lockPath);
    ~LockFile(); ///< only what was made here

    const char* path() const { return path_.c_str(); }

private:
    plat::String path_;
    pid_t owner;
    dev_t dev = 0;
    ino_t ino = 0;
};

} // namespace os
