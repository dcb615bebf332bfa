// Writing to memory.
#pragma once

#include "plat/String.h"
#include "rdr/OutStream.h"

namespace plat {
template <class T>
class MBuf;
}

namespace rdr {

/// Grows in memory, by doubling, up to an optional limit.
class MemOutStream : public OutStream {
public:
    /// A negative size starts with 256 bytes, 0 with none. Beyond `maxSize` (0: no limit) writes throw OutStreamFull.
    explicit MemOutStream(int size = -1, size_t maxSize = 0);
    ~MemOutStream() override;

    const uint8_t* data() const {
        return reinterpret_cast<const uint8_t*>(start);
    } ///< null if nothing was ever allocated
    size_t size() const { return static_cast<size_t>(ptr - data()); }
    void clear() { ptr = reinterpret_cast<uint8_t*>(start); } ///< keeps the memory
    void getBuffer(plat::MBuf<uint8_t>& out);                 ///< moves the bytes to `out`, leaving the stream empty
    plat::String takeString();                                ///< the bytes with a NUL, leaving the stream empty
    uint32_t length() override;
    size_t spaceAvailable() override;

protected:
    size_t overrun(size_t itemSize, size_t nItems) override;

private:
    void reallocate(size_t newSize);
    void release();

    char* start = nullptr; // new[], null while empty
    size_t maxSize;
};

} // namespace rdr
