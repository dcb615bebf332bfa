#include "loc/format.h"

#include "locTesting.h"

#include <climits>

namespace {

std::string run(const char* raw, std::initializer_list<loc::Arg> args) { return loc::formatted(raw, args).c_str(); }

TEST(format, DirectivesTakeTheirPartsInAnyOrder) {
    EXPECT_EQ(run("no directive", {}), "no directive");
    EXPECT_EQ(run("100%%", {}), "100%");
    EXPECT_EQ(run("%D of %D", {5}), "5 of 5");
    EXPECT_EQ(run("%2$S %1$D%%", {INT_MIN, "x"}), "x -2147483648%");
    EXPECT_EQ(run("%D %X", {UINT_MAX}), "4294967295 ffffffff");
    EXPECT_EQ(run("%+D %1$+D %+1$D", {7}), "+7 +7 +7");
    EXPECT_EQ(run("%.3S|%1$.3S|%.31$S", {"abcdef"}), "abc|abc|%%.31$S");
    EXPECT_EQ(run("%.3S", {static_cast<const char*>(nullptr)}), "");
    EXPECT_EQ(run("%.4S", {"a\xe2\x82\xac\xe2\x82\xac"}), "a\xe2\x82\xac"); // whole characters
    EXPECT_EQ(run("%.9S", {"short"}), "short");
}

TEST(format, ValuesFromRightToLeftKeepToThemselves) {
    struct {
        const char *value, *shown;
    } const cases[] = {
        {"caf\u00e9", "caf\u00e9"},
        {"\u05d0 1", "\u2068\u05d0 1\u2069"},
        {"a\u0627", "\u2068a\u0627\u2069"},
        {"exe\u202egnp\u200f.\u061c", "exegnp."},         // controls go, and then nothing is left to isolate
        {"\u05d0\u2069 b\u2068", "\u2068\u05d0 b\u2069"}, // no way out
        {"\u2068\u05d0\u2069 b", "\u2068\u2068\u05d0\u2069 b\u2069"}, // a sentence in a sentence
        {"\u05d0\xff", "\u2068\u05d0\xff\u2069"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(run("<%S>", {c.value}), "<" + std::string(c.shown) + ">");
    EXPECT_EQ(run("%.3S", {"\u05d0\u05d1"}), "\u2068\u05d0\u2069") << "the limit is the value's";
}

// The rest of a directive that is wrong stands as text, and the log tells.
TEST(format, WhatDoesntFitTheArgumentsStaysAsText) {
    const struct {
        const char* raw;
        const char* text;
    } cases[] = {
        {"%1$S %3$S!", "a %%3$S!"}, // past the list
        {"%S", "%%S"},              // two arguments need a position
        {"%1$D", "%%1$D"},          // a string is no number
        {"%2$S", "%%2$S"},
        {"%1$s", "%%1$s"},
        {"%1$+S", "%%1$+S"},
        {"%2$.3D", "%%2$.3D"},
        {"%2$X", "%%2$X"}, // signed
        {"%1$1$S", "%%1$1$S"},
        {"%2$++D", "%%2$++D"},
        {"%1$.1.2S", "%%1$.1.2S"},
        {"%0$S", "%%0$S"},
        {"%1$.0S", "%%1$.0S"},
        {"%1$.S", "%%1$.S"},
        {"%99999999999999999999$S", "%%99999999999999999999$S"},
        {"%1", "%%1"},
        {"%1$", "%%1$"},
        {"%", "%%"},
        {"%.", "%%."},
    };
    for (const auto& c : cases) {
        LogLines log;
        plat::DString out;
        EXPECT_FALSE(loc::format(out, c.raw, {"a", 2})) << c.raw;
        EXPECT_STREQ(out.c_str(), c.text);
        EXPECT_EQ(log.lines, std::vector<std::string>{std::string("Bad loc string for args - ") + c.raw});
    }
    EXPECT_EQ(run("%1$+D %1$+X", {3U}), "%%1$+D %%1$+X"); // unsigned has no sign to show
    EXPECT_EQ(run("%D", {}), "%%D");
}

TEST(formatDeathTest, StrictModeAborts) {
    loc::locStrict = true;
    EXPECT_DEATH(run("%", {}), "");
    loc::locStrict = false;
}

} // namespace
