// A relay between a client and an X server that counts what passes.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace txtest {

/// Serves one client, on a display number of its own. Framing as in the X protocol, chapters 8 and "Encoding"; the
/// client is little-endian.
class XRelay {
public:
    explicit XRelay(const std::string& serverDisplay) {
        server = connectTo("/tmp/.X11-unix/X" + serverDisplay.substr(1));
        listener = socket(AF_UNIX, SOCK_STREAM, 0);
        const int number = 20000 + getpid() % 10000;
        path = "/tmp/.X11-unix/X" + std::to_string(number);
        name = ":" + std::to_string(number);
        const sockaddr_un address = addressOf(path);
        unlink(path.c_str());
        if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
            listen(listener, 1) != 0)
            std::abort();
        thread = std::thread([this] { relay(); });
        thread.detach(); // the process ends with _exit
    }
    ~XRelay() { unlink(path.c_str()); }
    XRelay(const XRelay&) = delete;
    XRelay& operator=(const XRelay&) = delete;

    const char* display() const { return name.c_str(); }
    int requests() {
        unlink(path.c_str());
        return requestCount;
    }
    int replies() const { return replyCount; }

private:
    static sockaddr_un addressOf(const std::string& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
        return address;
    }
    static int connectTo(const std::string& path) {
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        const sockaddr_un address = addressOf(path);
        if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
            std::abort();
        return fd;
    }
    static uint32_t number(const std::vector<uint8_t>& bytes, size_t at, int width) {
        uint32_t value = 0;
        for (int i = width; i-- > 0;)
            value = value << 8 | bytes[at + static_cast<size_t>(i)];
        return value;
    }

    void relay() {
        const int client = accept(listener, nullptr, nullptr);
        std::array<pollfd, 2> fds{{{client, POLLIN, 0}, {server, POLLIN, 0}}};
        while (poll(fds.data(), 2, -1) >= 0) {
            if (fds[0].revents && !pass(client, server, toServer))
                return;
            if (fds[1].revents && !pass(server, client, toClient))
                return;
            countRequests();
            countReplies();
        }
    }
    static bool pass(int from, int to, std::vector<uint8_t>& seen) {
        std::array<uint8_t, 65536> buffer{};
        const ssize_t len = read(from, buffer.data(), buffer.size());
        if (len <= 0)
            return false;
        for (ssize_t done = 0; done < len;) {
            const ssize_t now = write(to, buffer.data() + done, static_cast<size_t>(len - done));
            if (now <= 0)
                return false;
            done += now;
        }
        seen.insert(seen.end(), buffer.begin(), buffer.begin() + len);
        return true;
    }
    /// Drops whole messages from the front as long as `length` knows theirs; it gives 0 for too few bytes.
    template <class Length>
    static void consume(std::vector<uint8_t>& bytes, Length length) {
        size_t at = 0;
        for (size_t len = length(at); len != 0 && at + len <= bytes.size(); len = length(at))
            at += len;
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(at));
    }
    void countRequests() {
        consume(toServer, [this](size_t at) -> size_t {
            if (!clientGreeted) { // byte order, version, authorization
                if (toServer.size() < 12)
                    return 0;
                const size_t len = 12 + (number(toServer, 6, 2) + 3) / 4 * 4 + (number(toServer, 8, 2) + 3) / 4 * 4;
                clientGreeted = toServer.size() >= len;
                return clientGreeted ? len : 0;
            }
            if (toServer.size() < at + 8)
                return toServer.size() >= at + 4 && number(toServer, at + 2, 2) == 1 ? counted(4) : 0;
            const size_t units = number(toServer, at + 2, 2);
            const size_t len = 4 * (units ? units : number(toServer, at + 4, 4)); // 0: a big request
            return toServer.size() >= at + len ? counted(len) : 0;
        });
    }
    size_t counted(size_t len) {
        requestCount++;
        return len;
    }
    void countReplies() {
        consume(toClient, [this](size_t at) -> size_t {
            if (!serverGreeted) {
                if (toClient.size() < 8)
                    return 0;
                const size_t len = 8 + 4 * number(toClient, 6, 2);
                serverGreeted = toClient.size() >= len;
                return serverGreeted ? len : 0;
            }
            if (toClient.size() < at + 32)
                return 0;
            const bool reply = toClient[at] == 1;
            const size_t len = 32 + (reply || (toClient[at] & 127) == 35 ? 4 * number(toClient, at + 4, 4) : 0);
            if (toClient.size() < at + len)
                return 0;
            replyCount += reply ? 1 : 0;
            return len;
        });
    }

    int server;
    int listener;
    std::string path;
    std::string name;
    std::thread thread;
    std::vector<uint8_t> toServer;
    std::vector<uint8_t> toClient;
    bool clientGreeted = false;
    bool serverGreeted = false;
    std::atomic<int> requestCount{0};
    std::atomic<int> replyCount{0};
};

} // namespace txtest
