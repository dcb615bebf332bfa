// What lies below a place in a tree, for a list to show.
#pragma once

#include "plat/String.h"

#include <vector>

namespace ui {

/// A place in a tree of named things.
class TreeBrowser {
public:
    struct Entry {
        plat::String path; ///< whole
        bool isBranch;     ///< it may be entered
    };

    virtual ~TreeBrowser() = default;

    /// Reads what lies below `place`, sorted by path. Throws plat::SystemException; the old entries stay then.
    virtual void browse(const char* place) = 0;

    const std::vector<Entry>& entries() const { return found; }

protected:
    std::vector<Entry> found;
};

/// Reads folders. "." is never there, ".." always; names that are not UTF-8 are left out.
class DirBrowser : public TreeBrowser {
public:
    enum Flag : unsigned {
        FoldersOnly = 1,
        ShowHidden = 4, ///< names that begin with "."
    };

    explicit DirBrowser(unsigned flags_ = 0) : flags(flags_) {}

    void setFlags(unsigned newFlags) { flags = newFlags; } ///< from the next browse on
    unsigned getFlags() const { return flags; }

    // TreeBrowser
    void browse(const char* folder) override;

private:
    unsigned flags;
};

} // namespace ui
