// A ring of bytes that someone else fills.
#pragma once

#include "rdr/InStream.h"

#include <memory>

namespace rdr {

/// Gives out what `write` put in. Bytes behind the checkpoint stay until the next checkpoint.
///
/// Data that wraps at the end of the ring is seen in two windows.
class CircularInStream : public InStream {
public:
    explicit CircularInStream(size_t size); ///< above 0

    /// Throws OutStreamFull, storing nothing, if there is less room than `len`.
    void write(const void* data, size_t len);
    void setEndOfData(bool on) { endOfData = on; } ///< an empty ring is then the end of the stream
    void clear();                                  ///< forgets all data and the end mark

    size_t freeSpace() const { return size - static_cast<size_t>(writtenPos - savedPos); } ///< up to the checkpoint
    size_t available() const { return static_cast<size_t>(writtenPos - readPos()); }       ///< bytes not yet read

    // InStream
    uint32_t pos() override { return static_cast<uint32_t>(readPos()); }
    void checkpoint() override;
    void rewind() override;

protected:
    bool fillBuffer(size_t n) override;

private:
    void showWindow(uint64_t fromPos);
    uint64_t readPos() const { return windowPos + static_cast<uint64_t>(ptr - windowPtr); }

    size_t size;
    std::unique_ptr<uint8_t[]> ring;
    // Stream positions; a byte's place in the ring is its position modulo the size.
    uint64_t writtenPos = 0; // behind the last byte
    uint64_t savedPos = 0;   // of the checkpoint
    uint64_t windowPos = 0;  // of windowPtr
    const uint8_t* windowPtr;
    bool endOfData = false;
};

} // namespace rdr
