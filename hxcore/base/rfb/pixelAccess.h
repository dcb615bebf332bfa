// Pixels of one to four bytes in memory, as values.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace rfb {

// Values are what a little-endian machine loads; a big-endian format swaps them in pixelFromColour.
static_assert(std::endian::native == std::endian::little);

template <int bytes>
inline uint32_t loadPixel(const uint8_t* p) {
    static_assert(bytes >= 1 && bytes <= 4);
    if constexpr (bytes == 3) {
        return p[0] | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16;
    } else {
        uint32_t value = 0;
        std::memcpy(&value, p, bytes);
        return value;
    }
}

template <int bytes>
inline void storePixel(uint8_t* p, uint32_t value) {
    static_assert(bytes >= 1 && bytes <= 4);
    std::memcpy(p, &value, bytes);
}

inline uint32_t loadPixel(const uint8_t* p, int bytes) {
    switch (bytes) {
    case 1:
        return loadPixel<1>(p);
    case 2:
        return loadPixel<2>(p);
    case 3:
        return loadPixel<3>(p);
    default:
        return loadPixel<4>(p);
    }
}

inline void storePixel(uint8_t* p, uint32_t value, int bytes) { std::memcpy(p, &value, static_cast<size_t>(bytes)); }

/// Calls a template function object for a number of bytes known only at run time.
template <class Fn>
inline void withPixelSize(int bytes, Fn&& fn) {
    switch (bytes) {
    case 1:
        fn.template operator()<1>();
        break;
    case 2:
        fn.template operator()<2>();
        break;
    case 3:
        fn.template operator()<3>();
        break;
    default:
        fn.template operator()<4>();
        break;
    }
}

} // namespace rfb
