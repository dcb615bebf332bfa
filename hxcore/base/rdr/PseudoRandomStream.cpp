#include "rdr/PseudoRandomStream.h"

#include "plat/Assert.h"

#include <cstring>

namespace rdr {

PseudoRandomStream::PseudoRandomStream(uint64_t seed) : state(seed) {
    ptr = end = block;
    rewindable = false;
}

bool PseudoRandomStream::fillBuffer(size_t n) {
    ASSERT(n <= sizeof block);
    const size_t left = buffered();
    std::memmove(block, ptr, left);
    for (size_t i = left; i < sizeof block; ++i) {
        // SplitMix64: Steele, Lea, Flood, "Fast Splittable Pseudorandom Number Generators", 2014.
        state += 0x9e3779b97f4a7c15;
        uint64_t mixed = (state ^ state >> 30) * 0xbf58476d1ce4e5b9;
        mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111eb;
        block[i] = static_cast<uint8_t>(mixed >> 56);
    }
    ptr = block;
    end = block + sizeof block;
    return true;
}

} // namespace rdr
