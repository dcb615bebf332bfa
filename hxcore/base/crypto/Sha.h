// The SHA-2 family of hash functions.
#pragma once

#include "plat/NonCopyable.h"

#include <cstddef>
#include <cstdint>
#include <memory>

struct mbedtls_md_context_t;

namespace crypto {

/// Hashes bytes with SHA-224, SHA-256, SHA-384 or SHA-512 (FIPS 180-4), by the length of the digest in bits.
///
/// 160, SHA-1, needs `allowSha1ForLegacyCode`; any other number asserts. The state is wiped at the end.
class Sha : private plat::NonCopyable {
public:
    static constexpr int maxBytes = 64; ///< holds every digest

    explicit Sha(int digestBits, bool allowSha1ForLegacyCode = false);
    ~Sha();

    void update(const void* data, size_t len); ///< null for no bytes is allowed
    /// Gives digestBits/8 bytes, the hash of all that was added, and begins anew; asserts that they fit.
    void digest(uint8_t* buf, int bufSize);

    /// Goes on from where `other`, of the same digest length, stands.
    void takeState(const Sha& other);

    int getDigestBits() const { return digestBits; }
    int getDigestBytes() const { return digestBits / 8; }
    int getBlockBytes() const { return digestBits > 256 ? 128 : 64; } ///< what HMAC pads its key to

private:
    struct Free {
        void operator()(mbedtls_md_context_t* state) const;
    };

    int digestBits;
    std::unique_ptr<mbedtls_md_context_t, Free> state;
};

/// The hash of one piece of bytes, into `buf` as Sha::digest does.
void sha(int digestBits, const void* data, size_t len, uint8_t* buf, int bufSize);

} // namespace crypto
