#include "mui/MuPopupNotifier.h"

#include "plat/DeferredDeleter.h"

namespace mui {
namespace {
ui::Notifier::Handle nextHandle = 1; // of all notifiers
}

MuPopupNotifier::MuPopupNotifier(const char* imageName_) : imageName(imageName_) {}

MuPopupNotifier::~MuPopupNotifier() = default;

ui::Notifier::Handle MuPopupNotifier::notify(const Notification& notification) {
    const Handle handle = nextHandle++;
    auto popup =
        std::make_unique<MuPopupNotification>(imageName.c_str(), notification.text.c_str(), notification.timeoutMs,
                                              static_cast<MuPopupNotification::Callback*>(this));
    live[handle] = {std::move(popup), notification.callback};
    return handle;
}

void MuPopupNotifier::cancel(Handle handle) { drop(handle); }

void MuPopupNotifier::popupClicked(MuPopupNotification* popup) {
    const Handle handle = handleOf(popup);
    ui::Notifier::Callback* callback = handle ? live.at(handle).callback : nullptr;
    if (callback && callback->notified(handle, Clicked))
        return;
    drop(handle); // unless the callback has
}

void MuPopupNotifier::popupEnded(MuPopupNotification* popup) {
    const Handle handle = handleOf(popup);
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
    ui::Notifier::Callback* callback = found->second.callback;
    found->second.popup->end();
    plat::deleteLater(found->second.popup.release()); // it may be at work
    live.erase(found);
    return callback;
}

} // namespace mui
