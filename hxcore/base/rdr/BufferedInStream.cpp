#include "rdr/BufferedInStream.h"

#include "plat/LogSrc.h"
#include "plat/SecureString.h"
#include "rdr/hexdump.h"

#include <algorithm>
#include <cstring>

namespace rdr {
namespace {
plat::LogSrc log("InStream");
constexpr size_t defaultBufSize = 16800;
} // namespace

BufferedInStream::BufferedInStream(int size, bool isSecure)
    : bufSize(size < 0 ? defaultBufSize : static_cast<size_t>(size)), start(bufSize ? new uint8_t[bufSize] : nullptr),
      secure(isSecure) {
    ptr = end = checkpointPtr = start;
    rewindable = false;
}

BufferedInStream::~BufferedInStream() {
    if (secure)
        plat::secureWipe(start, bufSize);
    delete[] start;
}

uint32_t BufferedInStream::pos() { return offset + static_cast<uint32_t>(ptr - start); }

void BufferedInStream::compact() {
    const size_t shift = static_cast<size_t>(checkpointPtr - start);
    if (shift == 0)
        return;
    std::memmove(start, checkpointPtr, static_cast<size_t>(end - checkpointPtr));
    offset += static_cast<uint32_t>(shift);
    ptr -= shift;
    end -= shift;
    checkpointPtr = start;
}

bool BufferedInStream::fillBuffer(size_t n) {
    compact();
    const uint8_t* const bufEnd = start + bufSize;
    const size_t wanted = std::min(n, static_cast<size_t>(bufEnd - ptr));
    while (buffered() < wanted) {
        uint8_t* const to = start + (end - start);
        const size_t count = readData(to, static_cast<size_t>(bufEnd - end));
        if (count == 0)
            return false;
        if (dump)
            logHexdump(log, " <-- ", to, count);
        end += count;
    }
    return true;
}

BufferedNonBlockableInStream::BufferedNonBlockableInStream(int size, bool isSecure)
    : BufferedInStream(size, isSecure) {}

void BufferedNonBlockableInStream::setNonBlocking(bool on) {
    // What a blocking reader has consumed is done with, and must not come back.
    if (on && !nonBlocking)
        checkpoint();
    nonBlocking = on;
    rewindable = on;
}

} // namespace rdr
