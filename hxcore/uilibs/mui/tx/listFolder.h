// What lies in a folder.
#pragma once

#include "plat/String.h"

#include <cstdint>
#include <ctime>
#include <vector>

namespace mui {

struct FolderEntry {
    plat::String name;
    bool isDir = false;
    bool accessible = true; ///< for a folder: it may be read
    time_t modified = 0;
    uint64_t size = 0; ///< bytes; 0 for a folder
};

/// Which entries count.
struct FolderFilter {
    bool hidden = false;                ///< names that begin with "."; "." itself never does
    std::vector<plat::String> suffixes; ///< of files, case ignored; empty for all files
};

/// Folders first, then by the bytes of the name. Names that are not UTF-8 and entries that go in the meantime are left
/// out. Throws plat::SystemException for a folder that can't be read.
std::vector<FolderEntry> listFolder(const char* dir, const FolderFilter& filter);

} // namespace mui
