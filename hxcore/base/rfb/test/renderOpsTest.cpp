#include "rfb/renderOps.h"

#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using rfb::Point;
using rfb::Rect;

namespace {

/// A buffer whose pixels are letters, drawn and compared as lines of text. '.' is 0.
class Picture {
public:
    explicit Picture(const std::vector<std::string>& lines, const rfb::PixelFormat& pf = rfb::pfRGB888())
        : pb(pf, static_cast<int>(lines[0].size()), static_cast<int>(lines.size())) {
        for (size_t y = 0; y < lines.size(); ++y)
            for (size_t x = 0; x < lines[y].size(); ++x)
                rfb::setPixel(pb, {static_cast<int>(x), static_cast<int>(y)},
                              lines[y][x] == '.' ? 0 : static_cast<uint32_t>(lines[y][x]));
    }
    Picture(int width, int height, const rfb::PixelFormat& pf = rfb::pfRGB888()) : pb(pf, width, height) {}

    std::vector<std::string> lines() const {
        std::vector<std::string> result;
        for (int y = 0; y < pb.height(); ++y) {
            result.emplace_back();
            for (int x = 0; x < pb.width(); ++x) {
                uint32_t pixel = 0;
                pb.getImage(&pixel, Rect::xywh(x, y, 1, 1));
                result.back() += pixel ? static_cast<char>(pixel & 0x7f) : '.';
            }
        }
        return result;
    }

    rfb::ManagedPixelBuffer pb;
};

using Lines = std::vector<std::string>;

const rfb::PixelFormat& pf24() {
    static const rfb::PixelFormat pf(24, 24, 255, 255, 255, 16, 8, 0);
    return pf;
}

TEST(FillRect, ClipsAndFillsEveryPixelSize) {
    for (const rfb::PixelFormat& pf : {rfb::pfRGB222(), rfb::pfRGB565(), pf24(), rfb::pfRGB888()}) {
        Picture p(4, 3, pf);
        rfb::fillRect(p.pb, Rect(2, -5, 50, 2), '#');
        EXPECT_EQ(p.lines(), (Lines{"..##", "..##", "...."})) << pf.bpp + 0;
        rfb::fillRect(p.pb, Rect(10, 10, 20, 20), 'x');
        rfb::fillRect(p.pb, Rect(3, 2, 1, 1), 'x');
        EXPECT_EQ(p.lines(), (Lines{"..##", "..##", "...."})) << pf.bpp + 0;
    }
}

TEST(FrameRect, DrawsBarsInside) {
    Picture p(6, 5);
    rfb::frameRect(p.pb, Rect(0, 0, 6, 5), '#', 1);
    EXPECT_EQ(p.lines(), (Lines{"######", "#....#", "#....#", "#....#", "######"}));
    Picture thick(5, 4);
    rfb::frameRect(thick.pb, Rect(1, 0, 4, 4), '#', 9);
    EXPECT_EQ(thick.lines(), (Lines{".###.", ".###.", ".###.", ".###."})) << "never wider than the rectangle";
}

TEST(DrawLine, LeavesOutItsEnd) {
    Picture p(7, 4);
    rfb::drawLine(p.pb, {0, 0}, {6, 3}, '#');
    EXPECT_EQ(p.lines(), (Lines{"##.....", "..##...", "....##.", "......."}));
    Picture back(7, 4);
    rfb::drawLine(back.pb, {6, 3}, {0, 0}, '#');
    EXPECT_EQ(back.lines(), (Lines{".......", ".##....", "...##..", ".....##"}));
    Picture straight(5, 5);
    rfb::drawLine(straight.pb, {4, 0}, {1, 0}, 'h');
    rfb::drawLine(straight.pb, {0, 4}, {0, 1}, 'v');
    rfb::drawLine(straight.pb, {1, 4}, {4, 1}, 'd');
    rfb::drawLine(straight.pb, {2, 2}, {2, 2}, 'x');
    EXPECT_EQ(straight.lines(), (Lines{"..hhh", ".....", "v..d.", "v.d..", "vd..."}));
    Picture clipped(3, 3);
    rfb::drawLine(clipped.pb, {-3, -3}, {9, 9}, '#');
    EXPECT_EQ(clipped.lines(), (Lines{"#..", ".#.", "..#"}));
}

TEST(DrawRoundFrame, RoundsItsCorners) {
    Picture one(5, 4);
    rfb::drawRoundFrame(one.pb, Rect(0, 0, 5, 4), 1, '#');
    EXPECT_EQ(one.lines(), (Lines{".###.", "#...#", "#...#", ".###."}));
    Picture none(4, 3);
    rfb::drawRoundFrame(none.pb, Rect(0, 0, 4, 3), 0, '#');
    EXPECT_EQ(none.lines(), (Lines{"####", "#..#", "####"}));
    Picture three(9, 8);
    rfb::drawRoundFrame(three.pb, Rect(0, 0, 9, 8), 3, '#');
    EXPECT_EQ(three.lines(), (Lines{"..#####..", ".#.....#.", "#.......#", "#.......#", "#.......#", "#.......#",
                                    ".#.....#.", "..#####.."}));
    Picture tiny(1, 1);
    rfb::drawRoundFrame(tiny.pb, Rect(0, 0, 1, 1), 40, '#');
    EXPECT_EQ(tiny.lines(), (Lines{"#"}));
}

TEST(GradientFill, EndsOnBothColours) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 1, 5);
    rfb::gradientFill(pb, Rect(0, 0, 1, 5), {0, 100, 10}, {100, 0, 10});
    uint32_t rows[5];
    pb.getImage(rows, pb.getRect());
    EXPECT_EQ(rows[0], 0x00640aU);
    EXPECT_EQ(rows[1], 0x194b0aU);
    EXPECT_EQ(rows[4], 0x64000aU);
    rfb::gradientFill(pb, Rect(0, -4, 1, 1), {0, 0, 0}, {200, 200, 200}); // seen from its fifth row
    pb.getImage(rows, pb.getRect());
    EXPECT_EQ(rows[0], 0xc8c8c8U);
    rfb::gradientFill(pb, Rect(0, 2, 1, 3), {1, 2, 3}, {9, 9, 9});
    pb.getImage(rows, pb.getRect());
    EXPECT_EQ(rows[2], 0x010203U) << "a single row has the upper colour";
}

TEST(ScrollRect, BearsOverlapInEveryDirection) {
    const Lines start{"abcd", "efgh", "ijkl", "mnop"};
    struct {
        Point delta;
        Lines result;
    } const cases[] = {
        {{1, 0}, {"aabc", "eefg", "iijk", "mmno"}}, {{-1, 0}, {"bcdd", "fghh", "jkll", "nopp"}},
        {{0, 1}, {"abcd", "abcd", "efgh", "ijkl"}}, {{0, -1}, {"efgh", "ijkl", "mnop", "mnop"}},
        {{1, 1}, {"abcd", "eabc", "iefg", "mijk"}}, {{-1, -2}, {"jkld", "noph", "ijkl", "mnop"}},
        {{9, 9}, {"abcd", "efgh", "ijkl", "mnop"}},
    };
    for (const auto& c : cases) {
        Picture p(start);
        rfb::scrollRect(p.pb, Rect(-5, -5, 50, 50), c.delta);
        EXPECT_EQ(p.lines(), c.result) << c.delta.x << "," << c.delta.y;
    }
}

TEST(CopyRegion, MovesPiecesThatOverlapEachOther) {
    rfb::Region region(Rect(0, 0, 2, 1));
    region.assign_union(rfb::Region(Rect(0, 1, 4, 3)));
    Picture down({"ab..", "cdef", "ghij", "....", "...."});
    rfb::copyRegion(down.pb, region, {0, 1});
    EXPECT_EQ(down.lines(), (Lines{"ab..", "abef", "cdef", "ghij", "...."}));
    Picture up({"....", "ab..", "cdef", "ghij"});
    region.translate({0, 1});
    rfb::copyRegion(up.pb, region, {1, -1});
    EXPECT_EQ(up.lines(), (Lines{".ab.", "acde", "cghi", "ghij"}));
}

TEST(TransformRect, FlipsBothWays) {
    const Lines start{"abc", "def"};
    struct {
        rfb::Orientation orientation;
        Lines result;
    } const cases[] = {
        {rfb::Orientation::None, {"abc", "def"}},
        {rfb::Orientation::Rotate, {"fed", "cba"}},
        {rfb::Orientation::FlipVertical, {"def", "abc"}},
        {rfb::Orientation::Both, {"cba", "fed"}},
    };
    for (const rfb::PixelFormat& pf : {rfb::pfRGB222(), rfb::pfRGB565(), pf24(), rfb::pfRGB888()})
        for (const auto& c : cases) {
            Picture from(start, pf), to(3, 2, pf);
            int a, b;
            rfb::transformRect(from.pb.getPixelsR(from.pb.getRect(), &a), to.pb.getPixelsRW(to.pb.getRect(), &b),
                               {3, 2}, pf.bpp, 3, 3, c.orientation);
            EXPECT_EQ(to.lines(), c.result);
        }
}

TEST(MonoBlit, SetsWhatTheMaskSetsWithinTheClip) {
    const uint8_t bits[] = {0b10100000, 0b11000000, 0b01011111, 0b01000000};
    Picture p(12, 3);
    rfb::monoBlit(p.pb, Rect(1, 0, 11, 2), '#', bits, 2);
    EXPECT_EQ(p.lines(), (Lines{".#.#.....##.", "..#.#####.#.", "............"}));
    Picture cut(4, 2);
    rfb::monoBlit(cut.pb, Rect(-2, -1, 8, 1), '#', bits, 2);
    EXPECT_EQ(cut.lines(), (Lines{".###", "...."})) << "column 2 of row 1 comes first";
    Picture shifted(4, 1, rfb::pfRGB565());
    rfb::monoBlit(shifted.pb, Rect(0, 0, 4, 1), '#', bits, 2, /*firstBit=*/7);
    EXPECT_EQ(shifted.lines(), (Lines{".##."}));
}

// Wherever a glyph is cut, pixels of 32 bits, which go by eights, are those of 16 bits, which go one by one.
TEST(MonoBlit, PathsAgreeWhereverTheMaskIsCut) {
    const uint8_t bits[] = {0b10110011, 0b11111111, 0b01001101, 0b11111111}; // 11 columns; what lies behind is noise
    for (int x = -12; x <= 20; ++x)
        for (int y = -2; y <= 3; ++y) {
            rfb::ManagedPixelBuffer wide(rfb::pfRGB888(), 20, 3), narrow(rfb::pfRGB565(), 20, 3);
            rfb::monoBlit(wide, Rect::xywh(x, y, 11, 2), 1, bits, 2);
            rfb::monoBlit(narrow, Rect::xywh(x, y, 11, 2), 1, bits, 2);
            uint32_t wides[60];
            uint16_t narrows[60];
            wide.getImage(wides, wide.getRect());
            narrow.getImage(narrows, narrow.getRect());
            EXPECT_TRUE(std::equal(wides, wides + 60, narrows)) << x << "," << y;
        }
}

TEST(MaskedCopy, CopiesWhatTheMaskSets) {
    Picture p({"....", "....", "...."});
    Picture source({"abcd", "efgh"});
    const uint8_t mask[] = {0b10110000, 0b01010000};
    int stride;
    const uint8_t* pixels = source.pb.getPixelsR(source.pb.getRect(), &stride);
    rfb::maskedCopy(p.pb, Rect(-1, 1, 3, 3), pixels, mask, stride, 1);
    EXPECT_EQ(p.lines(), (Lines{"....", ".cd.", "f.h."}));
}

TEST(CopyRect, HonoursBothStrides) {
    const uint8_t from[] = "ab--cd--";
    uint8_t to[] = "......";
    rfb::copyRect(to, from, {2, 2}, 1, 4, 3);
    EXPECT_STREQ(reinterpret_cast<char*>(to), "ab.cd.");
    rfb::copyRect(to, from, {0, 2}, 1, 4, 3);
}

} // namespace
