#include "os/ProcessMonitor.h"

#include "io/FdManager.h"
#include "os/SignalHandler.h"
#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace os {
namespace {
plat::LogSrc log("ProcessMonitor");
constexpr const char* detachedName = "<detached>";

std::atomic<io::FdKicker*> wakeup{nullptr}; // read by the signal handler

void childSignal(int) {
    if (io::FdKicker* kicker = wakeup.load())
        kicker->kick(0);
}

void catchChildSignal() {
    struct sigaction action {};
    action.sa_handler = childSignal;
    action.sa_flags = SA_RESTART | SA_NOCLDSTOP;
    sigemptyset(&action.sa_mask);
    if (sigaction(SIGCHLD, &action, nullptr) < 0)
        throw plat::StdlibException("sigaction");
}

} // namespace

ProcessMonitor& ProcessMonitor::instance() {
    static ProcessMonitor* const monitor = new ProcessMonitor; // also for what runs after the statics have gone
    if (monitor->owner != getpid())
        monitor->startOver();
    return *monitor;
}

ProcessMonitor::ProcessMonitor() : owner(getpid()) {}

// In a forked child: the children, the loop and the pipe are the parent's, which must hear nothing from here. The
// kicker's descriptors may be closed, and their numbers others' by now, so it is put aside as it is.
void ProcessMonitor::startOver() {
    static auto* const inherited = new std::vector<io::FdKicker*>;
    wakeup = nullptr;
    if (kicker)
        inherited->push_back(kicker.release());
    children.clear();
    owner = getpid();
}

void ProcessMonitor::attach() {
    if ((kicker && kicker->isAttached()) || !io::FdManager::current())
        return;
    wakeup = nullptr;
    kicker.reset(new io::FdKicker(this)); // our base is private, so make_unique can't
    wakeup = kicker.get();
    catchChildSignal();
    kicker->kick(0); // for those that ended before
}

void ProcessMonitor::add(pid_t pid, const char* name, Callback* callback) {
    ASSERT(pid > 0);
    children[pid] = Child{name, callback, /*detached=*/false};
    attach();
    if (kicker)
        kicker->kick(0); // it may have ended before SIGCHLD was ours
}

void ProcessMonitor::detach(pid_t pid) {
    const auto found = children.find(pid);
    if (found == children.end())
        return;
    found->second = Child{detachedName, nullptr, /*detached=*/true};
}

void ProcessMonitor::detachAll(Callback* callback) {
    for (auto& [pid, child] : children) {
        if (child.callback == callback)
            child = Child{detachedName, nullptr, /*detached=*/true};
    }
}

bool ProcessMonitor::kill(pid_t pid, int signal) {
    log.info("kill(%ld,%s)", static_cast<long>(pid), signalName(signal).c_str());
    if (::kill(pid, signal) == 0)
        return true;
    const int errNo = errno;
    log.info("kill(%ld,%s): %s", static_cast<long>(pid), signalName(signal).c_str(), strerror(errNo));
    errno = errNo;
    return false;
}

bool ProcessMonitor::knows(pid_t pid) const { return children.count(pid) != 0; }

const char* ProcessMonitor::nameOf(pid_t pid) const {
    const auto found = children.find(pid);
    return found == children.end() ? "<unknown>" : found->second.name.c_str();
}

void ProcessMonitor::reap() {
    std::vector<pid_t> pids; // callbacks add and detach
    for (const auto& [pid, child] : children)
        pids.push_back(pid);
    for (const pid_t pid : pids)
        reapOne(pid);
}

void ProcessMonitor::kicked(io::FdKicker* from) {
    from->drain();
    reap();
}

void ProcessMonitor::reapOne(pid_t pid) {
    const auto found = children.find(pid);
    if (found == children.end())
        return;
    int waitStatus = 0;
    pid_t reaped;
    do
        reaped = waitpid(pid, &waitStatus, WNOHANG);
    while (reaped < 0 && errno == EINTR);
    if (reaped == 0)
        return;
    const Child child = std::move(found->second);
    children.erase(found);
    if (reaped == pid) {
        log.info("child %lu (%s) exited with %s", static_cast<unsigned long>(pid), child.name.c_str(),
                 waitStatusText(waitStatus).c_str());
    } else {
        waitStatus = lost;
        log.info("waitpid(%lu) %s: %s", static_cast<unsigned long>(pid),
                 child.detached ? "detached" : child.name.c_str(), strerror(errno));
    }
    if (child.callback)
        child.callback->processEnded(pid, waitStatus);
}

plat::String waitStatusText(int waitStatus) {
    if (waitStatus == ProcessMonitor::lost)
        return "unknown status";
    if (WIFEXITED(waitStatus))
        return plat::strFormat("status %d", WEXITSTATUS(waitStatus));
    return plat::strFormat("signal %d", WTERMSIG(waitStatus));
}

} // namespace os
