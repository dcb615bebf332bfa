#include "mui/tx/listFolder.h"

#include "plat/Exception.h"
#include "plat/cstr.h"
#include "plat/path.h"
#include "plat/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
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

/// By what is known of a folder, without asking where it lies. Capabilities are left to root.
bool mayRead(const struct statx& info) {
    const uid_t user = geteuid();
    if (user == 0 || user == info.stx_uid)
        return user == 0 || (info.stx_mode & S_IRUSR);
    gid_t groups[256];
    const int count = getgroups(std::size(groups), groups);
    gid_t* const end = groups + std::max(0, count);
    const bool member = getegid() == info.stx_gid || std::find(groups, end, info.stx_gid) != end;
    return (info.stx_mode & (member ? S_IRGRP : S_IROTH)) != 0;
}

/// False if there is nothing of that name any more.
bool describe(const char* dir, FolderEntry& entry) {
    const plat::String path = plat::path::join(dir, entry.name.c_str());
    // What is mounted below may lie on a disk that is away: it is neither asked nor mounted for being listed.
    constexpr int flags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT;
    constexpr unsigned wanted = STATX_TYPE | STATX_MODE | STATX_UID | STATX_GID | STATX_MTIME | STATX_SIZE;
    struct statx info {};
    // A link that leads nowhere, or round in circles, is listed as what it is.
    if (statx(AT_FDCWD, path.c_str(), flags, wanted, &info) != 0 &&
        statx(AT_FDCWD, path.c_str(), flags | AT_SYMLINK_NOFOLLOW, wanted, &info) != 0) {
        entry.accessible = false;
        return errno != ENOENT; // listed, with what is known of it
    }
    entry.isDir = S_ISDIR(info.stx_mode);
    entry.modified = info.stx_mtime.tv_sec;
    entry.size = S_ISREG(info.stx_mode) ? info.stx_size : 0;
    if (!entry.isDir)
        return true;
    if (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) {
        entry.accessible = mayRead(info);
        return true;
    }
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
