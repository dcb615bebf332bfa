#include "os/AppLoop.h"

#include "io/FdSelectManager.h"
#include "os/ProcessMonitor.h"
#include "plat/Assert.h"
#include "plat/LogSrc.h"

namespace os {
namespace {

struct Running {
    explicit Running(bool& flag_) : flag(flag_) { flag = true; }
    ~Running() { flag = false; }
    bool& flag;
};

/// Ends the process's manager at exit.
struct ManagerHolder : private plat::NonCopyable {
    ~ManagerHolder() {
        io::FdManager::dismissAll();
        // Called inside a nested loop, exit leaves that one's manager and timers on the stack, and this below them.
        if (io::FdManager::current() == manager)
            delete manager;
    }

    io::FdSelectManager* const manager = new io::FdSelectManager(/*nested=*/io::FdManager::current() != nullptr);
};

} // namespace

AppLoop* AppLoop::inst = nullptr;

AppLoop::AppLoop(std::unique_ptr<Impl> ownImpl) {
    ASSERT(!inst);
    impl = ownImpl ? std::move(ownImpl) : std::make_unique<AppLoopImpl>();
    ProcessMonitor::instance().attach(); // to the outermost loop
    inst = this;
}

AppLoop::~AppLoop() { inst = nullptr; }

int AppLoop::run() {
    plat::logActivate();
    ASSERT(!isRunning);
    const Running running(isRunning);
    return impl->run(*this);
}

void AppLoop::exit(int code) {
    ASSERT(inst && inst->isRunning);
    inst->code = code;
    inst->impl->stop();
}

AppLoopImpl::AppLoopImpl() : fdMgr(processManager()) {}

int AppLoopImpl::run(AppLoop& loop) {
    stopping = false;
    while (!stopping)
        fdMgr.poll(-1);
    return loop.exitCode();
}

void AppLoopImpl::stop() {
    stopping = true;
    fdMgr.kick();
}

io::FdSelectManager& AppLoopImpl::processManager() {
    static const ManagerHolder holder;
    return *holder.manager;
}

} // namespace os
