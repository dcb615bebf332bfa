#include "rdr/MemInStream.h"

#include "rdr/exceptions.h"

#include <cstring>

namespace rdr {

MemInStream::MemInStream(const void* data, size_t len) { reset(data, len); }

MemInStream::MemInStream(const char* text) { reset(text, text ? std::strlen(text) : 0); }

void MemInStream::reset(const void* data, size_t len) {
    start = ptr = checkpointPtr = static_cast<const uint8_t*>(data);
    end = start + len;
    checkpointPos = 0;
}

uint32_t MemInStream::pos() { return static_cast<uint32_t>(ptr - start); }

bool MemInStream::fillBuffer(size_t n) {
    if (n > buffered())
        throw EndOfStream("End of in-memory input stream");
    return true;
}

} // namespace rdr
