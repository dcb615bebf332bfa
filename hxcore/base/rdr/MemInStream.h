// Reading a block of memory.
#pragma once

#include "rdr/InStream.h"

namespace rdr {

/// Reads memory that the caller keeps for as long; at its end it throws EndOfStream.
class MemInStream : public InStream {
public:
    MemInStream(const void* data, size_t len);
    explicit MemInStream(const char* text); ///< up to the NUL; null is empty

    void reset(const void* data, size_t len); ///< starts anew on another block
    size_t remaining() const { return buffered(); }
    bool atEnd() override { return ptr == end; }
    uint32_t pos() override;

protected:
    bool fillBuffer(size_t n) override;

private:
    const uint8_t* start;
};

} // namespace rdr
