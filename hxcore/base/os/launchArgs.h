// The words by which a launched process finds the one that launched it.
#pragma once

#include "plat/MBuf.h"
#include "plat/String.h"

#include <cstdint>
#include <vector>

namespace os {

/// What the words say: "-dummy" alone, or "-lppDebug", "-hash HEX", "-fork", each optional and in this order, then the
/// number of an inherited descriptor or the name of a socket.
struct LaunchArgs {
    bool isDummy = false; ///< there is no parent: descriptor 0 stands in for it
    bool debug = false;
    plat::MBuf<uint8_t> hash{0, /*secure=*/true}; ///< SHA-256 of the secret that the parent is going to tell
    bool fork = false;
    int fd = -1; ///< -1: connect to socketName
    plat::String socketName;
    int count = 0; ///< words that were understood; those behind them are for somebody else

    /// Fills in word by word from a null-terminated list, so that on a failure it tells what came before.
    ///
    /// Throws plat::Exception: "-hash argument bad or missing", "Bad command-line: got %s instead of pipe name", or
    /// that the program isn't meant to be run directly, where no word is left; plat::SystemException for a number that
    /// is no descriptor.
    void read(const char* const* argv);

    /// Appends the words, "-lppDebug" also where the parameter _lppDebug is set.
    void write(std::vector<plat::String>& args) const;
};

} // namespace os
