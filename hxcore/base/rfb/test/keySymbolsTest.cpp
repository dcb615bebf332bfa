#include "rfb/keySymbols.h"

#include <gtest/gtest.h>

namespace {

TEST(Keysyms, OneNumberForWhatIsTheSame) {
    EXPECT_EQ(rfb::canonicalKeysym(0x0100007a), 'z');
    EXPECT_EQ(rfb::canonicalKeysym(0x010000e9), 0xe9U);
    EXPECT_EQ(rfb::canonicalKeysym(0x01000159), 0x1f8U) << "r with caron has a keysym of its own";
    EXPECT_EQ(rfb::canonicalKeysym(0x010020ac), 0x20acU);
    EXPECT_EQ(rfb::canonicalKeysym(0x01001ea3), 0x01001ea3U) << "this one has none";
    EXPECT_EQ(rfb::canonicalKeysym(0xff8d), rfb::key::Return);
    EXPECT_EQ(rfb::canonicalKeysym(0xffb7), '7');
    EXPECT_EQ(rfb::canonicalKeysym(0xfe20), rfb::key::Tab);
    EXPECT_EQ(rfb::canonicalKeysym(0xff96), rfb::key::Left);
    EXPECT_EQ(rfb::canonicalKeysym('A'), 'A');
    EXPECT_EQ(rfb::canonicalKeysym(0xffffffff), 0xffffffffU);
}

TEST(Keysyms, TellWhatTheyType) {
    EXPECT_EQ(rfb::unicodeFromKeysym('a'), 'a');
    EXPECT_EQ(rfb::unicodeFromKeysym(0x6c1), 0x430U) << "Cyrillic a";
    EXPECT_EQ(rfb::unicodeFromKeysym(0x01001ea3), 0x1ea3U);
    EXPECT_EQ(rfb::unicodeFromKeysym(0xffaf), '/');
    for (const uint32_t none : {rfb::key::Return, rfb::key::Escape, rfb::key::ShiftL, 0xfe51U, 0U, 0x0100001bU,
                                0x01000000U, 0x02000000U, 0x80U})
        EXPECT_EQ(rfb::unicodeFromKeysym(none), 0U) << std::hex << none;
}

TEST(Keysyms, GoFromCharactersAndBack) {
    for (uint32_t code = 0x20; code < 0x10000; ++code) {
        if (code == 0x7f)
            code = 0xa0;
        EXPECT_EQ(rfb::unicodeFromKeysym(rfb::keysymFromUnicode(code)), code);
    }
}

} // namespace
