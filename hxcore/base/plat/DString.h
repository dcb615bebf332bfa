// A text that grows.
#pragma once

#include "plat/String.h"

namespace plat {

/// A growing C string: always ends in a NUL, and its capacity is a power of two of at least 8 once it holds something.
///
/// Texts handed to its operations may lie inside the string itself. Beyond 1 GiB it throws std::bad_alloc.
class DString {
public:
    DString() = default;
    explicit DString(const char* text) { append(text); }
    DString(const DString& other) { append(other.c_str(), other.len()); }
    DString(DString&& other) noexcept;
    ~DString() { delete[] buf; }
    DString& operator=(const DString& other);
    DString& operator=(DString&& other) noexcept;

    void reserve(int n); ///< room for `n` bytes, the NUL among them
    DString& append(const char* text, int maxLen = -1);
    DString& append(const String& text) { return append(text.get()); }
    DString& appendChars(uint32_t codepoint, int count);     ///< as UTF-8; throws above U+10FFFF
    DString& format(const char* fmt, ...) PLAT_PRINTF(2, 3); ///< appends
    DString& formatV(const char* fmt, va_list args) PLAT_PRINTF(2, 0);

    /// Replaces the bytes [start, end) by at most `maxLen` bytes of `text`; both are clamped to the length.
    DString& insert(int start, int end, const char* text, int maxLen = -1);
    DString& replaceAll(const char* find, const char* with); ///< left to right; asserts that `find` isn't empty

    /// Breaks lines longer than `width` characters at blanks; lines made so start with `indent` blanks.
    ///
    /// Line feeds in the text start a line of their own; a word longer than a line stays whole.
    DString& wordWrap(int width, int indent = 0);
    DString& repairUtf8(); ///< see plat::repairUtf8
    void truncate(int lenBytes);
    void clear() { truncate(0); }

    /// The text, never null; the DString is empty behind.
    String take();

    const char* c_str() const { return buf ? buf : ""; }
    char* data() { return buf; } ///< null while nothing was ever appended; the NUL's place must stay
    int len() const { return length; }
    int getCapacity() const { return capacity; }
    bool isEmpty() const { return length == 0; }
    char operator[](int i) const { return c_str()[i]; }

private:
    char* buf = nullptr;
    int capacity = 0;
    int length = 0; // bytes before the NUL
};

} // namespace plat
