#include "plat/direction.h"

#include "plat/DString.h"
#include "plat/utf8.h"

#include <algorithm>

namespace plat {
namespace {

constexpr uint32_t firstStrongIsolate = 0x2068;
constexpr uint32_t popIsolate = 0x2069;
constexpr unsigned char firstLead = 0xd6; // of U+0590, before which there is neither

bool isIn(uint32_t codepoint, uint32_t first, uint32_t last) { return codepoint >= first && codepoint <= last; }

bool isIsolate(uint32_t codepoint) { return isIn(codepoint, 0x2066, popIsolate); }

/// True if every isolate ends within the text, and nothing ends that did not begin in it.
bool isBalanced(const char* pos, const char* end) {
    int depth = 0;
    while (pos < end && depth >= 0) {
        uint32_t codepoint = 0;
        if (utf8::decode(&pos, end, &codepoint) && isIsolate(codepoint))
            depth += codepoint == popIsolate ? -1 : 1;
    }
    return depth == 0;
}

} // namespace

bool isRightToLeft(uint32_t codepoint) {
    return codepoint >= 0x590 &&
           (codepoint < 0x900 || isIn(codepoint, 0xfb1d, 0xfdff) || isIn(codepoint, 0xfe70, 0xfefc) ||
            isIn(codepoint, 0x10800, 0x10fff) || isIn(codepoint, 0x1e800, 0x1efff));
}

bool isDirectionControl(uint32_t codepoint) {
    return codepoint == 0x61c || isIn(codepoint, 0x200e, 0x200f) || isIn(codepoint, 0x202a, 0x202e) ||
           isIn(codepoint, 0x2066, 0x2069);
}

String isolated(const char* value, int lenBytes) {
    const char* const start = strOrEmpty(value);
    const char* const end = start + (lenBytes < 0 ? strLen(start) : lenBytes);
    const auto isHigh = [](char c) { return static_cast<unsigned char>(c) >= firstLead; };
    if (std::none_of(start, end, isHigh))
        return String(start, static_cast<int>(end - start));
    const bool keepIsolates = isBalanced(start, end);
    DString kept;
    bool rightToLeft = false;
    for (const char *pos = start, *from = start; pos < end; from = pos) {
        uint32_t codepoint = 0;
        const bool valid = utf8::decode(&pos, end, &codepoint);
        if (valid && isDirectionControl(codepoint) && !(isIsolate(codepoint) && keepIsolates))
            continue;
        rightToLeft = rightToLeft || (valid && (isRightToLeft(codepoint) || isIsolate(codepoint)));
        kept.append(from, static_cast<int>(pos - from));
    }
    if (!rightToLeft)
        return kept.take();
    DString result;
    result.appendChars(firstStrongIsolate, 1).append(kept.c_str(), kept.len()).appendChars(popIsolate, 1);
    return result.take();
}

} // namespace plat
