#include "plat/file.h"

#include "plat/Exception.h"
#include "plat/path.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace plat {
namespace {

struct stat statOrThrow(const char* path, const char* function) {
    struct stat info;
    if (stat(path, &info) != 0)
        throw SystemExceptionFmt(errno, "%s(%s)", function, path);
    return info;
}

// Repeats a call that a signal ended.
template <class Call>
auto retried(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

void checkFd(bool succeeded, const char* function, int fd) {
    if (!succeeded)
        throw SystemExceptionFmt(errno, "%s(%d)", function, fd);
}

/// Closes a descriptor at the end of a scope.
struct File {
    int fd;
    ~File() { close(fd); }
};

Time timeOf(const timespec& t) { return Time::fromUnix(t.tv_sec) + t.tv_nsec / 100; }

timespec timespecOf(Time time) {
    const int64_t seconds = time.toUnix();
    return {seconds, static_cast<long>((time - Time::fromUnix(seconds)) * 100)};
}

// 0, or the error for what is no regular file, or with `own` not one of ours, or can't be made what `flags` ask for.
int makeReady(int fd, int flags, bool own) {
    struct stat info;
    if (fstat(fd, &info) != 0)
        return errno;
    if (S_ISDIR(info.st_mode) && !own)
        return EISDIR;
    if (!S_ISREG(info.st_mode) || (own && info.st_uid != geteuid() && info.st_uid != 0))
        return EPERM;
    if ((flags & O_TRUNC) && retried([&] { return ftruncate(fd, 0); }) != 0)
        return errno;
    return fcntl(fd, F_SETFL, flags & (O_APPEND | O_NONBLOCK)) == 0 ? 0 : errno;
}

int openRegular(const char* path, int flags, mode_t mode, bool own) {
    // O_TRUNC waits until we know what the file is.
    const int follow = own ? O_NOFOLLOW : 0;
    const int fd = fileOpenFd(path, (flags & ~O_TRUNC) | follow | O_NONBLOCK | O_NOCTTY, mode);
    if (const int error = makeReady(fd, flags, own)) {
        close(fd);
        throw SystemExceptionFmt(error, "fileOpenFd(%s)", path);
    }
    return fd;
}

// A link that leads nowhere takes the name as well.
bool isFree(const char* path) {
    struct stat info;
    if (lstat(path, &info) == 0)
        return false;
    if (errno != ENOENT)
        throw SystemExceptionFmt(errno, "fileUniqueName(%s)", path);
    return true;
}

} // namespace

bool fileExists(const char* path) {
    struct stat info;
    if (stat(strOrEmpty(path), &info) == 0)
        return true;
    if (errno == ENOENT || errno == ENOTDIR)
        return false;
    throw SystemExceptionFmt(errno, "fileExists(%s)", strOrEmpty(path));
}

int64_t fileGetSize(const char* path) { return statOrThrow(path, "fileGetSize").st_size; }

Time fileGetTime(const char* path) { return timeOf(statOrThrow(path, "fileGetTime").st_mtim); }

void fileSetTime(const char* path, Time time) {
    const timespec times[2] = {timespecOf(time), timespecOf(time)};
    if (utimensat(AT_FDCWD, path, times, 0) != 0)
        throw SystemExceptionFmt(errno, "fileSetTime(%s)", path);
}

bool fileRemove(const char* path, bool mayBeMissing) {
    if (unlink(path) == 0)
        return true;
    if (mayBeMissing && errno == ENOENT)
        return false;
    throw SystemExceptionFmt(errno, "fileRemove(%s)", path);
}

void fileRename(const char* from, const char* to) {
    if (rename(from, to) != 0)
        throw SystemExceptionFmt(errno, "fileRename(%s,%s)", from, to);
}

int fileOpenFd(const char* path, int flags, mode_t mode) {
    const int fd = retried([&] { return open(path, flags | O_CLOEXEC, mode); });
    if (fd < 0)
        throw SystemExceptionFmt(errno, "fileOpenFd(%s)", path);
    return fd;
}

int fileOpenRegularFd(const char* path, int flags, mode_t mode) {
    return openRegular(path, flags, mode, /*own=*/false);
}

int fileOpenOwnFd(const char* path, int flags, mode_t mode) { return openRegular(path, flags, mode, /*own=*/true); }

void fileCopyPerms(const char* from, int toFd) {
    struct stat info;
    if (lstat(from, &info) != 0)
        throw SystemExceptionFmt(errno, "fileCopyPerms(%s)", from);
    if (!S_ISREG(info.st_mode))
        throw SystemExceptionFmt(EINVAL, "fileCopyPerms(%s)", from);
    struct stat current;
    checkFd(fstat(toFd, &current) == 0, "fileCopyPerms", toFd);
    // The owner first: with another owner, the wider mode must not stand for a moment.
    const bool sameOwner = current.st_uid == info.st_uid && current.st_gid == info.st_gid;
    const int chownError = sameOwner || fchown(toFd, info.st_uid, info.st_gid) == 0 ? 0 : errno;
    const int chmodError = fchmod(toFd, info.st_mode & 0777) == 0 ? 0 : errno;
    if (chownError || chmodError)
        throw SystemExceptionFmt(chownError ? chownError : chmodError, "fileCopyPerms(%s)", from);
}

void fileLock(int fd, bool exclusive) {
    checkFd(retried([&] { return flock(fd, exclusive ? LOCK_EX : LOCK_SH); }) == 0, "fileLock", fd);
}

bool fileTryLock(int fd, bool exclusive) {
    if (retried([&] { return flock(fd, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB); }) == 0)
        return true;
    checkFd(errno == EWOULDBLOCK, "fileLock", fd);
    return false;
}

void fileUnlock(int fd) { checkFd(flock(fd, LOCK_UN) == 0, "fileUnlock", fd); }

bool fileIsSameAsFd(const char* path, int fd) {
    struct stat byPath;
    struct stat byFd;
    checkFd(fstat(fd, &byFd) == 0, "fileIsSameAsFd", fd);
    if (lstat(path, &byPath) == 0)
        return byPath.st_dev == byFd.st_dev && byPath.st_ino == byFd.st_ino;
    if (errno == ENOENT || errno == ENOTDIR)
        return false;
    throw SystemExceptionFmt(errno, "fileIsSameAsFd(%s)", path);
}

void fileMakePrivate(const char* path) {
    const File file{fileOpenFd(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY)};
    fileMakePrivate(file.fd);
}

void fileMakePrivate(int fd) {
    // The owner first: whoever has the file could widen the mode again.
    checkFd(fchown(fd, geteuid(), static_cast<gid_t>(-1)) == 0 && fchmod(fd, 0600) == 0, "fileMakePrivate", fd);
}

void fileMakeSticky(const char* path) {
    const mode_t mode = statOrThrow(path, "fileMakeSticky").st_mode & 07777;
    if (chmod(path, mode | S_ISVTX) != 0)
        throw SystemExceptionFmt(errno, "fileMakeSticky(%s)", path);
}

void fileTruncate(int fd, int64_t size) {
    checkFd(retried([&] { return ftruncate(fd, size); }) == 0, "fileTruncate", fd);
}

void fileSync(int fd) {
    const bool synced = retried([&] { return fsync(fd); }) == 0;
    checkFd(synced || errno == EINVAL || errno == EROFS, "fileSync", fd);
}

int64_t fileTell(int fd) {
    const off_t pos = lseek(fd, 0, SEEK_CUR);
    checkFd(pos >= 0, "fileTell", fd);
    return pos;
}

void fileSeek(int fd, int64_t pos) { checkFd(lseek(fd, pos, SEEK_SET) >= 0, "fileSeek", fd); }

String fileUniqueName(const char* dir, const char* name, const char* prefix, const char* suffix, int max) {
    String candidate = path::join(dir, name);
    if (isFree(candidate.c_str()))
        return candidate;
    const std::string_view all(strOrEmpty(name));
    const size_t dot = all.rfind('.');
    const size_t stemLen = dot == std::string_view::npos || dot == 0 ? all.size() : dot; // ".profile" has no extension
    const String stem(all.substr(0, stemLen));
    for (int i = 1; i <= max; ++i) {
        const String numbered = strFormat("%s%s%d%s%s", stem.c_str(), strOrEmpty(prefix), i, strOrEmpty(suffix),
                                          strOrEmpty(name) + stemLen);
        candidate = path::join(dir, numbered.c_str());
        if (isFree(candidate.c_str()))
            return candidate;
    }
    throw Exception("Too many files with same name");
}

String fileReadAll(const char* path, int maxLen) {
    const File file{fileOpenRegularFd(path, O_RDONLY)};
    std::string text;
    char piece[16384];
    for (;;) {
        const ssize_t n = retried([&] { return read(file.fd, piece, sizeof(piece)); });
        if (n < 0)
            throw SystemExceptionFmt(errno, "fileReadAll(%s)", path);
        if (n == 0)
            return String(std::string_view(text));
        if (text.size() + static_cast<size_t>(n) > static_cast<size_t>(maxLen))
            throw SystemExceptionFmt(EFBIG, "fileReadAll(%s)", path);
        text.append(piece, static_cast<size_t>(n));
    }
}

} // namespace plat
