// Folders read aside, since one on a disk that is far away may answer late or never.
#pragma once

#include "mui/tx/listFolder.h"
#include "plat/NonCopyable.h"

#include <memory>

namespace mui {

/// The reading of a folder, under way on a thread of its own: what blocks in the kernel holds up nobody else.
///
/// One that is dropped before its end runs on alone and is forgotten.
class FolderReading : private plat::NonCopyable {
public:
    FolderReading(const char* dir, const FolderFilter& filter); ///< begins at once
    ~FolderReading();

    bool wait(unsigned ms);                 ///< true once it is over, whatever came of it; 0 only looks
    int writeError() const;                 ///< errno of access(dir, W_OK), 0 for a folder that may be written to
    std::vector<FolderEntry> takeEntries(); ///< throws as listFolder does

private:
    struct Shared;
    std::shared_ptr<Shared> shared;
};

enum class PathKind { Missing, Other, Folder, Unknown };

/// What lies there; a link counts by what it leads to, and as Other where that is nothing. Unknown if nothing answers
/// within a second.
PathKind askPath(const char* path);

} // namespace mui
