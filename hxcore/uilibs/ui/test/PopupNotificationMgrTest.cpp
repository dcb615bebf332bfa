#include "ui/PopupNotificationMgr.h"

#include "plat/Timer.h"
#include "plat/test/FakeClock.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

using Corner = PopupNotificationMgr::Corner;
using Screen = PopupNotificationMgr::Screen;

TEST(PopupNotificationMgr, StacksAwayFromTheCornerBesideAPanel) {
    const rfb::Point size(1000, 800);
    const rfb::Rect whole(0, 0, 1000, 800);
    const rfb::Rect below(0, 30, 1000, 800);  // a panel at the top
    const rfb::Rect right(40, 0, 1000, 800);  // at the left edge
    const rfb::Rect above(0, 0, 1000, 770);   // at the bottom
    const rfb::Rect inside(40, 30, 990, 770); // all round
    const struct {
        Corner corner;
        rfb::Rect area;
        rfb::Point first, second; // of popups of 100 x 50 and 100 x 60
    } cases[] = {
        {Corner::Auto, whole, {900, 750}, {900, 688}},
        {Corner::Auto, below, {900, 32}, {900, 84}},
        {Corner::Auto, right, {42, 750}, {42, 688}},
        {Corner::Auto, above, {900, 718}, {900, 656}},
        {Corner::TopLeft, whole, {0, 0}, {0, 52}},
        {Corner::TopLeft, inside, {42, 32}, {42, 84}},
        {Corner::TopRight, inside, {888, 32}, {888, 84}},
        {Corner::BottomLeft, inside, {42, 718}, {42, 656}},
        {Corner::BottomRight, inside, {888, 718}, {888, 656}},
    };
    for (const auto& c : cases) {
        const auto spots = PopupNotificationMgr::places(c.corner, {c.area, size}, {{100, 50}, {100, 60}});
        EXPECT_EQ(spots[0], c.first) << static_cast<int>(c.corner) << " " << c.area.tl.x << "," << c.area.tl.y;
        EXPECT_EQ(spots[1], c.second) << static_cast<int>(c.corner) << " " << c.area.tl.x << "," << c.area.tl.y;
    }
}

class FakePopup : public PopupNotificationMgr::Popup {
public:
    FakePopup() { PopupNotificationMgr::instance().add(this); }
    ~FakePopup() override { PopupNotificationMgr::instance().remove(this); }
    rfb::Point popupSize() override { return {100, 50}; }
    void movePopup(const rfb::Point& root) override { place = root; }
    Screen readScreen() override { return screen; }
    void expirePopup() override {
        expired = true;
        PopupNotificationMgr::instance().remove(this);
    }
    static inline Screen screen{{0, 0, 1000, 200}, {1000, 200}};
    rfb::Point place;
    bool expired = false;
};

TEST(PopupNotificationMgr, FollowsTheWorkAreaAndRestsWithoutPopups) {
    plat::FakeClock clock;
    plat::TimerManager timers;
    {
        FakePopup popup;
        EXPECT_EQ(popup.place, rfb::Point(900, 150));
        timers.processTimers();
        FakePopup::screen.workArea = {0, 0, 1000, 180};
        plat::FakeClock::advanceMs(400);
        timers.processTimers();
        EXPECT_EQ(popup.place, rfb::Point(900, 128));
        FakePopup::screen.workArea = {0, 0, 1000, 200};
        plat::FakeClock::advanceMs(400);
        timers.processTimers();
        EXPECT_EQ(popup.place, rfb::Point(900, 150));
    }
    EXPECT_EQ(timers.timeUntilNext(), -1);
}

TEST(PopupNotificationMgr, TheOldestMakesRoomForTheNewest) {
    plat::FakeClock clock;
    plat::TimerManager timers;
    FakePopup first, second, third;
    EXPECT_FALSE(first.expired);
    FakePopup fourth;
    EXPECT_TRUE(first.expired);
    EXPECT_FALSE(second.expired);
    EXPECT_EQ(fourth.place, rfb::Point(900, 46)); // at once, before it is seen
    timers.processTimers();
    EXPECT_EQ(second.place, rfb::Point(900, 150));
    EXPECT_EQ(fourth.place, rfb::Point(900, 46));
}

} // namespace
} // namespace ui
