#include "crypto/HmacSha.h"

#include "plat/SecureString.h"

#include <cstring>

namespace crypto {
namespace {
constexpr int maxBlockBytes = 128;
constexpr uint8_t innerPad = 0x36;
constexpr uint8_t outerPad = 0x5c;
} // namespace

HmacSha::HmacSha(int digestBits, const void* key, size_t keyLen, bool allowSha1ForLegacyCode)
    : inner(digestBits, allowSha1ForLegacyCode), outer(digestBits, allowSha1ForLegacyCode),
      hash(digestBits, allowSha1ForLegacyCode) {
    const int blockBytes = hash.getBlockBytes();
    uint8_t block[maxBlockBytes] = {};
    if (keyLen > static_cast<size_t>(blockBytes)) {
        hash.update(key, keyLen);
        hash.digest(block, sizeof block);
    } else if (keyLen > 0) {
        std::memcpy(block, key, keyLen);
    }
    for (int i = 0; i < blockBytes; ++i)
        block[i] ^= innerPad;
    inner.update(block, static_cast<size_t>(blockBytes));
    for (int i = 0; i < blockBytes; ++i)
        block[i] ^= innerPad ^ outerPad;
    outer.update(block, static_cast<size_t>(blockBytes));
    plat::secureWipe(block, sizeof block);
    hash.takeState(inner);
}

void HmacSha::digest(uint8_t* buf, int bufSize) {
    hash.digest(buf, bufSize);
    hash.takeState(outer);
    hash.update(buf, static_cast<size_t>(getDigestBytes()));
    hash.digest(buf, bufSize);
    hash.takeState(inner);
}

} // namespace crypto
