#include "crypto/RandomStream.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/SecureString.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace crypto {

RandomStream::RandomStream() {
    ptr = end = block;
    rewindable = false;
}

RandomStream::~RandomStream() { plat::secureWipe(block, sizeof block); }

bool RandomStream::fillBuffer(size_t n) {
    ASSERT(n <= sizeof block);
    const size_t left = buffered();
    std::memmove(block, ptr, left);
    ptr = block;
    end = block + left;
    if (getentropy(block + left, sizeof block - left) != 0)
        throw plat::SystemException("getentropy", errno);
    end = block + sizeof block;
    return true;
}

} // namespace crypto
