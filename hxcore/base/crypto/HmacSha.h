// Keyed hashes.
#pragma once

#include "crypto/Sha.h"

namespace crypto {

/// HMAC (RFC 2104) over the SHA-2 family, by the length of the digest in bits as for Sha.
///
/// The key is hashed into two states once; each digest goes on from copies of them, so that many short messages under
/// one key cost two block operations each.
class HmacSha : private plat::NonCopyable {
public:
    HmacSha(int digestBits, const void* key, size_t keyLen, bool allowSha1ForLegacyCode = false);

    void update(const void* data, size_t len) { hash.update(data, len); }
    /// Gives digestBits/8 bytes and begins anew with the same key; asserts that they fit.
    void digest(uint8_t* buf, int bufSize);

    int getDigestBytes() const { return hash.getDigestBytes(); }

private:
    Sha inner, outer; // after the padded key
    Sha hash;
};

} // namespace crypto
