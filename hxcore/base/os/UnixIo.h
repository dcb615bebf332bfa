// A connection on a local (Unix domain) socket.
#pragma once

#include "io/FdIo.h"

#include <sys/types.h>

namespace os {

/// An io::FdIo with the flag "secureTransport" that knows who its peer is.
class UnixIo : public io::FdIo {
public:
    enum class Side { Client, Server };

    /// `socketName` is the path, null or "" for a socket without one.
    UnixIo(int fd_, Side side, const char* socketName = nullptr, bool ownFd_ = true);

    /// Connects to a named socket, waiting for the listener if need be. Throws plat::SystemException "connect".
    static UnixIo* connect(const char* path);

    uid_t getPeerEuid() const; ///< of SO_PEERCRED; throws plat::SystemException "getPeerEuid"

    /// Throws plat::Exception unless the peer's effective user was `uid` when it connected.
    void namedPipeCredCheck(uid_t uid) const;

    // io::Io
    plat::String getPeerEndpoint() const override; ///< "[unix:path]", each component percent-encoded

private:
    plat::String path;
};

/// The effective user of a connected local socket's peer; false, with errno set, if it can't be told.
bool peerEuid(int fd, uid_t* uid);

/// A connected socket for `path`, close-on-exec; -1 with errno set. Waits 10 seconds for a busy listener.
int connectUnixSocket(const char* path);

/// Whether a connection to `path` would be taken, tried without waiting.
bool somebodyListens(const char* path);

/// Wraps an inherited descriptor by its kind: a local socket becomes a UnixIo, one of TCP a TcpIo, anything else an
/// io::FdIo.
///
/// Throws plat::SystemException if there is no such descriptor.
io::FdIo* fdToFdIo(int fd);

} // namespace os
