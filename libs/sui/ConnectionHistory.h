// Who was connected, as long as the UI runs.
#pragma once

#include "plat/String.h"
#include "plat/Time.h"

#include <cstdint>
#include <deque>

namespace sui {

/// The connections that have ended, the latest end first, at most `maxEntries` of them.
class ConnectionHistory {
public:
    static constexpr size_t maxEntries = 100;

    /// The beginning of a connection, on the wall and on the clock that nobody sets.
    struct Start {
        plat::Time wall;
        int64_t ticks = 0; ///< plat::monoTicks

        static Start now();
    };
    struct Entry {
        plat::String user;    ///< as shown
        plat::String address; ///< as shown
        plat::Time begin;
        int seconds = 0; ///< how long it lasted
    };

    void add(const char* user, const char* address, const Start& start); ///< one that ends at this moment
    const std::deque<Entry>& entries() const { return list; }

private:
    std::deque<Entry> list;
};

} // namespace sui
