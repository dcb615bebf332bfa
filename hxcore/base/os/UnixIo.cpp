#include "os/UnixIo.h"

#include "os/TcpIo.h"
#include "plat/Exception.h"
#include "plat/encodings.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace os {
namespace {
constexpr time_t connectTimeoutS = 10; // of a listener that is there but doesn't accept

bool fillAddress(sockaddr_un& address, const char* path) {
    const size_t len = strlen(path);
    if (len >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path, len);
    return true;
}

int socketTo(const char* path, int flags) {
    sockaddr_un address;
    if (!fillAddress(address, path))
        return -1;
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
    if (fd < 0)
        return -1;
    const timeval limit{connectTimeoutS, 0};
    const timeval none{0, 0};
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    int result;
    do // with a limit on its time, a signal ends the wait whatever its handler asked for (signal(7))
        result = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    while (result < 0 && errno == EINTR);
    if (result == 0) {
        setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &none, sizeof none);
        return fd;
    }
    const int errNo = errno;
    close(fd);
    errno = errNo;
    return -1;
}

plat::String logName(int fd, UnixIo::Side side, const char* socketName) {
    uid_t uid;
    const plat::String who = peerEuid(fd, &uid) ? plat::strFormat("-uid-%u", static_cast<unsigned>(uid)) : "";
    return plat::strFormat("<unix-%s-%s%s>", side == UnixIo::Side::Client ? "client" : "server",
                           socketName && *socketName ? socketName : "anon", who.c_str());
}

} // namespace

UnixIo::UnixIo(int fd_, Side side, const char* socketName, bool ownFd_) : FdIo(fd_, ownFd_), path(socketName) {
    addFlag("secureTransport");
    setName(logName(fd_, side, socketName).c_str());
}

UnixIo* UnixIo::connect(const char* path) {
    const int connected = connectUnixSocket(path);
    if (connected < 0)
        throw plat::SystemException("connect", errno);
    return new UnixIo(connected, Side::Client, path);
}

uid_t UnixIo::getPeerEuid() const {
    uid_t uid;
    if (!peerEuid(fd, &uid))
        throw plat::SystemException("getPeerEuid", errno);
    return uid;
}

void UnixIo::namedPipeCredCheck(uid_t uid) const {
    if (getPeerEuid() != uid)
        throw plat::Exception("namedPipeCredCheck: uid mismatch");
}

plat::String UnixIo::getPeerEndpoint() const {
    std::string text = "[unix:";
    std::string_view rest = path.view();
    for (;;) {
        const size_t slash = rest.find('/');
        text += plat::percentEncode(std::string(rest.substr(0, slash)).c_str()).c_str();
        if (slash == std::string_view::npos)
            break;
        text += '/';
        rest.remove_prefix(slash + 1);
    }
    return (text + "]").c_str();
}

bool peerEuid(int fd, uid_t* uid) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) < 0)
        return false;
    if (peer.uid == static_cast<uid_t>(-1)) {
        errno = ENOTCONN;
        return false;
    }
    *uid = peer.uid;
    return true;
}

int connectUnixSocket(const char* path) { return socketTo(path, 0); }

bool somebodyListens(const char* path) {
    const int fd = socketTo(path, SOCK_NONBLOCK);
    if (fd < 0)
        return errno == EAGAIN; // so many wait already
    close(fd);
    return true;
}

io::FdIo* fdToFdIo(int fd) {
    if (fcntl(fd, F_GETFD) < 0)
        throw plat::SystemExceptionFmt(errno, "descriptor %d", fd);
    fcntl(fd, F_SETFD, FD_CLOEXEC);
    int family = 0;
    socklen_t size = sizeof family;
    getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &family, &size);
    switch (family) {
    case AF_UNIX:
        return new UnixIo(fd, UnixIo::Side::Client);
    case AF_INET:
    case AF_INET6:
        return new TcpIo(fd);
    default:
        return new io::FdIo(fd);
    }
}

} // namespace os
