#include "hxutil/FontZefBm.h"

#include "fakes.h"
#include "plat/Exception.h"

#include <gtest/gtest.h>

using hxutil::FontZefBm;
using hxutil::test::Bytes;
using hxutil::test::fontFile;
using hxutil::test::plainFont;
using hxutil::test::shown;

namespace {

FontZefBm fontOf(const Bytes& bytes) {
    rdr::MemInStream in(bytes.data(), bytes.size());
    return FontZefBm(in);
}

std::string failureOf(const Bytes& bytes) {
    try {
        fontOf(bytes);
    } catch (const plat::Exception& e) {
        return e.what();
    }
    return "";
}

TEST(FontZefBm, DrawsGlyphsFromTheTopLeftOfTheLine) {
    // 'L' is 9 wide in two bytes a row and reaches one pixel to the left of the pen.
    const Bytes bytes = fontFile(3, 1, {}, {{'L', 1, 8, -1, 1, 9, 2}}, {0xaa, 0x80, 0x00, 0xff, 0x80});
    const FontZefBm font = fontOf(bytes);
    EXPECT_EQ(font.height, 4);
    EXPECT_EQ(font.ascent, 3);
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 12, 4);
    EXPECT_EQ(font.drawGlyph(pb, 'L', {2, 0}, 1), 8);
    EXPECT_EQ(shown(pb), (std::vector<std::string>{"............", ".#..........", ".#########..", "............"}));
}

TEST(FontZefBm, FallsToGlyphZero) {
    const Bytes bytes = fontFile(3, 1, {0x400, 0x100},
                                 {{0, 0, 6, 0, 0, 1, 1}, {0x101, 0, 4, 0, 0, 1, 1}, {0x402, 0, 5, 0, 0, 1, 1}}, {0x80});
    const FontZefBm font = fontOf(bytes);
    EXPECT_EQ(font.charWidth(0x101), 4);
    EXPECT_EQ(font.charWidth(0x402), 5) << "pages need no order";
    EXPECT_EQ(font.charWidth(0x405), 0) << "the page is there";
    for (const int missing : {0x80, 0xff, 0x180, 0x10402, -1, 0x10ffff})
        EXPECT_EQ(font.charWidth(missing), 6) << missing;
    EXPECT_FALSE(font.hasGlyph(0x80));
    EXPECT_FALSE(font.hasGlyph(0x405));
    EXPECT_TRUE(font.hasGlyph(0x402));
}

TEST(FontZefBm, RefusesBadFiles) {
    const Bytes good = fontFile(3, 1, {0x100}, {{'a', 0, 1, 0, 0, 8, 1}}, {0xff});
    EXPECT_EQ(failureOf(good), "");
    Bytes bad = good;
    bad[3] = 0x73;
    EXPECT_EQ(failureOf(bad), "Bad font data");
    bad = good;
    bad[8] = 0x04; // 1024 + 1 pages
    EXPECT_EQ(failureOf(bad), "Bad font data");
    const Bytes huge = fontFile(3, 1, {}, {{'a', 0x3fffff, 1, 0, 0, 9, 1}}, {});
    EXPECT_EQ(failureOf(huge), "Bad font data");
    const Bytes wild = fontFile(3, 1, {}, {{'a', 0xffffffff, 1, 0, 0, 255, 255}}, {});
    EXPECT_EQ(failureOf(wild), "Bad font data");
    for (size_t length = 0; length < good.size(); ++length)
        EXPECT_NE(failureOf(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))), "") << length;
}

TEST(FontZefBm, MeasuresUtf8) {
    const auto font = plainFont();
    EXPECT_EQ(font->stringWidth("ab i"), 15);
    EXPECT_EQ(font->stringWidth("a\xe2\x80\xa6z"), 14);
    EXPECT_EQ(font->stringWidth(nullptr), 0);
    EXPECT_EQ(font->stringWidth("a\xff\x62"), 17) << "a bad byte is drawn as a missing character";
    const char text[] = "ab\0cd";
    EXPECT_EQ(font->stringWidth(text, text + 5), 10) << "ends at the NUL";
    EXPECT_EQ(font->stringWidth(text, text + 1), 5);
    const char cut[] = "a\xe2\x80\xa6";
    EXPECT_EQ(font->stringWidth(cut, cut + 2), 12);
}

TEST(FontZefBm, FindsPositionsInText) {
    const auto font = plainFont();
    const char* text = "ab\xe2\x80\xa6"
                       "c";
    struct {
        int px, fits, nearest;
    } const cases[] = {{-1, 0, 0}, {0, 0, 0},  {2, 0, 0},  {3, 0, 1},  {5, 1, 1},  {7, 1, 1}, {8, 1, 2},
                       {10, 2, 2}, {12, 2, 2}, {13, 2, 5}, {14, 5, 5}, {18, 5, 6}, {99, 6, 6}};
    for (const auto& c : cases) {
        EXPECT_EQ(font->stringAt(c.px, text) - text, c.fits) << c.px;
        EXPECT_EQ(font->nearestBoundary(c.px, text) - text, c.nearest) << c.px;
    }
    EXPECT_EQ(font->stringAt(10, nullptr), nullptr);
}

TEST(FontZefBm, DrawsDoubled) {
    const Bytes bytes = fontFile(3, 1, {}, {{'x', 0, 3, 0, 0, 3, 2}}, {0xa0, 0x40});
    const FontZefBm font = fontOf(bytes);
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 7, 5);
    EXPECT_EQ(font.drawGlyphScaled(pb, 'x', {0, 0}, 1, 2), 6);
    EXPECT_EQ(shown(pb), (std::vector<std::string>{"##..##.", "##..##.", "..##...", "..##...", "......."}));
}

class FakeFallback : public FontZefBm::Fallback {
public:
    bool charWidth(int codepoint, int* width) const override {
        asked.push_back(codepoint);
        *width = 16;
        return codepoint != 0x3001;
    }
    void drawGlyph(rfb::WritablePixelBuffer&, int codepoint, rfb::Point position, uint32_t) const override {
        drawn.push_back(codepoint);
        at = position;
    }
    mutable std::vector<int> asked, drawn;
    mutable rfb::Point at;
};

TEST(FontZefBm, AsksItsFallbackForWhatItLacks) {
    const auto font = plainFont();
    auto owned = std::make_unique<FakeFallback>();
    const FakeFallback& fallback = *owned;
    font->setFallback(std::move(owned));
    EXPECT_EQ(font->stringWidth("a\n"), 5) << "control characters stay without a sign";
    EXPECT_TRUE(fallback.asked.empty());
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 60, 10);
    EXPECT_EQ(font->drawString(pb,
                               "a\xe4\xb8\x80"
                               "b",
                               {1, 2}, 1),
              26);
    EXPECT_EQ(fallback.drawn, std::vector<int>{0x4e00});
    EXPECT_EQ(fallback.at, rfb::Point(6, 2));
    EXPECT_EQ(font->charWidth(0x3001), 7) << "lacking there too: glyph 0";
}

} // namespace
