#include "tx/latin1.h"

#include "tx/Property.h"

#include <gtest/gtest.h>

namespace {

TEST(Latin1, WhatItLacksAndBadBytesBecomeQuestionMarks) {
    EXPECT_EQ(tx::utf8ToLatin1("a\xc3\xa9\xc3\xbf"), "a\xe9\xff");
    EXPECT_EQ(tx::utf8ToLatin1("\xe2\x82\xac!"), "?!"); // the euro sign came later
    EXPECT_EQ(tx::utf8ToLatin1("x\xc3"), "x?");         // cut short
    EXPECT_EQ(tx::utf8ToLatin1(std::string_view("a\0b", 3)).size(), 3U);
    EXPECT_EQ(tx::utf8ToLatin1(""), "");
}

TEST(Latin1, EveryByteComesBackThroughUtf8) {
    std::string all;
    for (int byte = 1; byte < 256; byte++)
        all += static_cast<char>(byte);
    const std::string utf8 = tx::latin1ToUtf8(all);
    EXPECT_EQ(utf8.size(), 127U + 2 * 128U);
    EXPECT_EQ(tx::utf8ToLatin1(utf8), all);
}

// A property says its own format: what asks for another one gets nothing, never the bytes in a wrong shape.
TEST(Property, GivesItsItemsOnlyInTheirOwnFormat) {
    const std::string_view text = "abcdefgh";
    const tx::Property value = tx::Property::fromText(31, text);
    EXPECT_EQ(std::string_view(value.bytes().data(), value.bytes().size()), text);
    EXPECT_TRUE(value.longs().empty());
    EXPECT_TRUE(value.exists());
    EXPECT_FALSE(tx::Property().exists());
    EXPECT_TRUE(tx::Property().bytes().empty());
}

} // namespace
