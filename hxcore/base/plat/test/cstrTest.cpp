#include "plat/cstr.h"

#include "plat/Exception.h"
#include "plat/Splitter.h"
#include "plat/encodings.h"
#include "plat/numbers.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace plat {
namespace {

TEST(Cstr, NullIsTheEmptyStringInEveryHelper) {
    EXPECT_EQ(strLen(nullptr), 0);
    EXPECT_EQ(strLenMax(nullptr, 5), 0);
    EXPECT_EQ(strDup(nullptr), nullptr);
    EXPECT_TRUE(strEquals(nullptr, ""));
    EXPECT_TRUE(startsWith(nullptr, nullptr));
    EXPECT_FALSE(startsWith(nullptr, "a"));
    EXPECT_TRUE(endsWithNoCase("a", nullptr));
    EXPECT_FALSE(endsWith(nullptr, "a"));
    EXPECT_FALSE(contains(nullptr, nullptr, 'a'));
    EXPECT_STREQ(findNoCase(nullptr, nullptr), "");
    EXPECT_EQ(findNoCase(nullptr, "a"), nullptr);
    removeChars(nullptr, "a");
    EXPECT_EQ(hash(nullptr), 0xcbf29ce484222325u);
}

TEST(Cstr, PrefixSuffixAndSearch) {
    EXPECT_TRUE(startsWith("display", "dis"));
    EXPECT_FALSE(startsWith("di", "dis"));
    EXPECT_TRUE(startsWithNoCase("DISplay", "dis"));
    EXPECT_TRUE(endsWith("a.png", ".png"));
    EXPECT_FALSE(endsWith("png", ".png"));
    EXPECT_FALSE(endsWith("a.PNG", ".png"));
    EXPECT_TRUE(endsWithNoCase("a.PNG", ".png"));
    EXPECT_STREQ(findNoCase("one Two two", "tWO"), "Two two");
    EXPECT_EQ(findNoCase("one", "one more"), nullptr);
    EXPECT_STREQ(findNoCase("ab", "B"), "b");
    const char text[] = "abc";
    EXPECT_FALSE(contains(text, text + 2, 'c'));
    EXPECT_TRUE(contains(text, nullptr, 'c'));
    // U+00C4 in Latin-1 must not fold: only ASCII letters do.
    EXPECT_FALSE(strEqualsNoCase("\xc4", "\xe4"));
    EXPECT_LT(strCompareNoCase("abc", "ABD"), 0);
    EXPECT_GT(strCompareNoCase("\xc3", "z"), 0);
}

TEST(Cstr, CutsAndRemoves) {
    EXPECT_EQ(strLenMax("abcdef", 3), 3);
    EXPECT_EQ(strLenMax("ab", 3), 2);
    char* copy = strDup("abcdef", 2);
    EXPECT_STREQ(copy, "ab");
    delete[] copy;
    char text[] = "a-b_c-";
    removeChars(text, "-_");
    EXPECT_STREQ(text, "abc");
}

// Values from the test vectors of draft-eastlake-fnv.
TEST(Cstr, HashIsFnv1a) {
    EXPECT_EQ(hash("a"), 0xaf63dc4c8601ec8cu);
    EXPECT_EQ(hash("foobar"), 0x85944171f73967e8u);
    EXPECT_EQ(hashNoCase("FooBAR"), hash("foobar"));
    EXPECT_NE(hashNoCase("[{"), hashNoCase("{["));
}

std::vector<std::string> tokens(std::string text, char sep, bool skipRepeats) {
    std::vector<std::string> result;
    char* pos = text.data();
    while (pos)
        result.push_back(Splitter::split(&pos, sep, skipRepeats));
    EXPECT_EQ(Splitter::split(&pos, sep, skipRepeats), nullptr);
    return result;
}

TEST(Splitter, RunsOfSeparatorsCountOnceOnlyIfAsked) {
    using Tokens = std::vector<std::string>;
    EXPECT_EQ(tokens("a,b", ',', false), Tokens({"a", "b"}));
    EXPECT_EQ(tokens(",a,,b,", ',', false), Tokens({"", "a", "", "b", ""}));
    EXPECT_EQ(tokens("  a  b  ", ' ', true), Tokens({"a", "b"}));
    EXPECT_EQ(tokens("", ',', false), Tokens({""}));
    EXPECT_EQ(tokens("   ", ' ', true), Tokens({""}));
}

TEST(Splitter, TellsWhichByteOfTheSetWasFound) {
    char text[] = "key=value;rest";
    char* pos = text;
    char found;
    EXPECT_STREQ(Splitter::splitAny(&pos, ";=", &found), "key");
    EXPECT_EQ(found, '=');
    EXPECT_STREQ(Splitter::splitAny(&pos, ";=", &found), "value");
    EXPECT_EQ(found, ';');
    EXPECT_STREQ(Splitter::splitAny(&pos, ";=", &found), "rest");
    EXPECT_EQ(found, '\0');
    EXPECT_EQ(pos, nullptr);
}

TEST(Numbers, RefuseWhatDoesNotFitAndLeaveAllAsItWas) {
    for (const char* bad : {"", "x", "-", "2147483648", "-2147483649", "99999999999999999999"}) {
        const char* pos = bad;
        int value = 7;
        errno = ENOENT;
        EXPECT_FALSE(parseInt(&pos, value)) << bad;
        EXPECT_EQ(value, 7);
        EXPECT_EQ(pos, bad);
        EXPECT_EQ(errno, ENOENT);
    }
    for (const char* bad : {"-1", " -0", "4294967296", ""}) {
        const char* pos = bad;
        unsigned value = 7;
        EXPECT_FALSE(parseUInt(&pos, value)) << bad;
    }
    const char* pos = "18446744073709551616";
    uint64_t u64;
    EXPECT_FALSE(parseU64(&pos, u64));
    pos = "9223372036854775808";
    int64_t s64;
    EXPECT_FALSE(parseS64(&pos, s64));
    pos = nullptr;
    EXPECT_FALSE(parseS64(&pos, s64));
}

TEST(Numbers, StopBehindTheLastDigit) {
    const char* pos = " -12ms";
    int value = 0;
    EXPECT_TRUE(parseInt(&pos, value));
    EXPECT_EQ(value, -12);
    EXPECT_STREQ(pos, "ms");
    pos = "ffg";
    unsigned hex = 0;
    EXPECT_TRUE(parseUInt(&pos, hex, 16));
    EXPECT_EQ(hex, 255u);
    EXPECT_STREQ(pos, "g");
    EXPECT_EQ(readU64(&(pos = "18446744073709551615"), 10), 18446744073709551615u);
    EXPECT_EQ(readS64(&(pos = "-9223372036854775808")), INT64_MIN);
    EXPECT_EQ(readUInt(&(pos = "4294967295")), 4294967295u);
    EXPECT_EQ(readInt(&(pos = "0x10"), 0), 16);
}

TEST(Numbers, InRangeTakesTheWholeText) {
    int value = 7;
    EXPECT_TRUE(parseIntInRange("32", 1, 32, value));
    EXPECT_EQ(value, 32);
    for (const char* bad : {"33", "0", "5 ", "5x", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(parseIntInRange(bad, 1, 32, value)) << strOrEmpty(bad);
    EXPECT_EQ(value, 32);
}

TEST(Numbers, ThrowingFormsSayWhatFailed) {
    const char* pos = "x";
    EXPECT_EQ(whatOf([&] { readInt(&pos); }), "Failed to parse integer");
    EXPECT_EQ(whatOf([&] { readS64(&pos); }), "Failed to parse S64 integer");
    EXPECT_EQ(whatOf([&] { readU64(&pos); }), "Failed to parse U64 integer");
    EXPECT_EQ(whatOf([&] { readUInt(&pos, 10, "Bad port"); }), "Bad port");
    EXPECT_EQ(whatOf([&] { readIntInRange("9", 1, 8); }), "Failed to parse integer");
    EXPECT_EQ(readIntInRange("8", 1, 8), 8);
}

TEST(Encodings, Hex) {
    const uint8_t bytes[] = {0x00, 0xfe, 0x1a};
    EXPECT_EQ(binToHex(3, bytes), "00fe1a");
    MBuf<uint8_t> out;
    EXPECT_TRUE(hexToBin("00FE1a", out));
    EXPECT_EQ(binToHex(static_cast<size_t>(out.size()), out.data()), "00fe1a");
    for (const char* bad : {"0", "0g", "g0", "00f"})
        EXPECT_FALSE(hexToBin(bad, out)) << bad;
    EXPECT_EQ(out.size(), 3);
    EXPECT_TRUE(hexToBin(nullptr, out));
    EXPECT_EQ(out.size(), 0);
    uint8_t fixed[2];
    EXPECT_TRUE(hexToBin("ab01", sizeof(fixed), fixed));
    EXPECT_EQ(fixed[1], 1);
    EXPECT_FALSE(hexToBin("ab0102", sizeof(fixed), fixed));
    EXPECT_FALSE(hexToBin("ab", sizeof(fixed), fixed));
    EXPECT_EQ(whatOf([] { hexToBinOrThrow("xy"); }), "Bad hex string");
}

// The vectors of RFC 4648 section 10.
TEST(Encodings, Base64) {
    const char* vectors[][2] = {{"", ""},
                                {"f", "Zg=="},
                                {"fo", "Zm8="},
                                {"foo", "Zm9v"},
                                {"foob", "Zm9vYg=="},
                                {"fooba", "Zm9vYmE="},
                                {"foobar", "Zm9vYmFy"}};
    MBuf<uint8_t> out;
    for (const auto& [plain, encoded] : vectors) {
        EXPECT_EQ(base64Encode(std::string_view(plain).size(), plain), encoded);
        ASSERT_TRUE(base64Decode(encoded, out)) << encoded;
        EXPECT_EQ(std::string(out.begin(), out.end()), plain);
    }
    EXPECT_TRUE(base64Decode(" Zm\r\n9v\t", out));
    for (const char* bad : {"Z", "Zg", "Zg=", "Zg===", "Zh==", "Zm9=", "Zg==Zg==", "Zm-v", "====", "Zm9v="})
        EXPECT_FALSE(base64Decode(bad, out)) << bad;
    EXPECT_EQ(out.size(), 3);
}

TEST(Encodings, Percent) {
    EXPECT_EQ(percentEncode("a b/\xc3\xa4~"), "a%20b%2F%C3%A4~");
    EXPECT_EQ(percentEncode("a b/", "/"), "a%20b/");
    EXPECT_EQ(percentDecode("a%20b%2f%C3%A4"), "a b/\xc3\xa4");
    for (const char* bad : {"%", "%2", "%2g", "%00"})
        EXPECT_EQ(whatOf([&] { percentDecode(bad); }), "Bad percent encoding") << bad;
}

} // namespace
} // namespace plat
