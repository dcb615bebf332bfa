#include "mui/tx/listFolder.h"

#include "plat/Exception.h"
#include "plat/cstr.h"
#include "plat/path.h"
#include "plat/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace mui {
namespace {

struct CloseDir {
    void operator()(DIR* dir) const { closedir(dir); }
};

bool hasSuffix(const plat::String& name, const std::vector<plat::String>& suffixes) {
    return suffixes.empty() || std::any_of(suffixes.begin(), suffixes.end(), [&](const plat::String& suffix) {
               return plat::endsWithNoCase(name.c_str(), suffix.c_str());
           });
}

/// False if there is nothing of that name any more.
bool describe(const char* dir, FolderEntry& entry) {
    const plat::String path = plat::path::join(dir, entry.name.c_str());
    struct stat info {};
    // A link that leads nowhere, or round in circles, is listed as what it is.
    if (stat(path.c_str(), &info) != 0 && lstat(path.c_str(), &info) != 0)
        return errno != ENOENT; // listed, with what is known of it
    entry.isDir = S_ISDIR(info.st_mode);
    entry.modified = info.st_mtime;
    entry.size = S_ISREG(info.st_mode) ? static_cast<uint64_t>(info.st_size) : 0;
    if (!entry.isDir)
        return true;
    entry.accessible = access(path.c_str(), R_OK) == 0;
    if (!entry.accessible && errno != EACCES && errno != ENOENT)
        throw plat::StdlibException("access");
    return true;
}

} // namespace

std::vector<FolderEntry> listFolder(const char* dir, const FolderFilter& filter) {
    const std::unique_ptr<DIR, CloseDir> stream(opendir(dir));
    if (!stream)
        throw plat::StdlibException("opendir(%s)", dir);
    std::vector<FolderEntry> entries;
    for (;;) {
        errno = 0;
        const dirent* const found = readdir(stream.get());
        if (!found && errno != 0)
            throw plat::StdlibException("readdir");
        if (!found)
            break;
        const char* const name = found->d_name;
        if (strcmp(name, ".") == 0 || (name[0] == '.' && !filter.hidden) || !plat::utf8::isValid(name))
            continue;
        FolderEntry entry;
        entry.name = name;
        entry.isDir = found->d_type == DT_DIR;
        if (!describe(dir, entry))
            continue;
        if (entry.isDir || hasSuffix(entry.name, filter.suffixes))
            entries.push_back(std::move(entry));
    }
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return a.isDir != b.isDir ? a.isDir : strcmp(a.name.c_str(), b.name.c_str()) < 0;
    });
    return entries;
}

} // namespace mui
