#include "crypto/PasswordHash.h"

#include "crypto/Pbkdf2.h"
#include "crypto/RandomStream.h"
#include "plat/ConfigParameter.h"

#include <algorithm>
#include <cstring>

namespace crypto {
namespace {
constexpr char magic[] = {'P', '2', 'a'};
constexpr int roundsAt = sizeof magic;
constexpr int saltAt = roundsAt + 4;
constexpr int saltBytes = 16;
constexpr int keyAt = saltAt + saltBytes;
constexpr int keyBytes = 64;
static_assert(keyAt + keyBytes == PasswordHash::lenBytes);

plat::IntParameter passwordHashRounds("PasswordHashRounds",
                                      "Number of rounds to use when generating hashes for new passwords", 20000,
                                      /*isAdvanced=*/false, nullptr, 1, PasswordHash::maxRounds);

plat::MBuf<uint8_t> deriveKey(const char* password, const uint8_t* salt, unsigned rounds) {
    return Pbkdf2::derive(plat::strOrEmpty(password), {salt, saltBytes}, rounds, keyBytes, /*digestBits=*/512);
}
} // namespace

bool PasswordHash::isHash(int length, const void* bytes) {
    return length == lenBytes && std::memcmp(bytes, magic, sizeof magic) == 0;
}

int PasswordHash::effectiveRounds(int rounds) {
    return rounds < 1 ? passwordHashRounds.value() : std::min(rounds, maxRounds);
}

plat::MBuf<uint8_t> PasswordHash::create(const char* password, int rounds) {
    rounds = effectiveRounds(rounds);
    plat::MBuf<uint8_t> form(lenBytes, /*secure=*/true);
    std::copy_n(magic, sizeof magic, form.data());
    for (int i = 0; i < 4; ++i)
        form[roundsAt + i] = static_cast<uint8_t>(static_cast<unsigned>(rounds) >> (24 - 8 * i));
    RandomStream().readBytes(form.data() + saltAt, saltBytes);
    const plat::MBuf<uint8_t> key = deriveKey(password, form.data() + saltAt, static_cast<unsigned>(rounds));
    std::copy_n(key.data(), keyBytes, form.data() + keyAt);
    return form;
}

bool PasswordHash::verify(const char* password, int length, const void* bytes) {
    if (!password || !isHash(length, bytes))
        return false;
    const auto* form = static_cast<const uint8_t*>(bytes);
    uint32_t rounds = 0;
    for (int i = 0; i < 4; ++i)
        rounds = rounds << 8 | form[roundsAt + i];
    if (rounds == 0 || rounds > maxRounds)
        return false;
    const plat::MBuf<uint8_t> key = deriveKey(password, form + saltAt, rounds);
    return plat::secureCompare(key.data(), form + keyAt, keyBytes);
}

} // namespace crypto
