// Walking over the characters of a text.
#pragma once

#include "plat/utf8.h"

#include <cstdint>

namespace hxutil {

/// Gives the character at `*pos`, which moves behind it; false at the end of the text. A null text is at its end, as is
/// one that stands on a NUL or on `end` (null: none). Invalid bytes give U+FFFD, a sequence cut off by `end` gives -1.
inline bool nextChar(const char** pos, const char* end, int* code) {
    if (!*pos || *pos == end || !**pos)
        return false;
    const unsigned char first = static_cast<unsigned char>(**pos);
    if (first < 0x80) {
        ++*pos;
        *code = first;
        return true;
    }
    uint32_t decoded = 0;
    const bool valid = plat::utf8::decode(pos, end, &decoded);
    *code = valid ? static_cast<int>(decoded) : *pos == end ? -1 : static_cast<int>(plat::replacementChar);
    return true;
}

} // namespace hxutil
