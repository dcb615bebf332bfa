#include "os/LaunchWithNamedPipe.h"

#include "os/PipeNameScoped.h"
#include "os/launchArgs.h"
#include "os/launchFailures.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {
constexpr unsigned pollMs = 5000; // whoever asks for a password may take long

bool endedWell(int waitStatus) {
    return waitStatus == ProcessMonitor::lost || (WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == 0);
}
} // namespace

LaunchWithNamedPipe::LaunchWithNamedPipe(const LaunchWithPipe::Config& cfg, Callback* target)
    : callback(target), program(cfg.args.at(0)),
      listener(std::make_unique<LaunchPipeListener>(cfg.asUser ? cfg.user : PipeNameScoped::thisUser,
                                                    static_cast<LaunchPipeListener::Callback*>(this))),
      forks(cfg.detach) {
    LaunchArgs words;
    words.hash = listener->hash();
    words.fork = forks;
    words.socketName = listener->path();
    LaunchConfig whole = cfg;
    words.write(whole.args);
    whole.detach = false; // the child does that itself, and tells whether it got so far
    whole.elevate = cfg.elevate && geteuid() != 0;
    pid = launchProcess(whole, this);
    pollTimer.start(pollMs);
}

LaunchWithNamedPipe::~LaunchWithNamedPipe() {
    const bool isSettled = !listener;
    stopWaiting();
    if (!isSettled && !hasEnded)
        ProcessMonitor::instance().kill(pid, SIGTERM);
}

void LaunchWithNamedPipe::pipeConnected(io::Io* io) {
    stopWaiting();
    callback->launched({io, pid});
}

void LaunchWithNamedPipe::pipeFailed(const plat::Exception&) {
    stopWaiting();
    if (!hasEnded)
        ProcessMonitor::instance().kill(pid, SIGTERM); // it has nobody to speak to
    const plat::ExceptionFmt failure("Launch failed: acceptIo() failed for %s", program.c_str());
    callback->launchFailed(LaunchFailed(failure.what()), /*cancelled=*/false);
}

void LaunchWithNamedPipe::processEnded(pid_t, int waitStatus) {
    hasEnded = true;
    // What it left behind may have connected, or be about to.
    if (listener->isConnectionWaiting() || (forks && endedWell(waitStatus)))
        pollTimer.start(pollMs);
    else
        cancelled();
}

bool LaunchWithNamedPipe::timerExpired(plat::Timer* timer) {
    if (hasEnded) {
        cancelled();
        return false;
    }
    timer->start(pollMs);
    ProcessMonitor::instance().reap(); // may be the end of this
    return false;
}

void LaunchWithNamedPipe::stopWaiting() {
    listener.reset();
    pollTimer.cancel();
    ProcessMonitor::instance().detachAll(this);
}

void LaunchWithNamedPipe::cancelled() {
    stopWaiting();
    callback->launchFailed(ElevateCancelled(), /*cancelled=*/true);
}

} // namespace os
