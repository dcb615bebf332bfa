#include "rfb/PixelBuffer.h"

#include "plat/Exception.h"
#include "rfb/Colour.h"
#include "rfb/ColourMap.h"
#include "rfb/TransPixelBuffer.h"

#include <gtest/gtest.h>

#include <cstring>

using rfb::Rect;

namespace {

uint32_t at(const rfb::PixelBuffer& pb, int x, int y) {
    uint32_t pixel = 0;
    pb.getImage(&pixel, Rect::xywh(x, y, 1, 1));
    return pixel;
}

void put(rfb::WritablePixelBuffer& pb, int x, int y, uint32_t pixel) {
    int stride;
    std::memcpy(pb.getPixelsRW(Rect::xywh(x, y, 1, 1), &stride), &pixel,
                static_cast<size_t>(pb.getPf().bytesPerPixel()));
}

/// The words of what an access outside throws.
template <class Fn>
std::string failure(Fn&& fn) {
    try {
        fn();
    } catch (const plat::Exception& e) {
        return e.what();
    }
    return "nothing thrown";
}

TEST(PixelBuffer, RefusesWhatLiesOutside) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 10, 5);
    int stride;
    EXPECT_EQ(failure([&] { pb.getPixelsR(Rect(-1, 0, 3, 5), &stride); }),
              "getPixelsR out of bounds: -1,0 to 3,5 outside 0,0 to 10,5");
    EXPECT_EQ(failure([&] { pb.getPixelsRW(Rect(0, 0, 10, 6), &stride); }),
              "getPixelsRW out of bounds: 0,0 to 10,6 outside 0,0 to 10,5");
    const rfb::SubPixelBuffer sub(pb, Rect(2, 2, 4, 4), {100, 100});
    EXPECT_EQ(failure([&] { sub.getPixelsR(Rect(0, 0, 1, 1), &stride); }),
              "getPixelsR out of bounds: 0,0 to 1,1 outside 100,100 to 102,102");
}

TEST(PixelBuffer, ViewSharesPixelsUnderItsOwnCoordinates) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 10, 10);
    rfb::FullFramePixelBuffer child(pb, Rect(3, 4, 8, 9), {0, 0});
    EXPECT_EQ(child.getRect(), Rect(0, 0, 5, 5));
    put(child, 1, 2, 0x123456);
    EXPECT_EQ(at(pb, 4, 6), 0x123456U);

    rfb::FullFramePixelBuffer grandchild(child, Rect(-2, 3, 3, 20), {0, 0}); // hangs over left and bottom
    EXPECT_EQ(grandchild.getRect(), Rect(2, 0, 5, 2)) << "only what is there, still in its own coordinates";
    put(grandchild, 2, 1, 0x654321);
    EXPECT_EQ(at(pb, 3, 8), 0x654321U);

    rfb::FullFramePixelBuffer nothing(pb, Rect(50, 50, 60, 60), {0, 0});
    EXPECT_TRUE(nothing.getRect().isEmpty());

    const rfb::SubPixelBuffer readOnly(pb, Rect(3, 4, 8, 9), {-7, -7});
    EXPECT_EQ(at(readOnly, -6, -5), 0x123456U);
}

TEST(ManagedPixelBuffer, KeepsItsBlockWhenItShrinks) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 4, 4);
    int stride;
    const uint8_t* block = pb.getPixelsR(pb.getRect(), &stride);
    pb.setSize(2, 8);
    EXPECT_EQ(pb.getPixelsR(pb.getRect(), &stride), block);
    EXPECT_EQ(stride, 2);
    pb.setPF(rfb::pfRGB565());
    EXPECT_EQ(pb.sizeBytes(), 32U);
    pb.setSize(100, 100);
    EXPECT_EQ(at(pb, 99, 99), 0U);
    pb.setSize(-3, 5);
    EXPECT_TRUE(pb.getRect().isEmpty());
}

TEST(ManagedPixelBuffer, RefusesASizeThatNoMemoryHolds) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 4, 4);
    EXPECT_THROW(pb.setSize(2000000000, 2000000000), plat::Exception);
    EXPECT_EQ(pb.getRect(), Rect(0, 0, 4, 4));
}

TEST(PixelBuffer, CopiesRowsOutWithAStride) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB565(), 3, 2);
    for (int i = 0; i < 6; ++i)
        put(pb, i % 3, i / 3, static_cast<uint32_t>(i + 1));
    uint16_t out[2 * 5] = {};
    pb.getImage(out, Rect(1, 0, 3, 2), 5);
    EXPECT_EQ(out[0], 2);
    EXPECT_EQ(out[1], 3);
    EXPECT_EQ(out[2], 0);
    EXPECT_EQ(out[5], 5);
    EXPECT_EQ(out[6], 6);
}

TEST(TransPixelBuffer, GivesTheColoursOfTheSourceInEveryFormat) {
    const rfb::PixelFormat wide(24, 24, 255, 255, 255, 16, 8, 0);
    rfb::PixelFormat big = rfb::pfRGB888();
    big.bigEndian = 1;
    rfb::PixelFormat big16 = rfb::pfRGB565();
    big16.bigEndian = 1;
    rfb::PixelFormat ten(32, 30, 1023, 1023, 1023, 20, 10, 0);
    const rfb::PixelFormat formats[] = {
        rfb::pfRGB888(), rfb::pfBGR888(),  rfb::pfRGB565(), rfb::pfRGB555(), rfb::pfARGB8888(), wide, big, big16, ten,
        rfb::pfRGB222(), rfb::pfABGR8888()};
    const rfb::Colour colours[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}, {0, 0, 0}, {85, 170, 255}};
    for (const auto& from : formats)
        for (const auto& to : formats)
            for (const bool channelTables : {false, true}) {
                rfb::ManagedPixelBuffer source(from, 6, 2);
                for (int i = 0; i < 6; ++i)
                    put(source, i, 1, rfb::pixelFromColour(from, colours[i]));
                rfb::TransPixelBuffer trans(channelTables);
                trans.setPF(to);
                trans.setSource(&source);
                for (int i = 0; i < 6; ++i) {
                    char a[rfb::PixelFormat::printSize], b[rfb::PixelFormat::printSize];
                    const rfb::Colour there = rfb::colourFromPixel(
                        from, rfb::pixelFromColour(from, colours[i])); // what the source format keeps of it
                    EXPECT_EQ(at(trans, i, 1), rfb::pixelFromColour(to, there))
                        << from.print(a) << " to " << to.print(b) << " colour " << i;
                }
            }
}

TEST(TransPixelBuffer, PassesThroughWhatIsEqual) {
    rfb::ManagedPixelBuffer source(rfb::pfRGB888(), 4, 4);
    rfb::TransPixelBuffer trans;
    trans.setPF(rfb::pfRGB888());
    trans.setSource(&source);
    int a, b;
    EXPECT_EQ(trans.getPixelsR(Rect(1, 1, 2, 2), &a), source.getPixelsR(Rect(1, 1, 2, 2), &b));
    EXPECT_THROW(trans.getPixelsR(Rect(0, 0, 5, 1), &a), plat::Exception);
    trans.setSource(nullptr);
    EXPECT_THROW(trans.getPixelsR(Rect(0, 0, 1, 1), &a), plat::Exception);
}

TEST(TransPixelBuffer, GoesToAndFromColourMaps) {
    rfb::ColorCubePlusTable cube(6);
    cube.setPixel(215, 255); // white
    rfb::ManagedPixelBuffer source(rfb::pfRGB888(), 3, 1);
    put(source, 0, 0, 0xffffff);
    put(source, 1, 0, 0x330000);
    put(source, 2, 0, 0x000a00);
    rfb::TransPixelBuffer out;
    out.setPF(rfb::pfIndexed8());
    out.setColourMap(&cube);
    out.setSource(&source);
    EXPECT_EQ(at(out, 0, 0), 255U);
    EXPECT_EQ(at(out, 1, 0), 36U);
    EXPECT_EQ(at(out, 2, 0), 0U);

    rfb::ColourMapRW map(2);
    map.set(1, {10, 20, 30});
    rfb::ManagedPixelBuffer indexed(rfb::pfIndexed8(), 2, 1);
    indexed.setColourMap(&map);
    put(indexed, 0, 0, 1);
    rfb::TransPixelBuffer in;
    in.setPF(rfb::pfRGB888());
    in.setSource(&indexed);
    EXPECT_EQ(at(in, 0, 0), 0x0a141eU);

    rfb::PixelFormat roomy = rfb::pfIndexed8();
    roomy.bpp = 32; // valid, and no reason for a table of 2^32 entries
    rfb::ManagedPixelBuffer wide(roomy, 1, 1);
    wide.setColourMap(&map);
    put(wide, 0, 0, 1);
    in.setSource(&wide);
    EXPECT_EQ(at(in, 0, 0), 0x0a141eU);
    in.setSource(&indexed);

    rfb::ColourMapRW other(4);
    other.set(3, {10, 20, 30});
    in.setPF(rfb::pfIndexed8());
    in.setColourMap(&other);
    EXPECT_EQ(at(in, 0, 0), 3U) << "same format, other map";
    in.setColourMap(&map);
    EXPECT_EQ(at(in, 0, 0), 1U);
}

TEST(TransPixelBuffer, SmallMapsTakeFewLevels) {
    rfb::ManagedPixelBuffer source(rfb::pfRGB888(), 1, 1);
    put(source, 0, 0, 0xffffff);
    for (const int size : {1, 2, 7, 8, 26}) {
        rfb::ColourMapRW map(size);
        map.set(size - 1, {255, 255, 255});
        rfb::TransPixelBuffer out;
        out.setPF(rfb::pfIndexed8());
        out.setColourMap(&map);
        out.setSource(&source);
        EXPECT_EQ(at(out, 0, 0), size < 8 ? map.lookupPixel({0, 0, 0}) : static_cast<uint32_t>(size - 1)) << size;
    }
}

} // namespace
