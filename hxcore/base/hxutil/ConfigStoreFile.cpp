#include "hxutil/ConfigStoreFile.h"

#include "os/AppInfo.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/FilePtr.h"
#include "plat/file.h"
#include "plat/path.h"
#include "rdr/FileConfig.h"

#include <cerrno>

namespace hxutil {
namespace {
// A file of the user's own is nobody else's business.
constexpr int userFileFlags = plat::FilePrivate;

plat::String under(const char* dir, const char* name) { return plat::path::join(dir, name); }
} // namespace

ConfigStoreFile::ConfigStoreFile() {
    const plat::String own = under(os::AppInfo::executableDir(), os::AppInfo::pathComp());
    const plat::String shared(os::AppInfo::sharedDir());
    addDir(preferencePriority, under(own.c_str(), "config.d").c_str(), /*withCustom=*/true);
    addDir(policyPriority, under(own.c_str(), "policy.d").c_str(), /*withCustom=*/false);
    addDir(preferencePriority, under(shared.c_str(), "config.d").c_str(), /*withCustom=*/true);
    addDir(preferencePriority, os::AppInfo::userConfigDir().c_str(), /*withCustom=*/false);
    addDir(policyPriority, under(shared.c_str(), "policy.d").c_str(), /*withCustom=*/false);
}

void ConfigStoreFile::addDir(int priority, const char* dir, bool withCustom) {
    std::vector<plat::String>& files = filesOf[priority];
    files.push_back(under(dir, "common"));
    if (withCustom)
        files.push_back(under(dir, "common.custom"));
    files.push_back(under(dir, os::AppInfo::app()));
}

void ConfigStoreFile::loadPriority(int priority, plat::Configuration* config) {
    plat::Configuration& target = config ? *config : plat::Configuration::global();
    for (const plat::String& path : filesOf[priority]) {
        try {
            plat::FileConfig::load(target, path.c_str(), priority);
        } catch (const plat::SystemException& e) {
            if (e.errNo != ENOENT && e.errNo != ENOTDIR)
                throw;
        }
    }
}

void ConfigStoreFile::save(plat::Configuration* config, plat::Configuration* defaults) {
    plat::FileConfig::save(*config, os::AppInfo::userConfigFile().c_str(), *defaults, userFileFlags);
}

void ConfigStoreFile::saveParam(plat::ConfigParameter* param) {
    plat::FileConfig::setEntry(os::AppInfo::userConfigFile().c_str(), param->getName(), param->getValueStr().c_str(),
                               userFileFlags);
}

void ConfigStoreFile::removeParam(plat::ConfigParameter* param) {
    plat::FileConfig::removeEntry(os::AppInfo::userConfigFile().c_str(), param->getName(), userFileFlags);
}

bool ConfigStoreFile::exists() { return plat::fileExists(os::AppInfo::userConfigFile().c_str()); }

} // namespace hxutil
