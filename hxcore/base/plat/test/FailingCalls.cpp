#include "plat/test/FailingCalls.h"

#include "plat/Assert.h"
#include "plat/cstr.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/random.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <iterator>

namespace plat {
namespace {

FailingCalls* innermost = nullptr;
size_t maxBytesAtOnce = SIZE_MAX;

constexpr const char* wrapped[] = {
    "accept4", "bind",   "close",    "connect",   "fchmod",         "fchown",     "fclose",   "fdopen",   "fflush",
    "flock",   "fstat",  "fsync",    "getrandom", "listen",         "lstat",      "mkdir",    "open",     "opendir",
    "pipe2",   "read",   "readlink", "rename",    "renameat2",      "select",     "send",     "shutdown", "socket",
    "stat",    "unlink", "unlinkat", "write",     "pthread_create", "getsockopt", "fchmodat", "fstatat",  "ftruncate"};

} // namespace

FailingCalls::FailingCalls(const char* function_, int errNo_, int count, int after)
    : function(function_), errNo(errNo_), left(count), passing(after), outer(innermost) {
    ASSERT(std::any_of(std::begin(wrapped), std::end(wrapped),
                       [=](const char* name) { return strEquals(name, function_); }));
    innermost = this;
}

FailingCalls::~FailingCalls() { innermost = outer; }

bool FailingCalls::failsNow(const char* name) {
    for (FailingCalls* each = innermost; each; each = each->outer) {
        if (!strEquals(each->function, name) || each->left == 0)
            continue;
        if (each->passing-- > 0)
            return false;
        each->passing = 0;
        --each->left;
        ++each->failures;
        errno = each->errNo;
        return true;
    }
    return false;
}

ShortCounts::ShortCounts(size_t maxBytes) { maxBytesAtOnce = maxBytes; }
ShortCounts::~ShortCounts() { maxBytesAtOnce = SIZE_MAX; }
size_t ShortCounts::cut(size_t bytes) { return std::min(bytes, maxBytesAtOnce); }

} // namespace plat

// They hide those of the C library from what is linked into the same program.
#pragma GCC diagnostic ignored "-Wshadow" // stat and flock are structs too
#define PLAT_WRAP_AS(result, name, spec, failure, params, args)                                                        \
    extern "C" result name params spec {                                                                               \
        static auto* const real = reinterpret_cast<result(*) params>(dlsym(RTLD_NEXT, #name));                         \
        return plat::FailingCalls::failsNow(#name) ? failure : real args;                                              \
    }
#define PLAT_WRAP(name, params, args) PLAT_WRAP_AS(int, name, , -1, params, args)
#define PLAT_WRAP_NOEXCEPT(name, params, args) PLAT_WRAP_AS(int, name, noexcept, -1, params, args)

PLAT_WRAP_AS(ssize_t, read, , -1, (int fd, void* buf, size_t n), (fd, buf, plat::ShortCounts::cut(n)))
PLAT_WRAP_AS(ssize_t, write, , -1, (int fd, const void* buf, size_t n), (fd, buf, plat::ShortCounts::cut(n)))
PLAT_WRAP_AS(ssize_t, send, , -1, (int fd, const void* buf, size_t n, int flags),
             (fd, buf, plat::ShortCounts::cut(n), flags))
PLAT_WRAP_AS(ssize_t, readlink, noexcept, -1, (const char* path, char* buf, size_t n), (path, buf, n))
PLAT_WRAP_AS(ssize_t, getrandom, , -1, (void* buf, size_t n, unsigned flags), (buf, n, flags))
PLAT_WRAP_AS(FILE*, fdopen, noexcept, nullptr, (int fd, const char* mode), (fd, mode))
PLAT_WRAP_AS(DIR*, opendir, , nullptr, (const char* path), (path))
PLAT_WRAP_AS(int, pthread_create, noexcept, errno,
             (pthread_t * id, const pthread_attr_t* attr, void* (*start)(void*), void* arg), (id, attr, start, arg))
PLAT_WRAP(accept4, (int fd, sockaddr* address, socklen_t* size, int flags), (fd, address, size, flags))
PLAT_WRAP(connect, (int fd, const sockaddr* address, socklen_t size), (fd, address, size))
PLAT_WRAP(fflush, (FILE * file), (file))
PLAT_WRAP(fsync, (int fd), (fd))
PLAT_WRAP(select, (int n, fd_set* r, fd_set* w, fd_set* e, timeval* limit), (n, r, w, e, limit))
PLAT_WRAP_NOEXCEPT(bind, (int fd, const sockaddr* address, socklen_t size), (fd, address, size))
PLAT_WRAP_NOEXCEPT(fchmod, (int fd, mode_t mode), (fd, mode))
PLAT_WRAP_NOEXCEPT(fchmodat, (int dir, const char* path, mode_t mode, int flags), (dir, path, mode, flags))
PLAT_WRAP_NOEXCEPT(fchown, (int fd, uid_t uid, gid_t gid), (fd, uid, gid))
PLAT_WRAP_NOEXCEPT(flock, (int fd, int how), (fd, how))
PLAT_WRAP_NOEXCEPT(fstat, (int fd, struct stat* out), (fd, out))
PLAT_WRAP_NOEXCEPT(fstatat, (int dir, const char* path, struct stat* out, int flags), (dir, path, out, flags))
PLAT_WRAP_NOEXCEPT(ftruncate, (int fd, off_t size), (fd, size))
PLAT_WRAP_NOEXCEPT(getsockopt, (int fd, int level, int name, void* out, socklen_t* size), (fd, level, name, out, size))
PLAT_WRAP_NOEXCEPT(listen, (int fd, int backlog), (fd, backlog))
PLAT_WRAP_NOEXCEPT(lstat, (const char* path, struct stat* out), (path, out))
PLAT_WRAP_NOEXCEPT(mkdir, (const char* path, mode_t mode), (path, mode))
PLAT_WRAP_NOEXCEPT(pipe2, (int* ends, int flags), (ends, flags))
PLAT_WRAP_NOEXCEPT(rename, (const char* from, const char* to), (from, to))
PLAT_WRAP_NOEXCEPT(renameat2, (int fromDir, const char* from, int toDir, const char* to, unsigned flags),
                   (fromDir, from, toDir, to, flags))
PLAT_WRAP_NOEXCEPT(shutdown, (int fd, int how), (fd, how))
PLAT_WRAP_NOEXCEPT(socket, (int family, int type, int protocol), (family, type, protocol))
PLAT_WRAP_NOEXCEPT(stat, (const char* path, struct stat* out), (path, out))
PLAT_WRAP_NOEXCEPT(unlink, (const char* path), (path))
PLAT_WRAP_NOEXCEPT(unlinkat, (int dir, const char* path, int flags), (dir, path, flags))

// What fails in closing is closed all the same (close(2), fclose(3)).
extern "C" int close(int fd) {
    static auto* const real = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "close"));
    const int result = real(fd);
    return plat::FailingCalls::failsNow("close") ? -1 : result;
}

extern "C" int fclose(FILE* file) {
    static auto* const real = reinterpret_cast<int (*)(FILE*)>(dlsym(RTLD_NEXT, "fclose"));
    const int result = real(file);
    return plat::FailingCalls::failsNow("fclose") ? EOF : result;
}

extern "C" int open(const char* path, int flags, ...) {
    static auto* const real = reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"));
    va_list args;
    va_start(args, flags);
    const auto mode = flags & O_CREAT ? va_arg(args, mode_t) : 0;
    va_end(args);
    return plat::FailingCalls::failsNow("open") ? -1 : real(path, flags, mode);
}
