// The process's event loop.
#pragma once

#include "plat/NonCopyable.h"

#include <memory>

namespace io {
class FdSelectManager;
}

namespace os {

/// The single loop object of the process; everything after start-up happens in callbacks of run.
class AppLoop : private plat::NonCopyable {
public:
    class Impl {
    public:
        virtual ~Impl() = default;
        virtual int run(AppLoop& loop) = 0; ///< until stop; gives AppLoop::exitCode
        virtual void stop() = 0;            ///< run returns after its round
    };

    explicit AppLoop(
        std::unique_ptr<Impl> ownImpl = nullptr); ///< null: an AppLoopImpl; asserts that it is the only loop
    virtual ~AppLoop();

    int run();                                  ///< gives the exit code; throws what callbacks throw
    static void exit(int code);                 ///< asserts that the loop runs
    static AppLoop* instance() { return inst; } ///< null if there is none

    bool running() const { return isRunning; }
    int exitCode() const { return code; }

protected:
    Impl& getImpl() { return *impl; }

private:
    static AppLoop* inst;

    std::unique_ptr<Impl> impl;
    bool isRunning = false;
    int code = 0;
};

/// The loop without a display, on the process's descriptor manager.
class AppLoopImpl : public AppLoop::Impl {
public:
    AppLoopImpl(); ///< makes the process's manager current

    int run(AppLoop& loop) override;
    void stop() override;

    /// The process's descriptor manager: made by the first call, destroyed at exit, wherever that is called.
    static io::FdSelectManager& processManager();

protected:
    io::FdSelectManager& fdMgr;
    bool stopping = false;
};

} // namespace os
