#include "rfb/keySymbols.h"

#include "rfb/keysymTable.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace rfb {
namespace {

constexpr uint32_t unicodeBase = 0x01000000;

bool isLatin1(uint32_t code) { return (code >= 0x20 && code <= 0x7e) || (code >= 0xa0 && code <= 0xff); }

/// The older keysym of a character outside Latin-1, or 0.
uint32_t olderKeysym(uint32_t code) {
    static const std::vector<KeysymChar> byCode = [] {
        std::vector<KeysymChar> sorted(std::begin(keysymChars), std::end(keysymChars));
        // Stable: of several keysyms for a character the lowest stays first.
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const KeysymChar& a, const KeysymChar& b) { return a.code < b.code; });
        return sorted;
    }();
    const auto found = std::lower_bound(byCode.begin(), byCode.end(), code,
                                        [](const KeysymChar& entry, uint32_t wanted) { return entry.code < wanted; });
    return found != byCode.end() && found->code == code ? found->keysym : 0;
}

struct Alias {
    uint32_t keysym;
    uint32_t meaning;
};

// The keypad without its digits, and left tab.
constexpr Alias aliases[] = {
    {key::IsoLeftTab, key::Tab},
    {0xff80, key::Space},
    {0xff89, key::Tab},
    {key::KPEnter, key::Return},
    {0xff91, key::F1},
    {0xff92, key::F1 + 1},
    {0xff93, key::F1 + 2},
    {0xff94, key::F4},
    {0xff95, key::Home},
    {0xff96, key::Left},
    {0xff97, key::Up},
    {0xff98, key::Right},
    {0xff99, key::Down},
    {0xff9a, key::PageUp},
    {0xff9b, key::PageDown},
    {0xff9c, key::End},
    {0xff9e, key::Insert},
    {0xff9f, key::Delete},
    {0xffaa, '*'},
    {0xffab, '+'},
    {0xffac, ','},
    {0xffad, '-'},
    {0xffae, '.'},
    {0xffaf, '/'},
    {0xffbd, '='},
};

} // namespace

uint32_t canonicalKeysym(uint32_t keysym) {
    if (keysym >= unicodeBase && keysym <= unicodeBase + 0x10ffff)
        return keysymFromUnicode(keysym - unicodeBase);
    if (keysym >= 0xffb0 && keysym <= 0xffb9)
        return '0' + (keysym - 0xffb0);
    for (const Alias& alias : aliases)
        if (alias.keysym == keysym)
            return alias.meaning;
    return keysym;
}

uint32_t unicodeFromKeysym(uint32_t keysym) {
    const uint32_t canonical = canonicalKeysym(keysym);
    if (isLatin1(canonical))
        return canonical;
    if (canonical > unicodeBase && canonical <= unicodeBase + 0x10ffff) {
        const uint32_t code = canonical - unicodeBase;
        return code < 0xa0 ? 0 : code; // the rest of the low ones are controls
    }
    const auto* found =
        std::lower_bound(std::begin(keysymChars), std::end(keysymChars), canonical,
                         [](const KeysymChar& entry, uint32_t wanted) { return entry.keysym < wanted; });
    return found != std::end(keysymChars) && found->keysym == canonical ? found->code : 0;
}

uint32_t keysymFromUnicode(uint32_t codepoint) {
    if (isLatin1(codepoint))
        return codepoint;
    const uint32_t older = olderKeysym(codepoint);
    return older ? older : unicodeBase + codepoint;
}

} // namespace rfb
