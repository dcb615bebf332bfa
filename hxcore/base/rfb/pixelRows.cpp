#include "rfb/pixelRows.h"

#include "rfb/pixelAccess.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

#include <algorithm>
#include <cstring>
#include <vector>

namespace rfb {
namespace {

uint32_t channel(uint32_t pixel, int shift) { return pixel >> shift & 255; }

namespace plain {

void fill(uint8_t* row, int width, uint32_t pixel) {
    for (uint8_t* end = row + width * 4; row != end; row += 4)
        storePixel<4>(row, pixel);
}

uint32_t blend(uint32_t s, uint32_t d, uint32_t keep) {
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t sum = channel(s, shift) + (channel(d, shift) * keep + 127) / 255;
        result |= (sum > 255 ? 255 : sum) << shift;
    }
    return result;
}

void over(uint8_t* dst, const uint8_t* src, int width, uint32_t opaque, uint32_t ink) {
    for (int x = 0; x < width; ++x, dst += 4, src += 4) {
        const uint32_t s = loadPixel<4>(src) | opaque;
        storePixel<4>(dst, blend(s, loadPixel<4>(dst), 255 - (s >> 24)) & ink);
    }
}

void premultiply(uint8_t* dst, const uint8_t* src, int width) {
    for (int x = 0; x < width; ++x, dst += 4, src += 4) {
        const uint32_t s = loadPixel<4>(src);
        const uint32_t a = s >> 24;
        const auto scaled = [&](int shift) { return (channel(s, shift) * a + 127) / 255 << shift; };
        storePixel<4>(dst, a << 24 | scaled(16) | scaled(8) | scaled(0));
    }
}

void mono(uint8_t* row, std::ptrdiff_t rowStep, const uint8_t* bits, std::ptrdiff_t bitStep, int height, uint8_t keep,
          uint32_t pixel) {
    for (int y = 0; y < height; ++y, row += rowStep, bits += bitStep)
        for (int x = 0; x < 8; ++x)
            if (*bits & keep & 128 >> x)
                storePixel<4>(row + x * 4, pixel);
}

void to565(uint8_t* dst, const uint8_t* src, int width) {
    for (int x = 0; x < width; ++x, dst += 2, src += 4) {
        const uint32_t p = loadPixel<4>(src);
        storePixel<2>(dst, (channel(p, 16) * 31 + 127) / 255 << 11 | (channel(p, 8) * 63 + 127) / 255 << 5 |
                               (channel(p, 0) * 31 + 127) / 255);
    }
}

} // namespace plain

// Vectors as GCC and Clang both know them. A body is inlined into a function for each instruction set, and compiled
// for that. Bytes are worked on in lanes of 16 bits, those at even and those at odd places apart, so that nothing is
// ever moved between lanes. Divisions by 255: with t = x + 128, (t + (t >> 8)) >> 8 is x / 255 rounded to the nearest
// for x up to 255 * 255; there are no ties, so it equals (x + 127) / 255.
#define ZEF_BODY static inline __attribute__((always_inline))

using U8s = uint8_t __attribute__((vector_size(32)));
using U16s = uint16_t __attribute__((vector_size(32)));
using U32s = uint32_t __attribute__((vector_size(32)));
using U16x8 = uint16_t __attribute__((vector_size(16)));

ZEF_BODY void fillBody(uint8_t* row, int width, uint32_t pixel) {
    const U32s pixels = {pixel, pixel, pixel, pixel, pixel, pixel, pixel, pixel};
    for (; width >= 32; width -= 32, row += 128) {
        std::memcpy(row, &pixels, 32);
        std::memcpy(row + 32, &pixels, 32);
        std::memcpy(row + 64, &pixels, 32);
        std::memcpy(row + 96, &pixels, 32);
    }
    for (; width >= 8; width -= 8, row += 32)
        std::memcpy(row, &pixels, 32);
    plain::fill(row, width, pixel);
}

ZEF_BODY void overBody(uint8_t* dst, const uint8_t* src, int width, uint32_t opaque, uint32_t ink) {
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        U32s s, d;
        std::memcpy(&s, src, 32);
        std::memcpy(&d, dst, 32);
        s |= opaque;
        const U32s a = s >> 24;
        const U16s keep = reinterpret_cast<U16s>(a | a << 16) ^ 255;
        const U16s even = (reinterpret_cast<U16s>(d) & 255) * keep + 128;
        const U16s odd = (reinterpret_cast<U16s>(d) >> 8) * keep + 128;
        const U8s kept = reinterpret_cast<U8s>((even + (even >> 8)) >> 8 | ((odd + (odd >> 8)) & 0xff00));
        const U8s sum = reinterpret_cast<U8s>(s) + kept;
        const U8s full = reinterpret_cast<U8s>(sum < kept); // all ones where it overflowed
        const U32s result = reinterpret_cast<U32s>(sum | full) & ink;
        std::memcpy(dst, &result, 32);
    }
    plain::over(dst, src, width, opaque, ink);
}

ZEF_BODY void premultiplyBody(uint8_t* dst, const uint8_t* src, int width) {
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        U32s s;
        std::memcpy(&s, src, 32);
        const U32s a = s >> 24;
        const U16s even = (reinterpret_cast<U16s>(s) & 255) * reinterpret_cast<U16s>(a | a << 16) + 128;
        const U16s odd = (reinterpret_cast<U16s>(s) >> 8) * reinterpret_cast<U16s>(a | 0x00ff0000) + 128; // alpha stays
        const U16s result = (even + (even >> 8)) >> 8 | ((odd + (odd >> 8)) & 0xff00);
        std::memcpy(dst, &result, 32);
    }
    plain::premultiply(dst, src, width);
}

// Without a branch: how many bits of a glyph's row are set is nothing that a processor can guess.
ZEF_BODY void monoBody(uint8_t* row, std::ptrdiff_t rowStep, const uint8_t* bits, std::ptrdiff_t bitStep, int height,
                       uint8_t keep, uint32_t pixel) {
    const U32s places = {128, 64, 32, 16, 8, 4, 2, 1};
    const U32s wanted = places & keep;
    for (int y = 0; y < height; ++y, row += rowStep, bits += bitStep) {
        U32s d;
        std::memcpy(&d, row, 32);
        const U32s set = reinterpret_cast<U32s>((wanted & *bits) != 0);
        const U32s result = (d & ~set) | (set & pixel);
        std::memcpy(row, &result, 32);
    }
}

ZEF_BODY void to565Body(uint8_t* dst, const uint8_t* src, int width) {
    for (; width >= 8; width -= 8, dst += 16, src += 32) {
        U32s p;
        std::memcpy(&p, src, 32);
        const U16s rb = reinterpret_cast<U16s>(p & 0x00ff00ff) * 31 + 128;
        const U16s g = reinterpret_cast<U16s>(p >> 8 & 255) * 63 + 128;
        const U32s red = reinterpret_cast<U32s>(rb + (rb >> 8)) >> 24 << 11;
        const U32s green = reinterpret_cast<U32s>((g + (g >> 8)) >> 8) << 5 & 0x7e0;
        const U32s blue = reinterpret_cast<U32s>(rb + (rb >> 8)) >> 8 & 31;
        const U16x8 result = __builtin_convertvector(red | green | blue, U16x8);
        std::memcpy(dst, &result, 16);
    }
    plain::to565(dst, src, width);
}

#define ZEF_ROWS(name, attribute)                                                                                      \
    namespace name {                                                                                                   \
    attribute void fill(uint8_t* row, int width, uint32_t pixel) { fillBody(row, width, pixel); }                      \
    attribute void premultiply(uint8_t* dst, const uint8_t* src, int width) { premultiplyBody(dst, src, width); }      \
    attribute void mono(uint8_t* row, std::ptrdiff_t rowStep, const uint8_t* bits, std::ptrdiff_t bitStep, int height, \
                        uint8_t keep, uint32_t pixel) {                                                                \
        monoBody(row, rowStep, bits, bitStep, height, keep, pixel);                                                    \
    }                                                                                                                  \
    attribute void to565(uint8_t* dst, const uint8_t* src, int width) { to565Body(dst, src, width); }                  \
    }

ZEF_ROWS(baseline, )

namespace baseline {
void over(uint8_t* dst, const uint8_t* src, int width, uint32_t opaque, uint32_t ink) {
    overBody(dst, src, width, opaque, ink);
}
} // namespace baseline

#ifdef __x86_64__
#define ZEF_AVX2 __attribute__((target("avx2")))
ZEF_ROWS(avx2, ZEF_AVX2)

namespace avx2 {

// The sum that stops at 255, and the division in one step, have instructions that vectors of the compiler don't reach:
// with t as above, (t + (t >> 8)) >> 8 is t * 257 >> 16.
ZEF_AVX2 void over(uint8_t* dst, const uint8_t* src, int width, uint32_t opaque, uint32_t ink) {
    // A store across two cache lines costs as much as two: begin where stores are aligned.
    const int head = std::min(width, static_cast<int>((32 - reinterpret_cast<uintptr_t>(dst) % 32) % 32 / 4));
    plain::over(dst, src, head, opaque, ink);
    dst += head * 4;
    src += head * 4;
    width -= head;
    const __m256i solid = _mm256_set1_epi32(static_cast<int>(opaque));
    const __m256i stored = _mm256_set1_epi32(static_cast<int>(ink));
    const __m256i low = _mm256_set1_epi16(255);
    const __m256i half = _mm256_set1_epi16(128);
    const __m256i by255 = _mm256_set1_epi16(257);
    const __m256i alphas = // of each pixel, to its two lanes of 16 bits
        _mm256_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1, 3, -1, 3, -1, 7, -1, 7, -1, 11, -1,
                         11, -1, 15, -1, 15, -1);
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        const __m256i s = _mm256_or_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src)), solid);
        const __m256i d = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(dst));
        const __m256i keep = _mm256_xor_si256(_mm256_shuffle_epi8(s, alphas), low);
        const __m256i even = _mm256_add_epi16(_mm256_mullo_epi16(_mm256_and_si256(d, low), keep), half);
        const __m256i odd = _mm256_add_epi16(_mm256_mullo_epi16(_mm256_srli_epi16(d, 8), keep), half);
        const __m256i kept =
            _mm256_or_si256(_mm256_mulhi_epu16(even, by255), _mm256_slli_epi16(_mm256_mulhi_epu16(odd, by255), 8));
        const __m256i sum = _mm256_and_si256(_mm256_adds_epu8(s, kept), stored);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), sum);
    }
    plain::over(dst, src, width, opaque, ink);
}

} // namespace avx2
#endif

#define ZEF_TABLE(name)                                                                                                \
    { name::fill, name::over, name::premultiply, name::mono, name::to565 }
constexpr PixelRows plainRows = ZEF_TABLE(plain);
constexpr PixelRows baselineRows = ZEF_TABLE(baseline);
#ifdef __x86_64__
constexpr PixelRows avx2Rows = ZEF_TABLE(avx2);
#endif

} // namespace

std::vector<const PixelRows*> allPixelRows() {
    std::vector<const PixelRows*> all = {&plainRows, &baselineRows};
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2"))
        all.push_back(&avx2Rows);
#endif
    return all;
}

const PixelRows& pixelRows() {
    static const PixelRows& rows = *allPixelRows().back();
    return rows;
}

} // namespace rfb
