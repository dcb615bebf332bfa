#include "hxutil/scripts.h"

#include "hxutil/unicodeTables.h"
#include "plat/direction.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace hxutil {
namespace {

// The Unicode Standard 3.12.
namespace hangul {
constexpr int syllables = 0xac00, lead = 0x1100, vowel = 0x1161, tail = 0x11a7;
constexpr int leads = 19, vowels = 21, tails = 28;
constexpr bool isJamo(int codepoint) { return codepoint >= lead && codepoint < 0x1200; }
} // namespace hangul

bool isIn(int codepoint, int first, int last) { return codepoint >= first && codepoint <= last; }

} // namespace

bool isMark(int codepoint) {
    if (codepoint < firstSpecialCharacter)
        return false;
    const auto code = static_cast<uint32_t>(codepoint);
    const MarkRange* behind =
        std::upper_bound(std::begin(markRanges), std::end(markRanges), code,
                         [](uint32_t value, const MarkRange& range) { return value < range.first; });
    return code <= std::prev(behind)->last;
}

bool isHidden(int codepoint) {
    return codepoint >= firstSpecialCharacter &&
           (codepoint == 0x34f || isIn(codepoint, 0x180b, 0x180f) || isIn(codepoint, 0x200b, 0x200d) ||
            codepoint == 0x2060 || isIn(codepoint, 0x2066, 0x2069) || isIn(codepoint, 0xfe00, 0xfe0f) ||
            codepoint == 0xfeff || isIn(codepoint, 0xe0000, 0xe0fff));
}

int composed(int base, int mark) {
    using namespace hangul;
    if (isIn(base, lead, lead + leads - 1) && isIn(mark, vowel, vowel + vowels - 1))
        return syllables + ((base - lead) * vowels + (mark - vowel)) * tails;
    if (isIn(base, syllables, syllables + leads * vowels * tails - 1) && (base - syllables) % tails == 0 &&
        isIn(mark, tail + 1, tail + tails - 1))
        return base + mark - tail;
    const std::pair<int, int> key(base, mark);
    const Composition* found = std::lower_bound(
        std::begin(compositions), std::end(compositions), key,
        [](const Composition& c, const std::pair<int, int>& k) { return std::pair<int, int>(c.base, c.mark) < k; });
    const bool exact = found != std::end(compositions) && found->base == base && found->mark == mark;
    return exact ? found->whole : 0;
}

bool needsLayoutBeyond(int codepoint) {
    return isMark(codepoint) || plat::isRightToLeft(static_cast<uint32_t>(codepoint)) || isHidden(codepoint) ||
           hangul::isJamo(codepoint) || codepoint > 0x1f000;
}

} // namespace hxutil
