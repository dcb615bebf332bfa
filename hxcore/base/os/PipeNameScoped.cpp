#include "os/PipeNameScoped.h"

#include "os/AppInfo.h"
#include "os/SocketDir.h"
#include "os/UnixIo.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/path.h"

#include <cerrno>
#include <dirent.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace os {
namespace {
plat::LogSrc log("PipeName");

struct CloseDir {
    void operator()(DIR* dir) const { closedir(dir); }
};

uid_t userOrSelf(uid_t user) { return user == PipeNameScoped::thisUser ? geteuid() : user; }

plat::String dirOf(uid_t user) {
    return plat::strFormat("/tmp/.%s-%u", AppInfo::pathComp(), static_cast<unsigned>(userOrSelf(user)));
}

long long pidOrOwn(int64_t pid) { return pid == PipeNameScoped::ownPid ? getpid() : pid; }

plat::String fileOf(const char* name, int64_t pid, int counter) {
    plat::String base = plat::strFormat("%s%s", AppInfo::app(), plat::strOrEmpty(name));
    if (counter >= 0)
        return plat::strFormat("%s.%lld.%d", base.c_str(), pidOrOwn(pid), counter);
    if (pid == PipeNameScoped::noPid)
        return base;
    return plat::strFormat("%s.%lld", base.c_str(), pidOrOwn(pid));
}

bool isCounter(std::string_view text) {
    return text.size() >= 2 && text[0] == '.' && text.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

std::vector<std::string> entriesOf(const char* path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseDir> dir(opendir(path));
    if (!dir)
        throw plat::StdlibException("opendir(%s)", path);
    while (const dirent* entry = readdir(dir.get()))
        names.emplace_back(entry->d_name);
    return names;
}

void removeIfDead(const SocketDir& dir, const char* file) {
    struct stat info;
    if (!dir.stat(file, &info) || !S_ISSOCK(info.st_mode) || somebodyListens(dir.pathTo(file).c_str()))
        return;
    log.debug("Removing stale socket %s", file);
    dir.unlinkSocket(file);
}

} // namespace

PipeNameScoped::PipeNameScoped(const char* name, int64_t pid, int counter, uid_t user)
    : dir_(dirOf(user)), path_(plat::path::join(dir_.c_str(), fileOf(name, pid, counter).c_str())) {
    if (plat::contains(plat::strOrEmpty(name), nullptr, '/'))
        throw plat::SystemException(path_.c_str(), EINVAL); // it would lie outside the directory
    if (static_cast<size_t>(path_.len()) >= sizeof sockaddr_un::sun_path)
        throw plat::SystemException(path_.c_str(), ENAMETOOLONG);
    if (user == thisUser)
        SocketDir(dir_.c_str(), geteuid());
}

void PipeNameScoped::clearStale(const char* name, int64_t pid, uid_t user) {
    const plat::String path = dirOf(user);
    const SocketDir dir(path.c_str(), userOrSelf(user));
    for (const std::string& entry : entriesOf(dir.pathTo("").c_str())) {
        if (isFileOf(entry.c_str(), name, pid))
            removeIfDead(dir, entry.c_str());
    }
}

bool PipeNameScoped::isFileOf(const char* file, const char* name, int64_t pid) {
    if (plat::strEquals(file, fileOf(name, pid, noCounter).c_str()))
        return true;
    const plat::String withPid = plat::strFormat("%s%s.%lld", AppInfo::app(), plat::strOrEmpty(name), pidOrOwn(pid));
    return plat::startsWith(file, withPid.c_str()) && isCounter(plat::strOrEmpty(file) + withPid.len());
}

} // namespace os
