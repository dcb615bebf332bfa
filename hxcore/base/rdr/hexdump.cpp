#include "rdr/hexdump.h"

#include "plat/LogSrc.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace rdr {

void logHexdump(plat::LogSrc& log, const char* mark, const void* data, size_t len) {
    if (!log.isEnabled(plat::LogVerbose))
        return;
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t at = 0; at < len; at += 16) {
        std::string hex;
        std::string text;
        for (size_t i = at; i < std::min(len, at + 16); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%02x ", bytes[i]);
            hex += digits;
            text += bytes[i] >= 0x20 && bytes[i] < 0x7f ? static_cast<char>(bytes[i]) : '.';
        }
        log.verbose("%s%04zx  %-48s %s", mark, at, hex.c_str(), text.c_str());
    }
}

} // namespace rdr
