#include "wvw/test/FakeParent.h"

#include "hxutil/MouseCallback.h"
#include "rfb/keySymbols.h"

namespace wvw {
namespace {

/// Notes the typed events as letters and places.
class Recorder : public hxutil::MouseCallback {
public:
    void mouseEvent(const hxutil::MouseEvent& event) override {
        static const char* const names[] = {"press", "release", "double", "click", "move", "left", "context"};
        if (event.type == hxutil::MouseEvent::Moved)
            return;
        log += (log.empty() ? "" : " ") + std::string(names[event.type]);
        at = {event.x, event.y};
        if (deleteAt == log)
            delete event.widget;
    }
    std::string take() { return std::exchange(log, ""); }

    std::string log;
    std::string deleteAt;
    rfb::Point at;
};

/// Two boxes side by side, 50 wide, in a layout at (10, 5).
struct MouseTest : testing::Test {
    FakeClock clock;
    WLayout root;
    WLayout inner{&root};
    Box left{&inner, "left", true};
    Box right{&inner, "right"};
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&inner, {10, 5, 110, 45});
        inner.setChildRect(&left, {0, 0, 50, 40});
        inner.setChildRect(&right, {50, 0, 100, 40});
        left.takeLog();
        right.takeLog();
    }
};

TEST_F(MouseTest, APressHoldsTheMouseWhereverItGoes) {
    window.move(20, 15);
    window.press();
    EXPECT_EQ(left.takeLog(), "move10,10 down0");
    window.move(90, 15);
    window.move(500, -7);
    window.release();
    EXPECT_EQ(left.takeLog(), "exit move80,10 move490,-12 up0");
    EXPECT_EQ(right.takeLog(), "");
    window.move(90, 15);
    EXPECT_EQ(right.takeLog(), "move30,10");
}

TEST_F(MouseTest, DisabledWidgetsSeeThePointerButNoButtons) {
    right.setEnabled(false);
    window.move(90, 15);
    EXPECT_EQ(right.takeLog(), "move30,10");
    window.press();
    window.release();
    EXPECT_EQ(right.takeLog(), "");
    window.move(91, 15);
    EXPECT_EQ(right.takeLog(), "move31,10");
}

TEST_F(MouseTest, LeavingReachesTheWidgetUnderThePointer) {
    window.move(20, 15);
    left.takeLog();
    window.leave();
    EXPECT_EQ(left.takeLog(), "exit");
    window.move(20, 15); // back at the very same pixel
    EXPECT_EQ(left.takeLog(), "move10,10");
}

TEST_F(MouseTest, TwoQuickClicksInOnePlaceAreADoubleClick) {
    Recorder recorder;
    left.setMouseCallback(&recorder);
    window.click(20, 15);
    EXPECT_EQ(recorder.take(), "press release");
    clock.advance(499);
    window.click(20, 15);
    EXPECT_EQ(recorder.take(), "press double release");
    clock.advance(1000);
    EXPECT_EQ(recorder.take(), ""); // a double click is no click
    EXPECT_FALSE(clock.timersLeft());
    left.setMouseCallback(nullptr);
}

TEST_F(MouseTest, SlowOrMovedClicksAreSingleOnes) {
    Recorder recorder;
    left.setMouseCallback(&recorder);
    window.click(20, 15);
    clock.advance(500);
    EXPECT_EQ(recorder.take(), "press release click");
    window.click(20, 15);
    window.click(21, 15);
    EXPECT_EQ(recorder.take(), "press release press click release");
    window.move(40, 40);
    clock.advance(500);
    EXPECT_EQ(recorder.take(), "click");
    EXPECT_EQ(recorder.at, rfb::Point(11, 10)); // where it was, not where the pointer has gone
    left.setMouseCallback(nullptr);
}

TEST_F(MouseTest, ControlAndTheRightButtonAskForTheMenu) {
    Recorder recorder;
    left.setMouseCallback(&recorder);
    window.hold(rfb::key::ControlR);
    window.click(20, 15);
    EXPECT_EQ(recorder.take(), "press context");
    window.letGo(rfb::key::ControlR);
    window.click(20, 15, /*button=*/2);
    EXPECT_EQ(recorder.take(), "context");
    EXPECT_FALSE(clock.timersLeft());
    left.setMouseCallback(nullptr);
}

TEST_F(MouseTest, ALayoutHearsOfItsChildrenInItsOwnCoordinates) {
    Recorder recorder;
    root.setMouseCallback(&recorder);
    window.move(70, 15);
    recorder.take();
    window.click(70, 15);
    EXPECT_EQ(recorder.take(), "press release");
    EXPECT_EQ(recorder.at, rfb::Point(70, 15));
    root.setMouseCallback(nullptr);
}

TEST_F(MouseTest, AWidgetMayDieInAnyOfItsMouseEvents) {
    for (const char* when : {"press", "press release", "press release click", "press release press double"}) {
        Recorder recorder;
        recorder.deleteAt = when;
        auto* doomed = new Box(&root);
        root.setChildRect(doomed, {0, 0, 200, 100});
        doomed->setMouseCallback(&recorder);
        const size_t before = root.childCount();
        window.click(150, 90);
        if (recorder.deleteAt == "press release press double")
            window.click(150, 90);
        clock.advance(600);
        window.release();
        EXPECT_EQ(root.childCount(), before - 1) << when;
        EXPECT_EQ(recorder.log, when);
        EXPECT_FALSE(clock.timersLeft());
    }
}

TEST_F(MouseTest, PlacesTranslateBetweenTheBranchesOfATree) {
    WLayout other(&root);
    Box there(&other);
    root.moveChild(&other, {120, 60});
    other.moveChild(&there, {3, 4});
    window.position = {1000, 2000};
    EXPECT_EQ(right.getRootPosition({1, 1}), rfb::Point(1061, 2006));
    EXPECT_EQ(right.translate({1, 1}, there), rfb::Point(61 - 123, 6 - 64));
}

TEST_F(MouseTest, ThePointerTakesTheShapeOfWhatIsUnderIt) {
    using Shape = CursorShape;
    left.setCursor(Shape::Hand);
    const auto shapeAt = [this](int x, int y) {
        window.move(x, y);
        return window.shape;
    };
    EXPECT_EQ(shapeAt(5, 5), Shape::Default);
    EXPECT_EQ(shapeAt(15, 10), Shape::Hand);
    EXPECT_EQ(shapeAt(65, 10), Shape::Default); // the other box
    EXPECT_EQ(shapeAt(15, 10), Shape::Hand);
    window.press();
    EXPECT_EQ(shapeAt(65, 10), Shape::Hand); // still held by the box that was pressed
    window.release();
    EXPECT_EQ(window.shape, Shape::Default);
    window.move(15, 10);
    left.setCursor(Shape::Text); // at once
    EXPECT_EQ(window.shape, Shape::Text);
    left.setVisible(false);
    EXPECT_EQ(window.shape, Shape::Default);
    left.setVisible(true);
    window.move(16, 10);
    window.leave();
    EXPECT_EQ(window.shape, Shape::Default);
}

} // namespace
} // namespace wvw
