// The text of an edit; for its sources only.
#pragma once

#include <cstring>
#include <string>

namespace wvw {

inline int lengthOf(const std::string& s) { return static_cast<int>(s.size()); }

/// Leaves no copy of a secret behind.
inline void wipe(std::string& s) {
    explicit_bzero(s.data(), s.size());
    s.clear();
}

} // namespace wvw
