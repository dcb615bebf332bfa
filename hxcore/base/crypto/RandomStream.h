// Bytes that nobody can guess.
#pragma once

#include "plat/NonCopyable.h"
#include "rdr/InStream.h"

namespace crypto {

/// Reads the kernel's random bytes: for secrets, salts and names that must not be foreseen.
///
/// Make one where it is needed: a fork copies the few bytes that are waiting in it. They are wiped at the end. A kernel
/// that refuses throws plat::SystemException.
class RandomStream : public rdr::InStream, private plat::NonCopyable {
public:
    RandomStream();
    ~RandomStream() override;

    uint32_t pos() override { return 0; }
    void checkpoint() override {} ///< there is no way back

protected:
    bool fillBuffer(size_t n) override;

private:
    uint8_t block[64] = {};
};

} // namespace crypto
