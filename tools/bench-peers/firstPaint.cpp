// Starts a program on an X server whose screen is a file, and tells when its picture stood and what it took:
//   firstPaint SCREEN_FILE [-session FILE] [-rest SECONDS] PROGRAM ARGUMENT...
// With -session, the file's bytes go into a socket, and an argument "{fd}" becomes its other end's number.
// Prints one line: first change ms, picture at rest ms, CPU ms, PSS KiB, libraries, threads, wake-ups while at rest.
#include "watch.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <set>
#include <spawn.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace {

long field(pid_t pid, const char* file, const std::string& start) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/" + file);
    for (std::string line; std::getline(in, line);)
        if (line.rfind(start, 0) == 0)
            return strtol(line.c_str() + start.size(), nullptr, 10);
    return -1;
}

size_t libraries(pid_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/maps");
    std::set<std::string> names;
    for (std::string line; std::getline(in, line);) {
        const size_t slash = line.find('/');
        if (slash != std::string::npos && line.find(".so", slash) != std::string::npos)
            names.insert(line.substr(slash));
    }
    return names.size();
}

} // namespace

int main(int argc, char** argv) {
    int at = 1;
    const char* screenFile = argc > at ? argv[at++] : "";
    std::string session;
    bool hasSession = false;
    double restS = 1;
    for (; at + 1 < argc && argv[at][0] == '-'; at += 2) {
        if (strcmp(argv[at], "-rest") == 0) {
            restS = atof(argv[at + 1]);
        } else {
            std::ifstream in(argv[at + 1], std::ios::binary);
            session.assign(std::istreambuf_iterator<char>(in), {});
            hasSession = true;
        }
    }
    const int fd = open(screenFile, O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (fd < 0 || fstat(fd, &status) != 0 || at >= argc) {
        fprintf(stderr, "firstPaint: no screen file or no program\n");
        return 2;
    }
    const auto size = static_cast<size_t>(status.st_size);
    const void* screen = mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
    if (screen == MAP_FAILED)
        return 2;
    std::vector<char> last(size);
    memcpy(last.data(), screen, size);

    int pair[2] = {-1, -1};
    if (hasSession && socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) == 0) {
        fcntl(pair[1], F_SETFD, 0);
        if (write(pair[0], session.data(), session.size()) != static_cast<ssize_t>(session.size()))
            return 2;
    }
    std::vector<std::string> words(argv + at, argv + argc);
    std::vector<char*> args;
    for (std::string& word : words) {
        if (word == "{fd}")
            word = std::to_string(pair[1]);
        args.push_back(word.data());
    }
    args.push_back(nullptr);
    const double start = nowMs();
    pid_t child = -1;
    if (posix_spawn(&child, args[0], nullptr, nullptr, args.data(), environ) != 0)
        return 2;
    double first = 0;
    double lastChange = 0;
    double cpuAtRest = 0;
    constexpr double quietMs = 400;
    for (double now = start; now - start < 10000 && (lastChange == 0 || now - lastChange < quietMs); now = nowMs()) {
        if (memcmp(last.data(), screen, size) != 0) {
            lastChange = nowMs();
            if (first == 0)
                first = lastChange;
            cpuAtRest = cpuMs(child);
            memcpy(last.data(), screen, size);
        }
        pauseMs(0.1);
    }
    // Without a tray, the icon gives up after a second: that is start, not rest.
    constexpr double settleMs = 1500;
    pauseMs(settleMs);
    const long before = field(child, "status", "voluntary_ctxt_switches:");
    pauseMs(restS * 1000);
    const long wakeUps = field(child, "status", "voluntary_ctxt_switches:") - before;
    printf("%.2f %.2f %.2f %ld %zu %ld %ld\n", first - start, lastChange - start, cpuAtRest,
           field(child, "smaps_rollup", "Pss:"), libraries(child), field(child, "status", "Threads:"), wakeUps);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return 0;
}
