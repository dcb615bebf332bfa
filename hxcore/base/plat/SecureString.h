// Text and bytes that must not linger in memory.
#pragma once

#include "plat/cstr.h"

#include <cstddef>

namespace plat {

/// Zeroes `len` bytes in a way that the compiler can't remove.
void secureWipe(void* ptr, size_t len);

/// True if the bytes are equal; the time depends on `len` only.
bool secureCompare(const void* a, const void* b, size_t len);

/// A secret text: its memory is zeroed before it is freed or replaced. Never log one.
class SecureString {
public:
    SecureString() = default;
    explicit SecureString(const char* text, int maxLen = -1) : buf(strDup(text, maxLen)) {}
    SecureString(const SecureString& other) : buf(strDup(other.buf)) {}
    SecureString(SecureString&& other) noexcept;
    ~SecureString() { clear(); }
    SecureString& operator=(const SecureString& other);
    SecureString& operator=(SecureString&& other) noexcept;

    void set(const char* text, int maxLen = -1); ///< null clears
    void clear();                                ///< wipes and frees; null remains

    const char* get() const { return buf; }               ///< may be null
    const char* c_str() const { return strOrEmpty(buf); } ///< never null
    int len() const { return strLen(buf); }
    bool isNull() const { return !buf; }
    bool isEmpty() const { return !buf || !*buf; }

private:
    char* buf = nullptr;
};

} // namespace plat
