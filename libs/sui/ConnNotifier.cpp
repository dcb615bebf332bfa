#include "sui/ConnNotifier.h"

#include "loc/Localize.h"
#include "loc/format.h"
#include "plat/MString.h"
#include "plat/visibleText.h"
#include "sui/PopupNotifier.h"
#include "sui/ServerComms.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace sui {
namespace {
constexpr unsigned mergeMs = 100;
constexpr int maxPendingLines = 8; // a popup must fit on the screen

struct EventKeys {
    const char* userType;
    const char* connected;
    const char* disconnected;
};
constexpr EventKeys eventKeys[] = {
    {"Admin", "sui_connections_adminuser_connected", "sui_connections_adminuser_disconnected"},
    {"ViewOnly", "sui_connections_viewonlyuser_connected", "sui_connections_viewonlyuser_disconnected"},
    {"InputOnly", "sui_connections_inputonlyuser_connected", "sui_connections_inputonlyuser_disconnected"},
    {"Guest", "sui_connections_guestuser_connected", "sui_connections_guestuser_disconnected"},
    {"Anonymous", "sui_connections_standarduser_connected", "sui_connections_standarduser_disconnected"},
};
constexpr EventKeys namelessKeys = {"Standard", "sui_connections_standarduser_connected",
                                    "sui_connections_standarduser_disconnected"};
constexpr EventKeys namedKeys = {nullptr, "sui_connections_systemuser_connected",
                                 "sui_connections_systemuser_disconnected"};

bool equal(const plat::String& a, const plat::String& b) { return strcmp(a.c_str(), b.c_str()) == 0; }

int clampedMs(uint32_t ms) { return static_cast<int>(std::min(ms, static_cast<uint32_t>(INT_MAX))); }
} // namespace

ConnNotifier::ConnNotifier(Callback* target) : ConnNotifier(target, std::make_unique<SystemNotifier>()) {}

ConnNotifier::ConnNotifier(Callback* target, std::unique_ptr<ui::Notifier> notifierInstead)
    : callback(target), notifier(std::move(notifierInstead)), timer(this) {}

ConnNotifier::~ConnNotifier() = default;

void ConnNotifier::onConnection(const score::ConnectionInfo& info, bool add, const CoreStatus& status) {
    connected = std::max(0, connected + (add ? 1 : -1));
    // Those who go together are told as long as the longest of them.
    const int hold = add ? -1 : record.timeoutMs;
    if (!add)
        forget(info);
    record.timeoutMs = std::max(hold, clampedMs(status.notifyMs));
    record.flags = status.notifyFlags;
    record.callback = this;
    if (record.timeoutMs == 0)
        return;
    const plat::String text = eventText(info, add);
    if (add)
        raise(text, info.idA, info.idB);
    else
        addPending(text);
}

plat::String ConnNotifier::eventText(const score::ConnectionInfo& info, bool add) {
    const plat::String user = plat::visibleText(info.user.c_str());
    const EventKeys* keys = &namedKeys;
    for (const EventKeys& each : eventKeys)
        if (strcmp(info.userType.c_str(), each.userType) == 0)
            keys = &each;
    if (strcmp(info.userType.c_str(), namelessKeys.userType) == 0 && user.isEmpty())
        keys = &namelessKeys;
    const char* key = add ? keys->connected : keys->disconnected;
    if (keys == &namedKeys)
        return loc::formatted(LOC_RAW(key), {user});
    return plat::String(LOC_TEXT(key));
}

void ConnNotifier::forget(const score::ConnectionInfo& info) {
    for (auto each = live.begin(); each != live.end();) {
        if (!equal(each->idA, info.idA) || !equal(each->idB, info.idB)) {
            ++each;
            continue;
        }
        // Nothing else would ever end one without a time-out.
        if (each->endless)
            notifier->cancel(each->handle);
        each = live.erase(each);
    }
}

void ConnNotifier::addPending(const plat::String& text) {
    if (pendingLines <= maxPendingLines) {
        pendingText += pendingText.empty() ? "" : "\n";
        pendingText += pendingLines < maxPendingLines ? text.c_str() : "…";
        ++pendingLines;
    }
    if (!timer.isActive())
        timer.start(mergeMs);
}

bool ConnNotifier::timerExpired(plat::Timer*) {
    const plat::String text(pendingText);
    pendingText.clear();
    pendingLines = 0;
    if (record.timeoutMs != 0) // they may have been turned off since
        raise(text, "", "");
    record.timeoutMs = -1;
    return false;
}

void ConnNotifier::raise(const plat::String& text, const plat::String& idA, const plat::String& idB) {
    if (isSticky()) {
        for (const Live& each : live)
            notifier->cancel(each.handle);
        live.clear();
        if (connected > 0)
            record.timeoutMs = -1;
    }
    const plat::String count = connected > 0 ? loc::formatted(LOC_RAW("sui_connections_numbergtzero"), {connected})
                                             : plat::String(LOC_TEXT("sui_connections_numbernone"));
    plat::MString markup;
    markup.text(plat::strFormat("%s\n%s", text.c_str(), count.c_str()).c_str());
    record.text = markup.c_str();
    live.push_back({idA, idB, notifier->notify(record), record.timeoutMs <= 0});
}

bool ConnNotifier::notified(ui::Notifier::Handle handle, int reason) {
    if (reason == ui::Notifier::Clicked) {
        callback->activate();
        if (isSticky())
            return true;
    }
    std::erase_if(live, [handle](const Live& each) { return each.handle == handle; });
    return false;
}

} // namespace sui
