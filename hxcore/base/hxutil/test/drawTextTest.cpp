#include "hxutil/drawText.h"

#include "fakes.h"

#include <gtest/gtest.h>

using hxutil::test::plainFont;
using hxutil::test::shown;

namespace {

using Lines = std::vector<std::string>;

Lines wrapped(const char* text, int width, bool keepNewlines = false, bool breakAnywhere = false,
              int* widest = nullptr) {
    static const auto font = plainFont();
    std::vector<plat::String> lines;
    const int found = hxutil::wrapText(*font, text, width, &lines, keepNewlines, breakAnywhere);
    if (widest)
        *widest = found;
    Lines result;
    for (const plat::String& line : lines)
        result.emplace_back(line.c_str());
    return result;
}

TEST(Elide, LeavesAloneWhatFits) {
    const auto font = plainFont();
    int width = 15;
    EXPECT_TRUE(hxutil::elide(*font, &width, "abc").isNull());
    EXPECT_EQ(width, 15);
    width = 100;
    EXPECT_TRUE(hxutil::elide(*font, &width, "abc").isNull());
    EXPECT_EQ(width, 15);
}

TEST(Elide, CutsAtACharacter) {
    const auto font = plainFont();
    int width = 14;
    EXPECT_STREQ(hxutil::elide(*font, &width, "abc").c_str(), "ab\xe2\x80\xa6");
    EXPECT_EQ(width, 14);
    width = 13;
    EXPECT_STREQ(hxutil::elide(*font, &width, "abc").c_str(), "a\xe2\x80\xa6");
    EXPECT_EQ(width, 9);
    width = 2; // not even the dots
    EXPECT_STREQ(hxutil::elide(*font, &width, "abc").c_str(), "\xe2\x80\xa6");
    EXPECT_EQ(width, 4);
    const char* text = "abcdef";
    width = 10;
    EXPECT_STREQ(hxutil::elide(*font, &width, text, text + 3).c_str(), "a\xe2\x80\xa6");
    // A sign without width fits where nothing else does.
    width = 1;
    EXPECT_STREQ(hxutil::elide(*font, &width, "\u2067abc").c_str(), "\u2067\u2026");
}

TEST(WrapText, BreaksAtBlanks) {
    int widest;
    EXPECT_EQ(wrapped("aa bb cc", 22, false, false, &widest), (Lines{"aa bb ", "cc"}));
    EXPECT_EQ(widest, 22) << "the blank at the end does not count";
    EXPECT_EQ(wrapped("aa bb cc", 21), (Lines{"aa ", "bb ", "cc"}));
    EXPECT_EQ(wrapped("aa   bb", 12), (Lines{"aa   ", "bb"})) << "blanks hang over the edge";
    EXPECT_EQ(wrapped("aa bb", 0), (Lines{"aa bb"})) << "no limit";
    EXPECT_EQ(wrapped("", 10), (Lines{""}));
    EXPECT_EQ(wrapped(nullptr, 10), (Lines{""}));
}

TEST(WrapText, EndsLinesAtNewlines) {
    EXPECT_EQ(wrapped("a\nb\n", 100), (Lines{"a", "b", ""}));
    EXPECT_EQ(wrapped("a\nb\n", 100, true), (Lines{"a\n", "b\n", ""}));
    EXPECT_EQ(wrapped("\n\n", 100), (Lines{"", "", ""}));
    EXPECT_EQ(wrapped("aa\n bb", 11), (Lines{"aa", " ", "bb"}));
}

TEST(WrapText, LeavesLongWordsOrCutsThem) {
    int widest;
    EXPECT_EQ(wrapped("aaaa b", 12, false, false, &widest), (Lines{"aaaa ", "b"}));
    EXPECT_EQ(widest, 20);
    EXPECT_EQ(wrapped("aaaaa b", 12, false, true, &widest), (Lines{"aa", "aa", "a b"}));
    EXPECT_EQ(widest, 12);
    EXPECT_EQ(wrapped("b aaaaa", 12, false, true), (Lines{"b ", "aa", "aa", "a"}));
    EXPECT_EQ(wrapped("aaa", 3, false, true), (Lines{"a", "a", "a"})) << "at least one a line";
}

TEST(WrapText, LinesJoinedAreTheText) {
    const std::string text = "  one two\tthree\n\nfour  five-six-seven-eight \r\nnine";
    for (int width = 1; width < 120; ++width) {
        std::string joined;
        for (const std::string& line : wrapped(text.c_str(), width, true, width % 2 == 0))
            joined += line;
        EXPECT_EQ(joined, text) << width;
    }
}

// All letters are as wide as the missing character: 7.
TEST(WrapText, CutsScriptsFromRightToLeftInTheOrderOfTheText) {
    const char *alef = "\u05d0", *points = "\u05d1\u05b8\u05b4";
    const std::string word = std::string(alef) + points + alef;
    EXPECT_EQ(wrapped((word + " " + word).c_str(), 23), (Lines{word + " ", word}));
    EXPECT_EQ(wrapped(word.c_str(), 15, false, true), (Lines{std::string(alef) + points, alef})) << "marks stay";
    EXPECT_EQ(wrapped("\u0627\u0644\u0627", 7, false, true), (Lines{"\u0627", "\u0644\u0627"})) << "one sign";
    const auto font = plainFont();
    int width = 18;
    EXPECT_STREQ(hxutil::elide(*font, &width, (word + word).c_str()).c_str(),
                 (std::string(alef) + points + "\u2026").c_str());
    EXPECT_EQ(width, 18);
}

TEST(DrawWrapped, TellsWhereItDrew) {
    const auto font = plainFont();
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 40, 40);
    EXPECT_EQ(hxutil::drawWrapped(*font, pb, "aa bb a", {0, 0, 24, 40}, 1, hxutil::AlignCentre, hxutil::AlignEnd),
              rfb::Rect(1, 20, 23, 40));
}

TEST(DrawAligned, PlacesAndCuts) {
    const auto font = plainFont();
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 20, 12);
    hxutil::drawAligned(*font, pb, "a", {0, 0, 15, 12}, 1, hxutil::AlignEnd, hxutil::AlignCentre);
    std::vector<std::string> lines = shown(pb);
    EXPECT_EQ(lines[9].find('#'), 10U) << "8 below the line's top, which is 1 down";
    rfb::ManagedPixelBuffer narrow(rfb::pfRGB888(), 20, 12);
    hxutil::drawAligned(*font, narrow, "aaaa", {0, 0, 15, 10}, 1, hxutil::AlignStart, hxutil::AlignStart);
    lines = shown(narrow);
    EXPECT_EQ(lines[8], "#....#..............");
}

} // namespace
