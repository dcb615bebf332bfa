// What this process is and where its files lie.
#pragma once

#include "plat/String.h"

#include <vector>

namespace os {

/// Identity and directories of the process, set once by the product's start-up.
///
/// A read of an identity word that was never set is an assertion failure, unless `emptyIfUnset` asks for "".
/// Directories that were never set are "". Paths have no "/" at their end.
class AppInfo {
public:
    static const char* app(bool emptyIfUnset = false);      ///< application name, such as "zefserverui-service"
    static const char* company(bool emptyIfUnset = false);  ///< "Velthar"
    static const char* group(bool emptyIfUnset = false);    ///< name of the family of programs
    static const char* pathComp(bool emptyIfUnset = false); ///< the word used in paths: "zef"
    static void setApp(const char* app);
    static void setCompany(const char* company);
    static void setGroup(const char* group);
    static void setPathComp(const char* pathComp);

    static const char* displayNameKey(); ///< catalog key of the name shown to users
    static void setDisplayNameKey(const char* key);
    static const char* programPath(); ///< argv[0]
    static void setProgramPath(const char* path);

    /// The configuration arguments of the command line, which helpers of this process are started with as well.
    static const std::vector<plat::String>& extraArgs();
    static void setExtraArgs(const char* const* argv); ///< up to a null pointer

    static const char* userDir(); ///< $HOME/.zef
    static void setUserDir(const char* dir);
    static const char* profileDir(); ///< of ZEF_PROFILE, else the user dir
    static void setProfileDir(const char* dir);
    static const char* configDir(); ///< of ZEF_CONFIG_PROFILE, else the profile dir
    static void setConfigDir(const char* dir);
    static const char* sharedDir(); ///< /etc/zef
    static void setSharedDir(const char* dir);

    static plat::String userConfigDir();  ///< config.d in configDir; "" while that is unset
    static plat::String userConfigFile(); ///< the file of this application in userConfigDir; "" while unset

    /// The directory of /proc/self/exe, or what was set for a test; "" if it can't be read.
    static const char* executableDir();
    static void setExecutableDir(const char* dir);

    static void reset(); ///< all unset, for tests
};

} // namespace os
