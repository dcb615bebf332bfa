// Files and directories. All throw plat::SystemExceptionFmt with the function's name and path, unless told otherwise.
#pragma once

#include "plat/String.h"
#include "plat/Time.h"

#include <sys/types.h>

#include <cstdint>

namespace plat {

/// False for what isn't there; throws for what can't be looked at. A link counts as what it points at.
bool fileExists(const char* path);
int64_t fileGetSize(const char* path); ///< bytes
Time fileGetTime(const char* path);    ///< of the last change of the contents
void fileSetTime(const char* path, Time time);
bool fileRemove(const char* path, bool mayBeMissing = false); ///< false if it was missing
void fileRename(const char* from, const char* to);            ///< replaces `to` atomically

/// An open(2) that is always close-on-exec and repeats on EINTR.
int fileOpenFd(const char* path, int flags, mode_t mode = 0664);

/// Opens a regular file, also by way of a link, never waiting for a FIFO's other end. A directory throws EISDIR, what
/// else is none EPERM.
int fileOpenRegularFd(const char* path, int flags, mode_t mode = 0664);

/// Opens a regular file of ours (or root's) that is no symbolic link, never waiting for a FIFO's other end.
///
/// What is something else throws EPERM, a link ELOOP. With O_CREAT a missing one is made.
int fileOpenOwnFd(const char* path, int flags, mode_t mode = 0600);

/// Gives the open file the mode (rwx bits only) and the owner of `from`, if that is a regular file itself and no link.
void fileCopyPerms(const char* from, int toFd);
void fileLock(int fd, bool exclusive = true);    ///< waits; whole file, goes with the descriptor
bool fileTryLock(int fd, bool exclusive = true); ///< false if another holds it
void fileUnlock(int fd);
bool fileIsSameAsFd(const char* path, int fd); ///< false also if nothing is there; a link is not followed

void fileMakePrivate(const char* path); ///< mode 0600, owner the effective user; a link is refused
void fileMakePrivate(int fd);
void fileMakeSticky(const char* path); ///< adds the sticky bit
void fileTruncate(int fd, int64_t size);
void fileSync(int fd); ///< what was written is on the disk, where the file system knows of such a thing
int64_t fileTell(int fd);
void fileSeek(int fd, int64_t pos); ///< from the start

/// 0700 whatever the umask if private, otherwise 0777 under it. A directory that exists is no error; with `fixPerms` a
/// private one of ours gets its mode, and one of somebody else's, or a link, is refused (EPERM).
void mkDir(const char* path, bool isPrivate = false, bool fixPerms = false);
void mkDirs(const char* path, bool isPrivate = false, bool fixPerms = false); ///< with parents, made plain
void mkDirMatchParent(const char* path);              ///< a new one takes owner and mode of its parent
void rmDir(const char* path, bool recursive = false); ///< never follows links

/// The path of a name in `dir` that doesn't exist: `name`, else with `prefix`, 1 to `max`, `suffix` before the
/// extension.
///
/// Throws plat::Exception "Too many files with same name".
String fileUniqueName(const char* dir, const char* name, const char* prefix = " (", const char* suffix = ")",
                      int max = 10000);

/// The whole of a regular file, at most `maxLen` bytes, beyond which EFBIG is thrown; a NUL ends what c_str() shows.
String fileReadAll(const char* path, int maxLen = 16 << 20);

} // namespace plat
