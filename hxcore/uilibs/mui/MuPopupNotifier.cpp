#include "mui/MuPopupNotifier.h"

#include "plat/DeferredDeleter.h"

#include <vector>

namespace mui {
namespace {
ui::Notifier::Handle nextHandle = 1;  // of all notifiers
constexpr size_t maxShownAtOnce = 40; // more than a screen holds
} // namespace

MuPopupNotifier::MuPopupNotifier(const char* imageName_) : imageName(imageName_), timer(this) {}

MuPopupNotifier::~MuPopupNotifier() = default;

ui::Notifier::Handle MuPopupNotifier::notify(const Notification& notification) {
    const Handle handle = nextHandle++;
    live[handle].notification = notification;
    timer.start(0);
    return handle;
}

void MuPopupNotifier::cancel(Handle handle) { drop(handle); }

bool MuPopupNotifier::timerExpired(plat::Timer*) {
    std::vector<Handle> fresh;
    for (const auto& [handle, entry] : live)
        if (!entry.popup)
            fresh.push_back(handle);
    const size_t leftOut = fresh.size() > maxShownAtOnce ? fresh.size() - maxShownAtOnce : 0;
    for (size_t i = 0; i < fresh.size(); ++i) {
        if (i < leftOut)
            end(fresh[i]);
        else
            show(fresh[i]);
    }
    return false;
}

void MuPopupNotifier::show(Handle handle) {
    const auto found = live.find(handle);
    if (found == live.end())
        return; // cancelled when another one ended
    const Notification& what = found->second.notification;
    auto popup = std::make_unique<MuPopupNotification>(imageName.c_str(), what.text.c_str(), what.timeoutMs,
                                                       static_cast<MuPopupNotification::Callback*>(this));
    // It may have taken the place of another, whose end may have cancelled this one.
    if (const auto still = live.find(handle); still != live.end())
        still->second.popup = std::move(popup);
}

void MuPopupNotifier::popupClicked(MuPopupNotification* popup) {
    const Handle handle = handleOf(popup);
    ui::Notifier::Callback* callback = handle ? live.at(handle).notification.callback : nullptr;
    if (callback && callback->notified(handle, Clicked))
        return;
    drop(handle); // unless the callback has
}

void MuPopupNotifier::popupEnded(MuPopupNotification* popup) { end(handleOf(popup)); }

void MuPopupNotifier::end(Handle handle) {
    if (ui::Notifier::Callback* callback = drop(handle))
        callback->notified(handle, Ended);
}

ui::Notifier::Handle MuPopupNotifier::handleOf(const MuPopupNotification* popup) const {
    for (const auto& [handle, entry] : live)
        if (entry.popup.get() == popup)
            return handle;
    return 0;
}

ui::Notifier::Callback* MuPopupNotifier::drop(Handle handle) {
    const auto found = live.find(handle);
    if (found == live.end())
        return nullptr;
    Entry entry = std::move(found->second);
    live.erase(found);
    if (entry.popup)
        entry.popup->end();
    plat::deleteLater(entry.popup.release()); // it may be at work
    return entry.notification.callback;
}

} // namespace mui
