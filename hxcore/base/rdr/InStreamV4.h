// Message frames with a 16-bit header.
#pragma once

#include "rdr/FramedInStream.h"

namespace rdr {

/// Frame header: bit 15 ends the message, bits 0 to 14 count the payload bytes that follow.
class InStreamV4 : public FramedInStream {
public:
    using FramedInStream::FramedInStream;

protected:
    void readFrameHeader(size_t* size, bool* endOfMsg, bool first) override;
};

} // namespace rdr
