// Puts nodes of the status tree into the running program, and prints how many a second it took in:
//   statusNodes COUNT NAMES PROGRAM ARGUMENT...
// An argument "{fd}" becomes the number of the link's other end. COUNT nodes with a text of 64 bytes under one parent,
// with NAMES different names, go in one batch; "showStatusDialog" follows, and the time ends when "uiActivated" is
// here: the program has taken in all that came before, and its dialog has looked at it. Prints one line: nodes a
// second, milliseconds in all.
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace {

double nowS() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

std::string number(uint64_t value, int bytes) {
    std::string text;
    while (bytes > 0)
        text += static_cast<char>(value >> (8 * --bytes));
    return text;
}

std::string string8(const std::string& text) { return number(text.size(), 1) + text; }

std::string message(const std::string& name, const std::string& body = "") {
    const std::string payload = string8(name) + body;
    return number(0x8000 | payload.size(), 2) + payload;
}

std::string node(const std::string& parent, const std::string& name, const std::string& text) {
    return message("StatusDbInfo", number(0, 1) + string8(parent) + string8(name) + number(0, 4) + number(1, 2) +
                                       string8("text") + number(text.size(), 4) + text + number(0, 2));
}

void writeAll(int fd, const std::string& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t count = write(fd, bytes.data() + done, bytes.size() - done);
        if (count <= 0)
            throw std::runtime_error("the program takes no more");
        done += static_cast<size_t>(count);
    }
}

void readAll(int fd, char* to, size_t len) {
    while (len > 0) {
        const ssize_t count = read(fd, to, len);
        if (count <= 0)
            throw std::runtime_error("the program has left");
        to += count;
        len -= static_cast<size_t>(count);
    }
}

std::string readName(int fd) {
    std::string payload;
    for (bool last = false; !last;) {
        unsigned char header[2];
        readAll(fd, reinterpret_cast<char*>(header), 2);
        last = (header[0] & 0x80) != 0;
        const size_t old = payload.size();
        payload.resize(old + ((header[0] & 0x7fU) << 8 | header[1]));
        readAll(fd, payload.data() + old, payload.size() - old);
    }
    return payload.substr(1, static_cast<unsigned char>(payload.at(0)));
}

// "uiActivated" comes once more some seconds after the start; the one that answers stands behind "updateStatus".
void waitUntilShown(int fd) {
    while (readName(fd) != "updateStatus") {
    }
    while (readName(fd) != "uiActivated") {
    }
}

void measure(int fd, int count, int names) {
    writeAll(fd, node("", "Bench", "") + message("showStatusDialog"));
    waitUntilShown(fd);
    std::string bytes = message("StatusDbInfo", number(3, 1) + number(1, 1));
    for (int i = 0; i < count; ++i)
        bytes += node("Bench", "n" + std::to_string(i % names), std::string(64, static_cast<char>('a' + i % 26)));
    bytes += message("StatusDbInfo", number(3, 1) + number(0, 1)) + message("showStatusDialog");
    const double start = nowS();
    writeAll(fd, bytes);
    waitUntilShown(fd);
    const double time = nowS() - start;
    printf("%.0f %.2f\n", count / time, time * 1000);
}

} // namespace

int main(int argc, char** argv) {
    int pair[2] = {-1, -1};
    if (argc < 4 || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) {
        fprintf(stderr, "statusNodes COUNT NAMES PROGRAM ARGUMENT...\n");
        return 2;
    }
    fcntl(pair[1], F_SETFD, 0);
    std::vector<std::string> words(argv + 3, argv + argc);
    std::vector<char*> args;
    for (std::string& word : words) {
        if (word == "{fd}")
            word = std::to_string(pair[1]);
        args.push_back(word.data());
    }
    args.push_back(nullptr);
    pid_t child = -1;
    if (posix_spawn(&child, args[0], nullptr, nullptr, args.data(), environ) != 0)
        return 2;
    close(pair[1]);
    signal(SIGPIPE, SIG_IGN);
    int result = 0;
    try {
        measure(pair[0], atoi(argv[1]), atoi(argv[2]));
    } catch (const std::runtime_error& failure) {
        fprintf(stderr, "statusNodes: %s\n", failure.what());
        result = 1;
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return result;
}
