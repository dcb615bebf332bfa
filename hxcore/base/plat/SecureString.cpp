#include "plat/SecureString.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace plat {

void secureWipe(void* ptr, size_t len) {
    if (!ptr)
        return;
    // The compiler doesn't know what a volatile pointer points at when it is called.
    static void* (*const volatile wipe)(void*, int, size_t) = std::memset;
    wipe(ptr, 0, len);
}

bool secureCompare(const void* a, const void* b, size_t len) {
    const auto* x = static_cast<const volatile uint8_t*>(a);
    const auto* y = static_cast<const volatile uint8_t*>(b);
    unsigned differences = 0;
    for (size_t i = 0; i < len; ++i)
        differences |= static_cast<unsigned>(x[i] ^ y[i]);
    return differences == 0;
}

SecureString::SecureString(SecureString&& other) noexcept : buf(std::exchange(other.buf, nullptr)) {}

SecureString& SecureString::operator=(const SecureString& other) {
    if (this != &other)
        set(other.buf);
    return *this;
}

SecureString& SecureString::operator=(SecureString&& other) noexcept {
    if (this != &other) {
        clear();
        buf = std::exchange(other.buf, nullptr);
    }
    return *this;
}

void SecureString::set(const char* text, int maxLen) {
    char* copy = strDup(text, maxLen); // first: the text may be our own
    clear();
    buf = copy;
}

void SecureString::clear() {
    if (buf)
        secureWipe(buf, std::strlen(buf));
    delete[] buf;
    buf = nullptr;
}

} // namespace plat
