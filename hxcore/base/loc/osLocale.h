// Locales of the operating system.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace loc {

enum class Charset { Unknown, Utf8, Iso8859_1, Ascii };

/// A name that newlocale takes, at least for messages, and the charset of its texts.
struct OsLocale {
    std::string name = "C";
    Charset charset = Charset::Ascii;
};

Charset parseCharset(std::string_view codeset); ///< a name such as "UTF-8", however it is written

/// The operating system's form of a name such as "de_DE"; false if it has none. The answer is kept.
bool findOsLocale(const std::string& name, OsLocale* found);

/// The first of the list that works; for each that doesn't there is a log line. "C" is the last resort, as C.UTF-8
/// where the operating system has that: letters beyond ASCII keep their case and order.
OsLocale chooseOsLocale(const std::vector<std::string>& list);

OsLocale getProcessOsLocale(); ///< the one that a LocaleSetter without a list enters
void setProcessOsLocale(const OsLocale& locale);

/// The name that the environment gives for messages; "C" if none.
std::string environmentLocale();

std::string toUtf8(std::string_view text, Charset charset);   ///< text of the locale's functions
std::string fromUtf8(std::string_view text, Charset charset); ///< what the charset lacks becomes "?"

} // namespace loc
