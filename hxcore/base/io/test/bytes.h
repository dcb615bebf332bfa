// Bytes of a message link written by hand in tests.
#pragma once

#include "plat/test/bytes.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace io {

using plat::bytes;

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
