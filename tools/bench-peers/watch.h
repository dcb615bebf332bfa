// What the programs that watch another one share: time, and what a process has used.
#pragma once

#include <fstream>
#include <string>
#include <sys/types.h>
#include <time.h>

inline double nowMs() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_nsec) / 1e6;
}

inline void pauseMs(double ms) {
    const timespec time{static_cast<time_t>(ms / 1000), static_cast<long>(ms * 1e6) % 1000000000L};
    nanosleep(&time, nullptr);
}

/// CPU time of a running process, from its scheduler's account in nanoseconds; 0 if it can't be read.
inline double cpuMs(pid_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/schedstat");
    double ns = 0;
    in >> ns;
    return ns / 1e6;
}
