#include "crypto/HmacSha.h"

#include "plat/encodings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::string hexDigest(crypto::HmacSha& mac) {
    std::vector<uint8_t> digest(static_cast<size_t>(mac.getDigestBytes()));
    mac.digest(digest.data(), static_cast<int>(digest.size()));
    return plat::binToHex(digest.size(), digest.data()).c_str();
}

const std::string manyA(131, '\xaa'); // longer than a block
const char* const longText =
    "This is a test using a larger than block-size key and a larger than block-size data. The key "
    "needs to be hashed before being used by the HMAC algorithm.";

// RFC 4231, test cases 1, 2, 6 and 7; for 160 bits RFC 2202, test case 2. A key of one block, and of a byte more, with
// an empty message: computed with the hmac module of Python 3.11.
TEST(HmacSha, KnownAnswersTwiceUnderOneKey) {
    const struct {
        int bits;
        std::string key, text;
        const char* digest;
    } cases[] = {
        {160, "Jefe", "what do ya want for nothing?", "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
        {224, std::string(20, '\x0b'), "Hi There", "896fb1128abbdf196832107cd49df33f47b4b1169912ba4f53684b22"},
        {256, "Jefe", "what do ya want for nothing?",
         "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
        {256, manyA, "Test Using Larger Than Block-Size Key - Hash Key First",
         "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54"},
        {256, std::string(64, 'k'), "", "83026a325aaee70e36cfe607536aa1054104ad1077c36134810d4ccded1ccd3b"},
        {256, std::string(65, 'k'), "", "41f1c4cc3107cd5b8d92460f61032902bfdb06484eef17e861b83a5012d3b7f3"},
        {384, std::string(20, '\x0b'), "Hi There",
         "afd03944d84895626b0825f4ab46907f15f9dadbe4101ec682aa034c7cebc59cfaea9ea9076ede7f4af152e8b2fa9cb6"},
        {512, "Jefe", "what do ya want for nothing?",
         "164b7a7bfcf819e2e395fbe73b56e0a387bd64222e831fd610270cd7ea250554"
         "9758bf75c05a994a6d034f65f8f0e6fdcaeab1a34d4a6b4b636e070a38bce737"},
        {512, manyA, longText,
         "e37b6a775dc87dbaa4dfa9f96e5e3ffddebd71f8867289865df5a32d20cdc944"
         "b6022cac3c4982b10d5eeb55c3e4de15134676fb6de0446065c97440fa8c6a58"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::to_string(each.bits) + " " + each.text);
        crypto::HmacSha mac(each.bits, each.key.data(), each.key.size(), each.bits == 160);
        mac.update(each.text.data(), each.text.size());
        EXPECT_EQ(hexDigest(mac), each.digest);
        for (const char c : each.text) // piece by piece gives the same
            mac.update(&c, 1);
        EXPECT_EQ(hexDigest(mac), each.digest);
    }
}

TEST(HmacShaDeathTest, RefusesOtherLengths) {
    EXPECT_DEATH(crypto::HmacSha(160, "k", 1), "digestBits == 160 && allowSha1ForLegacyCode");
    uint8_t small[63];
    EXPECT_DEATH(crypto::HmacSha(512, "k", 1).digest(small, sizeof small), "bufSize >= digestBits/8");
}

} // namespace
