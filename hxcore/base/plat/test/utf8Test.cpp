#include "plat/utf8.h"

#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <string>

namespace plat {
namespace {

#define FFFD "\xef\xbf\xbd"

TEST(Utf8, ValidityAtTheEdges) {
    // The first and the last of each length, and what surrounds surrogates and noncharacters.
    for (const char* text : {"", "\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
                             "\xef\xb7\x8f", "\xef\xb7\xb0", "\xef\xbf\xbd", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbd"})
        EXPECT_TRUE(utf8::isValid(text)) << text;
    // Overlong forms; surrogates; noncharacters; beyond U+10FFFF; pieces.
    for (const char* text :
         {"\xc0\xaf", "\xc1\xbf", "\xe0\x9f\xbf", "\xf0\x8f\xbf\xbd", "\xed\xa0\x80", "\xed\xbf\xbf", "\xef\xb7\x90",
          "\xef\xb7\xaf", "\xef\xbf\xbe", "\xf0\x9f\xbf\xbf", "\xf4\x8f\xbf\xbe", "\xf4\x90\x80\x80",
          "\xf8\x88\x80\x80\x80", "\x80", "\xff", "\xc3", "\xe2\x82", "\xf0\x9f\x98", "\xc3("})
        EXPECT_FALSE(utf8::isValid(text)) << text;
}

TEST(Utf8, ValidityStopsAtTheEndGiven) {
    const char text[] = "a\xe2\x82\xac";
    EXPECT_TRUE(utf8::isValid(text, text + 4));
    EXPECT_TRUE(utf8::isValid(text, text + 1));
    EXPECT_FALSE(utf8::isValid(text, text + 3));
    EXPECT_TRUE(utf8::isValid(nullptr));
}

TEST(Utf8, RepairKeepsWhatIsValid) {
    EXPECT_EQ(repairUtf8("\xc3("), FFFD "(");
    EXPECT_EQ(repairUtf8("a\xc0\xaf"
                         "b"),
              "a" FFFD "b");
    EXPECT_EQ(repairUtf8("\xed\xa0\x80"), FFFD);
    EXPECT_EQ(repairUtf8("\x80\x80"), FFFD FFFD);
    EXPECT_EQ(repairUtf8("\xe2\x82"), FFFD);
    EXPECT_EQ(repairUtf8("\xe2\x82\xe2\x82\xac"), FFFD "\xe2\x82\xac");
    EXPECT_EQ(repairUtf8("a\0b", 3), "a" FFFD "b");
    EXPECT_EQ(repairUtf8("abc", 2), "ab");
    EXPECT_FALSE(repairUtf8(nullptr).isNull());
    EXPECT_STREQ(DString("x\xffy").repairUtf8().c_str(), "x" FFFD "y");
    EXPECT_STREQ(DString("fine").repairUtf8().c_str(), "fine");
}

TEST(Utf8, RepairCutsBetweenCharacters) {
    const char text[] = "a\xe2\x82\xac\xff";
    const char* byLimit[] = {"", "a", "a", "a", "a\xe2\x82\xac", "a\xe2\x82\xac", "a\xe2\x82\xac"};
    for (int limit = 0; limit < 7; ++limit)
        EXPECT_EQ(repairUtf8(text, -1, limit), byLimit[limit]) << limit;
    EXPECT_EQ(repairUtf8(text, -1, 7), "a\xe2\x82\xac" FFFD);
}

TEST(Utf8, EncodesWhatItDecodes) {
    for (const uint32_t codepoint : {0x1u, 0x7fu, 0x80u, 0x7ffu, 0x800u, 0xfffdu, 0x10000u, 0x10fffdu}) {
        char text[4];
        char* end = text;
        encodeUtf8(codepoint, &end);
        const char* pos = text;
        uint32_t decoded = 0;
        EXPECT_TRUE(utf8::decode(&pos, end, &decoded));
        EXPECT_EQ(decoded, codepoint);
        EXPECT_EQ(pos, end);
    }
    char text[4];
    char* end = text;
    EXPECT_EQ(whatOf([&] { encodeUtf8(0x110000, &end); }), "Unicode out of range");
    EXPECT_EQ(end, text);
}

TEST(Utf8, StepsBackToTheStartOfACharacter) {
    const char text[] = "a\xf0\x9f\x98\x80\x80\x80\x80\x80";
    const char* pos = text + 5;
    utf8::stepBack(&pos, text);
    EXPECT_EQ(pos, text + 1);
    utf8::stepBack(&pos, text);
    EXPECT_EQ(pos, text);
    utf8::stepBack(&pos, text);
    EXPECT_EQ(pos, text);
    pos = text + 9;
    utf8::stepBack(&pos);
    EXPECT_EQ(pos, text + 5); // four at most without a limit
    pos = text + 9;
    utf8::stepBack(&pos, text + 3);
    EXPECT_EQ(pos, text + 3);
}

TEST(Utf8, CountsCodePoints) {
    EXPECT_EQ(utf8::countChars(nullptr), 0);
    EXPECT_EQ(utf8::countChars("a\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"), 4);
    EXPECT_EQ(utf8::countChars("a\xff\xe2\x82"), 3);
    const char text[] = "\xc3\xa4\xc3\xa4";
    EXPECT_EQ(utf8::countChars(text, text + 2), 1);
}

} // namespace
} // namespace plat
