#include "rfb/Region.h"

#include <gtest/gtest.h>

using rfb::Point;
using rfb::Rect;
using rfb::Region;

namespace {

std::vector<Rect> rectsOf(const Region& region, bool leftToRight = true, bool topToBottom = true, int maxArea = 0) {
    std::vector<Rect> rects;
    region.get_rects(&rects, leftToRight, topToBottom, maxArea);
    return rects;
}

TEST(Region, ClampsToSixteenBits) {
    EXPECT_EQ(Region(Rect(-100000, -5, 40000, 5)).get_bounding_rect(), Rect(-32768, -5, 32767, 5));
    EXPECT_TRUE(Region(Rect(40000, 0, 50000, 10)).is_empty());
    Region moved(Rect(32000, 0, 32100, 10));
    moved.translate({700, 0});
    EXPECT_EQ(moved.get_bounding_rect(), Rect(32700, 0, 32767, 10)) << "cut off at the edge, not wrapped around";
    moved.translate({100000, 0});
    EXPECT_TRUE(moved.is_empty());
}

TEST(Region, DoesSetArithmetic) {
    const Region a(Rect(0, 0, 10, 10)), b(Rect(5, 5, 15, 15));
    EXPECT_EQ(a.intersect(b), Region(Rect(5, 5, 10, 10)));
    EXPECT_EQ(a.union_(b).get_bounding_rect(), Rect(0, 0, 15, 15));
    EXPECT_EQ(a.union_(b).subtract(b), a.subtract(b));
    int area = 0;
    for (const Rect& r : rectsOf(a.union_(b)))
        area += r.area();
    EXPECT_EQ(area, 175);
    EXPECT_TRUE(a.subtract(a).is_empty());
    EXPECT_TRUE(a.intersect(Region()).is_empty());
    EXPECT_EQ(Region().union_(a), a);
    EXPECT_FALSE(a == b);
    EXPECT_EQ(Region(), Region(Rect(3, 3, 3, 9)));
}

TEST(Region, IsAValue) {
    Region a(Rect(0, 0, 10, 10));
    Region copy = a;
    copy.translate({5, 0});
    EXPECT_EQ(a.get_bounding_rect(), Rect(0, 0, 10, 10));
    Region taken = std::move(copy);
    EXPECT_EQ(taken.get_bounding_rect(), Rect(5, 0, 15, 10));
    copy.assign_union(a); // moved from: empty and usable
    EXPECT_EQ(copy, a);
    Region& self = a;
    a = self;
    EXPECT_FALSE(a.is_empty());
    a.assign_subtract(self);
    EXPECT_TRUE(a.is_empty());
}

TEST(Region, GivesItsRectanglesInTheOrderAskedFor) {
    Region region;
    for (const Rect& r : {Rect(0, 0, 2, 2), Rect(4, 0, 6, 2), Rect(0, 4, 2, 6), Rect(4, 4, 6, 6)})
        region.assign_union(Region(r));
    const Rect tl(0, 0, 2, 2), tr(4, 0, 6, 2), bl(0, 4, 2, 6), br(4, 4, 6, 6);
    EXPECT_EQ(rectsOf(region), (std::vector<Rect>{tl, tr, bl, br}));
    EXPECT_EQ(rectsOf(region, false, true), (std::vector<Rect>{tr, tl, br, bl}));
    EXPECT_EQ(rectsOf(region, true, false), (std::vector<Rect>{bl, br, tl, tr}));
    EXPECT_EQ(rectsOf(region, false, false), (std::vector<Rect>{br, bl, tr, tl}));
}

TEST(Region, CutsPiecesToAnArea) {
    const Region region(Rect(0, 0, 10, 7));
    EXPECT_EQ(rectsOf(region, true, true, 30),
              (std::vector<Rect>{Rect(0, 0, 10, 3), Rect(0, 3, 10, 6), Rect(0, 6, 10, 7)}));
    EXPECT_EQ(rectsOf(region, true, true, 5).size(), 7U) << "a row is the least";
}

TEST(Region, UnitesManyRectangles) {
    std::vector<Rect> rects;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            if ((x + y) % 2 == 0)
                rects.push_back(Rect::xywh(x, y, 1, 1));
    Region many(Rect(500, 500, 600, 600));
    many.setFromRects(rects.data(), rects.data() + rects.size());
    Region oneByOne;
    for (const Rect& r : rects)
        oneByOne.assign_union(Region(r));
    EXPECT_EQ(many, oneByOne);
    many.setFromRects(nullptr, nullptr);
    EXPECT_TRUE(many.is_empty());
}

TEST(Region, RoundsOutwardToAGrid) {
    Region region(Rect(-3, 5, 9, 17));
    region.roundToGrid(8, 16, {1, 0});
    EXPECT_EQ(region, Region(Rect(-7, 0, 9, 32)));
    region.roundToGrid(8, 16, {1, 0});
    EXPECT_EQ(region, Region(Rect(-7, 0, 9, 32))) << "what fits stays";
}

TEST(RegionDeathTest, RoundsToNoGridOfZero) {
    Region region(Rect(0, 0, 1, 1));
    EXPECT_DEATH(region.roundToGrid(0, 4, {}), "multipleOf > 0");
}

TEST(Rect, EmptyOnesCountForNothing) {
    const Rect r(0, 0, 4, 4);
    EXPECT_EQ(r.unionBoundary(Rect(9, 9, 9, 20)), r);
    EXPECT_EQ(r.intersect(Rect(4, 0, 8, 4)), Rect());
    EXPECT_FALSE(r.overlaps(Rect(4, 0, 8, 4)));
    EXPECT_FALSE(r.contains({4, 0}));
    EXPECT_EQ(Rect(3, 3, 1, 1).area(), 0);
}

} // namespace
