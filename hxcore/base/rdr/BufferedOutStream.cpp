#include "rdr/BufferedOutStream.h"

#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/exceptions.h"
#include "rdr/hexdump.h"

#include <algorithm>
#include <memory>

namespace rdr {
namespace {
plat::LogSrc log("OutStream");
plat::IntParameter maxOutBufferSize(
    "MaxOutBufferSize",
    "The maximum number of bytes to buffer internally when writing to slow connections.  Larger values improve "
    "concurrency, smaller values reduce memory usage.  Changes to this setting affect new connections only.",
    134217728, /*isAdvanced=*/true, nullptr, 16384, 0x7fffffff);
} // namespace

BufferedOutStream::BufferedOutStream(int size)
    : bufSize(size < 0 ? windowBytes : static_cast<size_t>(size)),
      maxSize(std::max(bufSize, static_cast<size_t>(maxOutBufferSize.value()))),
      start(bufSize ? new uint8_t[bufSize] : nullptr), sentUpTo(start) {
    ptr = end = start;
    setWindow(0);
}

BufferedOutStream::~BufferedOutStream() { delete[] start; }

uint32_t BufferedOutStream::length() { return offset + static_cast<uint32_t>(ptr - start); }

void BufferedOutStream::flush() {
    send(flushWaits);
    setWindow(0);
}

void BufferedOutStream::send(bool wait) {
    while (sentUpTo < ptr && sendOnce(wait)) {
    }
}

bool BufferedOutStream::sendOnce(bool wait) {
    const size_t count = writeData(sentUpTo, bytesInBuffer(), wait);
    if (count == 0)
        return false;
    if (dump)
        logHexdump(log, " --> ", sentUpTo, count);
    sentUpTo += count;
    if (sentUpTo == ptr) {
        offset += static_cast<uint32_t>(ptr - start);
        ptr = sentUpTo = start;
    }
    return true;
}

size_t BufferedOutStream::overrun(size_t itemSize, size_t nItems) {
    if (bufSize == 0)
        throw OutStreamFull();
    if (itemSize > maxSize)
        throw plat::Exception("BufferedOutStream overrun: buffer size exceeded");
    send(/*wait=*/false);
    while (itemSize > bufSize - bytesInBuffer()) {
        if (bufSize < maxSize)
            grow();
        else if (!sendOnce(/*wait=*/true))
            throw plat::Exception("BufferedOutStream overrun: unable to write");
    }
    // Moving costs: only where it makes the room that is needed, or moves less than it frees.
    const bool fits = itemSize <= bufSize - static_cast<size_t>(ptr - start);
    if (!fits || static_cast<size_t>(sentUpTo - start) >= bytesInBuffer())
        compact();
    setWindow(itemSize);
    return std::min(nItems, room() / itemSize);
}

void BufferedOutStream::grow() {
    const size_t newSize = std::min(bufSize * 2, maxSize);
    uint8_t* const fresh = new uint8_t[newSize];
    const size_t unsent = bytesInBuffer();
    std::copy(sentUpTo, ptr, fresh);
    offset += static_cast<uint32_t>(sentUpTo - start);
    delete[] start;
    start = sentUpTo = fresh;
    ptr = end = start + unsent;
    bufSize = newSize;
}

void BufferedOutStream::compact() {
    const size_t unsent = bytesInBuffer();
    offset += static_cast<uint32_t>(sentUpTo - start);
    std::copy(sentUpTo, ptr, start);
    sentUpTo = start;
    ptr = start + unsent;
}

// A small window, so that a long write comes by here and gets a chance to send.
void BufferedOutStream::setWindow(size_t itemSize) {
    const size_t behind = bufSize - static_cast<size_t>(ptr - start);
    end = ptr + std::min(behind, std::max(windowBytes, itemSize));
}

void BufferedLazyOutStream::setNonBlocking(bool on) {
    flushWaits = !on;
    flush();
}

} // namespace rdr
