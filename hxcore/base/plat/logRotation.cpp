#include "plat/logRotation.h"

#include "plat/Exception.h"
#include "plat/path.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <memory>
#include <string>

namespace plat {
namespace {

constexpr int maxNameTries = 99;
constexpr int64_t secondsPerDay = 86400;

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};

bool isOld(const struct stat& info, int keepDays, time_t now) {
    return keepDays == 0 || now - info.st_mtime > keepDays * secondsPerDay;
}

String rotatedName(const char* path, time_t changed) {
    struct tm when {};
    if (!localtime_r(&changed, &when))
        throw ExceptionFmt("%s: bad time of last change", path);
    return strFormat("%s.%04d%02d%02d%02d%02d%02d", path, when.tm_year + 1900, when.tm_mon + 1, when.tm_mday,
                     when.tm_hour, when.tm_min, when.tm_sec);
}

/// False if `to` exists.
bool renameWithoutReplacing(const char* from, const char* to) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return true;
    if (errno == EEXIST)
        return false;
    if (errno != EINVAL && errno != ENOSYS)
        throw StdlibException("fileRename(%s,%s)", from, to);
    // The file system can't do it in one step.
    struct stat info {};
    if (lstat(to, &info) == 0)
        return false;
    if (rename(from, to) != 0)
        throw StdlibException("fileRename(%s,%s)", from, to);
    return true;
}

} // namespace

void logDeleteOld(const char* path, int keepDays) {
    const std::unique_ptr<DIR, DirCloser> dir(opendir(path::dirName(path).c_str()));
    if (!dir)
        return;
    const std::string prefix = std::string(path::baseName(path).c_str()) + ".";
    const time_t now = time(nullptr);
    while (const dirent* entry = readdir(dir.get())) {
        struct stat info {};
        if (startsWith(entry->d_name, prefix.c_str()) &&
            fstatat(dirfd(dir.get()), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(info.st_mode) &&
            isOld(info, keepDays, now))
            unlinkat(dirfd(dir.get()), entry->d_name, 0);
    }
}

void logRotate(const char* path) {
    struct stat info {};
    if (lstat(path, &info) != 0) {
        if (errno == ENOENT)
            return;
        throw StdlibException("fileGetTime(%s)", path);
    }
    if (!S_ISREG(info.st_mode))
        throw ExceptionFmt("%s is not a regular file", path);
    const String name = rotatedName(path, info.st_mtime);
    if (renameWithoutReplacing(path, name.c_str()))
        return;
    for (int i = 1; i <= maxNameTries; ++i) {
        if (renameWithoutReplacing(path, strFormat("%s(%d)", name.c_str(), i).c_str()))
            return;
    }
    throw Exception("Too many files with same name");
}

FILE* logCreate(const char* path) {
    const int fd = open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0664);
    if (fd < 0)
        throw StdlibException("fileOpenFd(%s)", path);
    FILE* const file = fdopen(fd, "w");
    if (!file) {
        const int errNo = errno;
        close(fd);
        throw SystemExceptionFmt(errNo, "fdopen(%s)", path);
    }
    return file;
}

} // namespace plat
