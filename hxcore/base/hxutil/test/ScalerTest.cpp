#include "hxutil/Scaler.h"

#include "hxutil/BorderImage.h"
#include "hxutil/ScaledPixelBuffer.h"
#include "plat/Exception.h"
#include "rfb/Colour.h"
#include "rfb/ColourMap.h"
#include "rfb/Region.h"
#include "rfb/renderOps.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using hxutil::Scaler;
using rfb::Rect;

namespace {

/// A buffer with pixels given row by row.
class Source : public rfb::ManagedPixelBuffer {
public:
    Source(const rfb::PixelFormat& pf, int width, int height, const std::vector<uint32_t>& pixels)
        : rfb::ManagedPixelBuffer(pf, width, height) {
        for (int i = 0; i < width * height; ++i)
            rfb::setPixel(*this, {i % width, i / width}, pixels[static_cast<size_t>(i) % pixels.size()]);
    }
};

std::vector<uint32_t> pixelsOf(const rfb::ImageGetter& image, const Rect& r) {
    std::vector<uint32_t> result;
    for (int y = r.tl.y; y < r.br.y; ++y)
        for (int x = r.tl.x; x < r.br.x; ++x) {
            result.push_back(0);
            image.getImage(&result.back(), Rect::xywh(x, y, 1, 1));
        }
    return result;
}

std::vector<uint32_t> scaledTo(const rfb::PixelBuffer& source, int width, int height) {
    Scaler scaler;
    scaler.setSource(&source);
    scaler.setDstSize({width, height});
    return pixelsOf(scaler, Rect(0, 0, width, height));
}

TEST(Scaler, AveragesBlocksExactly) {
    const Source source(rfb::pfRGB888(), 4, 2,
                        {0x000000, 0x0a0c0c, 0x102030, 0x102030, 0x140e04, 0x020202, 0x102030, 0x102034});
    EXPECT_EQ(scaledTo(source, 2, 1), (std::vector<uint32_t>{0x080705, 0x102031}));
}

TEST(Scaler, GrowsByReplication) {
    const Source source(rfb::pfRGB888(), 2, 1, {0x010203, 0xfffefd});
    EXPECT_EQ(scaledTo(source, 4, 2),
              (std::vector<uint32_t>{0x010203, 0x010203, 0xfffefd, 0xfffefd, 0x010203, 0x010203, 0xfffefd, 0xfffefd}));
}

TEST(Scaler, KeepsUniformImagesInEveryFormatAndRatio) {
    rfb::PixelFormat big = rfb::pfRGB565();
    big.bigEndian = 1;
    const rfb::PixelFormat wide(24, 24, 255, 255, 255, 16, 8, 0);
    struct {
        rfb::PixelFormat pf;
        uint32_t pixel;
    } const kinds[] = {{rfb::pfRGB222(), 0x3f},
                       {rfb::pfRGB222(), 0x19},
                       {rfb::pfRGB565(), 0xffff},
                       {rfb::pfRGB565(), 0xa53c},
                       {rfb::pfRGB888(), 0xffffff},
                       {rfb::pfRGB888(), 0x123456},
                       {rfb::pfARGB8888(), 0xff654321},
                       {rfb::pfARGB8888(), 0x80402010},
                       {big, 0x1234},
                       {wide, 0x765432},
                       {rfb::pfRGB555(), 0x5a5a}};
    for (const auto& kind : kinds)
        for (const rfb::Point from : {rfb::Point(1, 1), rfb::Point(7, 3), rfb::Point(64, 64)})
            for (const rfb::Point to : {rfb::Point(1, 1), rfb::Point(5, 11), rfb::Point(31, 31)}) {
                const Source source(kind.pf, from.x, from.y, {kind.pixel});
                for (const uint32_t pixel : scaledTo(source, to.x, to.y))
                    ASSERT_EQ(pixel, kind.pixel) << from.x << "x" << from.y << " to " << to.x << "x" << to.y;
            }
}

// Red and blue in each other's places take the loop that works channel by channel.
TEST(Scaler, AllChannelsAtOnceGiveWhatEachGivesAlone) {
    rfb::ManagedPixelBuffer source(rfb::pfRGB888(), 61, 47), swapped(rfb::pfBGR888(), 61, 47);
    uint32_t seed = 1;
    for (int i = 0; i < 61 * 47; ++i) {
        seed = seed * 1664525 + 1013904223;
        const uint32_t p = seed % 5 == 0 ? 0xffffffff : seed >> 8; // what no channel uses is not always 0
        rfb::setPixel(source, {i % 61, i / 61}, p);
        rfb::setPixel(swapped, {i % 61, i / 61}, (p & 0x00ff00) | (p >> 16 & 255) | (p & 255) << 16);
    }
    for (const rfb::Point size : {rfb::Point(61, 46), {20, 13}, {13, 47}, {1, 1}, {122, 94}, {199, 3}, {60, 100}}) {
        std::vector<uint32_t> alone = scaledTo(swapped, size.x, size.y);
        for (uint32_t& p : alone)
            p = (p & 0x00ff00) | (p >> 16 & 255) | (p & 255) << 16;
        EXPECT_EQ(scaledTo(source, size.x, size.y), alone) << size.x << " x " << size.y;
    }
}

TEST(Scaler, APartIsCutFromTheWhole) {
    std::vector<uint32_t> noise;
    for (uint32_t i = 0, v = 1; i < 13 * 9; ++i)
        noise.push_back((v = v * 1103515245 + 12345) & 0xffffff);
    const Source source(rfb::pfRGB888(), 13, 9, noise);
    for (const rfb::Point size : {rfb::Point(5, 4), rfb::Point(29, 17), rfb::Point(13, 4)}) {
        Scaler scaler;
        scaler.setSource(&source);
        scaler.setDstSize(size);
        std::vector<uint32_t> whole(static_cast<size_t>(size.x * size.y));
        scaler.getImage(whole.data(), Rect::at({}, size));
        EXPECT_EQ(pixelsOf(scaler, Rect::at({}, size)), whole);
        uint32_t part[3 * 10] = {};
        scaler.getImage(part, Rect(1, 1, 4, 4), 10);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 3; ++x)
                EXPECT_EQ(part[y * 10 + x], whole[static_cast<size_t>((y + 1) * size.x + x + 1)]);
    }
}

TEST(Scaler, FollowsTheAreaOfEachPixel) {
    // 3 to 2: each target pixel takes one whole pixel and half of the middle one.
    const Source source(rfb::pfRGB888(), 3, 1, {0x000000, 0x000060, 0x0000c0});
    EXPECT_EQ(scaledTo(source, 2, 1), (std::vector<uint32_t>{0x000020, 0x0000a0}));
}

TEST(Scaler, CopiesWhatHasItsSize) {
    const Source source(rfb::pfIndexed8(), 2, 2, {1, 2, 3, 4});
    EXPECT_EQ(scaledTo(source, 2, 2), (std::vector<uint32_t>{1, 2, 3, 4}));
    const rfb::SubPixelBuffer view(source, Rect(1, 0, 2, 2), {50, 60});
    EXPECT_EQ(scaledTo(view, 1, 2), (std::vector<uint32_t>{2, 4})) << "whatever coordinates the source has";
}

TEST(Scaler, GoesBetweenFormats) {
    const Source source(rfb::pfRGB888(), 2, 1, {0xff0000, 0x0000ff});
    Scaler scaler;
    scaler.setSource(&source);
    scaler.setPf(rfb::pfRGB565());
    scaler.setDstSize({1, 1});
    EXPECT_EQ(pixelsOf(scaler, Rect(0, 0, 1, 1)), std::vector<uint32_t>{0x8010});
    scaler.setDstSize({2, 1});
    EXPECT_EQ(pixelsOf(scaler, Rect(0, 0, 2, 1)), (std::vector<uint32_t>{0xf800, 0x001f}));

    rfb::ColourMapRW map(2);
    map.set(1, {200, 100, 50});
    Source indexed(rfb::pfIndexed8(), 2, 1, {0, 1});
    indexed.setColourMap(&map);
    scaler.setSource(&indexed, /*configure=*/false);
    scaler.setPf(rfb::pfRGB888());
    scaler.setDstSize({1, 1});
    EXPECT_EQ(pixelsOf(scaler, Rect(0, 0, 1, 1)), std::vector<uint32_t>{0x643219});
}

std::string failureOf(const Scaler& scaler) {
    uint32_t pixel;
    try {
        scaler.getImage(&pixel, Rect(0, 0, 1, 1));
    } catch (const plat::Exception& e) {
        return e.what();
    }
    return "";
}

TEST(Scaler, SaysWhatItCannotDo) {
    Scaler scaler;
    scaler.setDstSize({1, 1});
    EXPECT_EQ(failureOf(scaler), "Scaler error: no source");
    const Source source(rfb::pfARGB8888(), 2, 2, {0});
    scaler.setSource(&source);
    scaler.setPf(rfb::pfRGB888());
    EXPECT_EQ(failureOf(scaler), "Scaler error: depth 32 (32 bpp) little-endian argb8888 to "
                                 "depth 24 (32 bpp) little-endian rgb888");
    uint32_t pixel;
    scaler.getImage(&pixel, Rect(0, 0, 0, 1)); // nothing to do is no failure
    EXPECT_FALSE(Scaler::canScale(rfb::pfRGB888(), rfb::pfARGB8888()));
    EXPECT_FALSE(Scaler::canScale(rfb::pfARGB8888(), rfb::pfRGB565()));
    EXPECT_TRUE(Scaler::canScale(rfb::pfARGB8888(), rfb::pfABGR8888()));
    EXPECT_TRUE(Scaler::canScale(rfb::pfIndexed8(), rfb::pfRGB888()));
}

TEST(ScalerDeathTest, SizesAreNotZero) {
    const Source source(rfb::pfRGB888(), 2, 2, {0});
    Scaler scaler;
    scaler.setSource(&source);
    uint32_t pixel;
    EXPECT_DEATH(scaler.getImage(&pixel, Rect(0, 0, 1, 1)), "coords_.dstSz.x > 0");
}

TEST(ScaledPixelBuffer, RedrawsWhatChanged) {
    Source source(rfb::pfRGB888(), 4, 4, {0x101010});
    hxutil::ScaledPixelBuffer scaled;
    scaled.setSource(&source);
    scaled.setSize({6, 6});
    EXPECT_EQ(pixelsOf(scaled, Rect(5, 5, 6, 6)), std::vector<uint32_t>{0x101010});
    rfb::fillRect(source, source.getRect(), 0x303030);
    scaled.update(rfb::Region(Rect(1, 1, 2, 2)));
    EXPECT_EQ(scaled.targetRect(Rect(1, 1, 2, 2)), Rect(1, 1, 3, 3));
    EXPECT_EQ(pixelsOf(scaled, Rect(2, 2, 3, 3)), std::vector<uint32_t>{0x303030});
    EXPECT_EQ(pixelsOf(scaled, Rect(5, 5, 6, 6)), std::vector<uint32_t>{0x101010}) << "not told of";
    scaled.update(rfb::Region(Rect(0, 0, 50, 50)));
    EXPECT_EQ(pixelsOf(scaled, Rect(5, 5, 6, 6)), std::vector<uint32_t>{0x303030});
    EXPECT_TRUE(scaled.targetRect(Rect(4, 0, 9, 9)).isEmpty());
}

TEST(ScaledPixelBuffer, ReachesTheSourceWhereNothingChanges) {
    Source source(rfb::pfRGB888(), 4, 4, {0x101010});
    hxutil::ScaledPixelBuffer scaled;
    scaled.setSource(&source);
    scaled.setSize({4, 4});
    int a, b;
    EXPECT_EQ(scaled.getPixelsR(Rect(1, 2, 3, 3), &a), source.getPixelsR(Rect(1, 2, 3, 3), &b));
    scaled.setPF(rfb::pfRGB565());
    EXPECT_EQ(pixelsOf(scaled, Rect(0, 0, 1, 1)), std::vector<uint32_t>{0x1082});
}

TEST(BorderImage, KeepsCornersAndStretchesTheRest) {
    const Source source(rfb::pfRGB888(), 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    rfb::ManagedPixelBuffer target(rfb::pfRGB888(), 5, 4);
    hxutil::drawBorderImage({1, 1, 1, 1}, source, target, target.getRect(), rfb::copyOp);
    EXPECT_EQ(pixelsOf(target, target.getRect()),
              (std::vector<uint32_t>{1, 2, 2, 2, 3, 4, 5, 5, 5, 6, 4, 5, 5, 5, 6, 7, 8, 8, 8, 9}));
    hxutil::drawBorderImage({1, 1, 1, 1}, source, target, Rect(-100000, 2, 100000, 6), rfb::copyOp);
    EXPECT_EQ(pixelsOf(target, Rect(2, 2, 3, 4)), (std::vector<uint32_t>{2, 5})) << "far beyond the buffer";
}

TEST(BorderImage, NonsenseDrawsNothingAndNothingDrawsOutside) {
    const Source source(rfb::pfRGB888(), 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    rfb::ManagedPixelBuffer target(rfb::pfRGB888(), 5, 4);
    const std::vector<uint32_t> untouched(5 * 4, 0);
    const int huge = std::numeric_limits<int>::max();
    for (const hxutil::BorderInsets& insets : {hxutil::BorderInsets{2, 1, 1, 1},
                                               {1, 1, 1, 2},
                                               {-1, 0, 0, 0},
                                               {0, 0, 0, -1},
                                               {huge, 0, 1, 0},
                                               {huge, huge, huge, huge},
                                               {0, -huge, 0, huge}}) {
        hxutil::drawBorderImage(insets, source, target, target.getRect(), rfb::copyOp);
        EXPECT_EQ(pixelsOf(target, target.getRect()), untouched) << insets.left << " " << insets.bottom;
    }
    const rfb::ManagedPixelBuffer empty(rfb::pfRGB888(), 0, 0);
    hxutil::drawBorderImage({}, empty, target, target.getRect(), rfb::copyOp);
    hxutil::drawBorderImage({1, 1, 1, 1}, source, target, Rect(3, 3, 1, 1), rfb::copyOp);
    EXPECT_EQ(pixelsOf(target, target.getRect()), untouched);
    hxutil::drawBorderImage({1, 1, 1, 1}, source, target, Rect(2, 1, 3, 2), rfb::copyOp); // smaller than a corner each
    std::vector<uint32_t> one = untouched;
    one[7] = 9; // the last of the four
    EXPECT_EQ(pixelsOf(target, target.getRect()), one);
}

} // namespace
