#include "zefdemocore/UiProcess.h"

#include "plat/Exception.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace democore {
namespace {
void pauseMs(int ms) {
    const timespec time{ms / 1000, (ms % 1000) * 1000000L};
    nanosleep(&time, nullptr);
}
} // namespace

UiProcess::UiProcess(const std::string& executable, const std::vector<std::string>& road,
                     const std::vector<std::string>& args) {
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0)
        throw plat::StdlibException("socketpair");
    link = pair[0];
    fcntl(pair[1], F_SETFD, 0); // the child inherits this one

    std::vector<std::string> words{executable};
    words.insert(words.end(), road.begin(), road.end());
    words.push_back(std::to_string(pair[1]));
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const int failure = posix_spawn(&child, executable.c_str(), nullptr, nullptr, argv.data(), environ);
    close(pair[1]);
    if (failure != 0) {
        close(link);
        throw plat::SystemException(executable.c_str(), failure);
    }
}

UiProcess::~UiProcess() {
    if (link >= 0)
        close(link);
    if (ending.empty() && waitForEnd(2000) == "still running") {
        kill(child, SIGKILL);
        waitForEnd(2000);
    }
}

int UiProcess::takeLink() {
    const int fd = link;
    link = -1;
    return fd;
}

std::string UiProcess::waitForEnd(int timeoutMs) {
    constexpr int stepMs = 10;
    for (int waited = 0; ending.empty(); waited += stepMs) {
        int status = 0;
        const pid_t got = waitpid(child, &status, WNOHANG);
        if (got == child)
            ending = WIFEXITED(status) ? "exited " + std::to_string(WEXITSTATUS(status))
                                       : "killed by " + std::to_string(WTERMSIG(status));
        else if (got < 0 && errno != EINTR)
            ending = "lost";
        else if (waited >= timeoutMs)
            return "still running";
        else
            pauseMs(stepMs);
    }
    return ending;
}

} // namespace democore
