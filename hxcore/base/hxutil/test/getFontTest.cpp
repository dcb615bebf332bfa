#include "hxutil/getFont.h"

#include "fakes.h"
#include "hxutil/metrics.h"
#include "plat/Exception.h"
#include "plat/builtInResource.h"
#include "rdr/ZlibInStream.h"
#include "registerBuiltInResources.h"

#include <gtest/gtest.h>

using hxutil::getFont;
using hxutil::loadFont;
using hxutil::test::shown;
using hxutil::test::WithParameter;

namespace {

class GetFont : public testing::Test {
protected:
    GetFont() { registerBuiltInResources(); }
};

TEST_F(GetFont, FollowsTheTable) {
    struct {
        const char* ppmm;
        int size, weight;
        const char* font;
    } const cases[] = {
        {"4", 120, 400, "helv15"},  {"4", 120, 549, "helv15"},  {"4", 120, 550, "helvB15"}, {"4", 121, 400, "helv16"},
        {"4", 140, 700, "helvB16"}, {"4", 239, 400, "helv16"},  {"4", 240, 300, "helv21"},  {"4", 240, 700, "helvB16"},
        {"8", 120, 400, "helv21"},  {"8", 120, 700, "helvB16"}, {"8", 60, 400, "helv15"},   {"32", 1000, 400, "helv21"},
        {"4", -5, 400, "helv15"},
    };
    for (const auto& c : cases) {
        const WithParameter ppmm("ppmm", c.ppmm);
        EXPECT_EQ(getFont(c.size, c.weight), loadFont(c.font)) << c.ppmm << " " << c.size << " " << c.weight;
    }
}

TEST_F(GetFont, GrowsWithTheTextFactor) {
    struct {
        const char *ppmm, *factor;
        int size, weight;
        const char* font;
    } const cases[] = {
        {"8", "200", 120, 400, "helv30"},  {"8", "200", 140, 700, "helvB30"}, {"8", "200", 240, 300, "helv42"},
        {"8", "200", 240, 700, "helvB42"}, {"4", "150", 120, 400, "helv16"},  {"4", "200", 120, 400, "helv21"},
        {"4", "101", 4000, 400, "helv42"}, {"4", "100", 4000, 400, "helv21"}, {"4", "50", 240, 400, "helv15"},
    };
    for (const auto& c : cases) {
        const WithParameter ppmm("ppmm", c.ppmm), factor("TextSizeFactor", c.factor);
        EXPECT_EQ(getFont(c.size, c.weight), loadFont(c.font)) << c.ppmm << " " << c.factor << " " << c.size;
    }
}

TEST_F(GetFont, FontsHaveTheirHeights) {
    struct {
        const char* name;
        int height, ascent, capital;
    } const fonts[] = {{"helv15", 15, 12, 9},   {"helvB15", 15, 12, 9}, {"helv16", 16, 13, 11},
                       {"helvB16", 16, 13, 11}, {"helv21", 21, 17, 14}, {"helv30", 30, 24, 19},
                       {"helvB30", 30, 24, 19}, {"helv42", 42, 33, 25}, {"helvB42", 42, 33, 25}};
    for (const auto& f : fonts) {
        const hxutil::Font* font = loadFont(f.name);
        EXPECT_EQ(font->height, f.height) << f.name;
        EXPECT_EQ(font->ascent, f.ascent) << f.name;
        rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 60, 60);
        font->drawGlyph(pb, 'H', {5, 5}, 1);
        const std::vector<std::string> lines = shown(pb);
        EXPECT_NE(lines[static_cast<size_t>(5 + f.ascent - 1)].find('#'), std::string::npos) << "foot on the baseline";
        EXPECT_EQ(lines[static_cast<size_t>(5 + f.ascent)].find('#'), std::string::npos) << f.name;
        EXPECT_NE(lines[static_cast<size_t>(5 + f.ascent - f.capital)].find('#'), std::string::npos) << f.name;
        EXPECT_EQ(lines[static_cast<size_t>(4 + f.ascent - f.capital)].find('#'), std::string::npos) << f.name;
    }
}

TEST_F(GetFont, HasEveryScriptAtEverySize) {
    // Latin, Greek, Cyrillic, Hebrew, Arabic, Devanagari, Thai, kana, ideograph, Hangul, a sign, the replacement.
    const int codes[] = {0x17e, 0x1ea3, 0x3b1,  0x416,  0x5d0,  0x645,  0x939,
                         0xe01, 0x3042, 0x6f22, 0xd55c, 0x2603, 0xfffd, 0x2026};
    for (const char* name : {"helv15", "helvB15", "helv16", "helvB16", "helv21", "helv30", "helv42"}) {
        const hxutil::Font* font = loadFont(name);
        for (const int code : codes) {
            rfb::ManagedPixelBuffer missing(rfb::pfRGB888(), 80, 80), there(rfb::pfRGB888(), 80, 80);
            font->drawGlyph(missing, 0, {10, 10}, 1);
            font->drawGlyph(there, code, {10, 10}, 1);
            EXPECT_NE(shown(there), shown(missing)) << name << " " << std::hex << code;
            EXPECT_GT(font->charWidth(code), 0) << name << " " << std::hex << code;
        }
        EXPECT_EQ(font->stringWidth("\t\n\r\x01"), font->charWidth(' ')) << "a tab is a blank, other controls nothing";
        EXPECT_EQ(font->charWidth(0x1f600), font->charWidth(0)) << "beyond the plane";
    }
}

// Ideographs fill their cell and must not reach into the lines above and below by more than a pixel.
TEST_F(GetFont, IdeographsStayInTheirLine) {
    for (const char* name : {"helv15", "helv16", "helv21", "helv30", "helv42"}) {
        const hxutil::Font* font = loadFont(name);
        rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 80, font->height + 40);
        font->drawString(pb, "\xe6\xbc\xa2\xe9\xac\xb1", {5, 20}, 1);
        const std::vector<std::string> lines = shown(pb);
        for (size_t y = 0; y < lines.size(); ++y) {
            const bool outside = y < 19 || y > static_cast<size_t>(20 + font->height);
            EXPECT_FALSE(outside && lines[y].find('#') != std::string::npos) << name << " row " << y;
        }
    }
}

TEST_F(GetFont, MissingFontsAreAFailureByName) {
    EXPECT_THROW(loadFont("helvB21"), plat::Exception);
    EXPECT_THROW(loadFont("no such font"), plat::Exception);
}

TEST_F(GetFont, APackedFontCutOrDamagedIsAFailureOrAFont) {
    const plat::BuiltInResource whole = plat::findBuiltInResource("helv15.gz");
    ASSERT_GT(whole.size, 1000U);
    const auto unpacks = [](const std::vector<uint8_t>& bytes) {
        rdr::MemInStream packed(bytes.data(), bytes.size());
        rdr::ZlibInStream unpacked(-1, rdr::ZlibInStream::Format::Gzip);
        unpacked.setUnderlying(&packed);
        try {
            const hxutil::FontZefBm font(unpacked);
            return font.height == 15;
        } catch (const plat::Exception&) {
            return false;
        }
    };
    const std::vector<uint8_t> good(whole.data, whole.data + whole.size);
    EXPECT_TRUE(unpacks(good));
    for (size_t at = 0; at < good.size() - 200; at += at < 64 ? 1 : 211) {
        EXPECT_FALSE(unpacks({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(at)})) << at;
        std::vector<uint8_t> bad = good;
        bad[at] ^= 0x5a;
        unpacks(bad); // whatever comes of it
    }
}

TEST(Scaled, RoundsToNearestBothWays) {
    EXPECT_EQ(hxutil::scaled(16), 8);
    EXPECT_EQ(hxutil::scaled(31), 16);
    EXPECT_EQ(hxutil::scaled(-31), -16);
    const WithParameter ppmm("ppmm", "8");
    EXPECT_EQ(hxutil::scaled(31), 31);
    EXPECT_EQ(hxutil::scaled(-31), -31);
}

} // namespace
