// Message frames with a 16-bit header.
#pragma once

#include "rdr/FramedOutStream.h"

namespace rdr {

/// Frames of at most 32766 bytes; see InStreamV4 for the header.
class OutStreamV4 : public FramedOutStream {
public:
    explicit OutStreamV4(OutStream* stream = nullptr) : FramedOutStream(stream, 32766, 2) {}

protected:
    void writeFrameHeader(size_t size, bool last, bool first) override;
};

} // namespace rdr
