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
    Entry& newest = popups.back();
    newest.place = spots().back();
    popup->movePopup(newest.place);
    timer.start(0);
}

void PopupNotificationMgr::remove(Popup* popup) {
    forget(popup);
    if (popups.empty())
        timer.cancel();
    else
        timer.start(0);
}

bool PopupNotificationMgr::timerExpired(plat::Timer*) {
    screen = popups.front().popup->readScreen();
    const std::vector<rfb::Point> fresh = spots();
    for (size_t i = 0; i < popups.size(); ++i)
        if (popups[i].place != fresh[i]) {
            popups[i].place = fresh[i];
            popups[i].popup->movePopup(fresh[i]);
        }
    timer.start(checkMs);
    return false;
}

void PopupNotificationMgr::makeRoom() {
    const auto isFull = [this] {
        int height = gapPx;
        for (const Entry& each : popups)
            height += each.popup->popupSize().y + gapPx;
        return height > screen.workArea.height();
    };
    while (popups.size() > 1 && isFull()) {
        Popup* oldest = popups.front().popup;
        oldest->expirePopup();
        forget(oldest); // whatever it made of it
    }
}

void PopupNotificationMgr::forget(const Popup* popup) {
    std::erase_if(popups, [popup](const Entry& each) { return each.popup == popup; });
}

std::vector<rfb::Point> PopupNotificationMgr::spots() const {
    std::vector<rfb::Point> sizes;
    for (const Entry& each : popups)
        sizes.push_back(each.popup->popupSize());
    return places(static_cast<Corner>(notificationPos.value()), screen, sizes);
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
