// An endless sequence of bytes for tests and padding.
#pragma once

#include "rdr/InStream.h"

namespace rdr {

/// Gives the same endless bytes for the same seed. Not for anything that must not be guessed.
class PseudoRandomStream : public InStream {
public:
    explicit PseudoRandomStream(uint64_t seed = 1);

    uint32_t pos() override { return 0; }
    void checkpoint() override {} ///< there is no way back in the sequence

protected:
    bool fillBuffer(size_t n) override;

private:
    uint64_t state;
    uint8_t block[64];
};

} // namespace rdr
