#include "plat/Time.h"

#include "plat/Exception.h"
#include "plat/Uuid.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace plat {
namespace {

constexpr int64_t second = 10000000;

/// Sets TZ for a scope.
class ZoneScope {
public:
    explicit ZoneScope(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~ZoneScope() {
        unsetenv("TZ");
        tzset();
    }
};

TEST(Time, CountsFrom1601) {
    EXPECT_EQ(toIso8601(Time(0)), "1601-01-01T00:00:00Z");
    EXPECT_EQ(toIso8601(Time::fromUnix(0)), "1970-01-01T00:00:00Z");
    EXPECT_EQ(Time::fromUnix(1, 500000).ticks, Time::unixEpoch + second + 5000000);
    EXPECT_EQ(Time(Time::unixEpoch - 1).toUnix(), -1);
    EXPECT_EQ(toIso8601(Time(INT64_MAX), true), "30828-09-14T02:48:05.477Z");
    EXPECT_EQ(toIso8601(Time(-1), true), "1600-12-31T23:59:59.999Z");
    EXPECT_FALSE(toIso8601(Time(INT64_MIN)).isEmpty());
}

TEST(Time, ArithmeticSaturates) {
    const Time last(INT64_MAX);
    const Time first(INT64_MIN);
    EXPECT_EQ(last + 1, last);
    EXPECT_EQ(first + -1, first);
    EXPECT_EQ(first - 1, first);
    EXPECT_EQ(last - -1, last);
    EXPECT_EQ(last - first, INT64_MAX);
    EXPECT_EQ(first - last, INT64_MIN);
    EXPECT_EQ(Time(5) - Time(7), -2);
    EXPECT_EQ(Time::fromUnix(INT64_MAX), last);
    EXPECT_EQ(Time::fromUnix(INT64_MIN), Time(INT64_MIN + Time::unixEpoch)); // saturated, then moved to the epoch
    Time t(1);
    t += 2;
    t -= 4;
    EXPECT_EQ(t.ticks, -1);
}

TEST(Time, LocalTextTellsTheOffset) {
    const Time t = Time::fromUnix(1709208000, 123456); // 2024-02-29T12:00:00Z
    EXPECT_EQ(toIso8601(t, true), "2024-02-29T12:00:00.123Z");
    EXPECT_EQ(toRfc1123(t), "29 Feb 2024 12:00:00 GMT");
    {
        ZoneScope zone("XXX-05:30");
        EXPECT_EQ(toIso8601Local(t), "2024-02-29T17:30:00+05:30");
    }
    ZoneScope zone("YYY03:30");
    EXPECT_EQ(toIso8601Local(t, true), "2024-02-29T08:30:00.123-03:30");
}

TEST(Time, ParsesIso8601) {
    struct Case {
        const char* text;
        int64_t unixSeconds;
        int64_t ticks; // beyond the seconds
    };
    const Case cases[] = {
        {"1970-01-01T00:00:00Z", 0, 0},
        {"2024-02-29T12:00:00Z", 1709208000, 0},
        {"2024-02-29T12:00:00.5Z", 1709208000, 5000000},
        {"2024-02-29T12:00:00.123456789012Z", 1709208000, 1234567},
        {"2024-02-29T12:00:00+01:30", 1709208000 - 5400, 0},
        {"2024-02-29T12:00:00-01:30", 1709208000 + 5400, 0},
        {"2016-12-31T23:59:60Z", 1483228800, 0},
        {"2000-02-29T00:00:00Z", 951782400, 0},
    };
    for (const Case& c : cases) {
        Time t;
        ASSERT_TRUE(parseIso8601(c.text, &t)) << c.text;
        EXPECT_EQ(t, Time::fromUnix(c.unixSeconds) + c.ticks) << c.text;
    }
    Time early;
    ASSERT_TRUE(parseIso8601("0000-01-01T00:00:00Z", &early));
    EXPECT_EQ(toIso8601(early), "0000-01-01T00:00:00Z");
}

TEST(Time, RefusesFieldsOutOfRange) {
    Time t(42);
    EXPECT_FALSE(parseIso8601(nullptr, &t));
    for (const char* text : {"",
                             "2024",
                             "2024-02-30T00:00:00Z",
                             "2023-02-29T00:00:00Z",
                             "1900-02-29T00:00:00Z",
                             "2024-00-01T00:00:00Z",
                             "2024-13-01T00:00:00Z",
                             "2024-01-00T00:00:00Z",
                             "2024-01-01T24:00:00Z",
                             "2024-01-01T00:60:00Z",
                             "2024-01-01T00:00:61Z",
                             "2024-01-01T00:00:00",
                             "2024-01-01 00:00:00Z",
                             "2024-1-01T00:00:00Z",
                             "2024-01-01T00:00:00.Z",
                             "2024-01-01T00:00:00.1234567890123Z",
                             "2024-01-01T00:00:00Zx",
                             "2024-01-01T00:00:00+24:00",
                             "2024-01-01T00:00:00+01:60",
                             "2024-01-01T00:00:00+0100",
                             "-024-01-01T00:00:00Z",
                             "2024-01-01T00:00Z"})
        EXPECT_FALSE(parseIso8601(text, &t)) << text;
    EXPECT_EQ(t.ticks, 42);
}

TEST(Duration, AddsUpItsParts) {
    struct Case {
        const char* text;
        int64_t ticks;
    };
    const Case cases[] = {{"PT1.5S", 15000000},
                          {"P1D", 864000000000},
                          {"P1DT2H3M4S", 864000000000 + (2 * 3600 + 3 * 60 + 4) * second},
                          {"PT90M", 5400 * second},
                          {"PT0.00000019S", 1},
                          {"PT0S", 0},
                          {"P99999999999999999999D", INT64_MAX},
                          {"P99999999DT99999999999999999999H", INT64_MAX}};
    for (const Case& c : cases) {
        int64_t ticks = -1;
        ASSERT_TRUE(parseDuration(c.text, &ticks)) << c.text;
        EXPECT_EQ(ticks, c.ticks) << c.text;
    }
    int64_t ticks = 42;
    for (const char* bad : {"", "P", "PT", "P1DT", "1D", "P1H", "PT1D", "PT1M1H", "PT1H1H", "PT1.5M", "P1.5D", "PT1.S",
                            "PT.5S", "PT1", "P-1D", "PT1S ", "P1D2D"})
        EXPECT_FALSE(parseDuration(bad, &ticks)) << bad;
    EXPECT_EQ(ticks, 42);
}

TEST(Uuid, ParsesHyphensBeforeAnyPair) {
    const char* plain = "00112233445566778899aabbccddeeff";
    const char* hyphens = "00112233-4455-6677-8899-aabbccddeeff";
    const Uuid id(plain);
    EXPECT_EQ(id.toString(), hyphens);
    EXPECT_EQ(id.toString(/*hyphens=*/false), plain);
    for (const char* good : {hyphens, "00112233445566778899AABBCCDDEEFF", "-00-11-2233-4455-66778899-aabbccddeeff"}) {
        Uuid parsed;
        EXPECT_TRUE(parsed.parse(good)) << good;
        EXPECT_EQ(parsed, id) << good;
    }
    Uuid kept(plain);
    for (const char* bad : {"0", "0011", "0-0112233445566778899aabbccddeeff", "00--112233445566778899aabbccddeeff",
                            "00112233445566778899aabbccddeefff", "00112233445566778899aabbccddeeff-",
                            "00112233445566778899aabbccddeeg0", "{00112233-4455-6677-8899-aabbccddeeff}", "-"})
        EXPECT_FALSE(kept.parse(bad)) << bad;
    EXPECT_EQ(kept, id);
    EXPECT_TRUE(kept.parse(nullptr));
    EXPECT_TRUE(kept.isZero());
    EXPECT_TRUE(kept.parse(""));
    EXPECT_EQ(whatOf([&] { const Uuid thrown("zz"); }), "Invalid Uuid 'zz'");
}

TEST(UuidSet, IsSortedAndJoinedByCommas) {
    const char* low = "00112233-4455-6677-8899-aabbccddeeff";
    const char* high = "f0112233-4455-6677-8899-aabbccddeeff";
    const std::string joined = std::string(low) + "," + high;
    UuidSet set;
    EXPECT_TRUE(set.add(Uuid(high)));
    EXPECT_TRUE(set.add(Uuid(low)));
    EXPECT_FALSE(set.add(Uuid(low)));
    EXPECT_EQ(set.toString(), joined.c_str());
    UuidSet parsed;
    EXPECT_TRUE(parsed.parse((joined + "," + low).c_str()));
    EXPECT_EQ(parsed, set);
    for (const std::string& bad : {joined + ",", "," + joined, std::string("x"), std::string(",")})
        EXPECT_FALSE(parsed.parse(bad.c_str())) << bad;
    EXPECT_EQ(parsed.size(), 2);
    EXPECT_TRUE(parsed.remove(Uuid(low)));
    EXPECT_FALSE(parsed.contains(Uuid(low)));
    EXPECT_FALSE(parsed.remove(Uuid(low)));
    EXPECT_TRUE(parsed.parse(nullptr));
    EXPECT_TRUE(parsed.isEmpty());
    EXPECT_EQ(parsed.toString(), "");
}

} // namespace
} // namespace plat
