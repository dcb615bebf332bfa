#include "plat/cstr.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>

namespace plat {
namespace {

bool prefixMatches(const char* s, const char* prefix, bool fold) {
    for (; *prefix; ++s, ++prefix)
        if (fold ? asciiLower(*s) != asciiLower(*prefix) : *s != *prefix)
            return false;
    return true;
}

// The place in `s` where an ending as long as `suffix` would begin, or null if `s` is too short.
const char* suffixPlace(const char* s, const char* suffix) {
    const size_t sLen = std::strlen(s);
    const size_t suffixLen = std::strlen(suffix);
    return suffixLen <= sLen ? s + (sLen - suffixLen) : nullptr;
}

} // namespace

int strLen(const char* s) { return s ? static_cast<int>(std::min<size_t>(std::strlen(s), INT_MAX)) : 0; }

int strLenMax(const char* s, int max) {
    return s && max > 0 ? static_cast<int>(strnlen(s, static_cast<size_t>(max))) : 0;
}

char* strDup(const char* s, int maxLen) {
    if (!s)
        return nullptr;
    const size_t len = maxLen < 0 ? std::strlen(s) : strnlen(s, static_cast<size_t>(maxLen));
    char* copy = new char[len + 1];
    std::memcpy(copy, s, len);
    copy[len] = '\0';
    return copy;
}

int strCompare(const char* a, const char* b) { return std::strcmp(strOrEmpty(a), strOrEmpty(b)); }

int strCompareNoCase(const char* a, const char* b) {
    a = strOrEmpty(a);
    b = strOrEmpty(b);
    for (;; ++a, ++b) {
        const auto ca = static_cast<unsigned char>(asciiLower(*a));
        const auto cb = static_cast<unsigned char>(asciiLower(*b));
        if (ca != cb)
            return ca < cb ? -1 : 1;
        if (!ca)
            return 0;
    }
}

bool startsWith(const char* s, const char* prefix) {
    return prefixMatches(strOrEmpty(s), strOrEmpty(prefix), /*fold=*/false);
}

bool startsWithNoCase(const char* s, const char* prefix) {
    return prefixMatches(strOrEmpty(s), strOrEmpty(prefix), /*fold=*/true);
}

bool endsWith(const char* s, const char* suffix) {
    const char* place = suffixPlace(strOrEmpty(s), strOrEmpty(suffix));
    return place && strEquals(place, suffix);
}

bool endsWithNoCase(const char* s, const char* suffix) {
    const char* place = suffixPlace(strOrEmpty(s), strOrEmpty(suffix));
    return place && strEqualsNoCase(place, suffix);
}

bool contains(const char* start, const char* end, char ch) {
    if (!start)
        return false;
    const std::string_view text = end ? std::string_view(start, static_cast<size_t>(end - start)) : start;
    return text.find(ch) != std::string_view::npos;
}

const char* findNoCase(const char* s, const char* find) {
    s = strOrEmpty(s);
    find = strOrEmpty(find);
    const size_t findLen = std::strlen(find);
    for (size_t left = std::strlen(s); left >= findLen; ++s, --left) {
        if (prefixMatches(s, find, /*fold=*/true))
            return s;
        if (left == 0)
            break;
    }
    return nullptr;
}

void removeChars(char* s, const char* set) {
    if (!s)
        return;
    char* to = s;
    for (; *s; ++s)
        if (!std::strchr(strOrEmpty(set), *s))
            *to++ = *s;
    *to = '\0';
}

namespace {
constexpr uint64_t fnvBasis = 0xcbf29ce484222325;
constexpr uint64_t fnvPrime = 0x100000001b3;
} // namespace

uint64_t hash(const char* s) {
    uint64_t h = fnvBasis;
    for (s = strOrEmpty(s); *s; ++s)
        h = (h ^ static_cast<unsigned char>(*s)) * fnvPrime;
    return h;
}

uint64_t hashNoCase(const char* s) {
    uint64_t h = fnvBasis;
    for (s = strOrEmpty(s); *s; ++s)
        h = (h ^ static_cast<unsigned char>(asciiLower(*s))) * fnvPrime;
    return h;
}

} // namespace plat
