// The memory of log messages that no destination took.
#pragma once

#include "plat/LogDest.h"

#include <string>
#include <vector>

namespace plat {

/// Keeps up to 500 messages until a destination is there for them; then one that says that further ones are dropped.
class LogDestMem : public LogDest {
public:
    LogDestMem();

    /// Hands all messages of a level up to `highest` to `dest`, between two lines that say so.
    void replay(LogDest& dest, int highest);

    void forget(int highest); ///< drops all messages of a level up to `highest`
    void clear();
    bool holds(int highest); ///< whether there is a message of a level up to `highest`

    // LogDest
    void write(int level, const char* srcName, const char* text) override;

private:
    struct Entry {
        int level;
        std::string source;
        std::string text;
    };

    static constexpr size_t maxEntries = 500;

    std::vector<Entry> entries;
    bool replaying = false; // what replay causes to be logged must not feed replay
};

} // namespace plat
