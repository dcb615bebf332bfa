#include "os/openUrl.h"

#include "plat/LogSrc.h"
#include "plat/cstr.h"
#include "plat/path.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {
plat::LogSrc log("OpenUrl");
constexpr const char* opener = "xdg-open";
constexpr const char* schemes[] = {"http://", "https://", "mailto:"};

bool hasControlChars(const char* text) {
    for (const char* c = text; *c; ++c) {
        if (static_cast<unsigned char>(*c) < 32 || *c == 127)
            return true;
    }
    return false;
}

bool isOpenable(const char* url) {
    for (const char* scheme : schemes) {
        if (plat::startsWithNoCase(url, scheme))
            return url[strlen(scheme)] != '\0' && !hasControlChars(url);
    }
    return false;
}

bool isDirectory(const char* path) {
    struct stat info;
    return plat::path::isAbsolute(path) && stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

// In the absolute directories of PATH only: what lies in the working directory is nobody's choice.
std::string findOpener() {
    const char* path = getenv("PATH");
    std::string rest = path ? path : "/usr/local/bin:/usr/bin:/bin";
    while (!rest.empty()) {
        const size_t colon = rest.find(':');
        const std::string candidate = rest.substr(0, colon) + "/" + opener;
        if (candidate[0] == '/' && access(candidate.c_str(), X_OK) == 0)
            return candidate;
        rest.erase(0, colon == std::string::npos ? rest.size() : colon + 1);
    }
    return "";
}

// From here to execve, between fork and exec, only calls that are safe in a signal handler.
[[noreturn]] void becomeOpener(const char* program, const char* argument, int failurePipe) {
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (const int number : {SIGPIPE, SIGCHLD, SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int null = open("/dev/null", O_RDWR);
    if (null >= 0)
        dup2(null, STDIN_FILENO);
    // What is inherited without the mark goes too, at exec.
    constexpr unsigned closeOnExec = 1U << 2; // CLOSE_RANGE_CLOEXEC of close_range(2)
    if (syscall(SYS_close_range, 3U, ~0U, closeOnExec) < 0) {
        for (int fd = 3; fd < 1024; ++fd)
            fcntl(fd, F_SETFD, FD_CLOEXEC);
    }
    char* const args[] = {const_cast<char*>(opener), const_cast<char*>(argument), nullptr};
    execve(program, args, environ);
    const int errNo = errno;
    [[maybe_unused]] const ssize_t told = write(failurePipe, &errNo, sizeof errNo);
    _exit(127);
}

// A child of a child is reaped by init, whatever is done about SIGCHLD here.
bool forkTwice(const char* program, const char* argument, int failurePipe) {
    const pid_t child = fork();
    if (child < 0)
        return false;
    if (child == 0) {
        setsid();
        const pid_t grandchild = fork();
        if (grandchild == 0)
            becomeOpener(program, argument, failurePipe);
        _exit(grandchild < 0 ? 1 : 0);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return true; // somebody else reaped it
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The pipe closes, empty, when exec has succeeded.
int readFailure(int fd) {
    int errNo = 0;
    ssize_t count;
    do
        count = read(fd, &errNo, sizeof errNo);
    while (count < 0 && errno == EINTR);
    return count == sizeof errNo ? errNo : 0;
}

bool runOpener(const char* argument) {
    const std::string program = findOpener();
    if (program.empty()) {
        log.status("There is no %s to open %s with", opener, argument);
        return false;
    }
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) < 0) {
        log.error("pipe2: %s", strerror(errno));
        return false;
    }
    const bool forked = forkTwice(program.c_str(), argument, ends[1]);
    close(ends[1]);
    const int failure = readFailure(ends[0]);
    close(ends[0]);
    if (failure)
        log.status("Failed to start %s: %s", program.c_str(), strerror(failure));
    return forked && failure == 0;
}

} // namespace

bool openUrl(const char* url) {
    if (url && isOpenable(url))
        return runOpener(url);
    log.info("Not an address to open: %s", plat::strOrEmpty(url));
    return false;
}

bool openFolder(const char* path) {
    if (path && isDirectory(path))
        return runOpener(path);
    log.info("Not a folder: %s", plat::strOrEmpty(path));
    return false;
}

} // namespace os
