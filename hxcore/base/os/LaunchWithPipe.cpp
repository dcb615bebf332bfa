#include "os/LaunchWithPipe.h"

#include "io/FdSelectManager.h"
#include "io/Io.h"
#include "os/LaunchWithNamedPipe.h"
#include "os/UnixIo.h"
#include "os/launchArgs.h"
#include "os/launchFailures.h"

#include <algorithm>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace os {
namespace {
constexpr int roundMs = 50; // SIGCHLD wakes the loop that does not run

/// Waits for a child that connects by name, in a loop that serves nothing else.
class ConnectWait : private LaunchWithNamedPipe::Callback, private plat::Timer::Callback {
public:
    ConnectWait(const LaunchConfig& cfg, int timeoutMs) : program(cfg.args.at(0)) {
        ProcessMonitor::instance().attach(); // to the outer loop, which outlives this one
        io::FdSelectManager loop(/*nested=*/true);
        plat::Timer limit(this);
        if (timeoutMs >= 0)
            limit.start(static_cast<uint32_t>(timeoutMs));
        const LaunchWithNamedPipe launch(cfg, static_cast<LaunchWithNamedPipe::Callback*>(this));
        while (!isDone) {
            loop.poll(roundMs);
            if (!isDone)
                ProcessMonitor::instance().reap();
        }
    }

    LaunchWithPipe::Process get() const {
        if (wasCancelled)
            throw ElevateCancelled();
        if (!process.io)
            throw LaunchFailed(failure.c_str());
        return process;
    }

private:
    // os::LaunchWithNamedPipe::Callback
    void launched(const LaunchWithPipe::Process& child) override {
        process = child;
        isDone = true;
    }
    void launchFailed(const plat::Exception& why, bool cancelled) override {
        failure = why.what();
        wasCancelled = cancelled;
        isDone = true;
    }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override {
        if (isDone)
            return false;
        failure = plat::strFormat("Launch failed: %s has not connected in time", program.c_str());
        isDone = true;
        return false;
    }

    plat::String program;
    plat::String failure;
    LaunchWithPipe::Process process;
    bool wasCancelled = false;
    bool isDone = false;
};

/// Both ends of a connected pair of sockets, closed unless they are taken.
class SocketPair : private plat::NonCopyable {
public:
    SocketPair() {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) < 0)
            throw plat::StdlibException("socketpair");
    }
    ~SocketPair() {
        for (const int end : ends) {
            if (end >= 0)
                close(end);
        }
    }
    int theirs() const { return ends[1]; }
    int takeOurs() { return std::exchange(ends[0], -1); }

private:
    int ends[2] = {-1, -1};
};

int freeNumber(const LaunchConfig& cfg) {
    int number = STDERR_FILENO + 1;
    const auto isTaken = [&number](const LaunchConfig::KeptFd& kept) { return kept.theirs == number; };
    while (std::any_of(cfg.keptFds.begin(), cfg.keptFds.end(), isTaken))
        ++number;
    return number;
}

} // namespace

LaunchWithPipe::Process LaunchWithPipe::launch(const Config& cfg, int timeoutMs) {
    if (cfg.elevate && geteuid() != 0)
        return ConnectWait(cfg, timeoutMs).get();
    SocketPair pair;
    LaunchArgs words;
    words.fork = cfg.detach;
    words.fd = freeNumber(cfg);
    LaunchConfig whole = cfg;
    whole.elevate = false;
    whole.detach = false; // the child does that itself
    whole.keptFds.push_back({pair.theirs(), words.fd});
    words.write(whole.args);
    const pid_t pid = launchProcess(whole);
    return {new UnixIo(pair.takeOurs(), UnixIo::Side::Server), pid};
}

} // namespace os
