#include "os/AppInfo.h"

#include "plat/Assert.h"
#include "plat/path.h"

#include <climits>
#include <unistd.h>

namespace os {
namespace {

struct Info {
    plat::String app, company, group, pathComp;
    plat::String displayNameKey, programPath;
    std::vector<plat::String> extraArgs;
    plat::String userDir, profileDir, configDir, sharedDir, executableDir;
};

Info& info() {
    static Info* const kept = new Info; // also for what runs after the statics have gone
    return *kept;
}

plat::String readExecutableDir() {
    char path[PATH_MAX];
    const ssize_t len = readlink("/proc/self/exe", path, sizeof path - 1);
    if (len <= 0)
        return "";
    path[len] = '\0';
    return plat::path::dirName(path);
}

} // namespace

const char* AppInfo::app(bool emptyIfUnset) {
    const char* const app = info().app.get();
    ASSERT(emptyIfUnset || app);
    return plat::strOrEmpty(app);
}

const char* AppInfo::company(bool emptyIfUnset) {
    const char* const company = info().company.get();
    ASSERT(emptyIfUnset || company);
    return plat::strOrEmpty(company);
}

const char* AppInfo::group(bool emptyIfUnset) {
    const char* const group = info().group.get();
    ASSERT(emptyIfUnset || group);
    return plat::strOrEmpty(group);
}

const char* AppInfo::pathComp(bool emptyIfUnset) {
    const char* const pathComp = info().pathComp.get();
    ASSERT(emptyIfUnset || pathComp);
    return plat::strOrEmpty(pathComp);
}

void AppInfo::setApp(const char* app) { info().app = app; }
void AppInfo::setCompany(const char* company) { info().company = company; }
void AppInfo::setGroup(const char* group) { info().group = group; }
void AppInfo::setPathComp(const char* pathComp) { info().pathComp = pathComp; }

const char* AppInfo::displayNameKey() { return info().displayNameKey.c_str(); }
void AppInfo::setDisplayNameKey(const char* key) { info().displayNameKey = key; }
const char* AppInfo::programPath() { return info().programPath.c_str(); }
void AppInfo::setProgramPath(const char* path) { info().programPath = path; }

const std::vector<plat::String>& AppInfo::extraArgs() { return info().extraArgs; }

void AppInfo::setExtraArgs(const char* const* argv) {
    info().extraArgs.clear();
    for (; *argv; ++argv)
        info().extraArgs.emplace_back(*argv);
}

const char* AppInfo::userDir() { return info().userDir.c_str(); }
void AppInfo::setUserDir(const char* dir) { info().userDir = dir; }
const char* AppInfo::profileDir() { return info().profileDir.c_str(); }
void AppInfo::setProfileDir(const char* dir) { info().profileDir = dir; }
const char* AppInfo::configDir() { return info().configDir.c_str(); }
void AppInfo::setConfigDir(const char* dir) { info().configDir = dir; }
const char* AppInfo::sharedDir() { return info().sharedDir.c_str(); }
void AppInfo::setSharedDir(const char* dir) { info().sharedDir = dir; }

plat::String AppInfo::userConfigDir() {
    if (info().configDir.isEmpty())
        return "";
    return plat::path::join(configDir(), "config.d");
}

plat::String AppInfo::userConfigFile() {
    if (info().configDir.isEmpty())
        return "";
    return plat::path::join(userConfigDir().c_str(), app());
}

const char* AppInfo::executableDir() {
    if (info().executableDir.isNull())
        info().executableDir = readExecutableDir();
    return info().executableDir.c_str();
}

void AppInfo::setExecutableDir(const char* dir) { info().executableDir = dir; }

void AppInfo::reset() { info() = Info(); }

} // namespace os
