// How a server core is started from here.
#pragma once

#include "os/launchProcess.h"
#include "plat/String.h"

#include <vector>

namespace score {

/// Stores the core's executable as the core itself told it; a later call replaces it.
void setServerExe(const char* path);

/// The stored path, or the name of the core of this product mode when none was told.
plat::String serverExe();

/// Describes the launch of a core of this product mode, with `args` behind the mode; elevated in service mode.
///
/// A name without a directory is looked for on the PATH, then beside our own executable. Throws plat::Exception
/// "%s does not exist or is not executable".
class ServerLauncher {
public:
    explicit ServerLauncher(const std::vector<const char*>& args);

    const os::LaunchConfig& config() const { return cfg; } ///< for os::launchProcess or os::LaunchWithPipe

private:
    os::LaunchConfig cfg;
};

} // namespace score
