#include "plat/String.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace plat {

String::String(std::string_view s) : buf(new char[s.size() + 1]) {
    std::memcpy(buf, s.data(), s.size());
    buf[s.size()] = '\0';
}

String& String::operator=(const String& other) {
    if (this != &other)
        *this = other.buf;
    return *this;
}

String& String::operator=(String&& other) noexcept {
    if (this != &other) {
        delete[] buf;
        buf = other.take();
    }
    return *this;
}

String& String::operator=(const char* s) {
    char* copy = strDup(s);
    delete[] buf;
    buf = copy;
    return *this;
}

String String::adopt(char* s) {
    String result;
    result.buf = s;
    return result;
}

char* String::take() {
    char* s = buf;
    buf = nullptr;
    return s;
}

String strFormat(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    String result = strFormatV(fmt, args);
    va_end(args);
    return result;
}

String strFormatV(const char* fmt, va_list args) {
    // A negative return is an old library's word for "too small", and today's for an argument that can't be printed:
    // the second never ends, so the doubling does.
    constexpr size_t maxGuess = 1 << 20;
    for (size_t size = 128; size <= maxGuess;) {
        std::unique_ptr<char[]> text(new char[size]);
        va_list copy;
        va_copy(copy, args);
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_copy is not followed
        const int n = std::vsnprintf(text.get(), size, fmt, copy);
        va_end(copy);
        if (n >= 0 && static_cast<size_t>(n) < size)
            return String::adopt(text.release());
        if (n >= 0) {
            text.reset(new char[static_cast<size_t>(n) + 1]);
            std::vsnprintf(text.get(), static_cast<size_t>(n) + 1, fmt, args);
            return String::adopt(text.release());
        }
        size *= 2;
    }
    return "";
}

} // namespace plat
