#include "loc/localeText.h"

#include "loc/LocaleSetter.h"
#include "plat/utf8.h"

#include <cstdio>
#include <cstring>
#include <cwctype>
#include <string>

namespace loc {
namespace {

// The flag "'" groups thousands (POSIX.1, fprintf); -Wpedantic knows only ISO C.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
plat::String printNumber(int precision, double value) {
    char text[400]; // a double has at most 309 digits before its point, and 102 thousands marks of up to 3 bytes
    int len = precision < 0 ? std::snprintf(text, sizeof text, "%'f", value)
                            : std::snprintf(text, sizeof text, "%'.*f", precision, value);
    if (len < static_cast<int>(sizeof text))
        return text;
    std::string longText(static_cast<size_t>(len) + 1, '\0');
    std::snprintf(longText.data(), longText.size(), "%'.*f", precision < 0 ? 6 : precision, value);
    return longText.c_str();
}

plat::String printInt(long long value) {
    char text[100];
    std::snprintf(text, sizeof text, "%'lld", value);
    return text;
}
#pragma GCC diagnostic pop

plat::String changeCase(const char* text, wint_t (*change)(wint_t)) {
    const LocaleSetter setter;
    const uint32_t last = setter.getCharset() == Charset::Utf8        ? 0x10ffff
                          : setter.getCharset() == Charset::Iso8859_1 ? 0xff
                                                                      : 0x7f;
    plat::DString out;
    const char* pos = plat::strOrEmpty(text);
    while (*pos) {
        const char* const start = pos;
        uint32_t codepoint = 0;
        const bool valid = plat::utf8::decode(&pos, nullptr, &codepoint);
        const uint32_t changed =
            valid && codepoint <= last ? static_cast<uint32_t>(change(static_cast<wint_t>(codepoint))) : codepoint;
        if (valid && changed != codepoint)
            out.appendChars(changed, 1);
        else
            out.append(start, static_cast<int>(pos - start));
    }
    return out.take();
}

} // namespace

void formatNumber(plat::DString& out, int precision, double value) {
    const LocaleSetter setter;
    out.append(toUtf8(printNumber(precision, value).view(), setter.getCharset()).c_str());
}

void formatInt(plat::DString& out, int64_t value) {
    const LocaleSetter setter;
    out.append(toUtf8(printInt(value).view(), setter.getCharset()).c_str());
}

void wordWrap(plat::DString& text, int width, int indent) {
    const LocaleSetter setter;
    text.wordWrap(width, indent);
}

int collate(const char* a, const char* b) {
    const LocaleSetter setter;
    const Charset charset = setter.getCharset();
    const char* const left = plat::strOrEmpty(a);
    const char* const right = plat::strOrEmpty(b);
    const int order = std::strcoll(fromUtf8(left, charset).c_str(), fromUtf8(right, charset).c_str());
    return order != 0 ? order : std::strcmp(left, right); // what the charset lacks looks alike to strcoll
}

plat::String toUpper(const char* text) { return changeCase(text, std::towupper); }

plat::String toLower(const char* text) { return changeCase(text, std::towlower); }

} // namespace loc
