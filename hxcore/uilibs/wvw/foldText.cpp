#include "wvw/foldText.h"

#include "plat/utf8.h"

namespace wvw {
namespace {

/// Capitals whose small letters stand `shift` behind them, each `step` code points.
struct Range {
    uint32_t first;
    uint32_t last;
    uint32_t shift;
    uint32_t step;
};

constexpr Range ranges[] = {
    {0x41, 0x5a, 32, 1},   {0xc0, 0xd6, 32, 1},   {0xd8, 0xde, 32, 1},   {0x100, 0x12e, 1, 2},  {0x132, 0x136, 1, 2},
    {0x139, 0x147, 1, 2},  {0x14a, 0x176, 1, 2},  {0x179, 0x17d, 1, 2},  {0x386, 0x386, 38, 1}, {0x388, 0x38a, 37, 1},
    {0x38c, 0x38c, 64, 1}, {0x38e, 0x38f, 63, 1}, {0x391, 0x3a1, 32, 1}, {0x3a3, 0x3ab, 32, 1}, {0x400, 0x40f, 80, 1},
    {0x410, 0x42f, 32, 1}, {0x460, 0x480, 1, 2},  {0x48a, 0x4be, 1, 2},  {0x4d0, 0x52e, 1, 2},
};

} // namespace

uint32_t foldCodepoint(uint32_t codepoint) {
    for (const Range& range : ranges) {
        if (codepoint >= range.first && codepoint <= range.last && (codepoint - range.first) % range.step == 0)
            return codepoint + range.shift;
    }
    return codepoint;
}

std::string foldText(const char* text) {
    std::string result;
    for (const char* p = text ? text : ""; *p;) {
        uint32_t codepoint = 0;
        if (!plat::utf8::decode(&p, nullptr, &codepoint))
            codepoint = plat::replacementChar;
        char bytes[5] = {};
        char* end = bytes;
        plat::encodeUtf8(foldCodepoint(codepoint), &end);
        result.append(bytes, end);
    }
    return result;
}

} // namespace wvw
