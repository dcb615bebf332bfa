// Characters typed in several strokes.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace rfb {

/// Composes key strokes: a dead accent, or Multi_key and two keys, become one character.
///
/// Without a table (parameter DeadKeyFile) every key passes through. The table has one entry a line in hexadecimal:
/// "spacing dead", or "combined dead base"; "#" begins a comment.
class DeadKeyUtil {
public:
    DeadKeyUtil();

    /// What to treat as pressed instead of `keysym`: nothing while a composition is under way, or the keys of one
    /// that failed.
    std::vector<uint32_t> compose(uint32_t keysym, bool down);
    void reset() { pending = Pending(); }

private:
    struct Tables {
        std::map<uint32_t, uint32_t> deadOfSpacing;
        std::map<std::pair<uint32_t, uint32_t>, uint32_t> combined; // dead and base
    };
    struct Pending {
        bool multi = false;
        uint32_t dead = 0;
        uint32_t typed = 0; // what is shown if the composition fails
    };

    static const Tables& tables();
    static bool isDead(uint32_t keysym);

    Pending pending;
};

} // namespace rfb
