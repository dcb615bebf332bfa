// Locales of the operating system: their names, their charsets, and what the helpers write in them.
#include "loc/osLocale.h"

#include "locTesting.h"

#include "loc/LocaleSetter.h"
#include "loc/TimeString.h"
#include "loc/localeText.h"

#include <cstdlib>
#include <memory>

// glibc 2.36 forgets the path that newlocale makes of LOCPATH; none of ours is set outside these tests.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { // NOLINT: its given name
    return "leak:__argz_add_sep\n";
}

namespace {

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
    EXPECT_EQ(chosen.name, "C.UTF-8");
    EXPECT_EQ(chosen.charset, loc::Charset::Utf8);
    EXPECT_TRUE(loc::findOsLocale("POSIX", &found));
    EXPECT_EQ(found.name, "C.UTF-8");
}

TEST(osLocale, TextIsConvertedBothWays) {
    using loc::Charset;
    EXPECT_EQ(loc::toUtf8("a\xe9", Charset::Iso8859_1), "a\xc3\xa9");
    EXPECT_EQ(loc::toUtf8("a\xe9", Charset::Ascii), "a\xef\xbf\xbd");
    EXPECT_EQ(loc::toUtf8("\xc3\xa9", Charset::Utf8), "\xc3\xa9");
    EXPECT_EQ(loc::fromUtf8("a\xc3\xa9\xe2\x82\xac", Charset::Iso8859_1), "a\xe9?");
    EXPECT_EQ(loc::fromUtf8("a\xc3\xa9", Charset::Ascii), "a?");
}

/// Three locales that no other test asks for, made for these tests: answers about locales are kept.
class MadeLocales : public InEnglish {
protected:
    static void SetUpTestSuite() {
        path = std::make_unique<plat::TempDir>();
        complete = make("de_LI", "ISO-8859-1", "de_LI") && make("fr_LU", "UTF-8", "fr_LU.utf8") &&
                   make("en_PH", "ISO-8859-1", "en_PH");
        ::setenv("LOCPATH", path->root.c_str(), 1); // locale(7): instead of the machine's own
    }
    static void TearDownTestSuite() {
        ::unsetenv("LOCPATH");
        path.reset();
    }
    void SetUp() override {
        InEnglish::SetUp();
        if (!complete)
            GTEST_SKIP() << "localedef made no locales: is the package locales installed?";
    }

    static bool make(const char* source, const char* charset, const char* name) {
        const std::string command =
            std::string("localedef --no-archive -i ") + source + " -f " + charset + " " + (*path / name);
        return std::system((command + " 2>/dev/null").c_str()) == 0;
    }

    static inline std::unique_ptr<plat::TempDir> path;
    static inline bool complete = false;
};

std::string moment(loc::TimeString::DateStyle dateStyle, loc::TimeString::TimeStyle timeStyle) {
    tm time{};
    time.tm_year = 124;
    time.tm_mon = 2;
    time.tm_mday = 5;
    time.tm_hour = 21;
    time.tm_min = 5;
    time.tm_sec = 9;
    time.tm_wday = 2;
    time.tm_zone = "CET";
    plat::DString out;
    loc::TimeString::formatDateTime(out, dateStyle, timeStyle, time);
    return out.c_str();
}

std::string numbers() {
    plat::DString out;
    loc::formatInt(out, 1234567);
    out.append(" ");
    loc::formatNumber(out, 1, -1234.56);
    out.append(" ");
    loc::TimeString::formatByteSize(out, 1536);
    return out.c_str();
}

TEST_F(MadeLocales, GiveNumbersAndDatesTheirForms) {
    using loc::TimeString::DateStyle;
    using loc::TimeString::TimeStyle;
    speak("de_LI"); // the texts of its functions are ISO-8859-1
    EXPECT_EQ(loc::LocaleSetter().getCharset(), loc::Charset::Iso8859_1);
    EXPECT_EQ(numbers(), "1'234'567 -1'234.6 1.5\u00a0KB");
    EXPECT_EQ(moment(DateStyle::Full, TimeStyle::NoSeconds), "Dienstag 05 M\u00e4rz 2024 21:05");
    speak("fr_LU");
    EXPECT_EQ(loc::LocaleSetter().getCharset(), loc::Charset::Utf8);
    EXPECT_EQ(numbers(), "1\u202f234\u202f567 -1\u202f234,6 1,5\u00a0Ko");
    EXPECT_EQ(moment(DateStyle::Abbreviated, TimeStyle::Seconds), "mar 05 mar 2024 21:05:09");
    EXPECT_EQ(moment(DateStyle::Numeric, TimeStyle::None), "05.03.2024");
    speak("en_PH");
    EXPECT_EQ(numbers(), "1,234,567 -1,234.6 1.5 KB");
    EXPECT_EQ(moment(DateStyle::Full, TimeStyle::SecondsAndZone), "Tuesday, 05 March, 2024 09:05:09 PM CET");
    EXPECT_EQ(moment(DateStyle::None, TimeStyle::NoSeconds), "09:05 PM");
}

TEST_F(MadeLocales, GiveTextItsOrderAndCase) {
    for (const char* const locale : {"de_LI", "fr_LU"}) {
        const loc::LocaleSetter setter(locale);
        EXPECT_LT(loc::collate("a", "B"), 0) << locale;
        EXPECT_LT(loc::collate("\u00e4", "z"), 0) << locale;
        EXPECT_NE(loc::collate("\u0416", "\u0417"), 0) << locale; // both unknown to ISO-8859-1
        EXPECT_STREQ(loc::toUpper("\u00e4b").c_str(), "\u00c4B") << locale;
    }
    EXPECT_STREQ(loc::toUpper("\u00e4\u0436").c_str(), "\u00c4\u0416");
    const loc::LocaleSetter latin("de_LI");
    EXPECT_STREQ(loc::toUpper("\u00e4\u0436\u00ff").c_str(), "\u00c4\u0436\u0178"); // letters up to 255 change
}

} // namespace
