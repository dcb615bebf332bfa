// Keys from passwords.
#pragma once

#include "crypto/HmacSha.h"
#include "plat/MBuf.h"

#include <span>
#include <string_view>

namespace crypto {

/// PBKDF2 (RFC 2898 5.2, RFC 8018) with HMAC over the SHA-2 family.
///
/// A derivation can be given further rounds at any time: k rounds and n more are a derivation of k + n. All that could
/// tell the key or the password is wiped at the end.
class Pbkdf2 : private plat::NonCopyable {
public:
    using Salt = std::span<const uint8_t>;

    /// The key of `keyLength` bytes, in a secure buffer, after `rounds` (at least 1).
    static plat::MBuf<uint8_t> derive(std::string_view password, Salt salt, unsigned rounds, int keyLength,
                                      int digestBits);

    Pbkdf2(std::string_view password, Salt salt, int keyLength, int digestBits); ///< no rounds yet

    void addRounds(unsigned count);
    unsigned getRounds() const { return rounds; }
    /// What has been derived so far; empty before the first round.
    plat::MBuf<uint8_t> getKey() const;

private:
    void firstRound();

    HmacSha prf;
    plat::MBuf<uint8_t> salt;
    int keyLength;
    int blocks;               // of the digest's length, the last one cut
    unsigned rounds = 0;      // done, the same for each block
    plat::MBuf<uint8_t> last; // U of RFC 8018, all blocks one behind the other
    plat::MBuf<uint8_t> sum;  // T of RFC 8018: all U so far, added bit by bit
};

} // namespace crypto
