// A writer that swallows everything.
#pragma once

#include "rdr/BufferedOutStream.h"

namespace rdr {

/// Keeps nothing and never fails; it only counts.
class NullOutStream : public BufferedNBOutStream {
public:
    NullOutStream() = default;

protected:
    size_t writeData(const void*, size_t len, bool) override { return len; }
};

} // namespace rdr
