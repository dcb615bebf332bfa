#include "os/LockFile.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {
plat::LogSrc log("LockFile");

// 0, or why not all of it could be written.
int writeAll(int fd, const plat::String& text) {
    const char* pos = text.c_str();
    auto left = static_cast<size_t>(text.len());
    while (left > 0) {
        const ssize_t count = write(fd, pos, left);
        if (count < 0 && errno != EINTR)
            return errno;
        if (count > 0) {
            pos += count;
            left -= static_cast<size_t>(count);
        }
    }
    return 0;
}

} // namespace

LockFile::LockFile(const char* lockPath) : path_(lockPath), owner(getpid()) {
    const int fd = open(path(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644); // never through a link (open(2))
    if (fd < 0)
        throw plat::StdlibException("open(%s)", path());
    int errNo = writeAll(fd, plat::strFormat("%ld\n", static_cast<long>(owner)));
    struct stat info {};
    if (fstat(fd, &info) == 0) {
        dev = info.st_dev;
        ino = info.st_ino;
    }
    if (close(fd) != 0 && errNo == 0) // where some file systems tell of a full disk
        errNo = errno;
    if (errNo == 0)
        return;
    unlink(path());
    throw plat::ExceptionFmt("Failed to write lockfile contents: %s", strerror(errNo));
}

LockFile::~LockFile() {
    struct stat info {};
    const bool isOurs = owner == getpid() && lstat(path(), &info) == 0 && info.st_dev == dev && info.st_ino == ino;
    if (isOurs && unlink(path()) != 0)
        log.error("unlink(%s): %s", path(), strerror(errno));
}

} // namespace os
