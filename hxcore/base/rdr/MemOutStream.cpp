#include "rdr/MemOutStream.h"

#include "plat/MBuf.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <climits>

namespace rdr {
namespace {
constexpr size_t defaultSize = 256;
constexpr size_t largest = INT_MAX - 1; // what a String or an MBuf can take over
} // namespace

MemOutStream::MemOutStream(int size, size_t limit) : maxSize(limit ? std::min(limit, largest) : largest) {
    const size_t wanted = size < 0 ? defaultSize : static_cast<size_t>(size);
    if (wanted > 0)
        reallocate(std::min(wanted, maxSize));
}

MemOutStream::~MemOutStream() { delete[] start; }

void MemOutStream::reallocate(size_t newSize) {
    char* const fresh = new char[newSize];
    const size_t used = size();
    std::copy_n(start, used, fresh);
    delete[] start;
    start = fresh;
    ptr = reinterpret_cast<uint8_t*>(start) + used;
    end = reinterpret_cast<uint8_t*>(start) + newSize;
}

size_t MemOutStream::overrun(size_t itemSize, size_t nItems) {
    if (itemSize > maxSize - size())
        throw OutStreamFull();
    const size_t capacity = size() + room();
    reallocate(std::min(maxSize, std::max(capacity * 2, size() + itemSize)));
    return std::min(nItems, room() / itemSize);
}

uint32_t MemOutStream::length() { return static_cast<uint32_t>(size()); }

size_t MemOutStream::spaceAvailable() { return maxSize - size(); }

void MemOutStream::getBuffer(plat::MBuf<uint8_t>& out) {
    const size_t capacity = size() + room();
    out.assign(data(), static_cast<int>(size()));
    if (out.isSecure())
        plat::secureWipe(start, capacity);
    release();
}

plat::String MemOutStream::takeString() {
    const size_t used = size();
    if (room() == 0)
        reallocate(used + 1);
    start[used] = '\0';
    char* const text = start;
    start = nullptr;
    release();
    return plat::String::adopt(text);
}

void MemOutStream::release() {
    delete[] start;
    start = nullptr;
    ptr = end = nullptr;
}

} // namespace rdr
