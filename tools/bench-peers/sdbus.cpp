// The same exchanges as zefbench's link, over sd-bus peer to peer on a socket pair. Prints "name per-second" lines.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <vector>

namespace {

int received = 0;

double nowS() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void check(int result, const char* what) {
    if (result < 0) {
        fprintf(stderr, "sdbus: %s failed: %d\n", what, result);
        exit(1);
    }
}

int onMessage(sd_bus_message* message, void* userdata, sd_bus_error*) {
    if (!sd_bus_message_is_method_call(message, "com.example.Bench", "Message"))
        return 0;
    auto& got = *static_cast<std::vector<char>*>(userdata);
    const void* data = nullptr;
    size_t size = 0;
    check(sd_bus_message_read_array(message, 'y', &data, &size), "read");
    got.assign(static_cast<const char*>(data), static_cast<const char*>(data) + size);
    ++received;
    return 1;
}

sd_bus* open(int fd, bool server) {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus), "new");
    check(sd_bus_set_fd(bus, fd, fd), "set_fd");
    if (server) {
        sd_id128_t id{};
        check(sd_id128_randomize(&id), "id");
        check(sd_bus_set_server(bus, 1, id), "set_server");
    }
    check(sd_bus_set_anonymous(bus, 1), "anonymous");
    check(sd_bus_start(bus), "start");
    return bus;
}

void measure(size_t bytes, int batch) {
    int fds[2] = {-1, -1};
    check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, fds), "socketpair");
    sd_bus* receiver = open(fds[0], /*server=*/true);
    sd_bus* sender = open(fds[1], /*server=*/false);
    std::vector<char> got;
    check(sd_bus_add_filter(receiver, nullptr, onMessage, &got), "filter");
    while (sd_bus_is_ready(sender) == 0 || sd_bus_is_ready(receiver) == 0) {
        sd_bus_process(sender, nullptr);
        sd_bus_process(receiver, nullptr);
    }
    const std::vector<char> body(bytes, 'x');
    received = 0;
    const double start = nowS();
    while (nowS() - start < 1.0) {
        const int wanted = received + batch;
        for (int i = 0; i < batch; ++i) {
            sd_bus_message* message = nullptr;
            check(sd_bus_message_new_method_call(sender, &message, nullptr, "/m", "com.example.Bench", "Message"),
                  "call");
            check(sd_bus_message_set_expect_reply(message, 0), "expect_reply");
            check(sd_bus_message_append_array(message, 'y', body.data(), body.size()), "append");
            check(sd_bus_send(sender, message, nullptr), "send");
            // A large message may not fit into the socket: the receiver takes it while the sender goes on.
            while (bytes > 1000 && (sd_bus_get_events(sender) & 4) != 0) {
                sd_bus_process(sender, nullptr);
                sd_bus_process(receiver, nullptr);
            }
            if (bytes <= 1000)
                check(sd_bus_flush(sender), "flush");
            sd_bus_message_unref(message);
        }
        while (received < wanted) {
            sd_bus_process(sender, nullptr);
            const int done = sd_bus_process(receiver, nullptr);
            check(done, "process");
            if (done == 0 && received < wanted)
                sd_bus_wait(receiver, UINT64_MAX);
        }
    }
    printf("sd-bus/%zu %.0f\n", bytes, received / (nowS() - start));
}

} // namespace

int main() {
    measure(40, 100);
    measure(64, 100);
    measure(65536, 2);
    return 0;
}
