#include "crypto/Pbkdf2.h"

#include <algorithm>
#include <cstddef>

namespace crypto {

plat::MBuf<uint8_t> Pbkdf2::derive(std::string_view password, Salt salt, unsigned rounds, int keyLength,
                                   int digestBits) {
    ASSERT(rounds > 0);
    Pbkdf2 derivation(password, salt, keyLength, digestBits);
    derivation.addRounds(rounds);
    return derivation.getKey();
}

Pbkdf2::Pbkdf2(std::string_view password, Salt salt_, int keyLength_, int digestBits)
    : prf(digestBits, password.data(), password.size()), salt(salt_.data(), static_cast<int>(salt_.size())),
      keyLength(keyLength_), blocks((keyLength + prf.getDigestBytes() - 1) / prf.getDigestBytes()),
      last(blocks * prf.getDigestBytes(), /*secure=*/true), sum(last) {
    ASSERT(keyLength > 0);
}

void Pbkdf2::firstRound() {
    const int digestBytes = prf.getDigestBytes();
    for (int block = 0; block < blocks; ++block) {
        const auto number = static_cast<uint32_t>(block + 1);
        const uint8_t bigEndian[] = {static_cast<uint8_t>(number >> 24), static_cast<uint8_t>(number >> 16),
                                     static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
        prf.update(salt.data(), static_cast<size_t>(salt.size()));
        prf.update(bigEndian, sizeof bigEndian);
        prf.digest(last.data() + std::ptrdiff_t{block} * digestBytes, digestBytes);
    }
    std::copy(last.begin(), last.end(), sum.begin());
    rounds = 1;
}

void Pbkdf2::addRounds(unsigned count) {
    if (count > 0 && rounds == 0) {
        firstRound();
        --count;
    }
    const int digestBytes = prf.getDigestBytes();
    for (int block = 0; block < blocks; ++block) {
        uint8_t* const u = last.data() + std::ptrdiff_t{block} * digestBytes;
        uint8_t* const t = sum.data() + std::ptrdiff_t{block} * digestBytes;
        for (unsigned i = 0; i < count; ++i) {
            prf.update(u, static_cast<size_t>(digestBytes));
            prf.digest(u, digestBytes);
            for (int k = 0; k < digestBytes; ++k)
                t[k] ^= u[k];
        }
    }
    rounds += count;
}

plat::MBuf<uint8_t> Pbkdf2::getKey() const {
    return plat::MBuf<uint8_t>(sum.data(), rounds > 0 ? keyLength : 0, /*secure=*/true);
}

} // namespace crypto
