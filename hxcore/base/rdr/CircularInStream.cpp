#include "rdr/CircularInStream.h"

#include "plat/Assert.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstring>

namespace rdr {

CircularInStream::CircularInStream(size_t ringSize)
    : size(ringSize), ring(std::make_unique<uint8_t[]>(ringSize)), windowPtr(ring.get()) {
    ASSERT(size > 0);
    ptr = end = checkpointPtr = windowPtr;
}

void CircularInStream::write(const void* data, size_t len) {
    if (len > freeSpace())
        throw OutStreamFull();
    if (len == 0)
        return;
    const size_t place = static_cast<size_t>(writtenPos % size);
    const size_t first = std::min(len, size - place);
    std::memcpy(ring.get() + place, data, first);
    std::memcpy(ring.get(), static_cast<const uint8_t*>(data) + first, len - first);
    writtenPos += len;
    showWindow(readPos());
}

void CircularInStream::clear() {
    writtenPos = savedPos = 0;
    endOfData = false;
    showWindow(0);
    checkpoint();
}

void CircularInStream::showWindow(uint64_t fromPos) {
    const size_t place = static_cast<size_t>(fromPos % size);
    windowPos = fromPos;
    ptr = windowPtr = ring.get() + place;
    end = ptr + std::min(static_cast<size_t>(writtenPos - fromPos), size - place);
}

void CircularInStream::checkpoint() {
    savedPos = readPos();
    InStream::checkpoint();
}

void CircularInStream::rewind() {
    InStream::rewind();
    showWindow(savedPos);
}

bool CircularInStream::fillBuffer(size_t) {
    showWindow(readPos());
    if (ptr != end)
        return true; // perhaps the part before the wrap: the reader goes on behind it
    if (endOfData)
        throw EndOfStream("Data buffer exhausted");
    return false;
}

} // namespace rdr
