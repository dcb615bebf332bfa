// Bytes written by hand in tests.
#pragma once

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace io {

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

/// A message in one frame: the name as a string8, then the body.
inline std::string message(std::string_view name, std::string_view body) {
    const size_t size = 1 + name.size() + body.size();
    if (size > 0x7fff)
        throw std::invalid_argument("message: too long for a frame");
    std::string frame{static_cast<char>(0x80 | size >> 8), static_cast<char>(size & 0xff),
                      static_cast<char>(name.size())};
    return frame.append(name).append(body);
}

/// The payloads of whole messages on a link, wherever their frames were cut.
inline std::vector<std::string> messagesOf(std::string_view wire) {
    std::vector<std::string> messages;
    std::string message;
    while (wire.size() >= 2) {
        const unsigned header = static_cast<unsigned char>(wire[0]) * 256U + static_cast<unsigned char>(wire[1]);
        message += wire.substr(2, header & 0x7fff);
        wire.remove_prefix(std::min<size_t>(wire.size(), 2 + (header & 0x7fff)));
        if (header & 0x8000) {
            messages.push_back(message);
            message.clear();
        }
    }
    return messages;
}

} // namespace io
