#include "hxutil/PngFile.h"

#include "plat/test/inChild.h"
#include "rfb/PixelBuffer.h"

#include <gtest/gtest.h>

#include <png.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <sys/resource.h>
#include <vector>

using hxutil::PngFile;

namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t headerBytes = 8 + 25; // the signature and the chunk that tells the size

/// What a test image is made of; `samples` are rows of bytes as libpng takes them, `transparency` is a tRNS chunk: the
/// alpha of each colour of the palette, or the one colour of 16 bits a channel that is transparent.
struct Spec {
    uint32_t width, height;
    int bitDepth, colourType, interlace;
    Bytes samples;
    Bytes transparency = {};
    size_t besideBytes = 0; // of zTXt, iTXt and iCCP chunks each, before they are packed
};

/// What an image may carry beside its pixels.
void addBeside(png_structp png, png_infop info, size_t bytes) {
    std::string text(bytes, 'a');
    png_text texts[2] = {};
    char key[] = "Comment", language[] = "en";
    for (png_text& each : texts) {
        each.key = each.lang_key = key;
        each.lang = language;
        each.text = text.data();
        each.text_length = each.itxt_length = text.size();
    }
    texts[0].compression = PNG_TEXT_COMPRESSION_zTXt;
    texts[1].compression = PNG_ITXT_COMPRESSION_zTXt;
    texts[0].itxt_length = texts[1].text_length = 0;
    png_set_text(png, info, texts, 2);
    Bytes profile(bytes); // of RGB in XYZ, of nothing but its head (ICC.1, 7.2)
    for (size_t i = 0; i < 4; ++i)
        profile[i] = static_cast<uint8_t>(bytes >> (24 - 8 * i)); // its own length
    const uint8_t white[] = {0, 0, 0xf6, 0xd6, 0, 1, 0, 0, 0, 0, 0xd3, 0x2d};
    std::memcpy(&profile[12], "mntrRGB XYZ ", 12);
    std::memcpy(&profile[36], "acsp", 4);
    std::memcpy(&profile[68], white, sizeof white);
    png_set_iCCP(png, info, "profile", PNG_COMPRESSION_TYPE_BASE, profile.data(), static_cast<png_uint_32>(bytes));
}

Bytes encode(const Spec& spec) {
    Bytes out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &out,
        [](png_structp p, png_bytep data, size_t length) {
            auto* bytes = static_cast<Bytes*>(png_get_io_ptr(p));
            bytes->insert(bytes->end(), data, data + length);
        },
        nullptr);
    png_set_IHDR(png, info, spec.width, spec.height, spec.bitDepth, spec.colourType, spec.interlace,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (spec.colourType == PNG_COLOR_TYPE_PALETTE) {
        const png_color palette[] = {{255, 0, 0}, {0, 128, 255}};
        png_set_PLTE(png, info, palette, 2);
    }
    if (spec.colourType == PNG_COLOR_TYPE_PALETTE && !spec.transparency.empty())
        png_set_tRNS(png, info, spec.transparency.data(), static_cast<int>(spec.transparency.size()), nullptr);
    if (spec.colourType == PNG_COLOR_TYPE_RGB && !spec.transparency.empty()) {
        png_color_16 colour{};
        colour.red = spec.transparency[1], colour.green = spec.transparency[3], colour.blue = spec.transparency[5];
        png_set_tRNS(png, info, nullptr, 0, &colour);
    }
    if (spec.besideBytes)
        addBeside(png, info, spec.besideBytes);
    png_write_info(png, info);
    const size_t rowBytes = png_get_rowbytes(png, info);
    std::vector<png_bytep> rows;
    Bytes samples = spec.samples;
    samples.resize(rowBytes * spec.height);
    for (uint32_t y = 0; y < spec.height; ++y)
        rows.push_back(samples.data() + y * rowBytes);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

std::vector<uint32_t> decode(const Bytes& bytes, bool premultiply = false) {
    PngFile png(bytes.data(), bytes.size(), premultiply, "test");
    rfb::ManagedPixelBuffer pb(png.getPf(), png.getSize().x, png.getSize().y);
    png.render(&pb, {});
    std::vector<uint32_t> pixels(static_cast<size_t>(pb.getRect().area()));
    pb.getImage(pixels.data(), pb.getRect());
    return pixels;
}

std::string failureOf(const Bytes& bytes) {
    try {
        PngFile png(bytes.data(), bytes.size(), /*premultiply=*/false, "test");
        rfb::ManagedPixelBuffer pb(png.getPf(), png.getSize().x, png.getSize().y);
        png.render(&pb, {});
    } catch (const hxutil::PngException& e) {
        return e.what();
    }
    return "";
}

const Spec rgba{2, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE, {200, 100, 50, 128, 1, 2, 3, 255}};

TEST(PngFile, GivesFormatsByAlpha) {
    const Bytes plain = encode({2, 1, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, {1, 2, 3, 255, 254, 253}});
    EXPECT_EQ(decode(plain), (std::vector<uint32_t>{0x010203, 0xfffefd}));
    EXPECT_TRUE(PngFile(plain.data(), plain.size(), true).getPf().equal(rfb::pfRGB888()));
    const Bytes alpha = encode(rgba);
    EXPECT_EQ(decode(alpha), (std::vector<uint32_t>{0x80c86432, 0xff010203}));
    EXPECT_EQ(decode(alpha, /*premultiply=*/true), (std::vector<uint32_t>{0x80643219, 0xff010203}));
    EXPECT_TRUE(PngFile(alpha.data(), alpha.size(), true).getPf().equal(rfb::pfARGB8888()));
}

TEST(PngFile, ExpandsWhateverIsNoGrey) {
    constexpr int none = PNG_INTERLACE_NONE;
    const struct {
        const char* what;
        Spec spec;
        std::vector<uint32_t> pixels;
    } cases[] = {
        {"palette, 1 bit", {3, 1, 1, PNG_COLOR_TYPE_PALETTE, none, {0b01000000}}, {0xff0000, 0x0080ff, 0xff0000}},
        {"palette, 4 bits, the last index beyond it",
         {3, 1, 4, PNG_COLOR_TYPE_PALETTE, none, {0x10, 0xf0}},
         {0x0080ff, 0xff0000, 0}},
        {"palette, 8 bits, one colour with alpha",
         {2, 1, 8, PNG_COLOR_TYPE_PALETTE, none, {0, 1}, {0x40}},
         {0x40ff0000, 0xff0080ff}},
        {"one colour transparent",
         {2, 1, 8, PNG_COLOR_TYPE_RGB, none, {1, 2, 3, 1, 2, 4}, {0, 1, 0, 2, 0, 3}},
         {0x00010203, 0xff010204}},
        {"16 bits", {1, 1, 16, PNG_COLOR_TYPE_RGB, none, {0x12, 0xff, 0x34, 0, 0x56, 0}}, {0x123456}},
        {"16 bits with alpha",
         {1, 1, 16, PNG_COLOR_TYPE_RGB_ALPHA, none, {0x12, 0, 0x34, 0, 0x56, 0, 0x78, 0xff}},
         {0x78123456}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(decode(encode(c.spec)), c.pixels) << c.what;
}

TEST(PngFile, ReadsInterlacedImages) {
    Spec spec{9, 11, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE, {}};
    for (int i = 0; i < 9 * 11 * 4; ++i)
        spec.samples.push_back(static_cast<uint8_t>(i * 7));
    const std::vector<uint32_t> plain = decode(encode(spec));
    spec.interlace = PNG_INTERLACE_ADAM7;
    EXPECT_EQ(decode(encode(spec)), plain);
}

TEST(PngFile, RendersAtAPlace) {
    const Bytes bytes = encode(rgba);
    PngFile png(bytes.data(), bytes.size(), true);
    rfb::ManagedPixelBuffer pb(rfb::pfARGB8888(), 4, 2);
    png.render(&pb, {1, 1});
    uint32_t pixels[8];
    pb.getImage(pixels, pb.getRect());
    EXPECT_EQ(pixels[4], 0U);
    EXPECT_EQ(pixels[5], 0x80643219U);
    EXPECT_EQ(pixels[7], 0U);
}

TEST(PngFile, RefusesGreyByNumberAndName) {
    EXPECT_EQ(failureOf(encode({1, 1, 8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, {9}})),
              "PNG color type 0 not supported: test");
    EXPECT_EQ(failureOf(encode({1, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_INTERLACE_NONE, {9, 9}})),
              "PNG color type 4 not supported: test");
}

TEST(PngFile, CutOrCorruptItIsAnErrorOrAnImage) {
    for (const Spec& spec : {rgba, Spec{9, 11, 8, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_ADAM7, {}, {7, 9}},
                             Spec{5, 3, 16, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_ADAM7, {}, {0, 1, 0, 2, 0, 3}}}) {
        const Bytes whole = encode(spec);
        EXPECT_EQ(failureOf(whole), "");
        for (size_t at = 0; at < whole.size(); ++at) {
            EXPECT_EQ(failureOf(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at))),
                      "test: Bad PNG data")
                << at;
            Bytes bad = whole;
            bad[at] ^= 0x41;
            failureOf(bad); // must not crash, nor hang
        }
        Bytes notPng = whole;
        notPng[1] = 'X';
        EXPECT_EQ(failureOf(notPng).substr(0, 6), "test: ");
    }
}

TEST(PngFile, SizesAreLimitedAndBombsEnd) {
    // Half a megapixel a byte: all of the largest image there is.
    const Bytes largest = encode({4096, 4096, 1, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, {}});
    EXPECT_LT(largest.size(), 4096U);
    EXPECT_EQ(failureOf(largest), "");
    EXPECT_NE(failureOf(encode({4097, 1, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, {}})), "");
    EXPECT_NE(failureOf(encode({1, 4097, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, {}})), "");
    // More rows than the data has: those that are there don't make it an image.
    Bytes tall = encode({4096, 1, 1, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, {}});
    std::copy_n(largest.begin(), headerBytes, tall.begin());
    EXPECT_EQ(failureOf(tall).substr(0, 6), "test: ");
}

// Small chunks that unpack to much, beside the pixels: nobody looks into them.
TEST(PngFile, WhatLiesBesideThePixelsIsNotUnpacked) {
    constexpr size_t besideBytes = 48 << 20;
    Spec spec = rgba;
    spec.besideBytes = besideBytes;
    const Bytes bomb = encode(spec);
    EXPECT_LT(bomb.size(), besideBytes / 100);
    for (const char* chunk : {"zTXt", "iTXt", "iCCP"})
        EXPECT_NE(std::search(bomb.begin(), bomb.end(), chunk, chunk + 4), bomb.end()) << chunk;
    EXPECT_EQ(decode(bomb), decode(encode(rgba)));
#ifndef __SANITIZE_ADDRESS__
    plat::inChild([&] { // whose peak is its own
        const auto peakKiB = [] {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return usage.ru_maxrss;
        };
        const long before = peakKiB();
        decode(bomb);
        EXPECT_LT(peakKiB() - before, 8 << 10);
    });
#endif
}

TEST(PngFileDeathTest, WantsABufferOfItsFormat) {
    const Bytes bytes = encode(rgba);
    PngFile png(bytes.data(), bytes.size(), false);
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 2, 1);
    EXPECT_DEATH(png.render(&pb, {}), "pb->getPf\\(\\).equal\\(pf\\)");
}

} // namespace
