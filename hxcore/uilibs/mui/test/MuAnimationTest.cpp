#include "mui/MuAnimation.h"

#include "mui/test/FakeElements.h"
#include "plat/SysColors.h"
#include "plat/test/FakeClock.h"

#include <gtest/gtest.h>

namespace mui {
namespace {

class AnimationTest : public testing::Test {
protected:
    /// One frame's time, at the end of which what has changed is painted where somebody looks.
    void pass(int ms) {
        plat::FakeClock::advanceMs(ms);
        timers.processTimers();
        for (auto* image : {dynamic_cast<FakeImage*>(dialog.findElement("a")),
                            dynamic_cast<FakeImage*>(dialog.findElement("spinner"))})
            if (image && inView)
                image->painted();
    }

    plat::FakeClock clock;
    plat::TimerManager timers;
    FakeToolkit toolkit;
    FakeDialog dialog{"d"};
    bool inView = true;
};

TEST_F(AnimationTest, FramesFollowTheClockAndWrap) {
    MuAnimation animation(&dialog, "a", 80, {"f0", "f1", "f2"}, {16, 16});
    const auto shown = [&] { return std::string(animation.getImage()->getImageName()); };
    pass(200);
    EXPECT_EQ(shown(), "f0"); // stands until it is told to run
    animation.setRunning(true);
    std::string seen = shown();
    for (int i = 0; i < 4; ++i) {
        pass(80);
        seen += shown();
    }
    EXPECT_EQ(seen, "f0f1f2f0f1");
    animation.setRunning(false);
    EXPECT_EQ(shown(), "f0");
    pass(500);
    EXPECT_EQ(shown(), "f0");
    EXPECT_EQ(timers.timeUntilNext(), -1);
}

TEST_F(AnimationTest, OutOfViewItSleeps) {
    MuAnimation animation(&dialog, "a", 80, {"f0", "f1", "f2"}, {16, 16});
    animation.setRunning(true);
    inView = false;
    for (int i = 0; i < 3; ++i)
        pass(80);
    EXPECT_EQ(timers.timeUntilNext(), -1);
    inView = true; // the next paint
    for (int i = 0; i < 2; ++i)
        pass(80);
    EXPECT_STREQ(animation.getImage()->getImageName(), "f2");
    dialog.clear(); // its image goes first
    EXPECT_EQ(animation.getImage(), nullptr);
    EXPECT_EQ(timers.timeUntilNext(), -1);
    animation.setRunning(true);
}

TEST_F(AnimationTest, TheSpinnerNamesItsFrames) {
    MuSpinner dark(&dialog, /*darkBackground=*/true);
    MuSpinner light(&dialog, /*darkBackground=*/false);
    EXPECT_STREQ(light.getImage()->getName(), "spinner");
    EXPECT_STREQ(light.getImage()->getImageName(), "spinner00");
    dark.setRunning(true);
    for (int i = 0; i < 11; ++i)
        pass(80);
    EXPECT_STREQ(dark.getImage()->getImageName(), "spinnerblack11");
    // On the background of the theme it turns with it; on one of its own it stays.
    struct Dark : plat::SysColorsGeneric {
        bool isDark() override { return true; }
    } theme;
    plat::setSysColors(&theme);
    dialog.styleChanged();
    EXPECT_STREQ(light.getImage()->getImageName(), "spinnerblack00");
    EXPECT_STREQ(dark.getImage()->getImageName(), "spinnerblack11");
    plat::setSysColors(nullptr);
    dialog.styleChanged();
    EXPECT_STREQ(light.getImage()->getImageName(), "spinner00");
}

} // namespace
} // namespace mui
