// Readers that own a buffer.
#pragma once

#include "plat/NonCopyable.h"
#include "rdr/InStream.h"

namespace rdr {

/// Owns a buffer and fills it through readData.
///
/// Bytes before the checkpoint are dropped when the buffer is filled; those behind it stay, so that the longest unit
/// of work that can be run again is as long as the buffer.
class BufferedInStream : public InStream, private plat::NonCopyable {
public:
    /// A negative size means 16800 bytes, 0 no buffer. A secure buffer is wiped before it is freed.
    explicit BufferedInStream(int bufSize = -1, bool secure = false);
    ~BufferedInStream() override;

    void setDump(bool on) { dump = on; } ///< hexdumps what arrives to the log
    uint32_t pos() override;

protected:
    /// Reads up to `len` bytes and returns the count; 0 means that there is no data now. Throws at the end.
    virtual size_t readData(void* buf, size_t len) = 0;
    bool fillBuffer(size_t n) override;

private:
    void compact();

    size_t bufSize;
    uint32_t offset = 0; // position in the stream of the buffer's first byte
    uint8_t* start;      // owned, null if bufSize is 0
    bool secure;
    bool dump = false;
};

/// A buffered reader that can be told not to wait.
class BufferedNonBlockableInStream : public BufferedInStream {
public:
    explicit BufferedNonBlockableInStream(int bufSize = -1, bool secure = false);

    /// On: a read that lacks bytes throws BlockException, and the stream becomes rewindable.
    virtual void setNonBlocking(bool on);
    bool isNonBlocking() const { return nonBlocking; }

protected:
    bool nonBlocking = false;
};

} // namespace rdr
