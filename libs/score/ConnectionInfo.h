// The record of one connected user.
#pragma once

#include "plat/String.h"

#include <vector>

namespace rdr {
class InStream;
class OutStream;
} // namespace rdr

namespace score {

/// Six texts, on the wire and in memory in this order. `idA` and `idB` together tell connections apart.
struct ConnectionInfo {
    plat::String user;
    plat::String address;
    plat::String idA;
    plat::String idB;
    plat::String permissions; ///< permission letters
    plat::String userType;    ///< "System", "Admin", "ViewOnly", "InputOnly", "Standard", "Guest", "Anonymous"

    void read(rdr::InStream& in);
    void write(rdr::OutStream& out) const;

    bool isSameConnection(const ConnectionInfo& other) const;
    plat::String displayName() const; ///< as lists show it, in the user's language

    /// Removes the first record of that connection and gives its index, or -1.
    static int removeMatching(std::vector<ConnectionInfo>& records, const ConnectionInfo& info);
};

} // namespace score
