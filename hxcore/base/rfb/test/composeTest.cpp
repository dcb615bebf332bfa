#include "rfb/ColourMap.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <gtest/gtest.h>

using rfb::Colour;
using rfb::Rect;

namespace {

Colour apply(rfb::ComposeOp op, Colour d, const Colour& s) {
    op(d, s);
    return d;
}

TEST(ComposeOps, FollowTheirFormulas) {
    const Colour s(100, 50, 0, 128), d(10, 200, 255, 255);
    EXPECT_EQ(apply(rfb::copyOp, d, s), s);
    EXPECT_EQ(apply(rfb::overOp, d, s), Colour(105, 150, 127, 255));
    EXPECT_EQ(apply(rfb::greyOp, d, s), Colour(59, 59, 59, 128));
    EXPECT_EQ(apply(rfb::greyOverOp, d, s), Colour(64, 159, 186, 255));
    EXPECT_EQ(apply(rfb::ghostOp, d, s), Colour(57, 175, 191, 255));
    EXPECT_EQ(apply(rfb::premultiplyOp, d, s), Colour(50, 25, 0, 128));
    EXPECT_EQ(apply(rfb::unpremultiplyOp, d, Colour(50, 25, 0, 128)), Colour(100, 50, 0, 128));
    EXPECT_EQ(apply(rfb::unpremultiplyOp, d, Colour(9, 9, 9, 0)), Colour(0, 0, 0, 0));
    EXPECT_EQ(apply(rfb::greyOp, d, Colour(255, 255, 255)), Colour(255, 255, 255));
}

/// What a format keeps of a colour; the map is for those that are indexed.
Colour kept(const rfb::PixelFormat& pf, const Colour& colour, const rfb::ColourMap& map) {
    return rfb::colourFromPixel(pf, rfb::pixelFromColour(pf, colour, &map), &map);
}

/// Composes one pixel through whatever path the two formats take.
Colour composed(const rfb::PixelFormat& dstPf, const Colour& d, const rfb::PixelFormat& srcPf, const Colour& s,
                rfb::ComposeOp op, const rfb::ColourMap& map) {
    rfb::ManagedPixelBuffer dst(dstPf, 1, 1), src(srcPf, 1, 1);
    dst.setColourMap(&map);
    rfb::fillRect(dst, dst.getRect(), rfb::pixelFromColour(dstPf, d, &map));
    rfb::fillRect(src, src.getRect(), rfb::pixelFromColour(srcPf, s));
    rfb::compose(dst, {}, src, src.getRect(), op);
    uint32_t pixel = 0;
    dst.getImage(&pixel, dst.getRect());
    return rfb::colourFromPixel(dstPf, pixel, &map);
}

// The fast loops must give what the plain definition gives, on screens of 8, 16, 24 and 30 bits.
TEST(Compose, AllPathsAgree) {
    const rfb::ComposeOp ops[] = {rfb::copyOp,     rfb::overOp,        rfb::ghostOp,        rfb::greyOp,
                                  rfb::greyOverOp, rfb::premultiplyOp, rfb::unpremultiplyOp};
    const Colour sources[] = {{0, 0, 0, 0}, {1, 1, 1, 1}, {60, 127, 3, 128}, {255, 254, 253, 255}, {7, 250, 0, 254}};
    const rfb::PixelFormat ten(32, 30, 1023, 1023, 1023, 20, 10, 0);
    const rfb::ColorCubePlusTable map(6);
    for (const rfb::PixelFormat& dstPf : {rfb::pfRGB888(), rfb::pfARGB8888(), rfb::pfABGR8888(), ten, rfb::pfRGB565(),
                                          rfb::pfRGB222(), rfb::pfIndexed8()})
        for (const rfb::PixelFormat& srcPf : {rfb::pfARGB8888(), rfb::pfRGB888(), rfb::pfABGR8888()})
            for (const rfb::ComposeOp op : ops)
                for (Colour s : sources) {
                    if (!srcPf.alphaMax)
                        s.a = 255;
                    const Colour d(200, 100, 31, 255);
                    Colour expected = kept(dstPf, d, map);
                    op(expected, s);
                    for (int* c : {&expected.r, &expected.g, &expected.b, &expected.a})
                        *c = std::min(*c, 255);
                    EXPECT_EQ(composed(dstPf, d, srcPf, s, op, map), kept(dstPf, expected, map)) << dstPf.bpp + 0;
                }
}

TEST(Compose, ClipsInTheDestination) {
    rfb::ManagedPixelBuffer dst(rfb::pfRGB888(), 4, 4), src(rfb::pfARGB8888(), 3, 3);
    rfb::fillRect(src, src.getRect(), 0xff0000ff);
    rfb::fillRect(src, Rect(2, 2, 3, 3), 0xff00ff00);
    rfb::compose(dst, {-2, -2}, src, src.getRect(), rfb::overOp);
    uint32_t pixels[16];
    dst.getImage(pixels, dst.getRect());
    EXPECT_EQ(pixels[0], 0x00ff00U);
    EXPECT_EQ(pixels[1], 0U);
    // More of the source than there is: what is there lands where it would.
    rfb::compose(dst, {1, 1}, src, Rect(-1, -1, 9, 9), rfb::overOp);
    dst.getImage(pixels, dst.getRect());
    EXPECT_EQ(pixels[5], 0U);
    EXPECT_EQ(pixels[10], 0x0000ffU);
    rfb::compose(dst, {40, 40}, src, src.getRect(), rfb::overOp);
}

TEST(AlphaMask, BlendsTheSameOnEveryTarget) {
    const uint8_t mask[] = {0, 1, 64, 200, 255};
    for (const Colour& colour : {Colour(250, 10, 100), Colour(100, 5, 50, 120)}) {
        rfb::ManagedPixelBuffer fast(rfb::pfRGB888(), 5, 1), plain(rfb::pfBGR888(), 5, 1);
        rfb::fillRect(fast, fast.getRect(), rfb::pixelFromColour(fast.getPf(), {30, 60, 90}));
        rfb::fillRect(plain, plain.getRect(), rfb::pixelFromColour(plain.getPf(), {30, 60, 90}));
        rfb::alphaMask(fast, Rect(0, 0, 5, 1), mask, 5, colour);
        rfb::alphaMask(plain, Rect(0, 0, 5, 1), mask, 5, colour);
        uint32_t a[5], b[5];
        fast.getImage(a, fast.getRect());
        plain.getImage(b, plain.getRect());
        for (int i = 0; i < 5; ++i) {
            const Colour got = rfb::colourFromPixel(fast.getPf(), a[i]);
            EXPECT_EQ(got, rfb::colourFromPixel(plain.getPf(), b[i])) << i;
            const int keep = 255 - (colour.a * mask[i] + 127) / 255;
            EXPECT_EQ(got.r, (colour.r * mask[i] + 30 * keep + 127) / 255) << i;
        }
    }
}

TEST(AlphaMask, KeepsItsMaskInPlaceWhenCut) {
    const uint8_t mask[] = {0, 255, 0, 0, 0, 255};
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 2, 1);
    rfb::alphaMask(pb, Rect(-1, -1, 2, 1), mask, 3, {1, 2, 3});
    uint32_t pixels[2];
    pb.getImage(pixels, pb.getRect());
    EXPECT_EQ(pixels[0], 0U);
    EXPECT_EQ(pixels[1], 0x010203U);
}

} // namespace
