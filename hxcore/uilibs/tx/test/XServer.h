// An X server for one test, to be stopped or killed at will.
#pragma once

#include <csignal>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace txtest {

/// An Xvfb on a free display. It dies with the process that started it.
class XServer {
public:
    explicit XServer(const char* screen = "640x480x24") {
        int numberPipe[2];
        if (pipe(numberPipe) != 0)
            std::abort();
        pid = fork();
        if (pid == 0) {
            dup2(numberPipe[1], 3);
            const int nowhere = open("/dev/null", O_RDWR);
            dup2(nowhere, 1);
            dup2(nowhere, 2);
            close_range(4, ~0U, 0); // what the test program waits on must not stay open here
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0", screen, "-nolisten", "tcp", nullptr);
            _exit(127);
        }
        close(numberPipe[1]);
        char text[16] = "";
        ssize_t len = 0; // the number comes once the server accepts clients
        while (len < 15 && read(numberPipe[0], text + len, 1) == 1 && text[len] != '\n')
            len++;
        close(numberPipe[0]);
        name = ":" + std::string(text, static_cast<size_t>(len));
        if (len == 0)
            std::abort();
    }
    ~XServer() { kill(); }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    const char* display() const { return name.c_str(); }
    void stop() const { ::kill(pid, SIGSTOP); }
    void kill() {
        if (pid <= 0)
            return;
        ::kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        pid = 0;
    }

private:
    pid_t pid = 0;
    std::string name;
};

} // namespace txtest
