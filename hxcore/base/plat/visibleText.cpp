#include "plat/visibleText.h"

#include "plat/DString.h"
#include "plat/utf8.h"

#include <algorithm>
#include <iterator>

namespace plat {
namespace {

struct Range {
    uint32_t first;
    uint32_t last;
};

// In order. White_Space of Unicode PropList.txt.
constexpr Range blanks[] = {
    {0x09, 0x0d},     // tab, line feed, vertical tab, form feed, carriage return
    {0x20, 0x20},     //
    {0x85, 0x85},     // next line
    {0xa0, 0xa0},     // no-break
    {0x1680, 0x1680}, // ogham
    {0x2000, 0x200a}, // en quad to hair space
    {0x2028, 0x2029}, // line and paragraph separator
    {0x202f, 0x202f}, // narrow no-break
    {0x205f, 0x205f}, // mathematical
    {0x2800, 0x2800}, // a braille pattern without dots, which is no space by name only
    {0x3000, 0x3000}, // ideographic
};

// In order. Controls that are no blanks, and Default_Ignorable_Code_Point.
constexpr Range invisibles[] = {
    {0x00, 0x1f},       {0x7f, 0x9f},       // C0, DEL, C1
    {0xad, 0xad},                           // soft hyphen
    {0x34f, 0x34f},                         // grapheme joiner
    {0x61c, 0x61c},                         // Arabic letter mark
    {0x115f, 0x1160},                       // Hangul fillers
    {0x17b4, 0x17b5},                       // Khmer inherent vowels
    {0x180b, 0x180f},                       // Mongolian selectors and separator
    {0x200b, 0x200f},                       // zero-width blank, joiners, direction marks
    {0x202a, 0x202e},                       // embeddings and overrides
    {0x2060, 0x206f},                       // word joiner, invisible operators, isolates, deprecated controls
    {0x3164, 0x3164},                       // Hangul filler
    {0xfe00, 0xfe0f},                       // variation selectors
    {0xfeff, 0xfeff},                       // zero-width no-break
    {0xffa0, 0xffa0},                       // half-width Hangul filler
    {0xfff0, 0xfffb},                       // unassigned, interlinear annotation
    {0x1bca0, 0x1bca3}, {0x1d173, 0x1d17a}, // shorthand and music controls
    {0xe0000, 0xe0fff},                     // tags, more variation selectors
};

template <size_t count>
bool contains(const Range (&ranges)[count], uint32_t codepoint) {
    const Range* behind = std::upper_bound(std::begin(ranges), std::end(ranges), codepoint,
                                           [](uint32_t value, const Range& range) { return value < range.first; });
    return behind != std::begin(ranges) && codepoint <= std::prev(behind)->last;
}

} // namespace

bool isBlankOrBreak(uint32_t codepoint) { return contains(blanks, codepoint); }

bool isInvisible(uint32_t codepoint) { return contains(invisibles, codepoint) && !isBlankOrBreak(codepoint); }

String visibleText(const char* text) {
    const String repaired = repairUtf8(text);
    const char* pos = repaired.c_str();
    const char* end = pos + repaired.len();
    DString result;
    bool afterBlank = false;
    while (pos < end) {
        const char* start = pos;
        uint32_t codepoint = 0;
        utf8::decode(&pos, end, &codepoint);
        if (isInvisible(codepoint))
            continue;
        const bool blank = isBlankOrBreak(codepoint);
        if (!blank)
            result.append(start, static_cast<int>(pos - start));
        else if (!afterBlank)
            result.append(" ");
        afterBlank = blank;
    }
    return result.take();
}

} // namespace plat
