#include "loc/localeNames.h"

#include "loc/osLocale.h"

#include <gtest/gtest.h>

namespace {

std::string normalised(const char* list, loc::LocaleName reference = {}) {
    return loc::joinLocales(loc::normaliseLocales(list, reference));
}

TEST(localeNames, ListsAreNormalised) {
    EXPECT_EQ(normalised("de"), "de_DE");
    EXPECT_EQ(normalised("de_AT.UTF-8@euro:fr-CA::.x:_Y:pt"), "de_AT:fr_CA:pt_BR");
    EXPECT_EQ(normalised("xx:en.utf8"), "xx:en_US");
    EXPECT_EQ(normalised("af:zh"), "af_ZA:zh_CN"); // the ends of the table
    EXPECT_EQ(normalised("de:en:fr_FR", {"de", "CH"}), "de_CH:en_US:fr_FR");
    EXPECT_EQ(normalised(""), "");
    EXPECT_EQ(normalised("../../x:de"), "de_DE");
}

TEST(localeNames, ListsAreExpandedByTheLanguageAlone) {
    EXPECT_EQ(loc::joinLocales(loc::expandLocales({"de_DE", "en_US"})), "de_DE:de:en_US:en:en_US:en");
    EXPECT_EQ(loc::joinLocales(loc::expandLocales({"xx"})), "xx:en_US:en");
}

TEST(localeNames, PluralsFollowTheLanguage) {
    const struct {
        const char* locale;
        const char* forms; // of 0, 1, 2 and -1
    } cases[] = {{"en_US", "msmm"}, {"en", "msmm"},    {"de", "msmm"},    {"fr_FR", "ssmm"}, {"fr", "ssmm"},
                 {"pt", "ssmm"},    {"pt_BR", "ssmm"}, {"pt_PT", "msmm"}, {"zh_CN", "mmmm"}, {"ja", "mmmm"},
                 {"ko_KR", "mmmm"}, {"vi", "mmmm"},    {"fra", "msmm"}};
    for (const auto& c : cases) {
        std::string forms;
        for (const int count : {0, 1, 2, -1})
            forms += *loc::pluralId(c.locale, count);
        EXPECT_EQ(forms, c.forms) << c.locale;
    }
}

TEST(osLocale, CharsetsAreKnownHoweverTheyAreWritten) {
    using loc::Charset;
    const struct {
        const char* codeset;
        Charset charset;
    } cases[] = {{"UTF-8", Charset::Utf8},           {"utf8", Charset::Utf8},
                 {"ISO-8859-1", Charset::Iso8859_1}, {"ISO_8859-15", Charset::Iso8859_1},
                 {"US-ASCII", Charset::Ascii},       {"ANSI_X3.4-1968", Charset::Ascii},
                 {"ISO-IR-6", Charset::Ascii},       {"646", Charset::Ascii},
                 {"ISO646-US", Charset::Ascii},      {"ISO-8859-2", Charset::Unknown},
                 {"KOI8-R", Charset::Unknown},       {"", Charset::Unknown}};
    for (const auto& c : cases)
        EXPECT_EQ(loc::parseCharset(c.codeset), c.charset) << c.codeset;
}

TEST(osLocale, TheLastResortIsC) {
    loc::OsLocale found;
    EXPECT_FALSE(loc::findOsLocale("qq_QQ", &found));
    EXPECT_FALSE(loc::findOsLocale("../../etc", &found));
    EXPECT_TRUE(loc::findOsLocale("qq_QQ.UTF-8", &found)); // the text's charset is known at least
    EXPECT_EQ(found.charset, loc::Charset::Utf8);
    const loc::OsLocale chosen = loc::chooseOsLocale({"qq_QQ", "qq"});
    EXPECT_EQ(chosen.name, "C");
    EXPECT_EQ(chosen.charset, loc::Charset::Ascii);
    EXPECT_TRUE(loc::findOsLocale("POSIX", &found));
    EXPECT_EQ(found.name, "C");
}

TEST(osLocale, TextIsConvertedBothWays) {
    using loc::Charset;
    EXPECT_EQ(loc::toUtf8("a\xe9", Charset::Iso8859_1), "a\xc3\xa9");
    EXPECT_EQ(loc::toUtf8("a\xe9", Charset::Ascii), "a\xef\xbf\xbd");
    EXPECT_EQ(loc::toUtf8("\xc3\xa9", Charset::Utf8), "\xc3\xa9");
    EXPECT_EQ(loc::fromUtf8("a\xc3\xa9\xe2\x82\xac", Charset::Iso8859_1), "a\xe9?");
    EXPECT_EQ(loc::fromUtf8("a\xc3\xa9", Charset::Ascii), "a?");
}

} // namespace
