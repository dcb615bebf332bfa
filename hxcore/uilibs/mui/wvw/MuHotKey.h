// Elements that a key with Alt presses.
#pragma once

#include <cstdint>

namespace mui {

/// Told by the dialog of a key with Alt that no widget used.
class MuHotKey {
public:
    virtual ~MuHotKey() = default;
    virtual bool hotKey(uint32_t keysym) = 0; ///< presses it and gives true if the key is its own
};

} // namespace mui
