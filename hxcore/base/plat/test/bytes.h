// Bytes written by hand in tests.
#pragma once

#include <cctype>
#include <stdexcept>
#include <string>
#include <string_view>

namespace plat {

/// The bytes of a text like "80 0c 'hello'": pairs of hexadecimal digits, and characters between quotes.
inline std::string bytes(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size();) {
        if (std::isspace(static_cast<unsigned char>(text[i]))) {
            ++i;
        } else if (text[i] == '\'') {
            const size_t end = text.find('\'', i + 1);
            if (end == std::string_view::npos)
                throw std::invalid_argument("bytes: no closing quote");
            out += text.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            size_t used = 0;
            out += static_cast<char>(std::stoi(std::string(text.substr(i, 2)), &used, 16));
            if (used != 2)
                throw std::invalid_argument("bytes: not a pair of digits");
            i += 2;
        }
    }
    return out;
}

} // namespace plat
