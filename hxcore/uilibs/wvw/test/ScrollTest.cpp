#include "wvw/test/FakeParent.h"

#include "wvw/WSlider.h"
#include "wvw/WViewport.h"

namespace wvw {
namespace {

using rfb::Point;
using rfb::Rect;

TEST(Slider, ThumbLengthIsTheVisibleShareWithinLimits) {
    const struct {
        int length, range, step, expected;
    } cases[] = {
        {100, 100, 100, 50}, {100, 0, 10, 100}, {100, 300, 100, 25}, {100, 100000, 10, 8},
        {6, 100, 10, 6},     {99, 1, 1, 50},    {0, 10, 10, 0},      {1000000, 2000000000, 2000000000, 500000},
    };
    for (const auto& c : cases)
        EXPECT_EQ(WSlider2D::thumbLength(c.length, c.range, c.step), c.expected) << c.length << " " << c.range;
}

struct SliderTest : testing::Test {
    WLayout root;
    WSlider slider{&root, /*vertical=*/true};
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&slider, {0, 0, 16, 100});
        slider.setRange1(300);
        slider.setStep1(100); // a thumb of 25
    }
};

TEST_F(SliderTest, ADragMovesTheValueWithThePointer) {
    window.move(8, 10);
    window.press();
    EXPECT_TRUE(slider.isDragging());
    window.move(8, 35);
    EXPECT_EQ(slider.getValue1(), 100);
    EXPECT_EQ(slider.thumbRect(), Rect(0, 25, 16, 50));
    window.move(8, 5000);
    EXPECT_EQ(slider.getValue1(), 300);
    window.move(8, -5000);
    EXPECT_EQ(slider.getValue1(), 0);
    window.release();
    window.move(8, 50);
    EXPECT_EQ(slider.getValue1(), 0);
    EXPECT_EQ(window.changes.size(), 3u);
}

TEST_F(SliderTest, APressBesideTheThumbStepsTowardsIt) {
    window.click(8, 99);
    EXPECT_EQ(slider.getValue1(), 100);
    window.click(8, 1);
    EXPECT_EQ(slider.getValue1(), 0);
    slider.setEnabled(false);
    window.click(8, 99);
    EXPECT_EQ(slider.getValue1(), 0);
}

TEST_F(SliderTest, AShrinkingRangeKeepsTheValueInside) {
    slider.setValue1(250);
    slider.setRange1(50);
    EXPECT_EQ(slider.getValue1(), 50);
    EXPECT_FALSE(slider.setValue1(500));
    slider.setRange1(-5);
    EXPECT_EQ(slider.getValue1(), 0);
    EXPECT_TRUE(window.changes.empty()); // only the user's changes are told
}

TEST(Scrollbar, AnArrowThatIsHeldRepeatsFasterAndStopsAtTheEnd) {
    FakeClock clock;
    WLayout root;
    WScrollbar bar(&root, /*vertical=*/true, /*arrowStep=*/2);
    FakeParent window(&root);
    root.setChildRect(&bar, {0, 0, 16, 100});
    bar.setRange(12);
    bar.setPage(10);
    window.move(8, 95);
    window.press();
    EXPECT_EQ(bar.getValue(), 2);
    clock.advance(299);
    EXPECT_EQ(bar.getValue(), 2);
    clock.advance(1);
    EXPECT_EQ(bar.getValue(), 4);
    clock.advance(240); // 4/5 of 300
    EXPECT_EQ(bar.getValue(), 6);
    window.move(50, 50); // away: it waits
    clock.advance(1000);
    EXPECT_EQ(bar.getValue(), 6);
    window.move(8, 95);
    clock.advance(1000);
    EXPECT_EQ(bar.getValue(), 12);
    EXPECT_FALSE(clock.timersLeft());
    window.release();
    EXPECT_EQ(window.changes, std::vector<Widget*>(6, &bar));

    window.move(8, 5);
    window.press();
    EXPECT_EQ(bar.getValue(), 10);
    window.release();
    EXPECT_FALSE(clock.timersLeft());
    EXPECT_TRUE(window.activations.empty());
}

class Content : public Box, public WViewportChild {
public:
    using Box::Box;
    void scrollTo(const Point& point) override { at = point; }
    Point at{-1, -1};
};

struct ViewportTest : testing::Test {
    WLayout root;
    WViewport view{&root};
    Content content;
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&view, {0, 0, 100, 80});
        view.setChild(&content, &content);
    }
};

TEST_F(ViewportTest, BarsShowOnlyWhereTheyAreNeeded) {
    const struct {
        Point content;
        bool v, h;
    } cases[] = {
        {{100, 80}, false, false}, {{84, 81}, true, false}, {{85, 81}, true, true},
        {{101, 64}, false, true},  {{101, 65}, true, true}, {{0, 0}, false, false},
    };
    for (const auto& c : cases) {
        view.setContentSize(c.content);
        EXPECT_EQ(view.getVBar().isVisible(), c.v) << c.content.x << "x" << c.content.y;
        EXPECT_EQ(view.getHBar().isVisible(), c.h) << c.content.x << "x" << c.content.y;
        EXPECT_EQ(content.getSize(), Point(c.v ? 84 : 100, c.h ? 64 : 80));
    }
}

TEST_F(ViewportTest, ScrollingReachesTheEndAndNoFurther) {
    view.setContentSize({500, 400});
    view.scrollToPoint({1000, 20});
    EXPECT_EQ(content.at, Point(500 - 84, 20));
    view.scrollToRect({0, 300, 10, 310});
    EXPECT_EQ(content.at, Point(0, 310 - 64));
    view.scrollToRect({0, 250, 10, 260}); // in view already
    EXPECT_EQ(content.at, Point(0, 310 - 64));
    view.scrollToRect({0, 50, 10, 300}); // larger than the view: its start
    EXPECT_EQ(content.at, Point(0, 50));
    view.setContentSize({100, 90}); // shrinking takes it back
    EXPECT_EQ(content.at, Point(0, 90 - 64));
}

TEST_F(ViewportTest, TheWheelScrollsUntilTheEndAndThenSpeaksToTheOuterWorld) {
    view.setContentSize({50, 120});
    window.move(10, 10);
    window.press(4);
    window.release(4);
    EXPECT_EQ(content.at, Point(0, 40));
    window.press(3);
    EXPECT_EQ(content.at, Point(0, 0));
    view.removeChild(&content);
    view.scrollToPoint({0, 10}); // nobody is left to tell
    EXPECT_EQ(content.at, Point(0, 0));
}

} // namespace
} // namespace wvw
