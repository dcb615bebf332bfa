#include "crypto/PasswordHash.h"

#include "crypto/Pbkdf2.h"
#include "plat/Configuration.h"
#include "plat/encodings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {
using crypto::PasswordHash;
using crypto::Pbkdf2;

std::string hex(const plat::MBuf<uint8_t>& bytes) {
    return plat::binToHex(static_cast<size_t>(bytes.size()), bytes.data()).c_str();
}

Pbkdf2::Salt saltOf(const char* text) { return {reinterpret_cast<const uint8_t*>(text), std::strlen(text)}; }

// For 256 bits RFC 7914, 11; for 512 bits computed with the hashlib module of Python 3.11.
TEST(Pbkdf2, KnownAnswers) {
    EXPECT_EQ(hex(Pbkdf2::derive("passwd", saltOf("salt"), 1, 64, 256)),
              "55ac046e56e3089fec1691c22544b605f94185216dde0465e68b9d57c20dacbc"
              "49ca9cccf179b645991664b39d77ef317c71b845b1e30bd509112041d3a19783");
    EXPECT_EQ(hex(Pbkdf2::derive("Password", saltOf("NaCl"), 80000, 64, 256)),
              "4ddcd8f60b98be21830cee5ef22701f9641a4418d04c0414aeff08876b34ab56"
              "a1d425a1225833549adb841b51c9b3176a272bdebba1d078478f62b397f33c8d");
    EXPECT_EQ(hex(Pbkdf2::derive("password", saltOf("salt"), 1, 64, 512)),
              "867f70cf1ade02cff3752599a3a53dc4af34c7a669815ae5d513554e1c8cf252"
              "c02d470a285a0501bad999bfe943c08f050235d7d68b1da55e63f73b60a57fce");
}

TEST(Pbkdf2, RoundsThatAreAddedLaterCountAsIfDoneAtOnce) {
    const Pbkdf2::Salt salt = saltOf("0123456789");
    for (const int bits : {224, 384, 512}) {
        Pbkdf2 derivation("correct horse", salt, 100, bits); // the last block is cut
        EXPECT_TRUE(derivation.getKey().isEmpty());
        unsigned rounds = 0;
        for (const unsigned more : {0u, 1u, 1u, 0u, 5u, 20u}) {
            derivation.addRounds(more);
            rounds += more;
            EXPECT_EQ(derivation.getRounds(), rounds);
            if (rounds > 0) {
                EXPECT_EQ(hex(derivation.getKey()), hex(Pbkdf2::derive("correct horse", salt, rounds, 100, bits)));
            }
        }
        EXPECT_TRUE(derivation.getKey().isSecure());
    }
}

// "P2a", 3 rounds, a salt of 00 to 0f, and the key of "päss" by the hashlib module of Python 3.11.
const char* const storedForm = "50326100000003000102030405060708090a0b0c0d0e0f"
                               "e7f435bdd93a56d1b80ecdb52e4ee917ddb526b997ae7e277abcb28f28481725"
                               "562b24c68678c1933dae682045c1297cf154bfc8f8eb9993b1755509f7507510";

class StoredHash : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(plat::hexToBin(storedForm, form));
        ASSERT_EQ(form.size(), 87);
    }
    bool verify(const char* password) const { return PasswordHash::verify(password, form.size(), form.data()); }

    plat::MBuf<uint8_t> form;
};

TEST_F(StoredHash, OnlyItsPasswordVerifies) {
    EXPECT_TRUE(verify("p\xc3\xa4ss"));
    for (const char* const wrong : {static_cast<const char*>(nullptr), "", "p\xc3\xa4s", "p\xc3\xa4ss ", "pass"})
        EXPECT_FALSE(verify(wrong));
    for (const int at : {7, 22, 23, 54, 86}) { // salt and key, first and last byte
        form[at] ^= 1;
        EXPECT_FALSE(verify("p\xc3\xa4ss")) << at;
        form[at] ^= 1;
    }
}

TEST_F(StoredHash, IsKnownByLengthAndMagicAlone) {
    EXPECT_TRUE(PasswordHash::isHash(form.size(), form.data()));
    EXPECT_FALSE(PasswordHash::isHash(86, form.data()));
    EXPECT_FALSE(PasswordHash::isHash(0, nullptr));
    EXPECT_FALSE(PasswordHash::verify("p\xc3\xa4ss", 86, form.data()));
    form.resize(88);
    EXPECT_FALSE(PasswordHash::isHash(form.size(), form.data()));
    form.resize(87);
    form[2] = 'b';
    EXPECT_FALSE(PasswordHash::isHash(form.size(), form.data()));
    EXPECT_FALSE(verify("p\xc3\xa4ss"));
}

TEST_F(StoredHash, RoundsOutOfBoundsVerifyAsFalseWithoutWork) {
    for (const uint32_t rounds : {0u, 20000001u, 0x80000000u, 0xffffffffu}) {
        for (int i = 0; i < 4; ++i)
            form[3 + i] = static_cast<uint8_t>(rounds >> (24 - 8 * i));
        EXPECT_FALSE(verify("p\xc3\xa4ss")) << rounds; // the test's time limit sees work of hours
    }
}

TEST(PasswordHash, CreatesWhatVerifies) {
    const plat::MBuf<uint8_t> first = PasswordHash::create("secret", 2);
    const plat::MBuf<uint8_t> second = PasswordHash::create("secret", 2);
    EXPECT_EQ(hex(first).substr(0, 14), "50326100000002");
    EXPECT_NE(hex(first), hex(second)); // by their salts
    EXPECT_TRUE(first.isSecure());
    EXPECT_TRUE(PasswordHash::verify("secret", first.size(), first.data()));
    EXPECT_FALSE(PasswordHash::verify("Secret", first.size(), first.data()));

    EXPECT_EQ(hex(PasswordHash::create("secret")).substr(0, 14), "50326100004e20");
    for (const int asParameterSays : {-1, INT_MIN})
        EXPECT_EQ(PasswordHash::effectiveRounds(asParameterSays), 20000);
    EXPECT_EQ(PasswordHash::effectiveRounds(30000000), 20000000);
    plat::Configuration& config = plat::Configuration::global();
    EXPECT_FALSE(config.set("PasswordHashRounds", "20000001")); // a hash of it would never verify
    ASSERT_TRUE(config.set("PasswordHashRounds", "7"));
    EXPECT_EQ(hex(PasswordHash::create("")).substr(0, 14), "50326100000007");
    config.get("PasswordHashRounds").unset(plat::PriorityPreference);
}

} // namespace
