// Dead keys and compose sequences.
#pragma once

#include "plat/String.h"

#include <cstdint>

struct xkb_compose_state;

namespace tx {

/// Turns sequences of keys into text, by the Compose file of the user or of the locale (Compose(5)).
///
/// The file is read when the first dead key or Multi_key comes, by libxkbcommon; without that library, and while the
/// parameter DeadKeyFile gives widgets a table of their own, every key is an ordinary one.
class ComposeSequences {
public:
    enum class Result {
        Ordinary,  ///< the key stands for itself
        Swallowed, ///< part of a sequence that goes on, or that led to nothing
        Text,      ///< the sequence is complete
    };

    static ComposeSequences& instance();

    /// A key that was pressed where text is taken. `text` is set for Text.
    Result feed(uint32_t keysym, plat::String* text);
    void reset(); ///< forgets a sequence that was begun

private:
    ComposeSequences() = default;
    bool load();

    xkb_compose_state* state = nullptr;
    bool loaded = false;
    bool composing = false;
};

} // namespace tx
