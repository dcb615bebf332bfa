#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WDiscreteSlider.h"
#include "wvw/WScrollView.h"

#include "rfb/keySymbols.h"

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
    window.move(8, 10);
    window.press();
    slider.setEnabled(false); // lets go
    slider.setEnabled(true);
    window.move(8, 35);
    EXPECT_EQ(slider.getValue1(), 0);
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

struct DiscreteTest : testing::Test {
    WCanvas root;
    WDiscreteSlider slider{&root};
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&slider, {0, 0, 111, 26}); // 100 for five positions
        slider.setRange1(4);
        slider.takeFocus();
    }
};

TEST_F(DiscreteTest, KeysOfItsAxisStepAndTheOthersTravel) {
    namespace key = rfb::key;
    Box other(&root, "other", true);
    const struct {
        uint32_t key;
        int value;
    } steps[] = {{key::Right, 1}, {key::Right, 2},  {key::Left, 1}, {key::End, 4},
                 {key::Right, 4}, {key::PageUp, 3}, {key::Home, 0}, {key::Left, 0}};
    for (const auto& step : steps) {
        EXPECT_TRUE(window.key(step.key));
        EXPECT_EQ(slider.getValue1(), step.value) << step.key;
    }
    EXPECT_EQ(window.changes.size(), 6u);
    window.key(key::Down);
    EXPECT_TRUE(other.hasFocus());
}

TEST_F(DiscreteTest, TheThumbSnapsToTheMarksThatStandAtEachPosition) {
    EXPECT_EQ(slider.thumbRect(), Rect(0, 1, 11, 17));
    window.move(5, 5);
    window.press();
    window.move(5 + 60, 5);
    EXPECT_EQ(slider.getValue1(), 2);
    EXPECT_EQ(slider.thumbRect(), Rect(50, 1, 61, 17));
    window.release();
}

struct ScrollViewTest : testing::Test {
    FakeClock clock;
    WCanvas root;
    WLayout content;
    Box top{&content, "top"};
    Box bottom{&content, "bottom"};
    WScrollView view{&root};
    FakeParent window{&root, {100, 100}};

    void SetUp() override {
        content.setChildRect(&top, {0, 0, 50, 20});
        content.setChildRect(&bottom, {0, 300, 50, 320});
        view.setContent(&content);
        root.setChildRect(&view, {0, 0, 100, 100});
    }
};

TEST_F(ScrollViewTest, TheContentFillsTheViewAndScrollsWhereItIsLarger) {
    EXPECT_EQ(content.getSize(), Point(84, 320));
    EXPECT_FALSE(view.getViewport().getHBar().isVisible());
    window.move(10, 10);
    window.press(4);
    EXPECT_EQ(view.getScroll().y, 48);
    EXPECT_EQ(top.getRootPosition().y, -48);
    window.paintAll();
    EXPECT_EQ(top.paints + bottom.paints, 0); // out of sight
    content.setChildRect(&bottom, {0, 80, 50, 100});
    view.relayout();
    EXPECT_EQ(content.getSize(), Point(100, 100));
    EXPECT_EQ(top.getRootPosition().y, 0);
    view.setContent(nullptr);
    window.press(3);
    EXPECT_EQ(content.getParentLayout(), nullptr);
}

TEST_F(ScrollViewTest, TheWheelGoesSidewaysWithShiftOrByItsOwnButtons) {
    content.setChildRect(&top, {0, 0, 300, 20});
    view.relayout();
    window.move(10, 10);
    window.press(6);
    EXPECT_EQ(view.getScroll(), Point(48, 0));
    window.release(6);
    window.press(5);
    window.release(5);
    window.hold(rfb::key::ShiftL);
    window.press(4);
    EXPECT_EQ(view.getScroll(), Point(48, 0));
}

TEST_F(ScrollViewTest, TheFocusComesIntoViewAndKeysScrollWithoutOne) {
    namespace key = rfb::key;
    view.takeFocus(); // nothing inside takes it
    EXPECT_TRUE(view.hasFocus());
    window.key(key::End);
    EXPECT_EQ(view.getScroll().y, 220);
    window.key(key::PageUp);
    EXPECT_EQ(view.getScroll().y, 136);
    window.key(key::Home);
    window.key(key::Down);
    EXPECT_EQ(view.getScroll().y, 16);

    top.focusable = bottom.focusable = true;
    top.takeFocus();
    EXPECT_EQ(view.getScroll().y, 0);
    window.key(key::Tab);
    EXPECT_TRUE(bottom.hasFocus());
    EXPECT_EQ(view.getScroll().y, 220);
    window.key(key::PageUp); // which the box has no use for
    EXPECT_EQ(view.getScroll().y, 136);
    EXPECT_TRUE(bottom.hasFocus());
    content.setChildRect(&bottom, {0, 50, 50, 60}); // all of it fits
    view.relayout();
    top.focusable = bottom.focusable = false;
    EXPECT_FALSE(view.acceptsFocus());
}

} // namespace
} // namespace wvw
