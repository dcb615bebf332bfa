// Text into arrays of fixed size.
#pragma once

#include "plat/cstr.h"

#include <cstddef>

namespace plat {

/// Bounded copies and formats into a char array of the caller.
///
/// The array always ends in a NUL. What doesn't fit is cut away, and with it a UTF-8 character that would be split.
/// Each function gives false if something was cut. A size of 0 writes nothing.
class SString {
public:
    static bool copy(char* out, size_t size, const char* text, int maxLen = -1);
    static bool append(char* out, size_t size, const char* text, int maxLen = -1);
    static bool format(char* out, size_t size, const char* fmt, ...) PLAT_PRINTF(3, 4);
    static bool formatV(char* out, size_t size, const char* fmt, va_list args) PLAT_PRINTF(3, 0);

    template <size_t N>
    static bool copy(char (&out)[N], const char* text) {
        return copy(out, N, text);
    }
    template <size_t N>
    static bool append(char (&out)[N], const char* text) {
        return append(out, N, text);
    }
};

} // namespace plat
