#include "os/SharedConfigDirs.h"

#include "os/AppInfo.h"
#include "plat/path.h"

#include <unistd.h>

namespace os {
namespace {

// "" above the root
plat::String parentOf(const plat::String& dir) {
    if (dir.isEmpty() || dir == "/" || !plat::path::isAbsolute(dir.c_str()))
        return "";
    return plat::path::dirName(dir.c_str());
}

plat::String shareOf(const plat::String& dir, const char* pathComp) {
    return plat::path::join(plat::path::join(dir.c_str(), "share").c_str(), pathComp);
}

} // namespace

std::vector<plat::String> SharedConfigDirs::list() {
    std::vector<plat::String> dirs;
    if (*AppInfo::sharedDir())
        dirs.emplace_back(AppInfo::sharedDir());
    plat::String dir = AppInfo::executableDir();
    if (dir.isEmpty())
        return dirs;
    const char* pathComp = AppInfo::pathComp();
    dirs.push_back(plat::path::join(dir.c_str(), pathComp));
    constexpr int levels = 3; // beside the executable, and two above
    for (int i = 0; i < levels && !dir.isEmpty(); ++i, dir = parentOf(dir))
        dirs.push_back(shareOf(dir, pathComp));
    return dirs;
}

plat::String SharedConfigDirs::find(const char* fileName) {
    for (const plat::String& dir : list()) {
        plat::String path = plat::path::join(dir.c_str(), fileName);
        if (access(path.c_str(), R_OK) == 0)
            return path;
    }
    return {};
}

} // namespace os
