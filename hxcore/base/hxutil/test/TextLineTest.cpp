#include "hxutil/TextLine.h"

#include "hxutil/Font.h"
#include "hxutil/dynFribidi.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "plat/test/CapturedLog.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>

using hxutil::TextLine;

namespace {

/// Every character 10 wide, marks none; notes what is drawn.
class NotingFont : public hxutil::Font {
public:
    struct Drawn {
        int x;
        int code;
    };
    mutable std::vector<Drawn> drawn;

    int drawGlyph(rfb::WritablePixelBuffer&, int code, rfb::Point at, uint32_t) const override {
        drawn.push_back({at.x, code});
        return charWidth(code);
    }
    int drawString(rfb::WritablePixelBuffer& pb, const char* text, rfb::Point at, uint32_t pixel,
                   const char* end) const override {
        const int start = at.x;
        int code;
        while (hxutil::nextChar(&text, end, &code))
            at.x += drawGlyph(pb, code, at, pixel);
        return at.x - start;
    }
    int charWidth(int code) const override { return hxutil::isMark(code) || hxutil::isHidden(code) ? 0 : 10; }
    int stringWidth(const char* text, const char* end) const override {
        int code, width = 0;
        while (hxutil::nextChar(&text, end, &code))
            width += charWidth(code);
        return width;
    }
    const char* stringAt(int px, const char* text, const char* end) const override {
        return nearestBoundary(px - 5, text, end);
    }
    const char* nearestBoundary(int px, const char* text, const char* end) const override {
        int code;
        for (const char* next = text; hxutil::nextChar(&next, end, &code) && px > 5; px -= 10)
            text = next;
        return text;
    }
    int markMiddle(int) const override { return -4; }

    /// What stands on the screen, from left to right; marks in brackets behind their base.
    std::string seen(const TextLine& line) const {
        rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 1, 1);
        drawn.clear();
        line.draw(pb, {0, 0}, 0);
        std::stable_sort(drawn.begin(), drawn.end(),
                         [](const Drawn& a, const Drawn& b) { return a.x / 10 < b.x / 10; });
        std::string result;
        for (const Drawn& one : drawn) {
            char bytes[5] = {};
            char* end = bytes;
            plat::encodeUtf8(static_cast<uint32_t>(one.code), &end);
            result += hxutil::isMark(one.code) ? "(" + std::string(bytes) + ")" : bytes;
        }
        return result;
    }
    std::string seen(const std::string& text) const { return seen(TextLine(*this, text.c_str())); }
};

class TextLineTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(hxutil::dynFribidi::shape.isAvailable()) << "install libfribidi0"; }

    NotingFont font;
};

/// Run with a library path on which the real one is hidden.
class TextLineAloneTest : public testing::Test {
protected:
    void SetUp() override {
        if (hxutil::dynFribidi::get_par_embedding_levels_ex.isAvailable())
            GTEST_SKIP() << "libfribidi is there";
    }

    NotingFont font;
};

TEST_F(TextLineAloneTest, EachCharacterStandsInTheOrderOfTheText) {
    const plat::CapturedLog log;
    struct {
        const char *text, *seen;
    } const cases[] = {
        {"car means \u05d0\u05d1\u05d2.", "car means \u05d0\u05d1\u05d2."},
        {"\u0633\u0644\u0627\u0645 (x)", "\u0633\u0644\u0627\u0645 (x)"}, // neither joined nor mirrored
        {"\u05d0\u05b8\u05d1", "\u05d0(\u05b8)\u05d1"},
        {"a \u2068\u05d0\u05d1\u2069 1.", "a \u05d0\u05d1 1."},
        {"a\u202e\u05d0", "a\u202e\u05d0"}, // shows itself
    };
    for (const auto& c : cases) {
        const TextLine line(font, c.text);
        EXPECT_EQ(font.seen(line), c.seen);
        EXPECT_FALSE(line.isRightToLeft());
        int x = -1;
        for (size_t pos = 0; pos < std::strlen(c.text); pos = line.nextPlace(pos)) {
            EXPECT_GT(line.caretX(pos), x) << c.text;
            EXPECT_EQ(line.placeBeside(line.nextPlace(pos), /*right=*/false), pos) << c.text;
            x = line.caretX(pos);
        }
        EXPECT_EQ(line.fitting(line.width()), std::strlen(c.text));
    }
    EXPECT_EQ(log.count("no fribidi"), 1); // however much text there is
}

TEST_F(TextLineTest, StandsInVisualOrder) {
    struct {
        const char *text, *seen;
        bool rightToLeft;
    } const cases[] = {
        // UAX #9, "Reordering Resolved Levels", with Hebrew for its capitals.
        {"car means \u05d0\u05d1\u05d2.", "car means \u05d2\u05d1\u05d0.", false},
        {"\u05d0\u05d1\u05d2 \u05d3\u05d4 car.", ".car \u05d4\u05d3 \u05d2\u05d1\u05d0", true},
        {"\u05d0\u05d1 12 \u05d2\u05d3", "\u05d3\u05d2 12 \u05d1\u05d0", true},
        {"he said \u201c\u05d0\u05d1 123, \u05d2\u05d3 45\u201d.",
         "he said \u201c45 \u05d3\u05d2 ,123 \u05d1\u05d0\u201d.", false},
        {"\u05d0(\u05d1)a", "a(\u05d1)\u05d0", true}, // brackets are mirrored
        {"123 \u05d0", "\u05d0 123", true},
        {"plain", "plain", false},
        {"", "", false},
        // A value in isolation leaves the sentence around it alone; without, the full stop and the number join it.
        {"a \u2068\u05d0\u05d1\u2069 1.", "a \u05d1\u05d0 1.", false},
        {"a \u05d0\u05d1 1.", "a 1 \u05d1\u05d0.", false},
        // Other controls show themselves and turn nothing.
        {"a\u202ebc\u200fd \u05d0", "a\u202ebc\u200fd \u05d0", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(font.seen(c.text), c.seen) << c.text;
        EXPECT_EQ(TextLine(font, c.text).isRightToLeft(), c.rightToLeft) << c.text;
    }
}

TEST_F(TextLineTest, JoinsArabic) {
    struct {
        const char *text, *seen;
    } const cases[] = {
        {"\u0645\u062d\u0645\u062f", "\ufeaa\ufee4\ufea4\ufee3"}, // mim, ha, mim in the middle, dal at the end
        {"\u0627\u0644\u0633\u0644\u0627\u0645", "\ufee1\ufefc\ufeb4\ufedf\ufe8d"}, // with lam and alef as one sign
        {"\u06af\u0644", "\ufede\ufb94"},                                           // a Persian letter
        {"\u0645\u064e\u062d", "\ufea2\ufee3(\u064e)"},                             // joined through a mark
        {"\u0645\u200c\u062d", "\ufea1\ufee1"},                                     // kept apart
        {"\u0627\u0653\u0628", "\ufe8f\ufe81"},                                     // composed before it is joined
    };
    for (const auto& c : cases)
        EXPECT_EQ(font.seen(c.text), c.seen) << c.text;
}

TEST_F(TextLineTest, MarksStandOverTheirBase) {
    struct {
        const char *text, *seen;
        int width;
    } const cases[] = {
        {"Vie\u0323\u0302t", "Vi\u1ec7t", 40}, // composed where there is a character for it
        {"q\u0303x", "q(\u0303)x", 20},
        {"\u0e01\u0e34\u0e48\u0e02", "\u0e01(\u0e34)(\u0e48)\u0e02", 20},
        {"\u05e9\u05b8\u05dc", "\u05dc\u05e9(\u05b8)", 20},
        {"\u1112\u1161\u11ab", "\ud55c", 10},           // Hangul in pieces
        {"\u0301x", "\u25cc(\u0301)x", 20},             // without a base it brings one
        {"a\u2068\u0301\u2069", "a\u25cc(\u0301)", 20}, // also at the start of a value
        {"\U0001f468\u200d\U0001f469\u200d\U0001f467!", "\U0001f468!", 20},
        {"\U0001f44d\U0001f3fd\U0001f1e9\U0001f1ea\U0001f1e9\U0001f1ea", "\U0001f44d\U0001f1e9\U0001f1e9", 30},
        {"\u2764\ufe0f", "\u2764", 10},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(font.seen(c.text), c.seen) << c.text;
        EXPECT_EQ(TextLine(font, c.text).width(), c.width) << c.text;
    }
}

// "ab", three Hebrew letters, "c": on the screen a b 2 1 0 c.
TEST_F(TextLineTest, CaretHasOnePlaceForEachEdge) {
    const char* text = "ab\u05d0\u05d1\u05d2c";
    const TextLine line(font, text);
    const struct {
        size_t pos;
        int x;
    } places[] = {{0, 0}, {1, 10}, {2, 20}, {4, 40}, {6, 30}, {8, 50}, {9, 60}};
    for (const auto& place : places) {
        EXPECT_EQ(line.caretX(place.pos), place.x) << place.pos;
        EXPECT_EQ(line.nearest(place.x), place.pos);
        EXPECT_EQ(line.nearest(place.x + 5), place.pos) << "half of a character does not count as passed";
    }
    size_t pos = 0;
    for (const size_t next : {1U, 2U, 6U, 4U, 8U, 9U, 9U}) {
        const size_t from = pos;
        pos = line.placeBeside(from, /*right=*/true);
        EXPECT_EQ(pos, next);
        EXPECT_EQ(line.placeBeside(pos, /*right=*/false), pos == from ? 8U : from);
    }
    using Spans = std::vector<TextLine::Span>;
    EXPECT_EQ(line.spans(1, 4), (Spans{{10, 20}, {40, 50}}));
    EXPECT_EQ(line.spans(0, 9), (Spans{{0, 60}}));
    EXPECT_EQ(line.spans(4, 4), Spans{});
    EXPECT_EQ(line.fitting(35), 4U) << "the start of the text, wherever that stands";

    const TextLine lamAlef(font, "\u0644\u0627");
    EXPECT_EQ(lamAlef.caretX(2), 5) << "in the middle of the one sign";
    EXPECT_EQ(lamAlef.fitting(9), 0U);
    const TextLine marked(font, "e\u0300\u0316x");
    EXPECT_EQ(marked.nextPlace(0), 5U);
    EXPECT_EQ(marked.previousPlace(5), 0U);
    EXPECT_EQ(marked.caretX(3), 0);
}

TEST_F(TextLineTest, LinesKeepTheDirectionAndTheShapesOfTheirParagraph) {
    const std::string text = "\u05d0\u05d1 abc, \u0645\u062d\nxyz.";
    hxutil::Paragraphs paragraphs; // found once, or by each line for itself
    paragraphs.set(text);
    const auto both = [&](size_t start, size_t len) {
        const TextLine line(font, text, start, len);
        const TextLine ready(font, text, paragraphs, start, len, /*wholeLine=*/true);
        EXPECT_EQ(ready.isRightToLeft(), line.isRightToLeft());
        EXPECT_EQ(font.seen(ready), font.seen(line));
        return font.seen(line);
    };
    EXPECT_EQ(both(5, 5), " ,abc") << "the blank hangs over the end";
    EXPECT_EQ(both(10, 2), "\ufee3") << "goes on in the next line";
    EXPECT_EQ(both(15, 4), "xyz.");
    EXPECT_FALSE(TextLine(font, text, 15, 4).isRightToLeft());
    // A blank at the end of a piece stays where its neighbours are; at the end of a line it goes to the end.
    const std::string pieces = "a \u05d0 \u05d1";
    EXPECT_EQ(TextLine(font, pieces, 2, 3, /*wholeLine=*/false).getClusters()[1].x, 0);
    EXPECT_EQ(TextLine(font, pieces, 2, 3).getClusters()[1].x, 10);
}

// What somebody may call himself costs no more than its length, and stays inside, with the library and without.
TEST(HostileTextLine, CostsNoMoreThanItsLengthAndStaysInside) {
    const NotingFont font;
    const auto repeated = [](const char* unit, size_t bytes) {
        std::string text;
        while (text.size() < bytes)
            text += unit;
        return text;
    };
    for (const char* unit : {"\u05d0", "\u0627", "\u0644\u0627", "\u2067", "\u2068a", "\u2067\u05d0\u2069", "(\u05d0[",
                             "\u0301", "1\u05d0a", "\u202e\u05d0", "\u05d0\xff", "a\u05d0 "}) {
        const std::string text = "\u05d0" + repeated(unit, 4096);
        const auto start = std::chrono::steady_clock::now();
        const TextLine line(font, text.c_str());
        EXPECT_GE(line.width(), 10);
        for (size_t pos = 0; pos < text.size(); pos = line.nextPlace(pos))
            ASSERT_LE(line.caretX(pos), line.width());
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << unit;
    }
    const std::string huge = repeated("\u05d0\u05d1", hxutil::Paragraph::maxBytes + 2);
    EXPECT_EQ(TextLine(font, huge.c_str()).getClusters()[1].x, 10) << "in the order of the text";
}

} // namespace
