#include "plat/visibleText.h"

#include <gtest/gtest.h>

namespace plat {
namespace {

TEST(VisibleText, WhatCanBeSeenStaysAndTheRestGoes) {
    struct Case {
        const char* text;
        const char* shown;
    };
    const Case cases[] = {
        {nullptr, ""},
        {"", ""},
        {"x", "x"},
        {"Ann \xc3\x84 <b>&amp;</b> \"%S\"", "Ann \xc3\x84 <b>&amp;</b> \"%S\""}, // markup is the caller's to escape
        {"\xd9\x85\xd8\xad\xd9\x85\xd8\xaf \xe7\x8e\x8b", "\xd9\x85\xd8\xad\xd9\x85\xd8\xaf \xe7\x8e\x8b"},
        {"a\r\n\tb\x0b\x0c\xc2\x85\x63", "a b c"},       // one line
        {"a\xe2\x80\xa8\xe2\x80\xa9\x62", "a b"},        // U+2028, U+2029
        {"a \xc2\xa0\xe3\x80\x80\xe2\xa0\x80 b", "a b"}, // a run of blanks is one
        {" a ", " a "},                                  // not the name of "a"
        {"\x01"
         "a\x1b[31m\x7f"
         "b\xc2\x9b"
         "c",
         "a[31mbc"}, // C0, DEL, C1
        {"a\xe2\x80\xae"
         "b\xe2\x80\x8e\xe2\x80\x8f\xd8\x9c\xe2\x81\xa6\xe2\x81\xa9",
         "ab"}, // direction
        {"a\xe2\x80\x8b\xe2\x80\x8d\xef\xbb\xbf\xc2\xad\xf3\xa0\x81\x81"
         "b",
         "ab"},                      // no width, a tag
        {"a \xe2\x80\x8b b", "a b"}, // a run goes on over it
        {"a\xff"
         "b\xc3",
         "a\xef\xbf\xbd"
         "b\xef\xbf\xbd"},
        {"\xe2\x80\xae\xe2\x80\x8b", ""},
    };
    for (const Case& c : cases)
        EXPECT_STREQ(visibleText(c.text).c_str(), c.shown) << (c.text ? c.text : "null");
}

// Each range that is left out, at its edges; the neighbours stay.
TEST(VisibleText, RangesEndWhereTheyShould) {
    for (const uint32_t gone : {0x0u, 0x8u, 0xeu, 0x1fu, 0x7fu, 0x84u, 0x86u, 0x9fu, 0x200bu, 0x200fu, 0x202au, 0x202eu,
                                0x2060u, 0x206fu, 0xfff0u, 0xfffbu, 0xe0000u, 0xe0fffu})
        EXPECT_TRUE(isInvisible(gone) && !isBlankOrBreak(gone)) << gone;
    for (const uint32_t blank : {0x9u, 0xdu, 0x20u, 0x85u, 0x2000u, 0x200au, 0x2028u, 0x2029u, 0x202fu, 0x3000u})
        EXPECT_TRUE(!isInvisible(blank) && isBlankOrBreak(blank)) << blank;
    for (const uint32_t kept : {0x21u, 0x7eu, 0xa1u, 0xaeu, 0x2010u, 0x2027u, 0x2030u, 0x2070u, 0x3001u, 0xffefu,
                                0xfffcu, 0xfffdu, 0xdffffu, 0xe1000u, 0x10fffdu})
        EXPECT_TRUE(!isInvisible(kept) && !isBlankOrBreak(kept)) << kept;
}

} // namespace
} // namespace plat
