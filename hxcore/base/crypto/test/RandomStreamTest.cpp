#include "crypto/RandomStream.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <set>

namespace {

TEST(RandomStream, NeverGivesABlockTwiceHoweverItIsRead) {
    crypto::RandomStream in;
    std::set<std::array<uint8_t, 16>> seen;
    std::array<uint8_t, 16> block;
    for (int i = 0; i < 1000; ++i) {
        in.readBytes(block.data(), block.size());
        EXPECT_TRUE(seen.insert(block).second);
        std::memset(block.data(), 0, block.size());
        for (uint8_t& byte : block) // odd places, so that numbers straddle the buffer
            byte = in.readU8();
        EXPECT_TRUE(seen.insert(block).second);
        in.readU16();
        in.readU8();
        EXPECT_LT(in.readUniform(7), 7u);
    }
}

} // namespace
