// A short message in a corner of the screen.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "plat/NonCopyable.h"
#include "plat/Timer.h"
#include "ui/PopupNotificationMgr.h"

#include <memory>

namespace mui {

/// The window "notification": a picture and a text, which never takes the keyboard from anybody.
///
/// It is shown from construction on and goes with the object.
class MuPopupNotification : private ui::PopupNotificationMgr::Popup,
                            private MuDialog::MoveCallback,
                            private MuObserver,
                            private plat::Timer::Callback,
                            private plat::NonCopyable {
public:
    /// Called from the window's own events: delete the popup from the loop, not from here.
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void popupClicked(MuPopupNotification* popup) = 0;
        virtual void popupEnded(MuPopupNotification* popup) = 0; ///< once; it is hidden and has left its place
    };

    /// `timeoutMs` above 0 ends it by itself. `target` is borrowed.
    MuPopupNotification(const char* imageName, const char* markup, int timeoutMs, Callback* target);
    ~MuPopupNotification() override;

    void end(); ///< hides it and leaves the place to others; tells nobody

private:
    // ui::PopupNotificationMgr::Popup
    rfb::Point popupSize() override;
    void movePopup(const rfb::Point& rootPosition) override;
    ui::PopupNotificationMgr::Screen readScreen() override;
    void expirePopup() override { tellEnded(); }
    // MuDialog::MoveCallback
    bool pressed(MuDialog*, MuElement*, const rfb::Point&) override;
    // MuObserver
    void muClosed(MuDialog*) override { tellEnded(); }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    void tellEnded();

    Callback* callback;
    std::unique_ptr<MuDialog> dialog;
    plat::Timer timer;
    bool ended = false;
};

} // namespace mui
