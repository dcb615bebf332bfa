#include "mui/MuLayout.h"

#include "mui/MuSpacer.h"
#include "mui/Mui.h"
#include "mui/test/FakeElements.h"

#include <gtest/gtest.h>

namespace mui {
namespace {

class LayoutTest : public testing::Test {
protected:
    LayoutTest() : row(Orientation::Horizontal), column(Orientation::Vertical) {
        row.setSpacing(0);
        column.setSpacing(0);
    }

    FakeElement* add(FakeLayout& layout, unsigned flags, int size = 1, const rfb::Point& minSize = {0, 0}) {
        auto* element = new FakeElement("e", minSize);
        layout.add(element);
        layout.setChildLayout(element, flags, size);
        return element;
    }

    FakeToolkit toolkit;
    FakeLayout row;
    FakeLayout column;
};

TEST_F(LayoutTest, ThreeEqualWeightsLeaveTheRemainderAtTheEnd) {
    FakeElement* e[3];
    for (FakeElement*& element : e)
        element = add(row, MuLayout::Stretch);
    row.setSize({100, 20});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(e[i]->fake.position, rfb::Point(33 * i, 0));
        EXPECT_EQ(e[i]->fake.size, rfb::Point(33, 20));
    }
}

TEST_F(LayoutTest, HiddenChildrenTakeNoRoomAndNoSpacing) {
    row.setSpacing(10);
    FakeElement* fixed = add(row, MuLayout::Fixed, 30);
    FakeElement* hidden = add(row, MuLayout::Stretch);
    FakeElement* natural = add(row, MuLayout::Natural, 1, {25, 5});
    FakeElement* stretch = add(row, MuLayout::Stretch);
    hidden->setShown(false);
    row.setSize({200, 40});
    EXPECT_EQ(natural->fake.position.x, 40);
    EXPECT_EQ(natural->fake.size, rfb::Point(25, 40));
    EXPECT_EQ(stretch->fake.position.x, 75);
    EXPECT_EQ(stretch->fake.size.x, 200 - 30 - 25 - 2 * 10);
    EXPECT_EQ(hidden->fake.size, rfb::Point(0, 0));
    EXPECT_EQ(fixed->fake.size.x, 30);
    row.setSize({50, 40}); // too little: what is fixed stays, nothing is left to share
    EXPECT_EQ(stretch->fake.size.x, 0);
}

TEST_F(LayoutTest, AlignmentAcrossTheAxis) {
    const struct {
        unsigned flags;
        int offset;
        int extent;
    } cases[] = {
        {MuLayout::Fill, 0, 100}, {MuLayout::Start, 0, 31}, {MuLayout::End, 69, 31}, {MuLayout::Centre, 34, 31}};
    for (const auto& c : cases) {
        FakeElement* element = add(column, MuLayout::Natural | c.flags, 1, {31, 10});
        column.setSize({100, 500});
        EXPECT_EQ(element->fake.position.x, c.offset) << c.flags;
        EXPECT_EQ(element->fake.size.x, c.extent) << c.flags;
    }
    FakeElement* wide = add(column, MuLayout::Natural | MuLayout::End, 1, {150, 10});
    column.setSize({100, 500});
    EXPECT_EQ(wide->fake.position.x, 0);
    EXPECT_EQ(wide->fake.size.x, 100);
}

TEST_F(LayoutTest, MinimumAlongTheAxis) {
    row.setSpacing(8);
    EXPECT_EQ(row.getMinWidth(0), -8); // empty
    add(row, MuLayout::Fixed, 40, {999, 0});
    add(row, MuLayout::Natural, 1, {21, 0});
    add(row, MuLayout::Stretch, 2, {51, 0}); // unit 25, truncated
    add(row, MuLayout::Stretch, 1, {20, 0});
    EXPECT_EQ(row.getMinWidth(0), 3 * 25 + 40 + 21 + 3 * 8);
}

TEST_F(LayoutTest, MinimumAcrossAsksEachChildAtTheExtentThatItWillGet) {
    column.setSpacing(5);
    std::string asked;
    const auto note = [&](const char* who, int result) {
        return [&asked, who, result](int along) {
            asked += std::string(who) + std::to_string(along) + " ";
            return result;
        };
    };
    add(column, MuLayout::Fixed, 30)->fake.minWidth = note("fixed@", 70);
    FakeElement* natural = add(column, MuLayout::Natural);
    natural->fake.minHeight = note("natural?", 12);
    natural->fake.minWidth = note("natural@", 80);
    add(column, MuLayout::Stretch, 1)->fake.minWidth = note("one@", 20);
    add(column, MuLayout::Stretch, 2)->fake.minWidth = note("two@", 90);
    EXPECT_EQ(column.getMinWidth(100), 90);
    // remaining = 100 - 3 * 5 - (30 + 12) = 43
    EXPECT_EQ(asked, "fixed@30 natural?0 natural@12 one@14 two@28 ");
}

TEST_F(LayoutTest, TheAxesMirror) {
    add(row, MuLayout::Natural, 1, {10, 33});
    add(column, MuLayout::Natural, 1, {33, 10});
    EXPECT_EQ(row.getMinHeight(50), column.getMinWidth(50));
    EXPECT_EQ(row.getMinWidth(50), column.getMinHeight(50));
}

TEST_F(LayoutTest, ChildrenMoveAndCountFromBothEnds) {
    FakeElement* a = add(row, MuLayout::Natural);
    FakeElement* b = add(row, MuLayout::Natural);
    FakeElement* c = add(row, MuLayout::Natural);
    const auto order = [&] {
        std::string text;
        for (int i = 0; i < row.getChildCount(); ++i)
            text += row.getChild(i) == a ? 'a' : row.getChild(i) == b ? 'b' : 'c';
        return text;
    };
    row.moveChild(c, MuLayout::Where::First);
    EXPECT_EQ(order(), "cab");
    row.moveChild(c, MuLayout::Where::Last);
    EXPECT_EQ(order(), "abc");
    row.moveChild(c, MuLayout::Where::Before, b);
    EXPECT_EQ(order(), "acb");
    row.moveChild(a, MuLayout::Where::After, b);
    EXPECT_EQ(order(), "cba");
    EXPECT_EQ(row.getChild(-1), a);
    EXPECT_EQ(row.getChild(-4), nullptr);
    EXPECT_EQ(row.getChild(3), nullptr);
}

TEST_F(LayoutTest, AStrangerIsNamedTogetherWithTheLayout) {
    FakeElement stranger("stranger");
    EXPECT_DEATH(row.setChildLayout(&stranger, 0), "i != children.end.*Element 'stranger' is not a child of ''");
    EXPECT_DEATH(row.add(nullptr), "element");
}

TEST_F(LayoutTest, AGapIsAButtonBarsLessTheSpacing) {
    column.setSpacing(6);
    column.addGap(/*expand=*/true);
    column.add(new FakeElement("after"));
    column.setSize({10, 100});
    const int gap = toolkit.metric(MetricBarGap) - 6;
    EXPECT_EQ(column.getChild(0)->getSize().y, gap);
    EXPECT_EQ(column.getChild(1)->getSize().y, 100 - gap - 6); // stretches by default
}

TEST_F(LayoutTest, ChildrenAreOwnedAndDeletedFromTheLast) {
    int deaths = 0;
    add(row, MuLayout::Natural)->deaths = &deaths;
    FakeElement* second = add(row, MuLayout::Natural);
    second->deaths = &deaths;
    row.remove(second);
    EXPECT_EQ(deaths, 1);
    row.clear();
    EXPECT_EQ(deaths, 2);
}

TEST_F(LayoutTest, ASpacerTakesItsRoomOnlyWhileActive) {
    MuSpacer* spacer = MuSpacer::create(&row, "gap", {7, 9});
    EXPECT_EQ(row.getMinWidth(0), 7);
    spacer->setActive(false);
    EXPECT_EQ(row.getMinWidth(0), 0);
    spacer->setPosition({1, 2});
    spacer->setSize({3, 4});
    EXPECT_STREQ(spacer->getState().c_str(), "1,2 3x4\n");
}

} // namespace
} // namespace mui
