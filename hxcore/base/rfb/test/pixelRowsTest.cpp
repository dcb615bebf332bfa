#include "rfb/pixelRows.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

std::vector<uint8_t> noise(size_t bytes, uint32_t seed) {
    std::vector<uint8_t> made(bytes);
    for (uint8_t& byte : made) {
        seed = seed * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(seed >> 24);
    }
    return made;
}

/// Every pair of an alpha, or coverage, with a channel, in odd widths and at odd addresses.
std::vector<uint8_t> allPairs() {
    std::vector<uint8_t> pixels;
    for (int a = 0; a < 256; ++a)
        for (int v = 0; v < 256; ++v)
            for (const int byte : {v, 255 - v, v ^ a, a})
                pixels.push_back(static_cast<uint8_t>(byte));
    return pixels;
}

/// Runs a loop in all ways on copies of `dst`, `offset` bytes from an aligned address; all bytes must agree, also
/// those around the row.
template <class Loop>
void expectSame(const std::vector<uint8_t>& dst, size_t offset, Loop&& loop) {
    std::vector<uint8_t> plain;
    for (const rfb::PixelRows* rows : rfb::allPixelRows()) {
        std::vector<uint8_t> bytes(dst.size() + 96, 0xa5);
        uint8_t* aligned = bytes.data() + (32 - reinterpret_cast<uintptr_t>(bytes.data()) % 32) % 32;
        std::copy(dst.begin(), dst.end(), aligned + offset);
        loop(*rows, aligned + offset);
        const std::vector<uint8_t> seen(aligned, aligned + dst.size() + 32); // the same stretch for all
        if (plain.empty())
            plain = seen;
        else
            EXPECT_EQ(seen, plain);
    }
}

TEST(PixelRows, VectorsGiveTheBytesOfThePlainLoops) {
    const std::vector<uint8_t> src = allPairs();
    const int all = static_cast<int>(src.size() / 4);
    for (const int width : {0, 1, 3, 4, 5, 7, 8, 9, 31, 33, 65, all - 1, all}) {
        const auto bytes = static_cast<size_t>(width) * 4;
        const std::vector<uint8_t> dst = noise(bytes, 7);
        for (const size_t offset : {size_t{0}, size_t{1}, size_t{4}, size_t{28}}) {
            expectSame(dst, offset,
                       [&](const rfb::PixelRows& rows, uint8_t* row) { rows.fill(row, width, 0x12345678); });
            for (const uint32_t opaque : {0U, 0xff000000U})
                for (const uint32_t ink : {0xffffffffU, 0x00ffffffU})
                    expectSame(dst, offset, [&](const rfb::PixelRows& rows, uint8_t* row) {
                        rows.over(row, src.data(), width, opaque, ink);
                    });
            expectSame(dst, offset,
                       [&](const rfb::PixelRows& rows, uint8_t* row) { rows.premultiply(row, src.data(), width); });
            expectSame(dst, offset,
                       [&](const rfb::PixelRows& rows, uint8_t* row) { rows.to565(row, src.data(), width); });
        }
    }
}

TEST(PixelRows, MonoLeavesWhatTheMaskDoesNotSet) {
    const std::vector<uint8_t> dst = noise(256 * 32, 5);
    std::vector<uint8_t> bits(256);
    for (size_t i = 0; i < bits.size(); ++i)
        bits[i] = static_cast<uint8_t>(i);
    for (const uint8_t keep : {uint8_t{0}, uint8_t{0x80}, uint8_t{0xf8}, uint8_t{0xff}})
        expectSame(dst, 4, [&](const rfb::PixelRows& rows, uint8_t* row) {
            rows.mono(row, 32, bits.data(), 1, 256, keep, 0x00112233);
        });
}

// Premultiplied or not, every destination meets every coverage.
TEST(PixelRows, OverAgreesForEveryAlphaAndDestination) {
    const std::vector<uint8_t> src = noise(256 * 256 * 4, 3);
    std::vector<uint8_t> dst = allPairs();
    expectSame(dst, 0,
               [&](const rfb::PixelRows& rows, uint8_t* row) { rows.over(row, src.data(), 256 * 256, 0, 0xffffffff); });
}

} // namespace
