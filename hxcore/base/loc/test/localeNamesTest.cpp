#include "loc/localeNames.h"

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

} // namespace
