#include "tx/desktopTexts.h"
#include "hxutil/Font.h"
#include "hxutil/getFont.h"
#include "plat/Configuration.h"
#include "registerBuiltInResources.h"

#include <gtest/gtest.h>

namespace tx {
namespace {

template <size_t n>
std::span<const char> bytes(const char (&text)[n]) {
    return {text, n - 1};
}

// Two settings in each byte order, as the format's description lays them out.
TEST(XSettings, AreReadInBothByteOrders) {
    XSettings little;
    EXPECT_TRUE(little.parse(bytes("\0\0\0\0\7\0\0\0\2\0\0\0"
                                   "\1\0\15\0Net/ThemeName\0\0\0\1\0\0\0\5\0\0\0Night\0\0\0"
                                   "\0\0\7\0Xft/DPI\0\1\0\0\0\0\0\3\0")));
    EXPECT_EQ(little.texts["Net/ThemeName"], "Night");
    EXPECT_EQ(little.numbers["Xft/DPI"], 196608);
    XSettings big;
    EXPECT_TRUE(big.parse(bytes("\1\0\0\0\0\0\0\7\0\0\0\2"
                                "\2\0\0\3Red\0\0\0\0\1\377\377\0\0\0\0\377\377"
                                "\0\0\0\1n\0\0\0\0\0\0\1\377\377\377\376")));
    EXPECT_EQ(big.numbers["n"], -2);
}

TEST(XSettings, WhatComesBeforeAFaultCounts) {
    constexpr char good[] = "\0\0\0\0\7\0\0\0\2\0\0\0"
                            "\0\0\1\0n\0\0\0\1\0\0\0\5\0\0\0"
                            "\1\0\1\0t\0\0\0\1\0\0\0\377\377\377\377text";
    for (size_t len = 0; len < sizeof(good); len++) {
        XSettings settings;
        EXPECT_FALSE(settings.parse({good, len})) << len;
        EXPECT_EQ(settings.numbers.count("n"), len < 28 ? 0U : 1U) << len;
        EXPECT_TRUE(settings.texts.empty());
    }
    XSettings settings;
    EXPECT_FALSE(settings.parse(bytes("\0\0\0\0\7\0\0\0\377\377\377\377"))); // four thousand million of them
}

TEST(DesktopTexts, TheLastGoodResolutionOfADatabaseCounts) {
    EXPECT_EQ(parseXftDpi("*x: 1\nXft.dpi:\t192\nXft.rgba: rgb"), 192);
    EXPECT_EQ(parseXftDpi("Xft.dpi: 96\n  Xft.dpi : 120.4 \r\nXft.dpi: many\nXft.dpi: 0\nXft.dpi: 1e9\n"), 120);
    EXPECT_EQ(parseXftDpi("Xft.dpix: 96\nMyXft.dpi: 96\nXft.dpi 96\nXft.dpi: -96\n!Xft.dpi: 96\nXft.dpi:"), 0);
    EXPECT_EQ(parseXftDpi(std::string(100000, '\n') + "Xft.dpi:144"), 144);
}

TEST(DesktopTexts, NamesTellDarkThemes) {
    for (const char* dark : {"Adwaita-dark", "Breeze-Dark", "HighContrastInverse", "Yaru-blue-DARK"})
        EXPECT_TRUE(isDarkTheme(dark)) << dark;
    for (const char* light : {"", "Adwaita", "Raleigh"})
        EXPECT_FALSE(isDarkTheme(light)) << light;
}

// Lengths follow ppmm; text must keep pace, with the fonts that there are.
TEST(DesktopTexts, TextGrowsWithTheScreen) {
    registerBuiltInResources();
    const auto heightAt = [](int dpi) {
        const DesktopScale scale = scaleForDpi(dpi);
        auto& config = plat::Configuration::global();
        config.set("ppmm", plat::strFormat("%d", scale.ppmm).c_str());
        config.set("TextSizeFactor", plat::strFormat("%d", scale.textSizeFactor).c_str());
        const int height = hxutil::getFont(120, 400)->height;
        config.find("ppmm", /*inChildren=*/true)->unset(plat::PriorityPreference);
        config.find("TextSizeFactor", /*inChildren=*/true)->unset(plat::PriorityPreference);
        return height;
    };
    EXPECT_EQ(scaleForDpi(96).ppmm, 4);
    EXPECT_EQ(scaleForDpi(96).textSizeFactor, 100);
    EXPECT_EQ(scaleForDpi(192).ppmm, 8);
    EXPECT_EQ(heightAt(192), 2 * heightAt(96));
    EXPECT_EQ(heightAt(288), 42); // the largest there is
    int last = 0;
    for (int dpi = 24; dpi <= 1536; dpi += 8) {
        EXPECT_GE(heightAt(dpi), last) << dpi;
        last = heightAt(dpi);
    }
}

} // namespace
} // namespace tx
