// Inflating another stream.
#pragma once

#include "rdr/InStream.h"

#include <memory>

struct z_stream_s;

namespace rdr {

/// Inflates what it reads from the stream under it, with zlib.
///
/// Bytes taken from below are consumed there for good (it is checkpointed), also where this stream is rewound later:
/// what was inflated stays in this stream's own buffer. Over a source that may run dry, make it rewindable: reads then
/// throw BlockException and can be run again, as long as a unit of work fits the buffer. Throws ZlibEndOfStream at the
/// logical end.
class ZlibInStream : public InStream {
public:
    enum class Format {
        Zlib, ///< RFC 1950
        Raw,  ///< RFC 1951, no header
        Gzip, ///< RFC 1952, one member, its checksum and length verified
    };

    /// A negative size means 16800 bytes of inflated data.
    explicit ZlibInStream(int bufSize = -1, Format format = Format::Zlib);
    ~ZlibInStream() override;

    void setUnderlying(InStream* stream) { underlying = stream; } ///< borrowed; null: reads throw
    void setRewindable(bool on);                                  ///< default off
    void reset(); ///< a fresh start of the compressed data, with an empty buffer

    uint32_t pos() override;

protected:
    bool fillBuffer(size_t n) override;

private:
    enum class Stage { Start, Header, Data, Trailer, Ended };

    bool step(); // false if the stream below has nothing for now
    void compact();
    void readGzipHeader();
    bool inflateSome();
    void readGzipTrailer();

    size_t bufSize;
    Format format;
    Stage stage = Stage::Start;
    InStream* underlying = nullptr;
    std::unique_ptr<z_stream_s> zs;
    std::unique_ptr<uint8_t[]> start;
    uint32_t offset = 0;   // position of the buffer's first byte
    uint32_t crc = 0;      // of all inflated bytes
    uint32_t inflated = 0; // their count, modulo 2^32
    bool wasFull = false;  // inflate may hold output that had no room
    int failure = 0;       // of inflate, told once what came before it has been read
};

} // namespace rdr
