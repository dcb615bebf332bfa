#include "tx/latin1.h"

#include "plat/utf8.h"

#include <cstdint>

namespace tx {

std::string utf8ToLatin1(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    const char* pos = utf8.data();
    const char* const end = pos + utf8.size();
    while (pos < end) {
        uint32_t codepoint = 0;
        const bool valid = plat::utf8::decode(&pos, end, &codepoint);
        out += valid && codepoint <= 0xff ? static_cast<char>(codepoint) : '?';
    }
    return out;
}

std::string latin1ToUtf8(std::string_view latin1) {
    std::string out;
    out.reserve(latin1.size());
    for (const char c : latin1) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xc0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3f));
        }
    }
    return out;
}

} // namespace tx
