#include "product/init.h"

#include "hxutil/ConfigStoreFile.h"
#include "loc/Localize.h"
#include "os/AppInfo.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/LogDestFile.h"
#include "plat/LogSrc.h"
#include "plat/cstr.h"
#include "plat/file.h"
#include "plat/path.h"
#include "product/ProductUri.h"
#include "product/VersionInfo.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace product {
namespace {
constexpr const char* company = "Velthar";
constexpr const char* pathWord = "zef";
constexpr const char* systemConfigDir = "/etc/zef";

bool logReady = false;

/// Remakes the version texts when the language is another.
class VersionInfoUpdater : public plat::ParameterChangedCallback {
public:
    void parameterChanged(plat::ConfigParameter*, int) override {
        VersionInfo& info = versionInfo();
        if (info.displayVersion.isEmpty())
            info.displayVersion = "0.1";
        if (info.dottedVersion.isEmpty())
            info.dottedVersion = info.displayVersion;
        info.rebuild(os::AppInfo::app());
    }
};

plat::String executablePath() {
    char path[PATH_MAX];
    const ssize_t len = readlink("/proc/self/exe", path, sizeof(path));
    if (len <= 0 || len >= static_cast<ssize_t>(sizeof(path)))
        throw plat::Exception("Error: could not find program executable");
    return plat::String(std::string_view(path, static_cast<size_t>(len)));
}

void setIdentity(const InitArgs& args) {
    const plat::String executable = executablePath();
    os::AppInfo::setCompany(company);
    os::AppInfo::setPathComp(pathWord);
    os::AppInfo::setProgramPath(args.programPath);
    if (args.displayNameKey)
        os::AppInfo::setDisplayNameKey(args.displayNameKey);
    if (args.applicationName)
        os::AppInfo::setApp(args.applicationName);
    else
        os::AppInfo::setApp(plat::path::baseName(executable.c_str(), ".exe").c_str());
}

// A process of root's must not write into the home of whoever's environment it was given.
void setHome() {
    if (getenv("HOME") && geteuid() != 0)
        return;
    errno = 0;
    const passwd* entry = getpwuid(geteuid());
    if (!entry || !entry->pw_dir)
        throw plat::SystemExceptionFmt(errno ? errno : ENOENT, "getpwuid(%u)", static_cast<unsigned>(geteuid()));
    setenv("HOME", entry->pw_dir, 1);
}

// The directory of the profile that an environment variable names, or `fallback`.
plat::String profileDir(const char* variable, const plat::String& userDir, const plat::String& fallback) {
    const char* name = getenv(variable);
    if (!name || !*name)
        return fallback;
    // "." and ".." are safe as file names go, but lead out of the profiles.
    const bool leadsOut = strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
    const plat::String safeName = leadsOut ? plat::String("-") : plat::path::sanitiseName(name, '-');
    return plat::strFormat("%s/profiles/%s", userDir.c_str(), safeName.c_str());
}

void setDirectories() {
    const char* home = getenv("HOME");
    if (!home || !plat::path::isAbsolute(home))
        throw plat::ExceptionFmt("HOME is not an absolute path: %s", home ? home : "");
    const plat::String userDir = plat::strFormat("%s/.zef", home);
    const plat::String profile = profileDir("ZEF_PROFILE", userDir, userDir);
    const plat::String config = profileDir("ZEF_CONFIG_PROFILE", userDir, profile);
    os::AppInfo::setSharedDir(systemConfigDir);
    os::AppInfo::setUserDir(userDir.c_str());
    os::AppInfo::setProfileDir(profile.c_str());
    os::AppInfo::setConfigDir(config.c_str());
    setenv("ZEF_PROFILE_DIR", profile.c_str(), 1);
    plat::mkDir(userDir.c_str(), /*isPrivate=*/true);
    plat::mkDirs(profile.c_str(), /*isPrivate=*/true);
    plat::mkDirs(os::AppInfo::userConfigDir().c_str(), /*isPrivate=*/true);
}

void initTexts() {
    const plat::String besideExecutable = plat::path::join(os::AppInfo::executableDir(), pathWord);
    loc::Localize::instance().init();
    loc::Localize::instance().setDirs({os::AppInfo::userDir(), os::AppInfo::sharedDir(), besideExecutable.c_str()});
}

void initVersionTexts() {
    static VersionInfoUpdater updater;
    registerProductUri();
    if (plat::ConfigParameter* locale = plat::Configuration::global().find("Locale"))
        locale->addCallback(&updater, /*atEnd=*/true);
    updater.parameterChanged(nullptr, plat::PriorityDefault);
}

void setDefault(const char* name, const char* value) {
    if (plat::ConfigParameter* parameter = plat::Configuration::global().find(name))
        parameter->setParam(value, plat::PriorityDefault);
}

void setLogDefaults(const char* spec) {
    if (!getenv("ZEF_PROFILE_DIR"))
        setenv("ZEF_PROFILE_DIR", os::AppInfo::userDir(), 1);
    setDefault("LogDir", geteuid() == 0 ? "/var/log" : "$ZEF_PROFILE_DIR");
    setDefault("LogFile", plat::strFormat("%s.log", os::AppInfo::app()).c_str());
    plat::LogDestFile::setProgramName(os::AppInfo::app());
    setDefault("Log", "*:stderr:10");
    if (spec)
        plat::logSetSpec(spec);
    logReady = true;
}

void loadStores(bool fileLogging) {
    hxutil::ConfigStore::setInstance(std::make_unique<hxutil::ConfigStoreFile>());
    hxutil::ConfigStore::instance()->load(/*withPolicy=*/true, nullptr);
    if (fileLogging)
        plat::LogDestFile::setFileEnabled(/*enabled=*/true);
}
} // namespace

void setVersion(const char* display, const char* dotted) {
    VersionInfo& info = versionInfo();
    if (!(info.displayVersion == display))
        info.displayVersion = display;
    if (!(info.dottedVersion == dotted))
        info.dottedVersion = dotted;
}

void init(const InitArgs& args) {
    setIdentity(args);
    setHome();
    setDirectories();
    initTexts();
    initVersionTexts();
    setLogDefaults(args.logSpec);
    if (args.readStores)
        loadStores(args.fileLogging);
}

bool isLogReady() { return logReady; }

plat::String displayVersion() { return versionInfo().displayVersion; }
plat::String dottedVersion() { return versionInfo().dottedVersion; }
const char* buildLine() { return versionInfo().buildLine.c_str(); }
const char* aboutMarkup() { return versionInfo().aboutMarkup().c_str(); }
const char* aboutText() { return versionInfo().aboutText().c_str(); }

} // namespace product
