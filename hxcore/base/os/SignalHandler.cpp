#include "os/SignalHandler.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace os {
namespace {
plat::LogSrc log("SignalHandler");

// Shared with the handler.
std::atomic<io::FdKicker*> wakeup{nullptr};
std::atomic<bool> pending[NSIG];

void note(int signal) {
    pending[signal] = true;
    if (io::FdKicker* kicker = wakeup.load())
        kicker->kick(0);
}

} // namespace

SignalHandler* SignalHandler::inst = nullptr;

SignalHandler::SignalHandler() {
    ASSERT(!inst);
    inst = this;
    for (std::atomic<bool>& each : pending)
        each = false;
    wakeup = &kicker;
}

SignalHandler::~SignalHandler() {
    for (const auto& [signal, watch] : watches)
        sigaction(signal, &watch.before, nullptr);
    wakeup = nullptr;
    inst = nullptr;
}

void SignalHandler::add(int signal, Callback* callback) {
    ASSERT(signal != SIGCHLD);
    const auto found = watches.find(signal);
    if (found != watches.end()) {
        found->second.callbacks.push_back(callback);
        return;
    }
    Watch watch{{callback}, {}};
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    if (sigaction(signal, &action, &watch.before) < 0)
        throw plat::StdlibException("sigaction");
    watches.emplace(signal, std::move(watch));
}

void SignalHandler::remove(int signal, Callback* callback) {
    const auto found = watches.find(signal);
    if (found == watches.end())
        return;
    std::vector<Callback*>& callbacks = found->second.callbacks;
    callbacks.erase(std::remove(callbacks.begin(), callbacks.end(), callback), callbacks.end());
    if (!callbacks.empty())
        return;
    sigaction(signal, &found->second.before, nullptr);
    watches.erase(found);
}

void SignalHandler::kicked(io::FdKicker* from) {
    from->drain();
    for (int signal = 1; signal < NSIG; ++signal) {
        if (pending[signal].exchange(false))
            tell(signal);
        if (inst != this)
            return; // a callback destroyed us
    }
}

void SignalHandler::tell(int signal) {
    log.status("Got signal %s", signalName(signal).c_str());
    const auto found = watches.find(signal);
    if (found == watches.end())
        return;
    const std::vector<Callback*> callbacks = found->second.callbacks;
    for (Callback* callback : callbacks) {
        if (inst != this)
            return;
        const auto still = watches.find(signal);
        if (still == watches.end())
            return;
        const std::vector<Callback*>& left = still->second.callbacks;
        if (std::find(left.begin(), left.end(), callback) != left.end())
            callback->signalled(signal);
    }
}

plat::String signalName(int signal) {
    if (signal >= SIGRTMIN && signal <= SIGRTMAX)
        return plat::strFormat("SIGRTMIN+%d", signal - SIGRTMIN);
    const char* const abbreviation = sigabbrev_np(signal);
    return abbreviation ? plat::strFormat("SIG%s", abbreviation) : plat::strFormat("signal %d", signal);
}

} // namespace os
