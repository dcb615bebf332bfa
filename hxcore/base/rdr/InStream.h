// The abstract reader: a window on a buffer, with a checkpoint to go back to.
#pragma once

#include "plat/String.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace plat {
class DString;
}

namespace rdr {

/// Reads big-endian integers and strings from any source of bytes.
///
/// The inline reads compare and load; only at the end of the window there is a virtual call for more. A stream in
/// non-blocking mode that runs dry goes back to its checkpoint and throws BlockException: whoever reads checkpoints
/// after each finished unit of work and runs an unfinished one again from its start. After any other exception the
/// position is undefined.
class InStream {
public:
    InStream() = default;
    InStream(const InStream&) = delete;
    InStream& operator=(const InStream&) = delete;
    virtual ~InStream() = default;

    virtual uint32_t pos() = 0; ///< bytes consumed so far, modulo 2^32
    virtual void checkpoint();
    virtual void rewind(); ///< to the checkpoint; throws if the stream isn't rewindable
    /// Rewinds, then skips forward. Throws below the checkpoint.
    virtual void setPos(uint32_t newPos);
    /// True if no byte is left in the current message; streams without messages never are.
    virtual bool atEnd() { return false; }

    uint8_t readU8() {
        if (ptr == end)
            overrun(/*wait=*/true, 1);
        return *ptr++;
    }
    uint16_t readU16() { return static_cast<uint16_t>(readBigEndian<2>()); }
    uint32_t readU32() { return static_cast<uint32_t>(readBigEndian<4>()); }
    uint64_t readU64() { return readBigEndian<8>(); }
    int8_t readS8() { return static_cast<int8_t>(readU8()); }
    int16_t readS16() { return static_cast<int16_t>(readU16()); }
    int32_t readS32() { return static_cast<int32_t>(readU32()); }
    int64_t readS64() { return static_cast<int64_t>(readU64()); }
    bool readBool() { return readU8() != 0; }
    void readBytes(void* buf, size_t len);
    void skip(size_t len);

    /// A one-byte length and that many bytes. A NUL inside ends the String form.
    plat::String readString8(bool repairUtf8 = true);
    /// A four-byte length and that many bytes; throws StringTooLongException above `maxLen` before it reads them.
    /// Memory grows with the bytes that arrive, not with the length that was announced.
    plat::String readString32(size_t maxLen, bool repairUtf8 = true);
    std::string readStdString8(bool repairUtf8 = true); ///< a NUL stays, or is repaired
    std::string readStdString32(size_t maxLen, bool repairUtf8 = true);

    /// Replaces `out` by the bytes up to a line feed, which is consumed; carriage returns are dropped. A last line may
    /// lack its line feed; with nothing left the end-of-stream exception passes. `maxLen` 0 means 262144 bytes.
    void readLine(plat::DString& out, size_t maxLen = 0, bool repairUtf8 = true);
    /// The same into a C++ string, where a NUL stays, or is repaired.
    void readLine(std::string& out, size_t maxLen = 0, bool repairUtf8 = true);

    /// An unbiased number below `bound` from a stream of random bytes; bound 0 gives any 32-bit number.
    uint32_t readUniform(uint32_t bound);

    /// Makes `itemSize` bytes (at most what the buffer holds) available in one piece, cuts `*nItems` to the whole
    /// items that are buffered in one piece (0 where a frame ends inside one) and returns their place, not consumed.
    /// Null without `wait` if nothing is there yet.
    const uint8_t* check(size_t itemSize, size_t* nItems, bool wait = true);

    const uint8_t* window() const { return ptr; } ///< the bytes that can be read without asking for more
    size_t buffered() const { return static_cast<size_t>(end - ptr); }
    void consume(size_t len) { ptr += len; } ///< at most buffered()
    bool isRewindable() const { return rewindable; }

protected:
    /// Makes `n` bytes available behind ptr, or as many as the buffer holds; false if there are none for now. Throws
    /// at the end of the data.
    virtual bool fillBuffer(size_t n) = 0;

    /// The slow path of reading: true when more is there. False only without `wait`; the stream has been rewound.
    bool overrun(bool wait, size_t n);

    const uint8_t* ptr = nullptr;
    const uint8_t* end = nullptr;
    const uint8_t* checkpointPtr = nullptr;
    uint32_t checkpointPos = 0;
    bool rewindable = true;

private:
    std::string readText(size_t len, bool repairUtf8);

    template <int size>
    uint64_t readBigEndian() {
        uint8_t split[size]; // an item may straddle a frame or the end of the buffer
        const uint8_t* item = split;
        if (end - ptr >= size) {
            item = ptr;
            ptr += size;
        } else {
            readBytes(split, size);
        }
        uint64_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8 | item[i];
        return value;
    }
};

} // namespace rdr
