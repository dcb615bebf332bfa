#include "ui/PopupNotificationMgr.h"

#include "plat/ConfigParameter.h"

#include <algorithm>

namespace ui {
namespace {
constexpr int gapPx = 2;
constexpr unsigned checkMs = 400;

plat::IntParameter notificationPos("NotificationPos", plat::LocKey("ui_param_notification_pos"), 0,
                                   /*isAdvanced=*/false, nullptr, 0, 4);

using Corner = PopupNotificationMgr::Corner;

Corner besidePanel(const PopupNotificationMgr::Screen& screen) {
    if (screen.workArea.tl.y > 0)
        return Corner::TopRight;
    return screen.workArea.tl.x > 0 ? Corner::BottomLeft : Corner::BottomRight;
}
} // namespace

PopupNotificationMgr::PopupNotificationMgr() : timer(this) {}

PopupNotificationMgr& PopupNotificationMgr::instance() {
    static PopupNotificationMgr manager;
    return manager;
}

void PopupNotificationMgr::add(Popup* popup) {
    popups.push_back({popup, {}});
    screen = popup->readScreen();
    makeRoom();
    place();
    timer.start(checkMs);
}

void PopupNotificationMgr::remove(Popup* popup) {
    forget(popup);
    if (popups.empty())
        timer.cancel();
    else if (!isMakingRoom)
        place();
}

bool PopupNotificationMgr::timerExpired(plat::Timer*) {
    const Screen fresh = popups.front().popup->readScreen();
    if (!(fresh == screen)) {
        screen = fresh;
        place();
    }
    return true;
}

void PopupNotificationMgr::makeRoom() {
    const auto isFull = [this] {
        int height = gapPx;
        for (const Entry& each : popups)
            height += each.popup->popupSize().y + gapPx;
        return height > screen.workArea.height();
    };
    isMakingRoom = true;
    while (popups.size() > 1 && isFull()) {
        Popup* oldest = popups.front().popup;
        oldest->expirePopup();
        forget(oldest); // whatever it made of it
    }
    isMakingRoom = false;
}

void PopupNotificationMgr::place() {
    std::vector<rfb::Point> sizes;
    for (const Entry& each : popups)
        sizes.push_back(each.popup->popupSize());
    const std::vector<rfb::Point> spots = places(static_cast<Corner>(notificationPos.value()), screen, sizes);
    for (size_t i = 0; i < popups.size(); ++i) {
        Entry& entry = popups[i];
        if (entry.isPlaced && entry.place == spots[i])
            continue;
        entry.place = spots[i];
        entry.isPlaced = true;
        entry.popup->movePopup(spots[i]);
    }
}

void PopupNotificationMgr::forget(const Popup* popup) {
    std::erase_if(popups, [popup](const Entry& each) { return each.popup == popup; });
}

std::vector<rfb::Point> PopupNotificationMgr::places(Corner corner, const Screen& screen,
                                                     const std::vector<rfb::Point>& sizes) {
    if (corner == Corner::Auto)
        corner = besidePanel(screen);
    const bool top = corner == Corner::TopLeft || corner == Corner::TopRight;
    const bool left = corner == Corner::TopLeft || corner == Corner::BottomLeft;
    const rfb::Rect& area = screen.workArea;
    const rfb::Point start(
        left ? area.tl.x + (area.tl.x > 0 ? gapPx : 0) : area.br.x - (area.br.x < screen.size.x ? gapPx : 0),
        top ? area.tl.y + (area.tl.y > 0 ? gapPx : 0) : area.br.y - (area.br.y < screen.size.y ? gapPx : 0));
    std::vector<rfb::Point> spots;
    int y = start.y;
    for (const rfb::Point& size : sizes) {
        spots.emplace_back(left ? start.x : start.x - size.x, top ? y : y - size.y);
        y += top ? size.y + gapPx : -size.y - gapPx;
    }
    return spots;
}

} // namespace ui
