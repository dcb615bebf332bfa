// The server UI on an X desktop.
#pragma once

#include "plat/Timer.h"
#include "sui/ServerUi.h"
#include "sui/ServerUiCallback.h"
#include "sui/unix/displayInfo.h"

namespace sui {

/// Holds the UI's core and decides what becomes of the status dialog.
///
/// While nothing else leads back to the dialog, closing it iconifies it, so that it stays within reach.
class ServerUiUnix : private ServerUiCallback, private plat::Timer::Callback {
public:
    explicit ServerUiUnix(io::MsgIpc* link); ///< borrowed
    ~ServerUiUnix() override;

    ServerUi* serverUi() { return &ui; }

private:
    // sui::ServerUiCallback
    void dialogOpened() override { dialogWanted = true; }
    bool mayHideDialog() override;
    DisplayInfo displayInfo() override { return readDisplayInfo(); }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void iconifyDialog();

    ServerUi ui;
    bool dialogWanted = false;
    plat::Timer fallbackTimer; // no icon came up in its time
};

} // namespace sui
