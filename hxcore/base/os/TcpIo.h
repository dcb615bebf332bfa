// A connection over TCP.
#pragma once

#include "io/FdIo.h"

namespace os {

/// An io::FdIo on a TCP socket that knows its addresses, and sends small messages at once (TCP_NODELAY).
class TcpIo : public io::FdIo {
public:
    explicit TcpIo(int fd_, bool ownFd_ = true); ///< a connected socket

    // io::Io; "192.0.2.1:5900", "[2001:db8::1]:5900", or "" once the socket is no longer connected
    plat::String getPeerEndpoint() const override;
    plat::String getLocalEndpoint() const override;
};

} // namespace os
