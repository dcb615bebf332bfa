#include "plat/encodings.h"

#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/SString.h"

#include <cstring>
#include <vector>

namespace plat {
namespace {

// -1 for what is no digit.
int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    c = asciiLower(c);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The byte of two digits, or -1; reads no further than the first that is none.
int hexPair(const char* s) {
    const int high = hexValue(s[0]);
    const int low = high < 0 ? -1 : hexValue(s[1]);
    return low < 0 ? -1 : high * 16 + low;
}

constexpr char base64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

char* newText(size_t len) {
    char* text = new char[len + 1];
    text[len] = '\0';
    return text;
}

bool isAlnum(char c) {
    c = asciiLower(c);
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

} // namespace

String binToHex(size_t len, const void* data) {
    constexpr char digits[] = "0123456789abcdef";
    const auto* bytes = static_cast<const uint8_t*>(data);
    char* text = newText(len * 2);
    for (size_t i = 0; i < len; ++i) {
        text[2 * i] = digits[bytes[i] >> 4];
        text[2 * i + 1] = digits[bytes[i] & 15];
    }
    return String::adopt(text);
}

bool hexToBin(const char* text, size_t len, void* out) {
    text = strOrEmpty(text);
    auto* bytes = static_cast<uint8_t*>(out);
    for (size_t i = 0; i < len; ++i, text += 2) {
        const int value = hexPair(text);
        if (value < 0)
            return false;
        bytes[i] = static_cast<uint8_t>(value);
    }
    return !*text;
}

bool hexToBin(const char* text, MBuf<uint8_t>& out) {
    MBuf<uint8_t> bytes(strLen(text) / 2, out.isSecure());
    if (!hexToBin(text, static_cast<size_t>(bytes.size()), bytes.data()))
        return false;
    out.swap(bytes);
    return true;
}

MBuf<uint8_t> hexToBinOrThrow(const char* text) {
    MBuf<uint8_t> bytes;
    if (!hexToBin(text, bytes))
        throw Exception("Bad hex string");
    return bytes;
}

String base64Encode(size_t len, const void* data) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    char* text = newText((len + 2) / 3 * 4);
    char* to = text;
    for (size_t i = 0; i < len; i += 3) {
        const size_t here = len - i < 3 ? len - i : 3;
        uint32_t group = 0;
        for (size_t j = 0; j < 3; ++j)
            group = group << 8 | (j < here ? bytes[i + j] : 0u);
        for (size_t j = 0; j < 4; ++j)
            *to++ = j <= here ? base64Digits[group >> (18 - 6 * j) & 63] : '=';
    }
    return String::adopt(text);
}

bool base64Decode(const char* text, MBuf<uint8_t>& out) {
    std::vector<uint8_t> bytes;
    uint32_t bits = 0;
    int digits = 0;
    int padding = 0;
    for (const char* s = strOrEmpty(text); *s; ++s) {
        if (std::strchr(" \t\r\n", *s))
            continue;
        if (*s == '=') {
            ++padding;
            continue;
        }
        const char* digit = std::strchr(base64Digits, *s);
        if (!digit || padding)
            return false;
        bits = bits << 6 | static_cast<uint32_t>(digit - base64Digits);
        if (++digits % 4 != 1)
            bytes.push_back(static_cast<uint8_t>(bits >> (4 - digits % 4) % 4 * 2));
    }
    const int spareBits = digits % 4 * 6 % 8;
    if (digits % 4 == 1 || padding != (4 - digits % 4) % 4 || (bits & ((1u << spareBits) - 1)))
        return false;
    out.assign(bytes.data(), static_cast<int>(bytes.size()));
    return true;
}

String percentEncode(const char* text, const char* keep) {
    DString result;
    for (const char* s = strOrEmpty(text); *s; ++s) {
        char encoded[4] = {*s, '\0'};
        if (!isAlnum(*s) && !std::strchr(strOrEmpty(keep), *s))
            SString::format(encoded, sizeof(encoded), "%%%.2X", static_cast<unsigned>(static_cast<unsigned char>(*s)));
        result.append(encoded);
    }
    return result.take();
}

String percentDecode(const char* text) {
    DString result;
    for (const char* s = strOrEmpty(text); *s; ++s) {
        if (*s != '%') {
            result.append(s, 1);
            continue;
        }
        const int value = hexPair(s + 1);
        if (value <= 0)
            throw Exception("Bad percent encoding");
        const char byte = static_cast<char>(value);
        result.append(&byte, 1);
        s += 2;
    }
    return result.take();
}

} // namespace plat
