// Reading a long field piece by piece.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rdr {

class InStream;

/// Reads a field of known length across any number of blocks without losing its place.
///
/// For a handler that is run again while the field arrives: what has come is kept here and not read again. Keep it as
/// a member, and reset it when the field has been used.
class ByteReader {
public:
    struct Bytes {
        const uint8_t* data =
            nullptr; ///< null: not all there yet. Never null for a finished field, empty ones included
        size_t len = 0;
        explicit operator bool() const { return data != nullptr; }
    };

    ByteReader() = default;
    ByteReader(const ByteReader&) = delete;
    ByteReader& operator=(const ByteReader&) = delete;
    ~ByteReader();

    /// The first call checkpoints the stream; later calls with the same length do nothing, with another they throw.
    /// `buffer` (borrowed, `len` bytes) is used instead of memory of its own; `alwaysCopy` copies even a field that
    /// lies whole in the stream's window.
    void init(InStream& in, size_t len, uint8_t* buffer = nullptr, bool alwaysCopy = false);
    bool isActive() const { return stream != nullptr; }

    /// All bytes, valid until the stream is read on or this is reset. With `wait`, or at the end of the data, throws
    /// as a read does. Own memory grows with the bytes that arrive.
    Bytes read(bool wait);
    bool skip(bool wait); ///< the same, keeping nothing; false if not all has come

    /// A string32 of at most `maxLen` bytes (StringTooLongException), repaired to valid UTF-8 and ended with a NUL that
    /// `len` doesn't count. Includes init.
    Bytes readString32(InStream& in, size_t maxLen, bool wait);
    void reset(); ///< ready for the next field

private:
    bool readPiece(bool wait, bool keep); // false if nothing is there for now
    void reserve(size_t needed);

    InStream* stream = nullptr; // null while idle
    uint8_t* buffer = nullptr;
    size_t capacity = 0;
    size_t pos = 0; // bytes that have come
    size_t len = 0;
    bool ownsBuffer = false;
    bool alwaysCopy = false;
    bool isString = false; // the length has been read, and a NUL follows
};

} // namespace rdr
