#include "hxutil/scaleRows.h"

#include <algorithm>
#include <cstring>

namespace hxutil {
namespace {

// Vectors as GCC and Clang both know them; a body is inlined into a function for each instruction set.
#define ZEF_BODY static inline __attribute__((always_inline))

using U8s = uint8_t __attribute__((vector_size(16)));
using U16s = uint16_t __attribute__((vector_size(16)));
using I32s = int __attribute__((vector_size(16)));

ZEF_BODY I32s loadChannels(const uint8_t* p) {
    U8s bytes = {};
    std::memcpy(&bytes, p, 4);
    const auto words = reinterpret_cast<U16s>(
        __builtin_shufflevector(bytes, U8s{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    return reinterpret_cast<I32s>(__builtin_shufflevector(words, U16s{}, 0, 8, 1, 9, 2, 10, 3, 11));
}

ZEF_BODY void addBody(const ScaleRow& row, int (*sums)[4]) {
    const int half = row.stepX / 2;
    const int recipX = 0x800000 / row.stepX;
    const int srcPixel = row.srcPixel;
    const uint8_t* p = row.src;
    int left = row.left;
    for (int i = 0; i < row.width; ++i) {
        int need = row.stepX;
        const int first = std::min(need, left);
        I32s sum = loadChannels(p) * first;
        need -= first;
        left -= first;
        if (left == 0) {
            left = srcPixel;
            p += 4;
        }
        if (need >= srcPixel) { // whole pixels count alike
            I32s whole = {};
            for (; need >= srcPixel; need -= srcPixel, p += 4)
                whole += loadChannels(p);
            sum += whole * srcPixel;
        }
        if (need > 0) {
            sum += loadChannels(p) * need;
            left = srcPixel - need;
        }
        I32s total;
        std::memcpy(&total, sums[i], 16);
        total += (((sum + half) * recipX) >> 23) * row.weight;
        std::memcpy(sums[i], &total, 16);
    }
}

ZEF_BODY void writeBody(uint8_t* out, int stepY, int width, uint32_t ink, int (*sums)[4]) {
    const int half = stepY / 2;
    const int recipY = 0x800000 / stepY;
    for (int i = 0; i < width; ++i, out += 4) {
        I32s c;
        std::memcpy(&c, sums[i], 16);
        c = ((c + half) * recipY) >> 23;
        const uint32_t pixel = static_cast<uint32_t>(c[0]) | static_cast<uint32_t>(c[1]) << 8 |
                               static_cast<uint32_t>(c[2]) << 16 | static_cast<uint32_t>(c[3]) << 24;
        const uint32_t inked = pixel & ink;
        std::memcpy(out, &inked, 4);
        std::memset(sums[i], 0, 16);
    }
}

#ifdef __x86_64__
__attribute__((target("avx2"))) void addWide(const ScaleRow& row, int (*sums)[4]) { addBody(row, sums); }
__attribute__((target("avx2"))) void writeWide(uint8_t* out, int stepY, int width, uint32_t ink, int (*sums)[4]) {
    writeBody(out, stepY, width, ink, sums);
}
const bool wide = __builtin_cpu_supports("avx2");
#endif

} // namespace

void addScaleRow(const ScaleRow& row, int (*sums)[4]) {
#ifdef __x86_64__
    if (wide)
        return addWide(row, sums);
#endif
    addBody(row, sums);
}

void writeScaleRow(uint8_t* out, int stepY, int width, uint32_t ink, int (*sums)[4]) {
#ifdef __x86_64__
    if (wide)
        return writeWide(out, stepY, width, ink, sums);
#endif
    writeBody(out, stepY, width, ink, sums);
}

} // namespace hxutil
