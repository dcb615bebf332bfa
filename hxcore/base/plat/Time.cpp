#include "plat/Time.h"

#include "plat/cstr.h"

#include <sys/time.h>

#include <chrono>
#include <cstdlib>
#include <ctime>

namespace plat {
namespace {

constexpr int64_t ticksPerSecond = 10000000;
constexpr const char* dateError = "<date error>";

int64_t saturatedAdd(int64_t a, int64_t b) {
    int64_t sum;
    return __builtin_add_overflow(a, b, &sum) ? (b < 0 ? INT64_MIN : INT64_MAX) : sum;
}

int64_t saturatedSubtract(int64_t a, int64_t b) {
    int64_t difference;
    return __builtin_sub_overflow(a, b, &difference) ? (b < 0 ? INT64_MAX : INT64_MIN) : difference;
}

int64_t saturatedMultiply(int64_t a, int64_t b) {
    int64_t product;
    return __builtin_mul_overflow(a, b, &product) ? ((a < 0) == (b < 0) ? INT64_MAX : INT64_MIN) : product;
}

constexpr int64_t floorDivide(int64_t a, int64_t b) { return a / b - (a % b < 0); }

int64_t ticksInSecond(Time t) { return t.ticks - floorDivide(t.ticks, ticksPerSecond) * ticksPerSecond; }

// Date, "T", time and, if asked, thousandths.
String isoText(const tm& date, Time t, bool withMillis) {
    String text = strFormat("%04d-%02d-%02dT%02d:%02d:%02d", date.tm_year + 1900, date.tm_mon + 1, date.tm_mday,
                            date.tm_hour, date.tm_min, date.tm_sec);
    if (!withMillis)
        return text;
    return strFormat("%s.%03d", text.c_str(), static_cast<int>(ticksInSecond(t) / (ticksPerSecond / 1000)));
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Reads a text from left to right; each step is false, and the reader then useless, if the text is another.
class TextReader {
public:
    explicit TextReader(const char* text) : pos(strOrEmpty(text)) {}

    bool literal(char c) {
        if (*pos != c)
            return false;
        ++pos;
        return true;
    }

    /// Exactly `count` digits, making a number from `min` to `max`.
    bool field(int count, int min, int max, int* out) {
        *out = 0;
        for (; count > 0; --count, ++pos) {
            if (!isDigit(*pos))
                return false;
            *out = *out * 10 + (*pos - '0');
        }
        return *out >= min && *out <= max;
    }

    /// One digit or more; a value too large becomes the largest.
    bool number(int64_t* out) {
        if (!isDigit(*pos))
            return false;
        for (*out = 0; isDigit(*pos); ++pos)
            *out = saturatedAdd(saturatedMultiply(*out, 10), *pos - '0');
        return true;
    }

    /// Up to `maxDigits` digits behind a decimal point, in ticks of a second; those beyond the seventh don't count.
    bool fraction(int maxDigits, int64_t* ticks) {
        int count = 0;
        int64_t unit = ticksPerSecond;
        for (*ticks = 0; isDigit(*pos) && count < maxDigits; ++pos, ++count) {
            unit /= 10;
            *ticks += unit * (*pos - '0');
        }
        return count > 0 && !isDigit(*pos);
    }

    bool atEnd() const { return !*pos; }
    char peek() const { return *pos; }

private:
    const char* pos;
};

bool readDate(TextReader& in, int64_t* unixDays) {
    int year, month, day;
    if (!in.field(4, 0, 9999, &year) || !in.literal('-') || !in.field(2, 1, 12, &month) || !in.literal('-') ||
        !in.field(2, 1, 31, &day))
        return false;
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    *unixDays = std::chrono::sys_days(date).time_since_epoch().count();
    return date.ok();
}

// Ticks since midnight; a second 60 is the first of the next minute.
bool readTimeOfDay(TextReader& in, int64_t* ticks) {
    int hour, minute, second;
    int64_t fraction = 0;
    if (!in.field(2, 0, 23, &hour) || !in.literal(':') || !in.field(2, 0, 59, &minute) || !in.literal(':') ||
        !in.field(2, 0, 60, &second))
        return false;
    if (in.literal('.') && !in.fraction(12, &fraction))
        return false;
    *ticks = (hour * 3600 + minute * 60 + second) * ticksPerSecond + fraction;
    return true;
}

bool readZone(TextReader& in, int64_t* offsetTicks) {
    *offsetTicks = 0;
    if (in.literal('Z'))
        return true;
    const bool west = in.literal('-');
    int hours, minutes;
    if ((!west && !in.literal('+')) || !in.field(2, 0, 23, &hours) || !in.literal(':') || !in.field(2, 0, 59, &minutes))
        return false;
    *offsetTicks = (hours * int64_t{60} + minutes) * 60 * ticksPerSecond * (west ? -1 : 1);
    return true;
}

/// A designator of a duration and its length.
struct Unit {
    char letter;
    int64_t ticks;
};
constexpr Unit dateUnits[] = {{'D', Time::ticksPerDay}};
constexpr Unit timeUnits[] = {{'H', 3600 * ticksPerSecond}, {'M', 60 * ticksPerSecond}, {'S', ticksPerSecond}};

// Adds up "number letter" pairs in the order of `units`, each at most once; `*count` becomes their number.
template <size_t N>
bool readUnits(TextReader& in, const Unit (&units)[N], int64_t* total, int* count) {
    *count = 0;
    for (size_t i = 0; isDigit(in.peek()); ++i, ++*count) {
        int64_t value = 0;
        int64_t fraction = 0;
        in.number(&value);
        const bool hasFraction = in.literal('.');
        if (hasFraction && !in.fraction(INT32_MAX, &fraction))
            return false;
        while (i < N && units[i].letter != in.peek())
            ++i;
        if (i == N || (hasFraction && units[i].letter != 'S'))
            return false;
        in.literal(units[i].letter);
        *total = saturatedAdd(*total, saturatedAdd(saturatedMultiply(value, units[i].ticks), fraction));
    }
    return true;
}

} // namespace

Time Time::now() {
    timeval t;
    gettimeofday(&t, nullptr);
    return fromUnix(t.tv_sec, static_cast<int32_t>(t.tv_usec));
}

Time Time::fromUnix(int64_t seconds, int32_t micros) {
    return Time(saturatedAdd(saturatedMultiply(seconds, ticksPerSecond), unixEpoch)) + micros * int64_t{10};
}

int64_t Time::toUnix() const {
    // Whole seconds first: the epoch is one, and ticks near the lower end would not survive the subtraction.
    return floorDivide(ticks, ticksPerSecond) - unixEpoch / ticksPerSecond;
}

Time Time::operator+(int64_t d) const { return Time(saturatedAdd(ticks, d)); }

Time Time::operator-(int64_t d) const { return Time(saturatedSubtract(ticks, d)); }

int64_t Time::operator-(Time other) const { return saturatedSubtract(ticks, other.ticks); }

String toIso8601(Time t, bool withMillis) {
    const time_t seconds = t.toUnix();
    tm date;
    if (!gmtime_r(&seconds, &date))
        return dateError;
    return strFormat("%sZ", isoText(date, t, withMillis).c_str());
}

String toIso8601Local(Time t, bool withMillis) {
    const time_t seconds = t.toUnix();
    tm date;
    if (!localtime_r(&seconds, &date))
        return dateError;
    const int minutes = static_cast<int>(std::labs(date.tm_gmtoff) / 60);
    return strFormat("%s%c%02d:%02d", isoText(date, t, withMillis).c_str(), date.tm_gmtoff < 0 ? '-' : '+',
                     minutes / 60, minutes % 60);
}

String toRfc1123(Time t) {
    constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const time_t seconds = t.toUnix();
    tm date;
    if (!gmtime_r(&seconds, &date))
        return dateError;
    return strFormat("%02d %s %04d %02d:%02d:%02d GMT", date.tm_mday, months[date.tm_mon], date.tm_year + 1900,
                     date.tm_hour, date.tm_min, date.tm_sec);
}

bool parseIso8601(const char* text, Time* out) {
    TextReader in(text);
    int64_t days, timeOfDay, offset;
    if (!readDate(in, &days) || !in.literal('T') || !readTimeOfDay(in, &timeOfDay) || !readZone(in, &offset) ||
        !in.atEnd())
        return false;
    *out = Time(Time::unixEpoch + days * Time::ticksPerDay + timeOfDay - offset);
    return true;
}

bool parseDuration(const char* text, int64_t* ticks) {
    TextReader in(text);
    int64_t total = 0;
    int days = 0;
    int parts = 0;
    if (!in.literal('P') || !readUnits(in, dateUnits, &total, &days))
        return false;
    const bool hasTime = in.literal('T');
    if (hasTime && !readUnits(in, timeUnits, &total, &parts))
        return false;
    if ((hasTime ? parts : days) == 0 || !in.atEnd())
        return false;
    *ticks = total;
    return true;
}

} // namespace plat
