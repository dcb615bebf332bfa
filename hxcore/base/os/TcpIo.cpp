#include "os/TcpIo.h"

#include "io/endpointName.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace os {
namespace {

plat::String addressText(const sockaddr_storage& address) {
    char host[INET6_ADDRSTRLEN] = "";
    int port = 0;
    if (address.ss_family == AF_INET) {
        const auto& v4 = reinterpret_cast<const sockaddr_in&>(address);
        inet_ntop(AF_INET, &v4.sin_addr, host, sizeof host);
        port = ntohs(v4.sin_port);
    } else if (address.ss_family == AF_INET6) {
        const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address);
        inet_ntop(AF_INET6, &v6.sin6_addr, host, sizeof host);
        port = ntohs(v6.sin6_port);
    }
    return *host ? io::endpoint::format(host, port, io::endpoint::noPort, /*displayLimit=*/0) : plat::String();
}

} // namespace

TcpIo::TcpIo(int fd_, bool ownFd_) : FdIo(fd_, ownFd_) {
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    setName(plat::strFormat("<tcp-%s>", getPeerEndpoint().c_str()).c_str());
}

plat::String TcpIo::getPeerEndpoint() const {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getpeername(fd, reinterpret_cast<sockaddr*>(&address), &size);
    return addressText(address);
}

plat::String TcpIo::getLocalEndpoint() const {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
    return addressText(address);
}

} // namespace os
