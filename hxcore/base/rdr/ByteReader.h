// Reading a long field piece by piece.
#pragma once

#include "plat/NonCopyable.h"

#include <cstddef>
#include <cstdint>

namespace rdr {

class InStream;

/// Reads a field of known length across any number of blocks without losing its place.
///
/// For a handler that is run again while the field arrives: what has come is kept here and not read again. Keep it as a
/// member, ask it once in each run, and reset it when the field has been used. While isActive, the fields before this
/// one are gone from the stream: the handler keeps those itself.
class ByteReader : private plat::NonCopyable {
public:
    struct Bytes {
        const uint8_t* data =
            nullptr; ///< null: not all there yet; never null for a finished field, empty ones included
        size_t len = 0;
        explicit operator bool() const { return data != nullptr; }
    };

    ByteReader() = default;
    ~ByteReader() { reset(); }

    /// The first call checkpoints the stream; later ones with the same length do nothing, with another they throw.
    ///
    /// `buffer` (borrowed, `len` bytes) is used instead of own memory; `alwaysCopy` copies even a field that lies whole
    /// in the stream's window.
    void init(InStream& in, size_t len, uint8_t* buffer = nullptr, bool alwaysCopy = false);
    bool isActive() const { return stream != nullptr; } ///< between init and reset

    /// All bytes, consumed from the stream; valid until it is read on, or for a copy until reset.
    ///
    /// With `wait` throws BlockException where it would give null. Own memory grows with the bytes that arrive.
    Bytes read(bool wait);
    bool skip(bool wait); ///< the same, keeping nothing; false if not all has come

    /// A string32 of at most `maxLen` bytes (else StringTooLongException), repaired to valid UTF-8 and ended with a NUL
    /// that `len` doesn't count. Includes init; stays valid until reset.
    Bytes readString32(InStream& in, size_t maxLen, bool wait);

    void reset(); ///< ready for the next field

private:
    bool readPiece(bool wait, bool keep);
    void reserve(size_t needed);
    void finishString();

    InStream* stream = nullptr; // null while idle
    uint8_t* buffer = nullptr;
    size_t capacity = 0; // of an own buffer
    size_t pos = 0;      // bytes that have come
    size_t len = 0;
    bool ownsBuffer = false;
    bool alwaysCopy = false;
    bool isText = false; // finished as a string; pos and len are then those of the repaired text
};

} // namespace rdr
