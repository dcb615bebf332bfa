#include "crypto/Sha.h"

#include "plat/encodings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
using crypto::Sha;

std::string hexDigest(Sha& hash) {
    std::vector<uint8_t> digest(static_cast<size_t>(hash.getDigestBytes()));
    hash.digest(digest.data(), static_cast<int>(digest.size()));
    return plat::binToHex(digest.size(), digest.data()).c_str();
}

// Examples that NIST publishes with FIPS 180-4 ("Cryptographic Standards and Guidelines: examples with
// intermediate values").
TEST(Sha, KnownAnswers) {
    const struct {
        int bits;
        const char* text;
        const char* digest;
    } cases[] = {
        {160, "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {224, "abc", "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
        {256, "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {256, "", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {384, "abc",
         "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7"},
        {512, "abc",
         "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
         "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::to_string(each.bits) + " " + each.text);
        const std::string text = each.text;
        Sha hash(each.bits, each.bits == 160);
        for (size_t split = 0; split <= text.size(); ++split) {
            hash.update(text.data(), split);
            hash.update(text.data() + split, text.size() - split);
            EXPECT_EQ(hexDigest(hash), each.digest) << split; // and the next round shows that it began anew
        }
    }
}

TEST(Sha, StatesGoOnApart) {
    Sha first(512);
    Sha second(512);
    first.update("a", 1);
    second.update("something else", 14);
    second.takeState(first);
    first.update("x", 1);
    second.update("bc", 2);
    Sha plain(512);
    plain.update("ax", 2);
    EXPECT_EQ(hexDigest(first), hexDigest(plain));
    plain.update("abc", 3);
    EXPECT_EQ(hexDigest(second), hexDigest(plain));
}

TEST(ShaDeathTest, RefusesOtherLengthsAndSmallBuffers) {
    const char* const rule =
        "Assertion '\\(digestBits == 160 && allowSha1ForLegacyCode\\) \\|\\| digestBits == 224 \\|\\| "
        "digestBits == 256 \\|\\| digestBits == 384 \\|\\| digestBits == 512' failed";
    EXPECT_DEATH(Sha(160), rule);
    EXPECT_DEATH(Sha(0, true), rule);
    EXPECT_DEATH(Sha(255), rule);
    uint8_t small[31];
    EXPECT_DEATH(crypto::sha(256, "abc", 3, small, sizeof small), "Assertion 'bufSize >= digestBits/8' failed");
}

} // namespace
