#include "os/SocketDir.h"

#include "plat/Exception.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace os {
namespace {

int openDir(const char* path) { return open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }

} // namespace

SocketDir::SocketDir(const char* path, uid_t owner) : dirFd(-1) {
    const bool made = mkdir(path, S_IRWXU) == 0;
    if (!made && errno != EEXIST)
        throw plat::StdlibException("mkDir(%s)", path);
    dirFd = openDir(path);
    if (dirFd < 0)
        throw plat::StdlibException("open(%s)", path);
    try {
        // Only what was made here is given away, and not before it is known to be that.
        if (made && owner != geteuid()) {
            check(path, geteuid());
            if (fchown(dirFd, owner, static_cast<gid_t>(-1)) < 0)
                throw plat::StdlibException("chown(%s,%d,%d)", path, static_cast<int>(owner), -1);
        }
        check(path, owner);
    } catch (...) {
        close(dirFd);
        throw;
    }
}

SocketDir::~SocketDir() { close(dirFd); }

bool SocketDir::stat(const char* file, struct stat* out) const {
    if (fstatat(dirFd, file, out, AT_SYMLINK_NOFOLLOW) == 0)
        return true;
    if (errno != ENOENT)
        throw plat::StdlibException("stat(%s)", file);
    return false;
}

void SocketDir::unlinkSocket(const char* file) const {
    struct stat info;
    if (!stat(file, &info))
        return;
    if (!S_ISSOCK(info.st_mode))
        throw plat::SystemExceptionFmt(ENOTSOCK, "unlink(%s)", file);
    if (unlinkat(dirFd, file, 0) < 0 && errno != ENOENT)
        throw plat::StdlibException("unlink(%s)", file);
}

plat::String SocketDir::pathTo(const char* file) const { return plat::strFormat("/proc/self/fd/%d/%s", dirFd, file); }

void SocketDir::check(const char* path, uid_t owner) const {
    struct stat info;
    if (fstat(dirFd, &info) < 0)
        throw plat::StdlibException("stat(%s)", path);
    if (info.st_uid != owner)
        throw plat::SystemExceptionFmt(EPERM, "%s belongs to user %u, not %u", path, info.st_uid, owner);
    if (info.st_mode & (S_IRWXG | S_IRWXO))
        throw plat::SystemExceptionFmt(EPERM, "%s is open to others (mode %o)", path, info.st_mode & 07777);
}

} // namespace os
