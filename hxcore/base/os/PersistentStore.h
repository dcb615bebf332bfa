// Named byte strings that outlive the process.
#pragma once

#include "plat/MBuf.h"

#include <cstdint>
#include <span>

namespace os {

class PersistentStore {
public:
    virtual ~PersistentStore() = default;

    /// False if there is no such blob; `out` is emptied in any case, and wiped first.
    virtual bool load(const char* name, plat::MBuf<uint8_t>& out) = 0;

    /// Replaces the blob. Throws plat::Exception if it can't, the old one staying.
    virtual void save(const char* name, std::span<const uint8_t> data) = 0;

    /// Removes a blob, which need not exist; a null or empty name removes all.
    virtual void remove(const char* name) = 0;
};

} // namespace os
