// A named local socket that waits for connections.
#pragma once

#include "io/FdListener.h"
#include "plat/String.h"

#include <sys/types.h>

namespace os {

class SocketDir;

/// Listens at a path in a private directory and makes os::UnixIo objects of the connections.
///
/// While it lives it looks after its file: it touches it now and then, and binds anew when it has gone. A directory
/// that is a link, a file, another's, or open to others is refused. What isn't a socket is never removed.
class NamedPipeListener : public io::FdListener {
public:
    struct Options {
        bool openToAll = false;               ///< any user may connect; else only `owner` and root
        bool takeOver = false;                ///< don't ask whether somebody listens there already
        uid_t owner = static_cast<uid_t>(-1); ///< of directory and socket, when we are root; default: ourselves
    };

    /// Throws plat::SystemException, "name already bound" with EADDRINUSE (98) if somebody listens there.
    explicit NamedPipeListener(const char* socketPath);
    NamedPipeListener(const char* socketPath, const Options& options);
    ~NamedPipeListener() override; ///< unlinks the name, if it is still this socket

    const char* path() const { return path_.c_str(); }

private:
    // io::FdListener
    io::Io* makeIo(int acceptedFd) override;

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    int bindAnew(bool askFirst);
    bool isOurs(const SocketDir& dir, const char* file) const;
    void startRefresh();
    void refresh();

    plat::String path_;
    Options options;
    uid_t owner;
    dev_t boundDev = 0; // the file that was bound
    ino_t boundIno = 0;
    plat::Timer refreshTimer{this};
};

} // namespace os
