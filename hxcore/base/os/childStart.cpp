#include "os/childStart.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace os {
namespace {
constexpr int firstOther = STDERR_FILENO + 1;
constexpr size_t maxNameBytes = 255;

[[noreturn]] void fail(int errorFd, int errNo, const char* call, const char* path = nullptr) {
    unsigned char record[5 + maxNameBytes];
    for (int i = 0; i < 4; ++i)
        record[i] = static_cast<unsigned char>(static_cast<unsigned>(errNo) >> (24 - 8 * i));
    size_t len = 0;
    const auto append = [&](const char* text) {
        const size_t count = std::min(strlen(text), maxNameBytes - len);
        memcpy(record + 5 + len, text, count);
        len += count;
    };
    append(call);
    if (path) {
        append("(");
        append(path);
        append(")");
    }
    record[4] = static_cast<unsigned char>(len);
    // At most PIPE_BUF bytes go into an empty pipe at once or not at all.
    while (write(errorFd, record, 5 + len) < 0 && errno == EINTR) {
    }
    _exit(1);
}

void resetSignals() {
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &standard, nullptr); // fails for those that nobody can set
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// A copy above all numbers that are wanted, so that no move overwrites what a later one needs.
int moveUp(int fd, int base, int errorFd) {
    const int copy = fcntl(fd, F_DUPFD_CLOEXEC, base);
    if (copy < 0)
        fail(errorFd, errno, "fcntl");
    return copy;
}

void moveTo(int from, int to, int errorFd) {
    int moved;
    do
        moved = dup2(from, to);
    while (moved < 0 && (errno == EINTR || errno == EBUSY));
    if (moved < 0)
        fail(errorFd, errno, "dup2");
    if (fcntl(to, F_SETFD, 0) < 0)
        fail(errorFd, errno, "fcntl");
}

void closeFrom(int first, int last, int limit) {
    if (first > last || syscall(SYS_close_range, static_cast<unsigned>(first), static_cast<unsigned>(last), 0U) == 0)
        return;
    // Kernels before 5.9, and some sandboxes
    for (int fd = first; fd <= std::min(last, limit - 1); ++fd)
        close(fd);
}

// A program never starts with one of its standard descriptors closed: the first file it opens would take its place.
void arrangeStandard(const ChildStart& start, int nullFd, int errorFd) {
    const bool toNull[firstOther] = {start.nullInput, start.nullOutput, false};
    for (int fd = 0; fd < firstOther; ++fd) {
        const int flags = fcntl(fd, F_GETFD);
        if (toNull[fd] || flags < 0 || (flags & FD_CLOEXEC))
            moveTo(nullFd, fd, errorFd);
    }
}

int arrangeDescriptors(ChildStart& start) {
    int base = firstOther;
    if (!start.moves.empty())
        base = std::max(base, start.moves.back().to + 1);
    const int errorFd = moveUp(start.errorFd, base, start.errorFd);
    const int nullFd = moveUp(start.nullFd, base, errorFd);
    for (ChildStart::Move& move : start.moves)
        move.spare = moveUp(move.from, base, errorFd);
    arrangeStandard(start, nullFd, errorFd);
    int next = firstOther;
    for (const ChildStart::Move& move : start.moves) {
        moveTo(move.spare, move.to, errorFd);
        closeFrom(next, move.to - 1, start.descriptorLimit);
        next = std::max(next, move.to + 1);
    }
    closeFrom(next, errorFd - 1, start.descriptorLimit);
    closeFrom(errorFd + 1, INT32_MAX, start.descriptorLimit);
    return errorFd;
}

} // namespace

void runChildStart(ChildStart& start) {
    resetSignals();
    if (start.newSession)
        setsid(); // a fresh child leads no group, so it can't fail
    const int errorFd = arrangeDescriptors(start);
    if (start.workingDir && chdir(start.workingDir) < 0)
        fail(errorFd, errno, "chdir", start.workingDir);
    if (start.program) {
        execve(start.program, start.argv, start.envp);
        fail(errorFd, errno, "execve", start.program);
    }
    close(errorFd);
}

} // namespace os
