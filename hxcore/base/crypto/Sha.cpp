#include "crypto/Sha.h"

#include "plat/Assert.h"
#include "plat/Exception.h"

#include <mbedtls/md.h>

#include <new>

namespace crypto {
namespace {

// These calls, unlike those of each hash function, have the same names and results in Mbed TLS 2.28 and 3.6.
void check(int result, const char* call) {
    if (result == MBEDTLS_ERR_MD_ALLOC_FAILED)
        throw std::bad_alloc();
    if (result != 0)
        throw plat::ExceptionFmt("%s failed with error -0x%04x", call, static_cast<unsigned>(-result));
}

mbedtls_md_type_t typeOf(int digestBits) {
    switch (digestBits) {
    case 160:
        return MBEDTLS_MD_SHA1;
    case 224:
        return MBEDTLS_MD_SHA224;
    case 256:
        return MBEDTLS_MD_SHA256;
    case 384:
        return MBEDTLS_MD_SHA384;
    default:
        return MBEDTLS_MD_SHA512;
    }
}
} // namespace

void Sha::Free::operator()(mbedtls_md_context_t* context) const {
    mbedtls_md_free(context); // wipes
    delete context;
}

Sha::Sha(int digestBits_, bool allowSha1ForLegacyCode) : digestBits(digestBits_), state(new mbedtls_md_context_t) {
    mbedtls_md_init(state.get());
    ASSERT((digestBits == 160 && allowSha1ForLegacyCode) || digestBits == 224 || digestBits == 256 ||
           digestBits == 384 || digestBits == 512);
    check(mbedtls_md_setup(state.get(), mbedtls_md_info_from_type(typeOf(digestBits)), /*hmac=*/0), "mbedtls_md_setup");
    check(mbedtls_md_starts(state.get()), "mbedtls_md_starts");
}

Sha::~Sha() = default;

void Sha::update(const void* data, size_t len) {
    check(mbedtls_md_update(state.get(), static_cast<const unsigned char*>(data), len), "mbedtls_md_update");
}

void Sha::digest(uint8_t* buf, int bufSize) {
    // The text of the check is output.
    // clang-format off
    ASSERT(bufSize >= digestBits/8);
    // clang-format on
    check(mbedtls_md_finish(state.get(), buf), "mbedtls_md_finish");
    check(mbedtls_md_starts(state.get()), "mbedtls_md_starts");
}

void Sha::takeState(const Sha& other) {
    ASSERT(digestBits == other.digestBits);
    check(mbedtls_md_clone(state.get(), other.state.get()), "mbedtls_md_clone");
}

void sha(int digestBits, const void* data, size_t len, uint8_t* buf, int bufSize) {
    Sha hash(digestBits);
    hash.update(data, len);
    hash.digest(buf, bufSize);
}

} // namespace crypto
