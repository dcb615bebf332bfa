// Quoted strings of PO files; also for the compiler of catalogs, so it stands on nothing.
#pragma once

#include <string>
#include <string_view>

namespace loc {

/// Appends to `out` what the quotes around `text` enclose, escapes replaced. Blanks may stand before the first quote.
/// Gives null, or says what is wrong and leaves `out` as it was.
inline const char* unquote(std::string_view text, std::string& out) {
    static constexpr std::string_view codes = "abfnrtv\"'?\\";
    static constexpr std::string_view values = "\a\b\f\n\r\t\v\"'?\\";
    const size_t open = text.find_first_not_of(' ');
    if (open == std::string_view::npos || text[open] != '"')
        return "Junk preceding string data";
    std::string result;
    for (size_t i = open + 1; i < text.size(); ++i) {
        if (text[i] == '"') {
            if (i + 1 != text.size())
                return "Junk following string data";
            out += result;
            return nullptr;
        }
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        if (++i == text.size())
            return "Invalid escape at end";
        const size_t place = codes.find(text[i]);
        if (place == std::string_view::npos)
            return "Invalid escape code";
        result += values[place];
    }
    return "Missing terminator";
}

} // namespace loc
