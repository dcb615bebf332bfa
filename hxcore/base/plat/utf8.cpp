#include "plat/utf8.h"

#include "plat/DString.h"
#include "plat/Exception.h"

#include <cstring>
#include <string_view>

namespace plat {
namespace {

constexpr bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; }

// Bytes of a sequence by its first one, 0 if none begins so.
constexpr int sequenceLen(unsigned char lead) {
    if (lead < 0x80)
        return 1;
    if (lead < 0xc0)
        return 0;
    if (lead < 0xe0)
        return 2;
    if (lead < 0xf0)
        return 3;
    return lead < 0xf8 ? 4 : 0;
}

constexpr uint32_t leadBits(unsigned char lead, int len) { return len == 1 ? lead : lead & (0x7fu >> len); }

// The lowest code point that needs `len` bytes.
constexpr uint32_t lowest[] = {0, 0, 0x80, 0x800, 0x10000};

const char* endOf(const char* start, const char* end) { return end ? end : start + (start ? std::strlen(start) : 0); }

// Passes over bytes below 0x80, eight at a time.
const char* skipAscii(const char* start, const char* end) {
    constexpr uint64_t highBits = 0x8080808080808080U;
    for (uint64_t word; end - start >= 8; start += 8) {
        std::memcpy(&word, start, sizeof word);
        if (word & highBits)
            break;
    }
    while (start < end && static_cast<unsigned char>(*start) < 0x80)
        ++start;
    return start;
}

} // namespace

void encodeUtf8(uint32_t codepoint, char** pos) {
    if (codepoint > 0x10ffff)
        throw Exception("Unicode out of range");
    char*& out = *pos;
    if (codepoint < 0x80) {
        *out++ = static_cast<char>(codepoint);
        return;
    }
    const int len = codepoint < 0x800 ? 2 : codepoint < 0x10000 ? 3 : 4;
    const unsigned leadMark = 0xf00u >> len & 0xff;
    *out++ = static_cast<char>(leadMark | codepoint >> 6 * (len - 1));
    for (int left = len - 2; left >= 0; --left)
        *out++ = static_cast<char>(0x80 | (codepoint >> 6 * left & 0x3f));
}

String repairUtf8(const char* text, int textLen, int maxLen) {
    const char* pos = strOrEmpty(text);
    const char* end = pos + (text && textLen >= 0 ? textLen : strLen(text));
    // Nearly every text is as it should be, and is copied in one piece.
    const auto size = static_cast<size_t>(end - pos);
    if ((maxLen < 0 || size <= static_cast<size_t>(maxLen)) && !std::memchr(pos, 0, size) && utf8::isValid(pos, end))
        return String(std::string_view(pos, size));
    DString result;
    while (pos < end) {
        const char* start = pos;
        uint32_t codepoint = 0;
        const bool valid = utf8::decode(&pos, end, &codepoint) && codepoint != 0;
        const int bytes = valid ? static_cast<int>(pos - start) : 3;
        if (maxLen >= 0 && bytes > maxLen - result.len())
            break;
        if (valid)
            result.append(start, bytes);
        else
            result.appendChars(replacementChar, 1);
    }
    return result.take();
}

namespace utf8 {

bool isValid(const char* start, const char* end) {
    end = endOf(start, end);
    uint32_t codepoint;
    while (true) {
        start = skipAscii(start, end);
        if (start == end)
            return true;
        if (!decode(&start, end, &codepoint))
            return false;
    }
}

bool isValidCodepoint(uint32_t codepoint) {
    if (codepoint > 0x10ffff || (codepoint & 0xfffe) == 0xfffe)
        return false;
    return !(codepoint >= 0xd800 && codepoint <= 0xdfff) && !(codepoint >= 0xfdd0 && codepoint <= 0xfdef);
}

bool decode(const char** pos, const char* end, uint32_t* codepoint) {
    const auto lead = static_cast<unsigned char>(*(*pos)++);
    const int len = sequenceLen(lead);
    if (len == 0)
        return false;
    uint32_t value = leadBits(lead, len);
    // Without an end the NUL stops this: it is no continuation byte.
    for (int i = 1; i < len; ++i) {
        if (*pos == end || !isContinuation(**pos))
            return false;
        value = value << 6 | (static_cast<unsigned char>(*(*pos)++) & 0x3f);
    }
    if (value < lowest[len] || !isValidCodepoint(value))
        return false;
    *codepoint = value;
    return true;
}

void stepBack(const char** pos, const char* limit) {
    for (int i = 0; limit ? *pos > limit : i < 4; ++i)
        if (!isContinuation(*--*pos))
            return;
}

int countChars(const char* start, const char* end) {
    end = endOf(start, end);
    int count = 0;
    uint32_t codepoint;
    for (; start < end; ++count)
        decode(&start, end, &codepoint);
    return count;
}

int cutPartial(const char* start, int len) {
    for (int back = 1; back <= 4 && back <= len; ++back) {
        const char c = start[len - back];
        if (!isContinuation(c))
            return sequenceLen(static_cast<unsigned char>(c)) > back ? len - back : len;
    }
    return len;
}

} // namespace utf8
} // namespace plat
