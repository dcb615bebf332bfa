#include "loc/datePattern.h"

#include <algorithm>
#include <cstddef>
#include <langinfo.h>
#include <string_view>
#include <vector>

namespace loc {
namespace {

using TimeString::DateStyle;
using TimeString::TimeStyle;

constexpr std::string_view hourLetters = "HIkl";
constexpr std::string_view timeLetters = "HIklMSpPTRrXs";
constexpr std::string_view secondLetters = "STrXcs";
constexpr std::string_view zoneLetters = "Zz";

// A pattern cut into its directives ("%a", "%Ey", "%-d") and single bytes.
using Tokens = std::vector<std::string>;

Tokens tokenise(std::string_view pattern) {
    Tokens tokens;
    for (size_t i = 0; i < pattern.size();) {
        size_t end = i + 1;
        if (pattern[i] == '%') {
            while (end < pattern.size() && std::string_view("_-0^#123456789EO").find(pattern[end]) != std::string::npos)
                ++end;
            end = std::min(end + 1, pattern.size());
        }
        tokens.emplace_back(pattern.substr(i, end - i));
        i = end;
    }
    return tokens;
}

std::string join(Tokens::const_iterator begin, Tokens::const_iterator end) {
    std::string pattern;
    for (; begin != end; ++begin)
        pattern += *begin;
    return pattern;
}

std::string join(const Tokens& tokens) { return join(tokens.begin(), tokens.end()); }

bool isOneOf(const std::string& token, std::string_view letters) {
    return token.size() > 1 && letters.find(token.back()) != std::string_view::npos;
}

bool isPunctuation(const std::string& token) {
    return token.size() == 1 && std::string_view(":.,;-/ ").find(token[0]) != std::string_view::npos;
}

// A byte of a word such as those for hour and minute in East Asian patterns.
bool isNonAscii(const std::string& token) { return token.size() == 1 && static_cast<unsigned char>(token[0]) >= 0x80; }

void replace(Tokens& tokens, std::string_view directive, const std::string& pattern) {
    const Tokens with = tokenise(pattern);
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i] != directive)
            continue;
        tokens.erase(tokens.begin() + static_cast<ptrdiff_t>(i));
        tokens.insert(tokens.begin() + static_cast<ptrdiff_t>(i), with.begin(), with.end());
        i += with.size();
        --i;
    }
}

// Full names stand without the point of an abbreviation.
void removePointBehind(Tokens& tokens, std::string_view directive) {
    for (size_t i = 0; i + 1 < tokens.size(); ++i)
        if (tokens[i] == directive && tokens[i + 1] == ".")
            tokens.erase(tokens.begin() + static_cast<ptrdiff_t>(i) + 1);
}

void chooseNames(Tokens& tokens, DateStyle style) {
    if (style != DateStyle::Full) {
        replace(tokens, "%A", "%a");
        replace(tokens, "%B", "%b");
        return;
    }
    for (const char* const name : {"%a", "%b"})
        removePointBehind(tokens, name);
    replace(tokens, "%a", "%A");
    replace(tokens, "%b", "%B");
}

// Takes out a range, with the brackets around it or the blanks before it, else behind it.
void removeZone(Tokens& tokens) {
    for (auto zone = tokens.begin(); zone != tokens.end();) {
        if (!isOneOf(*zone, zoneLetters)) {
            ++zone;
            continue;
        }
        auto begin = zone;
        auto end = zone + 1;
        if (begin != tokens.begin() && *(begin - 1) == "(" && end != tokens.end() && *end == ")") {
            --begin;
            ++end;
        }
        const auto inner = begin;
        while (begin != tokens.begin() && *(begin - 1) == " ")
            --begin;
        while (begin == inner && end != tokens.end() && *end == " ")
            ++end;
        zone = tokens.erase(begin, end);
    }
}

void stripSeconds(Tokens& tokens, const std::string& ampm) {
    replace(tokens, "%T", "%R");
    replace(tokens, "%r", ampm);
    for (auto second = tokens.begin(); second != tokens.end();) {
        if (*second != "%S" && *second != "%OS") {
            ++second;
            continue;
        }
        auto begin = second;
        auto end = second + 1;
        if (begin != tokens.begin() && isPunctuation(*(begin - 1)))
            --begin;
        else if (end != tokens.end() && isPunctuation(*end))
            ++end;
        while (end != tokens.end() && isNonAscii(*end))
            ++end;
        second = tokens.erase(begin, end);
    }
}

bool hasSeconds(const Tokens& tokens) {
    return std::any_of(tokens.begin(), tokens.end(), [](const auto& token) { return isOneOf(token, secondLetters); });
}

void addSeconds(Tokens& tokens) {
    if (hasSeconds(tokens))
        return;
    replace(tokens, "%R", "%R:%S");
    for (size_t i = 2; i < tokens.size() && !hasSeconds(tokens); ++i) {
        if (tokens[i] != "%M" || !isPunctuation(tokens[i - 1]) || !isOneOf(tokens[i - 2], hourLetters))
            continue;
        const std::string mark = tokens[i - 1];
        const auto behind = tokens.begin() + static_cast<ptrdiff_t>(i) + 1;
        tokens.insert(behind, {mark, "%S"});
    }
    if (!hasSeconds(tokens))
        tokens = tokenise("%H:%M:%S");
}

void chooseSecondsAndZone(Tokens& tokens, const std::string& ampm, TimeStyle style) {
    if (style != TimeStyle::SecondsAndZone)
        removeZone(tokens);
    if (style == TimeStyle::NoSeconds)
        stripSeconds(tokens, ampm);
    else
        addSeconds(tokens);
}

bool isTime(const std::string& token) { return isOneOf(token, timeLetters); }

// Joins what was on both sides of a time that isn't wanted.
std::string joinAround(std::string before, std::string after) {
    constexpr std::string_view marks = " ,";
    if (after.empty() || marks.find(after.front()) != std::string_view::npos)
        before.erase(before.find_last_not_of(marks) + 1);
    if (before.empty())
        after.erase(0, after.find_first_not_of(marks));
    return before + after;
}

} // namespace

DatePatterns DatePatterns::ofLocale() {
    DatePatterns patterns{nl_langinfo(D_FMT), nl_langinfo(D_T_FMT), nl_langinfo(T_FMT), nl_langinfo(T_FMT_AMPM)};
    if (patterns.ampm.empty())
        patterns.ampm = "%I:%M:%S %p";
    return patterns;
}

SplitPattern splitDateTime(const DatePatterns& patterns, DateStyle style, TimeStyle timeStyle) {
    Tokens tokens = tokenise(patterns.both);
    replace(tokens, "%X", patterns.time);
    replace(tokens, "%r", patterns.ampm);
    replace(tokens, "%x", patterns.date);
    chooseNames(tokens, style);
    if (timeStyle != TimeStyle::SecondsAndZone)
        removeZone(tokens);

    const auto first = std::find_if(tokens.begin(), tokens.end(), isTime);
    if (first == tokens.end())
        return {join(tokens), "", ""};
    auto last = std::find_if(tokens.rbegin(), tokens.rend(), isTime).base();
    while (last != tokens.end() && isNonAscii(*last))
        ++last;
    Tokens time(first, last);
    if (timeStyle != TimeStyle::None)
        chooseSecondsAndZone(time, patterns.ampm, timeStyle);
    return {join(tokens.begin(), first), join(time), join(last, tokens.end())};
}

std::string makeDatePattern(const DatePatterns& patterns, DateStyle style) {
    if (style == DateStyle::Numeric) {
        Tokens tokens = tokenise(patterns.date);
        chooseNames(tokens, style);
        return join(tokens);
    }
    const SplitPattern split = splitDateTime(patterns, style, TimeStyle::None);
    return split.time.empty() ? split.before : joinAround(split.before, split.after);
}

std::string makeTimePattern(const DatePatterns& patterns, TimeStyle style) {
    Tokens tokens = tokenise(patterns.time);
    chooseSecondsAndZone(tokens, patterns.ampm, style);
    return join(tokens);
}

bool hasZone(const std::string& pattern) {
    const Tokens tokens = tokenise(pattern);
    return std::any_of(tokens.begin(), tokens.end(), [](const auto& token) { return isOneOf(token, zoneLetters); });
}

} // namespace loc
