// A superbox whose popup is a window of the X server.
#pragma once

#include "mui/wvw/MuSuperboxWvw.h"
#include "tx/TXEventHandler.h"

namespace mui {

/// While the popup is shown its window holds pointer and keyboard: a press outside closes it, keys go to the dialog.
class MuSuperboxTx : public MuSuperboxWvw, private tx::TXEventHandler {
public:
    MuSuperboxTx(const char* name, const char* label, Callback* callback, int popupHeight);
    ~MuSuperboxTx() override;

    // MuSuperbox
    void showPopup(bool show) override;

private:
    // MuSuperbox
    void popupMade(MuDialog* made) override;

    // tx::TXEventHandler, of the popup's window
    bool handleEvent(XEvent* event) override;
};

} // namespace mui
