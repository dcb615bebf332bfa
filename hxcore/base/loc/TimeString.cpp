#include "loc/TimeString.h"

#include "loc/LocaleSetter.h"
#include "loc/Localize.h"
#include "loc/datePattern.h"
#include "loc/format.h"
#include "loc/localeText.h"
#include "plat/Time.h"

namespace loc::TimeString {
namespace {

constexpr const char* dateError = "<date error>";
constexpr size_t longestDate = 4096;

// The zone goes behind the time by the language's rule.
std::string addZone(const std::string& timePattern) {
    return formatted(LOC_RAW("loc_timezone_separator"), {timePattern.c_str(), "%Z"}).c_str();
}

// False if strftime can't do it.
bool fill(std::string& out, const std::string& pattern, const tm& time) {
    // An empty result and a full buffer look alike: one more byte tells them apart.
    const std::string marked = pattern + "|";
    for (size_t size = 128; size <= longestDate; size *= 2) {
        out.resize(size);
        const size_t len = std::strftime(out.data(), size, marked.c_str(), &time);
        if (len > 0) {
            out.resize(len - 1);
            return true;
        }
    }
    return false;
}

bool fillUtf8(std::string& out, const std::string& pattern, const tm& time) {
    if (!fill(out, pattern, time))
        return false;
    out = toUtf8(out, LocaleSetter::current()->getCharset());
    return true;
}

std::string zonedTimePattern(const DatePatterns& patterns, TimeStyle style) {
    const std::string pattern = makeTimePattern(patterns, style);
    return style == TimeStyle::SecondsAndZone && !hasZone(pattern) ? addZone(pattern) : pattern;
}

// One pattern for both, or "" if the locale has none that can be adjusted in place.
std::string makeJointPattern(const DatePatterns& patterns, DateStyle dateStyle, TimeStyle timeStyle) {
    if (dateStyle == DateStyle::Numeric)
        return "";
    SplitPattern split = splitDateTime(patterns, dateStyle, timeStyle);
    if (split.time.empty())
        return "";
    if (timeStyle == TimeStyle::SecondsAndZone && !hasZone(split.before + split.time + split.after))
        split.time = addZone(split.time);
    return split.before + split.time + split.after;
}

bool formatBoth(std::string& out, DateStyle dateStyle, TimeStyle timeStyle, const tm& time) {
    const DatePatterns patterns = DatePatterns::ofLocale();
    if (timeStyle == TimeStyle::None)
        return dateStyle == DateStyle::None || fillUtf8(out, makeDatePattern(patterns, dateStyle), time);
    if (dateStyle == DateStyle::None)
        return fillUtf8(out, zonedTimePattern(patterns, timeStyle), time);
    const std::string joint = makeJointPattern(patterns, dateStyle, timeStyle);
    if (!joint.empty())
        return fillUtf8(out, joint, time);
    std::string timeText;
    if (!fillUtf8(out, makeDatePattern(patterns, dateStyle), time) ||
        !fillUtf8(timeText, zonedTimePattern(patterns, timeStyle), time))
        return false;
    out = formatted(LOC_RAW("loc_timedate_separator"), {out.c_str(), timeText.c_str()}).c_str();
    return true;
}

// Days since some day, of the calendar day that `time` names.
int64_t dayNumber(const tm& time) {
    tm midnight{};
    midnight.tm_year = time.tm_year;
    midnight.tm_mon = time.tm_mon;
    midnight.tm_mday = time.tm_mday;
    return plat::Time::fromUnix(timegm(&midnight)).ticks / plat::Time::ticksPerDay;
}

void formatCount(plat::DString& out, const char* key, int count) { format(out, LOC_PLURAL(key, count), {count}); }

} // namespace

void formatDateTime(plat::DString& out, DateStyle dateStyle, TimeStyle timeStyle, const tm& time) {
    const LocaleSetter setter;
    std::string text;
    out.append(formatBoth(text, dateStyle, timeStyle, time) ? text.c_str() : dateError);
}

void formatRelativeDate(plat::DString& out, const tm& time) {
    const time_t seconds = plat::Time::now().toUnix();
    tm now{};
    localtime_r(&seconds, &now);
    formatRelativeDate(out, time, now);
}

void formatRelativeDate(plat::DString& out, const tm& time, const tm& now) {
    switch (dayNumber(time) - dayNumber(now)) {
    case -1:
        out.append(LOC_TEXT("loc_time_yesterday"));
        break;
    case 0:
        formatDateTime(out, DateStyle::None, TimeStyle::NoSeconds, time);
        break;
    case 1:
        out.append(LOC_TEXT("loc_time_tomorrow"));
        break;
    default:
        formatDateTime(out, DateStyle::Numeric, TimeStyle::None, time);
    }
}

void formatPeriod(plat::DString& out, int seconds) {
    // The changeover is at twice the unit, so that the count is never 1 of a large one.
    if (seconds >= 2 * 86400)
        formatCount(out, "loc_period_day", seconds / 86400);
    else if (seconds >= 2 * 3600)
        formatCount(out, "loc_period_hour", seconds / 3600);
    else if (seconds < 2 * 60)
        formatCount(out, "loc_period_second", seconds);
    else
        formatCount(out, "loc_period_minute", seconds / 60);
}

void formatByteSize(plat::DString& out, uint64_t bytes) {
    static constexpr struct {
        int shift;
        const char* key;
    } units[] = {{40, "loc_bytesize_tebi_decimal"},
                 {30, "loc_bytesize_gibi_decimal"},
                 {20, "loc_bytesize_mebi_decimal"},
                 {10, "loc_bytesize_kibi_decimal"}};
    for (const auto& unit : units) {
        const uint64_t size = uint64_t{1} << unit.shift;
        if (bytes < size)
            continue;
        const float value = static_cast<float>(bytes) / static_cast<float>(size);
        plat::DString number;
        formatNumber(number, value < 10 ? 1 : 0, static_cast<double>(value));
        format(out, LOC_RAW(unit.key), {number});
        return;
    }
    formatCount(out, "loc_bytesize_unit", static_cast<int>(bytes));
}

void formatByteRate(plat::DString& out, uint32_t bytesPerSecond) {
    if (bytesPerSecond > 0x3fffffff)
        formatCount(out, "loc_byterate_gibi", static_cast<int>(bytesPerSecond >> 30));
    else if (bytesPerSecond > 0xfffff)
        formatCount(out, "loc_byterate_mebi", static_cast<int>(bytesPerSecond >> 20));
    else if (bytesPerSecond < 1024)
        formatCount(out, "loc_byterate_unit", static_cast<int>(bytesPerSecond));
    else
        formatCount(out, "loc_byterate_kibi", static_cast<int>(bytesPerSecond >> 10));
}

} // namespace loc::TimeString
