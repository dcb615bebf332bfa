// Making way for a new log file; internal to logging.
#pragma once

#include <cstdio>

namespace plat {

/// Deletes rotated files of the log at `path` that are older than `keepDays` days; 0 means all of them.
///
/// A rotated file is a regular file beside it whose name begins with the log's name and a dot. Failures are ignored.
void logDeleteOld(const char* path, int keepDays);

/// Renames the log file, if there is one, to its name with a dot and the local time of its last change.
///
/// Throws plat::Exception, also if something else than a regular file stands there.
void logRotate(const char* path);

/// Makes a new file for writing, mode 0664 under the umask. Throws if anything is there, be it a dangling link.
FILE* logCreate(const char* path);

} // namespace plat
