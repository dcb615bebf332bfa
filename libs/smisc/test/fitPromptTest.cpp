#include "smisc/fitPrompt.h"

#include <gtest/gtest.h>

#include <vector>

namespace smisc {
namespace {

/// A text of some area, with what never wraps around it.
struct FakeText : PromptMeasure {
    FakeText(int area_, int rest_) : area(area_), rest(rest_) {}
    int heightAt(int width) override {
        asked.push_back(width);
        return rest + (area + width - 1) / width;
    }
    int area;
    int rest;
    std::vector<int> asked;
};

constexpr PromptLimits limits{300, 400, 800, 600};

TEST(FitPrompt, GrowsNarrowerUntilItIsNotTooWide) {
    FakeText text(40000, 100);
    EXPECT_EQ(fitPrompt(10000, limits, text), rfb::Point(423, 195));
    // Nine tenths each time, truncated. At 471 it would be 185 high.
    EXPECT_EQ(text.asked, (std::vector<int>{800, 720, 648, 583, 524, 471, 423}));
}

TEST(FitPrompt, KeepsItsLimits) {
    FakeText little(0, 200);
    EXPECT_EQ(fitPrompt(10, limits, little), rfb::Point(400, 200)); // no narrower than that at first
    FakeText much(10'000'000, 100);
    EXPECT_EQ(fitPrompt(700, limits, much), rfb::Point(700, 600));
    FakeText flat(0, 10); // never high enough
    EXPECT_EQ(fitPrompt(800, limits, flat), rfb::Point(300, 10));
    FakeText exact(0, 160); // 2.5 is not below 2.5
    EXPECT_EQ(fitPrompt(400, limits, exact).x, 360);
}

TEST(FitPrompt, EndsAfterTenRounds) {
    FakeText flat(0, 1);
    const PromptLimits noLeast{1, 400, 800, 600};
    EXPECT_EQ(fitPrompt(800, noLeast, flat).x, 276);
    EXPECT_EQ(flat.asked.size(), 11U); // ten, and the height at the width that came of it
}

TEST(RoundedSeconds, ToTheNearestHalfAwayFromZero) {
    struct Case {
        int64_t ticks;
        int seconds;
    };
    const Case cases[] = {{0, 0},           {4'999'999, 0},           {5'000'000, 1},
                          {14'999'999, 1},  {15'000'000, 2},          {-4'999'999, 0},
                          {-5'000'000, -1}, {655'350'000'000, 65535}, {-14'999'999, -1}};
    for (const Case& c : cases)
        EXPECT_EQ(roundedSeconds(c.ticks), c.seconds) << c.ticks;
}

} // namespace
} // namespace smisc
