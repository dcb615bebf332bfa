// Starts a process that inherits nothing, and waits for it to connect.
#pragma once

#include "os/LaunchPipeListener.h"
#include "os/LaunchWithPipe.h"
#include "plat/Timer.h"

#include <memory>

namespace os {

/// Launches over a named socket, on the current loop: for a child with other rights.
///
/// It may be destroyed in its callbacks. Destroyed before either of them came, it ends the child, as far as a signal
/// can.
class LaunchWithNamedPipe : private LaunchPipeListener::Callback,
                            private ProcessMonitor::Callback,
                            private plat::Timer::Callback,
                            private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void launched(const LaunchWithPipe::Process& process) = 0;

        /// `cancelled`: the child's process ended before it connected; else it broke off at once.
        virtual void launchFailed(const plat::Exception& failure, bool cancelled) = 0;
    };

    /// Starts the child with the words of os::LaunchArgs behind its arguments; it is elevated if `cfg` says so and we
    /// are not root. Throws what launchProcess and LaunchPipeListener throw.
    LaunchWithNamedPipe(const LaunchWithPipe::Config& cfg, Callback* target); ///< borrowed
    ~LaunchWithNamedPipe() override;

private:
    // os::LaunchPipeListener::Callback
    void pipeConnected(io::Io* io) override;
    void pipeFailed(const plat::Exception& failure) override;
    // os::ProcessMonitor::Callback
    void processEnded(pid_t ended, int waitStatus) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void stopWaiting();
    void cancelled();

    Callback* callback;
    plat::String program;
    std::unique_ptr<LaunchPipeListener> listener; // null once it is settled
    pid_t pid = 0;
    bool forks;
    bool hasEnded = false; // what was started; a child of its own may be about to connect
    plat::Timer pollTimer{this};
};

} // namespace os
