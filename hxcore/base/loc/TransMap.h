// The flattened view of the catalogs for one list of locales.
#pragma once

#include "plat/NonCopyable.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace loc {

enum TransState {
    TR_UNUSED,    ///< not asked for yet
    TR_RAW,       ///< handed out raw: the caller fills in the arguments
    TR_FORMATTED, ///< handed out as plain text: "%%" has been reduced to "%"
};

/// One text of a catalog, its own copy or borrowed for good.
///
/// A text that is replaced stays in memory: someone may have been handed it.
class Translation : private plat::NonCopyable {
public:
    Translation() = default;
    ~Translation();

    void borrow(const char* newText); ///< stays valid to the end of the process
    void copy(const char* newText);   ///< also forgets how the text was handed out
    void reduce();                    ///< to plain text, "%%" to "%"; keeps the state
    const char* getText() const { return text; }
    bool isOwned() const { return owned; }

    TransState state = TR_UNUSED;

private:
    void adopt(char* newText);

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
    ~TransMap(); ///< if pushed, it must be the thread's top one

    void push(); ///< onto the thread's stack

    std::unordered_map<std::string_view, Translation*> entries; // keys and texts lie in the catalogs
    std::vector<std::string> locales;                           // the expanded list
    uint64_t version = 0;                                       // of the catalogs that the entries show

private:
    TransMap* previous = nullptr;
    bool pushed = false;
};

} // namespace loc
