#include "sui/unix/ServerUiUnix.h"

#include "os/elevate.h"
#include "tx/TXWindow.h"
#include "tx/WindowManager.h"

namespace sui {
namespace {
constexpr unsigned fallbackMs = 4000;
}

ServerUiUnix::ServerUiUnix(io::MsgIpc* link) : ui(link, this), fallbackTimer(this) {
    os::setPkexecAllowed(false); // the user is asked in a terminal
    fallbackTimer.start(fallbackMs);
}

ServerUiUnix::~ServerUiUnix() = default;

bool ServerUiUnix::mayHideDialog() {
    dialogWanted = false;
    // A core that wants no icon opens the dialog by itself.
    if (!ServerUi::iconName(ui.coreStatus()))
        return true;
    iconifyDialog();
    return false;
}

bool ServerUiUnix::timerExpired(plat::Timer*) {
    if (!dialogWanted && ServerUi::iconName(ui.coreStatus()))
        iconifyDialog();
    if (ui.statusDialog()->getDialog()->isShown())
        ui.comms()->sendUiActivated();
    return false;
}

void ServerUiUnix::iconifyDialog() {
    auto* window = static_cast<tx::TXWindow*>(ui.statusDialog()->getDialog()->nativeWindow());
    if (!tx::WindowManager::isWMRunning())
        ui.statusDialog()->getDialog()->setShown(true);
    else if (window)
        window->iconify();
}

} // namespace sui
