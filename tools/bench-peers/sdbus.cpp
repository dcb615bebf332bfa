// The same exchanges as zefbench's link, over sd-bus peer to peer on a socket pair: sdbus [SECONDS]
// Prints "name per-second" lines. In "sd-bus/64/processes" the receiver is a process of its own.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <unistd.h>
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

void send(sd_bus* bus, const std::vector<char>& body) {
    sd_bus_message* message = nullptr;
    check(sd_bus_message_new_method_call(bus, &message, nullptr, "/m", "com.example.Bench", "Message"), "call");
    check(sd_bus_message_set_expect_reply(message, 0), "expect_reply");
    check(sd_bus_message_append_array(message, 'y', body.data(), body.size()), "append");
    check(sd_bus_send(bus, message, nullptr), "send");
    sd_bus_message_unref(message);
}

void receiveAll(int fd, int count, int done) {
    std::vector<char> got;
    sd_bus* bus = open(fd, /*server=*/true);
    check(sd_bus_add_filter(bus, nullptr, onMessage, &got), "filter");
    for (received = 0; received < count;) {
        const int result = sd_bus_process(bus, nullptr);
        check(result, "process");
        if (result == 0)
            sd_bus_wait(bus, UINT64_MAX);
    }
    check(write(done, "d", 1) == 1 ? 0 : -1, "write");
}

// One process sends, another receives: the time ends when the receiver says that it has all.
void measureAcross(size_t bytes, int count) {
    int fds[2] = {-1, -1};
    int done[2] = {-1, -1};
    check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, fds), "socketpair");
    check(pipe(done), "pipe");
    const pid_t child = fork();
    if (child == 0) {
        close(fds[1]);
        receiveAll(fds[0], count, done[1]);
        _exit(0);
    }
    close(fds[0]);
    sd_bus* sender = open(fds[1], /*server=*/false);
    while (sd_bus_is_ready(sender) == 0) {
        if (sd_bus_process(sender, nullptr) == 0)
            sd_bus_wait(sender, UINT64_MAX);
    }
    const std::vector<char> body(bytes, 'x');
    const double start = nowS();
    for (int i = 0; i < count; ++i) {
        send(sender, body);
        if (i % 100 == 99)
            check(sd_bus_flush(sender), "flush");
    }
    check(sd_bus_flush(sender), "flush");
    char byte = 0;
    check(read(done[0], &byte, 1) == 1 ? 0 : -1, "read");
    printf("sd-bus/%zu/processes %.0f\n", bytes, count / (nowS() - start));
    waitpid(child, nullptr, 0);
}

void measure(size_t bytes, int batch, double seconds) {
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
    while (nowS() - start < seconds) {
        const int wanted = received + batch;
        for (int i = 0; i < batch; ++i) {
            send(sender, body);
            // A large message may not fit into the socket: the receiver takes it while the sender goes on.
            while (bytes > 1000 && (sd_bus_get_events(sender) & 4) != 0) {
                sd_bus_process(sender, nullptr);
                sd_bus_process(receiver, nullptr);
            }
            if (bytes <= 1000)
                check(sd_bus_flush(sender), "flush");
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

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? atof(argv[1]) : 1.0;
    measure(40, 100, seconds);
    measure(64, 100, seconds);
    measure(65536, 2, seconds);
    fflush(stdout);
    measureAcross(64, static_cast<int>(20000 * seconds));
    return 0;
}
