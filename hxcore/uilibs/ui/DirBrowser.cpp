#include "ui/DirBrowser.h"

#include "plat/Exception.h"
#include "plat/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace ui {
namespace {

struct CloseDir {
    void operator()(DIR* dir) const { closedir(dir); }
};

bool isFolder(const dirent& entry, const plat::String& path) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_DIR;
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isWanted(const char* name, bool hidden) {
    if (strcmp(name, ".") == 0 || !plat::utf8::isValid(name))
        return false;
    return hidden || name[0] != '.' || strcmp(name, "..") == 0;
}

} // namespace

void DirBrowser::browse(const char* folder) {
    const std::unique_ptr<DIR, CloseDir> dir(opendir(folder));
    if (!dir)
        throw plat::SystemExceptionFmt(errno, "opendir(%s)", folder);
    const size_t len = strlen(folder);
    const char* const separator = len > 0 && folder[len - 1] == '/' ? "" : "/";
    std::vector<Entry> read;
    for (errno = 0; const dirent* entry = readdir(dir.get()); errno = 0) {
        if (!isWanted(entry->d_name, (flags & ShowHidden) != 0))
            continue;
        const plat::String path = plat::strFormat("%s%s%s", folder, separator, entry->d_name);
        const bool isBranch = isFolder(*entry, path);
        if (isBranch || !(flags & FoldersOnly))
            read.push_back({path, isBranch});
    }
    if (errno != 0)
        throw plat::StdlibException("readdir");
    std::sort(read.begin(), read.end(), [](const Entry& a, const Entry& b) { return a.path < b.path; });
    found = std::move(read);
}

} // namespace ui
