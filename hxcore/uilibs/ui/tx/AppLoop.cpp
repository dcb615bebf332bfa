#include "ui/tx/AppLoop.h"

#include "io/FdSelectManager.h"
#include "tx/TX.h"
#include "tx/TXDisplayManager.h"
#include "ui/displaySwitch.h"

namespace ui {

AppLoopImpl::AppLoopImpl(const char* displayName) {
    if (!opensDisplay())
        return;
    tx::TXInit(displayName);
    displayManager = std::make_unique<tx::TXDisplayManager>();
}

AppLoopImpl::~AppLoopImpl() = default;

int AppLoopImpl::run(os::AppLoop& loop) {
    while (!stopping) {
        // Always before the wait: Xlib may have read events that no longer show on the descriptor.
        const bool more = displayManager && tx::processEvents(displayManager->takeArrived());
        if (stopping)
            break;
        fdMgr.poll(/*timeoutMs=*/more ? 0 : -1);
    }
    return loop.exitCode();
}

AppLoop::AppLoop(const char* displayName) : os::AppLoop(std::make_unique<AppLoopImpl>(displayName)) {}

} // namespace ui
