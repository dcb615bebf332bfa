// Passwords kept as salted hashes.
#pragma once

#include "plat/MBuf.h"

#include <cstdint>

namespace crypto {

/// The stored form of a password that can be checked but not read back.
///
/// 87 bytes: "P2a", the rounds as a big-endian number of 32 bits, 16 bytes of salt, and a key of 64 bytes, derived by
/// PBKDF2 with HMAC-SHA-512.
class PasswordHash {
public:
    static constexpr int lenBytes = 87;
    static constexpr int maxRounds = 20000000; ///< so that a crafted value can't hang the process

    /// True for 87 bytes that begin with the magic; whatever else they hold, they are no other form of password.
    static bool isHash(int length, const void* bytes);

    /// What create takes for `rounds`: below 1 the parameter PasswordHashRounds, at most maxRounds.
    static int effectiveRounds(int rounds);

    /// The form of `password`, null as "", with a fresh salt.
    static plat::MBuf<uint8_t> create(const char* password, int rounds = 0);

    /// False for a null password, for what is no hash, and for rounds of 0 or above maxRounds, for which no work is
    /// done.
    static bool verify(const char* password, int length, const void* bytes);
};

} // namespace crypto
