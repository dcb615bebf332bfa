// The event loop of the process on glib's main loop.
#pragma once

#include "io/FdManager.h"
#include "os/AppLoop.h"

#include <map>

namespace gtkwrap {

/// Watches descriptors and timers with sources of glib's default main context.
class GlibFdManager final : public io::FdManager, private plat::TimerManager::Observer {
public:
    GlibFdManager(); ///< asserts that it is the thread's first
    ~GlibFdManager() override;

    // io::FdManager
    bool setInterest(io::FdHandler* handler, bool read, bool write, bool except, bool accept,
                     bool connectInterest) override;

private:
    struct Watch {
        GlibFdManager* manager;
        io::FdHandler* handler;
        int conditions;
        unsigned source;
    };

    // io::FdManager
    void forget(io::FdHandler* handler) override;
    // plat::TimerManager::Observer
    void nextTimerChanged(int timeUntilNextMs) override;

    static int gioFunc(void* channel, int condition, void* data); // called by glib: nothing may be thrown through it
    static int timeoutFunc(void* data);
    void watch(io::FdHandler* handler, int conditions);
    void round(); // what it catches is logged

    std::map<io::FdHandler*, Watch> watches;
    unsigned timeoutSource = 0; // 0: none
};

/// The loop that runs GTK.
class GlibLoop : public os::AppLoop::Impl {
public:
    static bool available();

    // os::AppLoop::Impl
    int run(os::AppLoop& loop) override;
    void stop() override;

private:
    GlibFdManager manager;
    bool stopping = false;
    bool inMain = false;
};

} // namespace gtkwrap
