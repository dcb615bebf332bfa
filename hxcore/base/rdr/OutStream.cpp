#include "rdr/OutStream.h"

#include "plat/Assert.h"
#include "plat/String.h"

#include <algorithm>
#include <cstdarg>

namespace rdr {

void OutStream::writeBytes(const void* data, size_t len) {
    const auto* from = static_cast<const uint8_t*>(data);
    while (len > 0) {
        if (ptr == end)
            overrun(1, len);
        const size_t piece = std::min(len, room());
        std::memcpy(ptr, from, piece);
        ptr += piece;
        from += piece;
        len -= piece;
    }
}

size_t OutStream::spaceAvailable() { return room(); }

void OutStream::writeSplit(uint64_t value, int size) {
    overrun(static_cast<size_t>(size), 1);
    for (int i = size - 1; i >= 0; --i)
        *ptr++ = static_cast<uint8_t>(value >> (8 * i));
}

void OutStream::writeString8(const char* text) {
    const size_t len = text ? strnlen(text, 255) : 0;
    writeU8(static_cast<uint8_t>(len));
    writeBytes(text, len);
}

void OutStream::writeString8(const std::string& text) {
    const size_t len = std::min<size_t>(text.size(), 255);
    writeU8(static_cast<uint8_t>(len));
    writeBytes(text.data(), len);
}

void OutStream::writeString32(const char* text, size_t maxLen) {
    const size_t len = text ? strnlen(text, std::min<size_t>(maxLen, 0xffffffff)) : 0;
    writeU32(static_cast<uint32_t>(len));
    writeBytes(text, len);
}

void OutStream::writeString32(const std::string& text, size_t maxLen) {
    const size_t len = std::min({text.size(), maxLen, size_t{0xffffffff}});
    writeU32(static_cast<uint32_t>(len));
    writeBytes(text.data(), len);
}

void OutStream::writeFlags(const std::set<std::string>& flags) {
    ASSERT(flags.size() < 256);
    writeU8(static_cast<uint8_t>(flags.size()));
    for (const std::string& flag : flags)
        writeString8(flag);
}

void OutStream::writeStr(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const plat::String text = plat::strFormatV(format, args);
    va_end(args);
    writeBytes(text.c_str(), static_cast<size_t>(text.len()));
}

} // namespace rdr
