#include "plat/SString.h"

#include "plat/utf8.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace plat {
namespace {

// Ends a text that filled `size` bytes, the NUL's place among them, at the last whole character.
void endAtCharacter(char* out, size_t size) { out[utf8::cutPartial(out, static_cast<int>(size - 1))] = '\0'; }

} // namespace

bool SString::copy(char* out, size_t size, const char* text, int maxLen) {
    if (size == 0)
        return false;
    text = strOrEmpty(text);
    const size_t len = maxLen < 0 ? std::strlen(text) : strnlen(text, static_cast<size_t>(maxLen));
    const size_t kept = std::min(len, size - 1);
    std::memmove(out, text, kept);
    out[kept] = '\0';
    if (kept == len)
        return true;
    endAtCharacter(out, size);
    return false;
}

bool SString::append(char* out, size_t size, const char* text, int maxLen) {
    const size_t used = strnlen(out, size);
    return copy(out + used, size - used, text, maxLen);
}

bool SString::format(char* out, size_t size, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const bool whole = formatV(out, size, fmt, args);
    va_end(args);
    return whole;
}

bool SString::formatV(char* out, size_t size, const char* fmt, va_list args) {
    if (size == 0)
        return false;
    const int n =
        std::vsnprintf(out, size, fmt, args); // NOLINT(clang-analyzer-valist.Uninitialized): the caller began it
    if (n >= 0 && static_cast<size_t>(n) < size)
        return true;
    if (n < 0)
        out[0] = '\0';
    else
        endAtCharacter(out, size);
    return false;
}

} // namespace plat
