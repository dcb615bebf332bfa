// A process to look at.
#pragma once

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace os {

/// Sleeps, with one variable in its environment, perhaps as another user (only root may ask), until it is destroyed.
class Sleeper {
public:
    explicit Sleeper(const std::string& variable, uid_t user = geteuid()) {
        int ready[2];
        if (pipe2(ready, O_CLOEXEC) != 0)
            std::abort();
        pid = fork();
        if (pid == 0) {
            if (user != geteuid() && setuid(user) != 0)
                _exit(1);
            const char* environment[] = {variable.c_str(), nullptr};
            execle("/bin/sleep", "sleep", "60", nullptr, environment);
            _exit(1);
        }
        close(ready[1]);
        char byte;
        while (read(ready[0], &byte, 1) < 0) // ends with the execve
            ;
        close(ready[0]);
    }
    ~Sleeper() {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;

    pid_t pid;
};

} // namespace os
