// The owning text type that functions return.
#pragma once

#include "plat/cstr.h"

#include <string_view>

namespace plat {

/// Owns one UTF-8 C string, or null.
///
/// Null and "" compare equal; get() and isNull() tell them apart. Copies duplicate the text.
class String {
public:
    String() = default;
    String(const char* s) : buf(strDup(s)) {} // NOLINT: text literals are meant to convert
    explicit String(std::string_view s);      ///< bytes behind a NUL in `s` are kept, but no C function sees them
    String(const char* s, int maxLen) : buf(strDup(s, maxLen)) {}
    String(const String& other) : buf(strDup(other.buf)) {}
    String(String&& other) noexcept : buf(other.take()) {}
    ~String() { delete[] buf; }

    String& operator=(const String& other);
    String& operator=(String&& other) noexcept;
    String& operator=(const char* s); ///< `s` may lie inside the old text

    /// Takes a text that came from new char[], or null.
    static String adopt(char* s);

    /// Hands the text, null included, to the caller, who frees it with delete[]; null remains.
    char* take();

    const char* get() const { return buf; }                   ///< may be null
    char* get() { return buf; }                               ///< may be null; for changes in place
    const char* c_str() const { return buf ? buf : ""; }      ///< never null
    std::string_view view() const { return strOrEmpty(buf); } ///< lives as long as the text
    int len() const { return strLen(buf); }                   ///< bytes
    bool isNull() const { return !buf; }
    bool isEmpty() const { return !buf || !*buf; }

private:
    char* buf = nullptr;
};

inline bool operator==(const String& a, const String& b) { return strEquals(a.get(), b.get()); }
inline bool operator==(const String& a, const char* b) { return strEquals(a.get(), b); }
inline bool operator<(const String& a, const String& b) { return strCompare(a.get(), b.get()) < 0; }

/// The text of a printf form, of any length.
String strFormat(const char* fmt, ...) PLAT_PRINTF(1, 2);
String strFormatV(const char* fmt, va_list args) PLAT_PRINTF(1, 0);

} // namespace plat
