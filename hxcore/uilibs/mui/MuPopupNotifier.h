// Notifications as popups.
#pragma once

#include "mui/MuPopupNotification.h"
#include "ui/Notifier.h"

#include <map>
#include <memory>

namespace mui {

/// Shows each notification in a popup of its own. A click tells the callback, and ends it unless that wants it kept.
///
/// The windows are made in the next round of the loop. Of a flood that came in one round only the end is shown.
class MuPopupNotifier : public ui::Notifier,
                        private MuPopupNotification::Callback,
                        private plat::Timer::Callback,
                        private plat::NonCopyable {
public:
    explicit MuPopupNotifier(const char* imageName); ///< of the picture in every popup
    ~MuPopupNotifier() override;                     ///< ends all, telling nobody

    // ui::Notifier
    Handle notify(const Notification& notification) override;
    void cancel(Handle handle) override;

private:
    struct Entry {
        Notification notification;
        std::unique_ptr<MuPopupNotification> popup; // null until it is shown
    };

    // MuPopupNotification::Callback
    void popupClicked(MuPopupNotification* popup) override;
    void popupEnded(MuPopupNotification* popup) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    void show(Handle handle);
    void end(Handle handle); ///< and tells

    Handle handleOf(const MuPopupNotification* popup) const; ///< 0 if it is none of ours
    ui::Notifier::Callback* drop(Handle handle);             ///< gives the callback of what it was

    plat::String imageName;
    std::map<Handle, Entry> live; // in order of appearance
    plat::Timer timer;            // to show those that are not
};

} // namespace mui
