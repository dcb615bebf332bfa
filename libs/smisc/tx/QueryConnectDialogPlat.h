// The connection prompt in an X window.
#pragma once

#include "smisc/QueryConnectDialog.h"
#include "tx/TXEventHandler.h"
#include "tx/TXWindow.h"

namespace smisc {

/// Keeps the window on top and urgent, but away from the keyboard until the user turns to it.
///
/// Once its first second is over it takes the focus when a click or the window manager (WM_TAKE_FOCUS, ICCCM 4.1.7)
/// asks for that.
class QueryConnectDialogPlat : public QueryConnectDialog, private tx::TXEventHandler {
public:
    static std::unique_ptr<QueryConnectDialog> create(QueryResultCallback* target);

    explicit QueryConnectDialogPlat(QueryResultCallback* target); ///< borrowed
    ~QueryConnectDialogPlat() override;

protected:
    // QueryConnectDialog
    void showQuietly() override;
    void allowFocus() override;
    void keepInView() override;
    rfb::Point frameSize() override;

private:
    // tx::TXEventHandler
    bool handleEvent(XEvent* event) override;

    void takeFocus(Time time);

    tx::TXWindow* native; // the dialog's
    bool focusAllowed = false;
    bool covered = false; // all of it
    int raisesLeft = 0;   // two windows that both want to be on top must come to an end
};

} // namespace smisc
