// The abstract writer: a window on a buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>

namespace rdr {

/// Writes big-endian integers and strings to any sink of bytes.
///
/// The inline writes compare and store; at the end of the window there is one virtual call.
class OutStream {
public:
    OutStream() = default;
    OutStream(const OutStream&) = delete;
    OutStream& operator=(const OutStream&) = delete;
    virtual ~OutStream() = default;

    virtual void writeBytes(const void* data, size_t len); ///< `data` may be null if `len` is 0
    virtual uint32_t length() = 0;                         ///< bytes written so far, modulo 2^32
    virtual void flush() {}                                ///< sends what can be sent
    virtual size_t bytesInBuffer() { return 0; }           ///< written but not yet sent
    virtual void waitUntilFlushed() {}
    virtual size_t spaceAvailable(); ///< bytes that fit before the stream has to wait or is full
    virtual void shutdownWrite() {}  ///< no more will be written: tells the peer once all is sent
    virtual void setThrowErrors(bool) {}

    void writeU8(uint8_t value) {
        if (ptr == end)
            overrun(1, 1);
        *ptr++ = value;
    }
    void writeU16(uint16_t value) { writeBigEndian<2>(value); }
    void writeU32(uint32_t value) { writeBigEndian<4>(value); }
    void writeU64(uint64_t value) { writeBigEndian<8>(value); }
    void writeS8(int8_t value) { writeU8(static_cast<uint8_t>(value)); }
    void writeS16(int16_t value) { writeU16(static_cast<uint16_t>(value)); }
    void writeS32(int32_t value) { writeU32(static_cast<uint32_t>(value)); }
    void writeS64(int64_t value) { writeU64(static_cast<uint64_t>(value)); }
    void writeBool(bool value) { writeU8(value ? 1 : 0); }

    void writeString8(const char* text); ///< a one-byte length and the text, cut to 255 bytes; null is empty
    void writeString8(const std::string& text);
    /// A four-byte length and the text, cut to `maxLen` bytes; null is empty.
    void writeString32(const char* text, size_t maxLen = 0xffffffff);
    void writeString32(const std::string& text, size_t maxLen = 0xffffffff);
    /// A one-byte count and the names in sorted order, each as a string8. Asserts fewer than 256 names.
    void writeFlags(const std::set<std::string>& flags);
    /// Formatted text, without a length or a NUL.
    void writeStr(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Makes room for an item in one piece; returns how many of `nItems` fit.
    size_t check(size_t itemSize, size_t nItems = 1) {
        if (itemSize > room())
            return overrun(itemSize, nItems);
        return nItems * itemSize <= room() ? nItems : room() / itemSize;
    }
    uint8_t* window() { return ptr; } ///< where room() bytes may be stored, then advanced over
    size_t room() const { return static_cast<size_t>(end - ptr); }
    void advance(size_t len) { ptr += len; } ///< at most room()

protected:
    /// Makes room for at least one item and returns how many of `nItems` (at least 1) fit behind ptr.
    virtual size_t overrun(size_t itemSize, size_t nItems) = 0;

    uint8_t* ptr = nullptr;
    uint8_t* end = nullptr;

private:
    template <int size>
    void writeBigEndian(uint64_t value) {
        if (end - ptr < size) {
            writeSplit(value, size);
            return;
        }
        for (int i = size - 1; i >= 0; --i)
            *ptr++ = static_cast<uint8_t>(value >> (8 * i));
    }
    void writeSplit(uint64_t value, int size);
};

} // namespace rdr
