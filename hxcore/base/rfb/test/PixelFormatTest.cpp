#include "rfb/PixelFormat.h"

#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "rfb/Colour.h"
#include "rfb/ColourMap.h"

#include <gtest/gtest.h>

using rfb::PixelFormat;

namespace {

PixelFormat readFrom(std::initializer_list<uint8_t> bytes) {
    rdr::MemInStream in(bytes.begin(), bytes.size());
    PixelFormat pf;
    pf.read(in);
    return pf;
}

std::string printed(const PixelFormat& pf) {
    char buffer[PixelFormat::printSize];
    return pf.print(buffer);
}

TEST(PixelFormat, KeepsAlphaOnlyIfTheBitsAddUpToTheDepth) {
    // 32 bpp, maxima 255, shifts 16 8 0; then alpha shift and maximum where other peers send padding.
    const PixelFormat with = readFrom({32, 32, 0, 1, 0, 255, 0, 255, 0, 255, 16, 8, 0, 24, 0, 255});
    EXPECT_TRUE(with.equal(rfb::pfARGB8888()));
    const PixelFormat zeros = readFrom({32, 24, 0, 1, 0, 255, 0, 255, 0, 255, 16, 8, 0, 0, 0, 0});
    EXPECT_TRUE(zeros.equal(rfb::pfRGB888()));
    const PixelFormat junk = readFrom({32, 24, 0, 7, 0, 255, 0, 255, 0, 255, 16, 8, 0, 0xaa, 0xbb, 0xcc});
    EXPECT_TRUE(junk.equal(rfb::pfRGB888()));
    const PixelFormat noSum = readFrom({32, 30, 0, 1, 0, 255, 0, 255, 0, 255, 16, 8, 0, 24, 0, 255});
    EXPECT_EQ(noSum.alphaMax, 0);
}

TEST(PixelFormat, WritesWhatItRead) {
    const uint8_t wire[] = {16, 15, 1, 1, 0, 31, 0, 31, 0, 31, 10, 5, 0, 0, 0, 0};
    rdr::MemInStream in(wire, sizeof wire);
    PixelFormat pf;
    pf.read(in);
    rdr::MemOutStream out;
    pf.write(out);
    ASSERT_EQ(out.size(), sizeof wire);
    EXPECT_EQ(0, memcmp(out.data(), wire, sizeof wire));
}

TEST(PixelFormat, ParsesItsTextForms) {
    struct {
        const char* text;
        const char* print;
    } const good[] = {
        {"rgb888", "depth 24 (32 bpp) little-endian rgb888"},
        {"BGR888", "depth 24 (32 bpp) little-endian bgr888"},
        {"rgb565", "depth 16 (16 bpp) little-endian rgb565"},
        {"bgr233", "depth 8 (8 bpp) bgr233"},
        {"rgb999", "depth 27 (32 bpp) little-endian rgb999"},
        {"Pal8", "depth 8 (8 bpp) colour-map"},
        {"pal1", "depth 1 (8 bpp) colour-map"},
    };
    for (const auto& c : good) {
        PixelFormat pf;
        EXPECT_TRUE(pf.parse(c.text)) << c.text;
        EXPECT_TRUE(pf.isValid()) << c.text;
        EXPECT_EQ(printed(pf), c.print);
    }
    // The first digit belongs to the first name, at the top.
    PixelFormat bgr;
    ASSERT_TRUE(bgr.parse("bgr123"));
    EXPECT_EQ(bgr.blueMax, 1);
    EXPECT_EQ(bgr.blueShift, 5);
    EXPECT_EQ(bgr.redMax, 7);
    EXPECT_EQ(bgr.redShift, 0);
    for (const char* bad :
         {"", "rgb", "rgb88", "rgb8888", "rgb088", "pal0", "pal9", "pal", "pal88", "xyz888", "rgb8a8"}) {
        PixelFormat pf = rfb::pfRGB565();
        EXPECT_FALSE(pf.parse(bad)) << bad;
        EXPECT_TRUE(pf.equal(rfb::pfRGB565())) << "changed by " << bad;
    }
    EXPECT_FALSE(PixelFormat().parse(nullptr));
}

TEST(PixelFormat, PrintsAlphaAndOddLayouts) {
    EXPECT_EQ(printed(rfb::pfARGB8888()), "depth 32 (32 bpp) little-endian argb8888");
    EXPECT_EQ(printed(rfb::pfABGR8888()), "depth 32 (32 bpp) little-endian abgr8888");
    EXPECT_EQ(printed(PixelFormat(32, 32, 255, 255, 255, 24, 16, 8, 255, 0)),
              "depth 32 (32 bpp) little-endian rgba8888");
    PixelFormat gap(32, 24, 255, 255, 255, 24, 16, 8);
    gap.bigEndian = 1;
    EXPECT_EQ(printed(gap), "depth 24 (32 bpp) big-endian rgb max 255,255,255 shift 24,16,8");
    EXPECT_EQ(printed(PixelFormat(32, 28, 255, 255, 255, 20, 10, 0, 15, 28)),
              "depth 28 (32 bpp) little-endian rgb max 255,255,255 shift 20,10,0 alpha max 15 shift 28");
}

TEST(PixelFormat, TellsValidFromInvalid) {
    PixelFormat pf = rfb::pfRGB888();
    EXPECT_TRUE(pf.isValid());
    pf.redShift = 25;
    EXPECT_FALSE(pf.isValid());
    pf = rfb::pfRGB888();
    pf.depth = 33;
    EXPECT_FALSE(pf.isValid());
    pf.depth = 0;
    EXPECT_FALSE(pf.isValid());
    pf = rfb::pfIndexed8();
    pf.bpp = 16;
    EXPECT_TRUE(pf.isValid());
    pf.depth = 9;
    EXPECT_FALSE(pf.isValid());
    pf.bpp = 12;
    EXPECT_FALSE(pf.isValid());
}

TEST(PixelFormat, ComparesEndiannessOnlyWhereItMatters) {
    PixelFormat a = rfb::pfRGB222(), b = a;
    b.bigEndian = 1;
    EXPECT_TRUE(a.equal(b));
    a = b = rfb::pfRGB565();
    b.bigEndian = 1;
    EXPECT_FALSE(a.equal(b));
    a = b = rfb::pfIndexed8();
    b.depth = 4;
    b.redShift = 3;
    EXPECT_TRUE(a.equal(b)) << "nothing further counts with a colour map";
}

TEST(PixelFormat, BecomesLittleEndianOnlyWhereBytesAreChannels) {
    PixelFormat pf(32, 32, 255, 255, 255, 16, 8, 0, 255, 24);
    pf.bigEndian = 1;
    ASSERT_TRUE(pf.toNativeEndian()); // in memory: a r g b
    EXPECT_TRUE(pf.equal(PixelFormat(32, 32, 255, 255, 255, 8, 16, 24, 255, 0)));
    PixelFormat packed = rfb::pfRGB565();
    packed.bigEndian = 1;
    EXPECT_FALSE(packed.toNativeEndian());
    EXPECT_TRUE(packed.bigEndian);
    PixelFormat small;
    small.bigEndian = 1;
    EXPECT_TRUE(small.toNativeEndian());
    EXPECT_FALSE(small.bigEndian);
}

TEST(PixelFormat, CountsItsDepth) {
    PixelFormat pf(32, 1, 31, 63, 31, 11, 5, 0, 1, 31);
    pf.setDepth();
    EXPECT_EQ(pf.depth, 17);
}

TEST(Colour, RoundsOnTheWayInAndOut) {
    EXPECT_EQ(rfb::pixelFromColour(rfb::pfRGB565(), {255, 130, 4}), 31U << 11 | 32U << 5);
    EXPECT_EQ(rfb::colourFromPixel(rfb::pfRGB565(), 31U << 11 | 32U << 5 | 1), rfb::Colour(255, 130, 8));
    EXPECT_EQ(rfb::pixelFromColour(rfb::pfARGB8888(), {1, 2, 3, 4}), 0x04010203U);
    EXPECT_EQ(rfb::colourFromPixel(rfb::pfRGB888(), 0xff010203), rfb::Colour(1, 2, 3, 255));
    EXPECT_EQ(rfb::pixelFromColour(rfb::pfRGB888(), {300, -5, 0}), 0xff0000U) << "no channel spills into another";
}

TEST(Colour, SwapsBigEndianValues) {
    PixelFormat big = rfb::pfRGB565();
    big.bigEndian = 1;
    EXPECT_EQ(rfb::pixelFromColour(big, {255, 0, 0}), 0x00f8U);
    EXPECT_EQ(rfb::colourFromPixel(big, 0x00f8), rfb::Colour(255, 0, 0));
    PixelFormat wide = rfb::pfRGB888();
    wide.bigEndian = 1;
    EXPECT_EQ(rfb::pixelFromColour(wide, {1, 2, 3}), 0x03020100U);
}

TEST(ColourMap, FindsTheNearestEntry) {
    rfb::ColourMapRW map(3);
    map.set(1, {100, 100, 100});
    map.set(2, {200, 0, 0});
    EXPECT_EQ(map.lookupPixel({180, 20, 0}), 2U);
    EXPECT_EQ(map.lookupPixel({120, 90, 100}), 1U);
    EXPECT_EQ(rfb::pixelFromColour(rfb::pfIndexed8(), {180, 20, 0}, &map), 2U);
    EXPECT_EQ(rfb::pixelFromColour(rfb::pfIndexed8(), {180, 20, 0}), 0U) << "no map";
    EXPECT_EQ(rfb::colourFromPixel(rfb::pfIndexed8(), 77, &map), rfb::Colour()) << "outside is black";
}

TEST(ColourMap, CubeGoesBothWays) {
    const rfb::ColorCubeOrth cube(6);
    for (int i = 0; i < cube.size(); ++i) {
        rfb::Colour colour;
        cube.lookup(i, &colour);
        EXPECT_EQ(cube.lookupPixel(colour), static_cast<uint32_t>(i));
    }
    EXPECT_EQ(cube.levelValue(1), 51);
    rfb::ColorCubePlusTable table(2);
    table.setPixel(7, 200); // white lies at 200 in the shared map
    EXPECT_EQ(table.lookupPixel({255, 255, 255}), 200U);
    rfb::Colour colour;
    table.lookup(200, &colour);
    EXPECT_EQ(colour, rfb::Colour(255, 255, 255));
    EXPECT_EQ(rfb::ColorCubeOrth(1).lookupPixel({255, 255, 255}), 0U);
}

} // namespace
