#include "os/NamedPipeListener.h"

#include "os/OwnedFd.h"
#include "os/SocketDir.h"
#include "os/UnixIo.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/path.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace os {
namespace {
plat::LogSrc log("NamedPipe");
plat::IntParameter refreshInterval("_UnixSocketRefreshInterval",
                                   "Seconds between two looks at the file of a local socket (0 for never)", 3600,
                                   /*isAdvanced=*/true, /*owner=*/nullptr, 0, INT_MAX);
constexpr int backlog = 5;
constexpr mode_t ownerOnlyMask = 0177;
constexpr mode_t openToAllMask = 0111;

void bindUnder(mode_t mask, int fd, const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (strlen(path) >= sizeof address.sun_path)
        throw plat::SystemException(path, ENAMETOOLONG);
    memcpy(address.sun_path, path, strlen(path));
    const mode_t before = umask(mask);
    const int result = bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const int errNo = errno;
    umask(before);
    if (result < 0)
        throw plat::SystemException("bind", errNo);
}

void makeSticky(const SocketDir& dir, const char* file, const char* path) {
    struct stat info;
    if (dir.stat(file, &info) && fchmodat(dir.fd(), file, (info.st_mode & 07777) | S_ISVTX, 0) == 0)
        return;
    log.debug("Failed to set sticky bit on %s: %s", path, strerror(errno));
}

void giveTo(uid_t owner, const SocketDir& dir, const char* file, const char* path) {
    if (geteuid() != 0)
        return;
    if (fchownat(dir.fd(), file, owner, static_cast<gid_t>(-1), AT_SYMLINK_NOFOLLOW) < 0)
        throw plat::SystemExceptionFmt(errno, "chown(%s,%d,%d)", path, static_cast<int>(owner), -1);
}

} // namespace

NamedPipeListener::NamedPipeListener(const char* socketPath) : NamedPipeListener(socketPath, Options()) {}

NamedPipeListener::NamedPipeListener(const char* socketPath, const Options& someOptions)
    : path_(socketPath), options(someOptions),
      owner(options.owner == static_cast<uid_t>(-1) ? geteuid() : options.owner) {
    replaceFd(bindAnew(/*askFirst=*/!options.takeOver));
    startRefresh();
}

NamedPipeListener::~NamedPipeListener() {
    try {
        const SocketDir dir(plat::path::dirName(path()).c_str(), owner);
        const plat::String file = plat::path::baseName(path());
        if (isOurs(dir, file.c_str()))
            dir.unlinkSocket(file.c_str());
    } catch (const plat::Exception& failure) {
        log.debug("Failed to remove socket: %s", failure.describe().c_str());
    }
}

io::Io* NamedPipeListener::makeIo(int acceptedFd) {
    OwnedFd accepted(acceptedFd);
    uid_t peer;
    if (!peerEuid(acceptedFd, &peer))
        throw plat::SystemException("getPeerEuid", errno);
    if (!options.openToAll && peer != owner && peer != geteuid() && peer != 0) {
        log.info("Refusing a connection of user %u to %s", static_cast<unsigned>(peer), path());
        return nullptr;
    }
    auto* io = new UnixIo(accepted.release(), UnixIo::Side::Server, path());
    io->addFlag("incoming");
    return io;
}

bool NamedPipeListener::timerExpired(plat::Timer* timer) {
    if (timer != &refreshTimer)
        return FdListener::timerExpired(timer);
    refresh();
    startRefresh();
    return false;
}

// A listening socket at our name, in a directory that is nobody else's.
int NamedPipeListener::bindAnew(bool askFirst) {
    const plat::String file = plat::path::baseName(path());
    if (static_cast<size_t>(path_.len()) >= sizeof sockaddr_un::sun_path)
        throw plat::SystemException(path(), ENAMETOOLONG);
    const SocketDir dir(plat::path::dirName(path()).c_str(), owner);
    const plat::String inDir = dir.pathTo(file.c_str());
    if (askFirst && somebodyListens(inDir.c_str()))
        throw plat::SystemException("name already bound", EADDRINUSE);
    dir.unlinkSocket(file.c_str());
    OwnedFd listening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (listening.get() < 0)
        throw plat::SystemException("socket", errno);
    bindUnder(options.openToAll ? openToAllMask : ownerOnlyMask, listening.get(), inDir.c_str());
    try {
        makeSticky(dir, file.c_str(), path());
        giveTo(owner, dir, file.c_str(), path());
        if (listen(listening.get(), backlog) < 0)
            throw plat::SystemException("listen", errno);
    } catch (const plat::SystemException&) {
        unlinkat(dir.fd(), file.c_str(), 0); // nobody will ever listen there
        throw;
    }
    struct stat info;
    if (dir.stat(file.c_str(), &info)) {
        boundDev = info.st_dev;
        boundIno = info.st_ino;
    }
    return listening.release();
}

bool NamedPipeListener::isOurs(const SocketDir& dir, const char* file) const {
    struct stat info;
    return dir.stat(file, &info) && info.st_dev == boundDev && info.st_ino == boundIno;
}

void NamedPipeListener::startRefresh() {
    if (refreshInterval.value() == 0 || !plat::TimerManager::current())
        return;
    const int64_t ms = int64_t{refreshInterval.value()} * 1000;
    refreshTimer.start(static_cast<uint32_t>(std::min<int64_t>(ms, INT_MAX)));
}

// Keeps the file from the housekeeping of /tmp, or brings it back.
void NamedPipeListener::refresh() {
    try {
        const SocketDir dir(plat::path::dirName(path()).c_str(), owner);
        const plat::String file = plat::path::baseName(path());
        struct stat info;
        if (dir.stat(file.c_str(), &info)) {
            if (isOurs(dir, file.c_str()))
                utimensat(dir.fd(), file.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
            return;
        }
        log.debug("Recreating socket: %s", path());
        replaceFd(bindAnew(/*askFirst=*/false));
    } catch (const plat::Exception& failure) {
        log.debug("Failed to recreate socket: %s", failure.describe().c_str());
    }
}

} // namespace os
