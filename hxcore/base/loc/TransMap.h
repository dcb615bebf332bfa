// The flattened view of the catalogs for one list of locales.
#pragma once

#include "plat/NonCopyable.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace loc {

enum class TransState {
    Unused,    ///< not asked for yet
    Raw,       ///< handed out raw: the caller fills in the arguments
    Formatted, ///< handed out as plain text: "%%" has been reduced to "%"
};

/// One text of a catalog, its own copy or borrowed for good.
class Translation {
public:
    Translation() = default;
    ~Translation() { release(); }
    Translation(const Translation&) = delete;
    Translation& operator=(const Translation&) = delete;

    void borrow(const char* newText); ///< stays valid to the end of the process
    void copy(const char* newText);   ///< also forgets how it was handed out
    void reduce(const char* newText); ///< a copy that keeps the state
    const char* getText() const { return text; }

    TransState state = TransState::Unused;

private:
    void release();

    const char* text = "";
    bool owned = false;
};

using Catalog = std::map<std::string, Translation, std::less<>>; // compared by byte

/// What a lookup reads.
///
/// One belongs to the process; further ones are stacked on a thread by LocaleSetter. Guarded by Localize.
class TransMap : private plat::NonCopyable {
public:
    static TransMap& process();
    static TransMap& current(); ///< the thread's top one, or the process's

    TransMap() = default;
    ~TransMap(); ///< if pushed, it is the thread's top one

    void push(); ///< onto the thread's stack

    std::map<std::string_view, Translation*> entries; // keys and texts lie in the catalogs
    std::vector<std::string> locales;                 // the expanded list

private:
    TransMap* previous = nullptr;
    bool pushed = false;
};

} // namespace loc
