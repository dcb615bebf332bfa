#include "loc/TimeString.h"

#include "locTesting.h"

#include "loc/LocaleSetter.h"
#include "loc/LocalizedPath.h"
#include "loc/datePattern.h"
#include "loc/localeText.h"

#include <climits>
#include <cstdlib>

namespace {

using loc::DatePatterns;
using loc::TimeString::DateStyle;
using loc::TimeString::TimeStyle;

// What glibc has for some locales.
const DatePatterns american{"%m/%d/%Y", "%a %d %b %Y %r %Z", "%r", "%I:%M:%S %p"};
const DatePatterns german{"%d.%m.%Y", "%a %d %b %Y %T %Z", "%T", "%I:%M:%S %p"};
const DatePatterns plainC{"%m/%d/%y", "%a %b %e %H:%M:%S %Y", "%H:%M:%S", "%I:%M:%S %p"};
const DatePatterns japanese{"%Y年%m月%d日", "%Y年%m月%d日 %H時%M分%S秒", "%H時%M分%S秒", "%p%I時%M分%S秒"};
const DatePatterns finnish{"%d.%m.%Y", "%a %-d. %Bta %Y %H.%M.%S", "%H.%M.%S", "%I:%M:%S %p"};

TEST(datePattern, DatesLoseTheirTimes) {
    EXPECT_EQ(loc::makeDatePattern(american, DateStyle::Numeric), "%m/%d/%Y");
    EXPECT_EQ(loc::makeDatePattern(american, DateStyle::Abbreviated), "%a %d %b %Y");
    EXPECT_EQ(loc::makeDatePattern(german, DateStyle::Full), "%A %d %B %Y");
    EXPECT_EQ(loc::makeDatePattern(plainC, DateStyle::Abbreviated), "%a %b %e %Y");
    EXPECT_EQ(loc::makeDatePattern(japanese, DateStyle::Full), "%Y年%m月%d日");
    EXPECT_EQ(loc::makeDatePattern(finnish, DateStyle::Abbreviated), "%a %-d. %bta %Y");
    EXPECT_EQ(loc::makeDatePattern({"%A %d. %B", "", "", ""}, DateStyle::Numeric), "%a %d. %b");
    EXPECT_EQ(loc::makeDatePattern({"%d %b", "%R, %a., %x %%a", "%T", ""}, DateStyle::Full), "%A, %d %B %%a");
    EXPECT_EQ(loc::makeDatePattern({"", "%a %d", "%T", ""}, DateStyle::Full), "%A %d");
}

TEST(datePattern, TimesGainOrLoseSeconds) {
    EXPECT_EQ(loc::makeTimePattern(american, TimeStyle::NoSeconds), "%I:%M %p");
    EXPECT_EQ(loc::makeTimePattern(american, TimeStyle::Seconds), "%r");
    EXPECT_EQ(loc::makeTimePattern(german, TimeStyle::NoSeconds), "%R");
    EXPECT_EQ(loc::makeTimePattern(plainC, TimeStyle::NoSeconds), "%H:%M");
    EXPECT_EQ(loc::makeTimePattern(japanese, TimeStyle::NoSeconds), "%H時%M分");
    EXPECT_EQ(loc::makeTimePattern(finnish, TimeStyle::NoSeconds), "%H.%M");
    const auto make = [](const char* time, TimeStyle style) {
        return loc::makeTimePattern({"", "", time, "%I:%M:%S %p"}, style);
    };
    EXPECT_EQ(make("%R", TimeStyle::Seconds), "%R:%S");
    EXPECT_EQ(make("%H.%M Uhr", TimeStyle::Seconds), "%H.%M.%S Uhr");
    EXPECT_EQ(make("%M past %H", TimeStyle::Seconds), "%H:%M:%S");
    EXPECT_EQ(make("%H:%M:%OS", TimeStyle::NoSeconds), "%H:%M");
    EXPECT_EQ(make("%S.%M.%H", TimeStyle::NoSeconds), "%M.%H");
    EXPECT_EQ(make("%H:%M:%S (%Z)", TimeStyle::Seconds), "%H:%M:%S");
    EXPECT_EQ(make("%Z %H:%M:%S", TimeStyle::Seconds), "%H:%M:%S");
    EXPECT_EQ(make("%H:%M (%Z)", TimeStyle::SecondsAndZone), "%H:%M:%S (%Z)");
}

TEST(datePattern, TheTimeWithinADateIsAdjustedInPlace) {
    const loc::SplitPattern c = loc::splitDateTime(plainC, DateStyle::Full, TimeStyle::NoSeconds);
    EXPECT_EQ(c.before + "|" + c.time + "|" + c.after, "%A %B %e |%H:%M| %Y");
    const loc::SplitPattern us = loc::splitDateTime(american, DateStyle::Abbreviated, TimeStyle::NoSeconds);
    EXPECT_EQ(us.before + "|" + us.time + "|" + us.after, "%a %d %b %Y |%I:%M %p|");
    const loc::SplitPattern zone = loc::splitDateTime(german, DateStyle::Abbreviated, TimeStyle::SecondsAndZone);
    EXPECT_EQ(zone.before + "|" + zone.time + "|" + zone.after, "%a %d %b %Y |%T| %Z");
}

tm leapDay() {
    tm time{};
    time.tm_year = 124;
    time.tm_mon = 1;
    time.tm_mday = 29;
    time.tm_hour = 21;
    time.tm_min = 5;
    time.tm_sec = 9;
    time.tm_wday = 4;
    time.tm_zone = "CET";
    return time;
}

class TimeString : public InEnglish {
protected:
    // Texts in the C locale, which every machine has.
    void SetUp() override {
        InEnglish::SetUp();
        former = loc::getProcessOsLocale();
        loc::setProcessOsLocale({});
    }
    ~TimeString() override { loc::setProcessOsLocale(former); }

    static std::string dateTime(DateStyle dateStyle, TimeStyle timeStyle) {
        plat::DString out;
        loc::TimeString::formatDateTime(out, dateStyle, timeStyle, leapDay());
        return out.c_str();
    }

    loc::OsLocale former;
};

TEST_F(TimeString, DatesAndTimesInEachStyle) {
    EXPECT_EQ(dateTime(DateStyle::Numeric, TimeStyle::None), "02/29/24");
    EXPECT_EQ(dateTime(DateStyle::Abbreviated, TimeStyle::None), "Thu Feb 29 2024");
    EXPECT_EQ(dateTime(DateStyle::Full, TimeStyle::None), "Thursday February 29 2024");
    EXPECT_EQ(dateTime(DateStyle::None, TimeStyle::NoSeconds), "21:05");
    EXPECT_EQ(dateTime(DateStyle::None, TimeStyle::Seconds), "21:05:09");
    EXPECT_EQ(dateTime(DateStyle::None, TimeStyle::SecondsAndZone), "21:05:09 CET");
    EXPECT_EQ(dateTime(DateStyle::Numeric, TimeStyle::NoSeconds), "02/29/24, 21:05");
    EXPECT_EQ(dateTime(DateStyle::Numeric, TimeStyle::SecondsAndZone), "02/29/24, 21:05:09 CET");
    EXPECT_EQ(dateTime(DateStyle::Full, TimeStyle::NoSeconds), "Thursday February 29 21:05 2024");
    EXPECT_EQ(dateTime(DateStyle::Abbreviated, TimeStyle::SecondsAndZone), "Thu Feb 29 21:05:09 CET 2024");
    EXPECT_EQ(dateTime(DateStyle::None, TimeStyle::None), "");
}

TEST_F(TimeString, DaysNearTodayHaveNames) {
    const tm now = leapDay();
    const auto relative = [&](int days, int hour) {
        tm time = now;
        time.tm_mday += days;
        time.tm_hour = hour;
        time.tm_isdst = -1;
        ::mktime(&time);
        plat::DString out;
        loc::TimeString::formatRelativeDate(out, time, now);
        return std::string(out.c_str());
    };
    EXPECT_EQ(relative(0, 0), "00:05");
    EXPECT_EQ(relative(0, 23), "23:05");
    EXPECT_EQ(relative(-1, 23), "yesterday");
    EXPECT_EQ(relative(1, 0), "tomorrow"); // the first of March
    EXPECT_EQ(relative(-2, 12), "02/27/24");
    EXPECT_EQ(relative(2, 12), "03/02/24");
    plat::DString out;
    tm longAgo{};
    longAgo.tm_mday = 1;
    loc::TimeString::formatRelativeDate(out, longAgo);
    EXPECT_STREQ(out.c_str(), "01/01/00");
}

TEST_F(TimeString, PeriodsChangeTheirUnitAtTwiceIt) {
    const struct {
        int seconds;
        const char* text;
    } cases[] = {{0, "0 seconds"},      {1, "1 second"},        {119, "119 seconds"}, {120, "2 minutes"},
                 {7199, "119 minutes"}, {7200, "2 hours"},      {172799, "47 hours"}, {172800, "2 days"},
                 {259199, "2 days"},    {INT_MAX, "24855 days"}};
    for (const auto& c : cases) {
        plat::DString out;
        loc::TimeString::formatPeriod(out, c.seconds);
        EXPECT_STREQ(out.c_str(), c.text);
    }
}

TEST_F(TimeString, SizesAndRates) {
    const struct {
        uint64_t bytes;
        const char* text;
    } sizes[] = {{0, "0 bytes"},
                 {1, "1 byte"},
                 {1023, "1023 bytes"},
                 {1024, "1.0 KB"},
                 {1536, "1.5 KB"},
                 {10240, "10 KB"},
                 {1048575, "1024 KB"},
                 {1048576, "1.0 MB"},
                 {uint64_t{3} << 30, "3.0 GB"},
                 {uint64_t{1} << 40, "1.0 TB"},
                 {UINT64_MAX, "16777216 TB"}};
    for (const auto& c : sizes) {
        plat::DString out;
        loc::TimeString::formatByteSize(out, c.bytes);
        EXPECT_STREQ(out.c_str(), c.text);
    }
    const struct {
        uint32_t rate;
        const char* text;
    } rates[] = {{0, "0 bytes/s"},          {1, "1 byte/s"},        {1023, "1023 bytes/s"},
                 {1024, "1 KB/s"},          {0xfffff, "1023 KB/s"}, {0x100000, "1 MB/s"},
                 {0x3fffffff, "1023 MB/s"}, {0x40000000, "1 GB/s"}, {UINT32_MAX, "3 GB/s"}};
    for (const auto& c : rates) {
        plat::DString out;
        loc::TimeString::formatByteRate(out, c.rate);
        EXPECT_STREQ(out.c_str(), c.text);
    }
}

TEST_F(TimeString, NumbersInTheCLocale) {
    plat::DString out;
    loc::formatNumber(out, 2, 1234.567);
    out.append(" ");
    loc::formatNumber(out, -1, 0.5);
    out.append(" ");
    loc::formatInt(out, INT64_MIN);
    EXPECT_STREQ(out.c_str(), "1234.57 0.500000 -9223372036854775808");
    plat::DString longest;
    loc::formatNumber(longest, 500, 1e300);
    EXPECT_EQ(longest.len(), 301 + 1 + 500);
}

TEST_F(TimeString, CaseAndOrderInTheCLocale) {
    EXPECT_STREQ(loc::toUpper("aZ\xc3\xa9").c_str(), "AZ\xc3\xa9"); // only ASCII there
    EXPECT_STREQ(loc::toLower("Az\xc3\x89\xff").c_str(), "az\xc3\x89\xff");
    EXPECT_LT(loc::collate("B", "a"), 0);
    EXPECT_EQ(loc::collate(nullptr, ""), 0);
    EXPECT_GT(loc::collate("b", nullptr), 0);
    plat::DString text("one two");
    loc::wordWrap(text, 4, 1);
    EXPECT_STREQ(text.c_str(), "one\n two");
}

TEST_F(TimeString, CaseInUtf8) {
    loc::OsLocale utf8;
    if (!loc::findOsLocale("C.UTF-8", &utf8))
        GTEST_SKIP() << "no C.UTF-8 here";
    loc::setProcessOsLocale(utf8);
    EXPECT_STREQ(loc::toUpper("stra\xc3\x9f"
                              "e \xc3\xa9\xd0\xb6")
                     .c_str(),
                 "STRA\xc3\x9f"
                 "E \xc3\x89\xd0\x96");
    EXPECT_STREQ(loc::toLower("\xc3\x89\xd0\x96").c_str(), "\xc3\xa9\xd0\xb6");
}

TEST(LocalizedPath, LeavesOutTheHomeDirectory) {
    const struct {
        const char* home;
        const char* path;
        const char* shown;
    } cases[] = {{"/home/joe", "/home/joe/a/b", "a/b"},
                 {"/home/joe/", "/home/joe/a", "a"},
                 {"/home/joe", "/home/joe", "/home/joe"},
                 {"/home/joe", "/home/joe/", "/home/joe/"},
                 {"/home/joe", "/home/joel/a", "/home/joel/a"},
                 {"/", "/etc/x", "/etc/x"},
                 {"", "/etc/x", "/etc/x"}};
    const char* const variable = std::getenv("HOME");
    const std::string former = variable ? variable : "";
    for (const auto& c : cases) {
        ::setenv("HOME", c.home, 1);
        plat::DString out;
        loc::LocalizedPath(out, c.path, /*stripHome=*/true);
        EXPECT_STREQ(out.c_str(), c.shown) << c.home;
        plat::DString whole;
        loc::LocalizedPath(whole, c.path, /*stripHome=*/false);
        EXPECT_STREQ(whole.c_str(), c.path);
    }
    ::setenv("HOME", former.c_str(), 1);
}

} // namespace
