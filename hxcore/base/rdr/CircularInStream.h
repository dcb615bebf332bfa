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
    explicit CircularInStream(size_t size);

    /// Throws OutStreamFull, storing nothing, if there is less room than `len`.
    void write(const void* data, size_t len);
    size_t freeSpace() const;   ///< bytes between the write position and the checkpoint
    size_t available() const;   ///< bytes not yet read
    void setEndOfData(bool on); ///< an empty ring is then the end of the stream
    void clear();               ///< forgets all data and the end mark

    // InStream
    uint32_t pos() override;
    void checkpoint() override;
    void rewind() override;

protected:
    bool fillBuffer(size_t n) override;

private:
    void showWindow();
    uint32_t readPos() const;

    size_t size;
    std::unique_ptr<uint8_t[]> ring;
    uint32_t windowPos = 0;  // stream position of the byte at `windowStart`
    uint32_t writtenPos = 0; // stream position behind the last byte
    size_t windowStart = 0;  // place in the ring where the window began
    bool endOfData = false;
    size_t checkpointPlace = 0;
};

} // namespace rdr
