// Starting other programs.
#pragma once

#include "os/ProcessMonitor.h"
#include "plat/String.h"

#include <sys/types.h>
#include <utility>
#include <vector>

namespace os {

/// What to start, and how.
struct LaunchConfig {
    struct KeptFd {
        int ours;   ///< open in this process
        int theirs; ///< its number in the child
    };

    std::vector<plat::String> args;                                 ///< the program's absolute path first
    std::vector<plat::String> trailingArgs;                         ///< behind them and the words of a launch pipe
    std::vector<std::pair<plat::String, plat::String>> environment; ///< names and values, added to ours or replacing
    plat::String workingDir;                                        ///< "": ours
    std::vector<KeptFd> keptFds; ///< standard descriptors are kept anyway, all others closed
    plat::String title;          ///< of the application that asks for the password; "": AppInfo::displayNameKey
    bool elevate = false;        ///< as root, by getElevateProg; nothing to do where we are root
    bool asUser = false;         ///< as `user`, through the set-user helper; only root may ask
    uid_t user = 0;
    bool nullInput = false;  ///< standard input is /dev/null
    bool nullOutput = false; ///< standard output is /dev/null; the error stream stays
    bool detach = false;     ///< in a session of its own, so that it may outlive us
};

/// Starts a program and gives its process id once it runs: once execve(2) has succeeded.
///
/// Signals are at their defaults and unblocked in the child. It is entered with the ProcessMonitor, which tells
/// `callback` (borrowed, may be null) of its end.
///
/// Throws plat::Exception "%s does not exist or is not executable", os::LaunchFailed where there is no way to root,
/// and plat::SystemException for what failed on the way, with the name of the call: "fork", "dup2", "execve(/x/y)".
/// Then there is no child. A path that isn't absolute, and `asUser` without being root, are assertion failures.
pid_t launchProcess(const LaunchConfig& cfg, ProcessMonitor::Callback* callback = nullptr);

/// Forks, without running another program; 0 in the child, whose descriptors are arranged as `cfg` says.
///
/// `args`, `environment`, `elevate` and `asUser` mean nothing here. The event loop and all that hangs on it belong to
/// the parent: the child may use its descriptors and must end with _exit or execve. Throws as launchProcess does.
pid_t forkProcess(const LaunchConfig& cfg, ProcessMonitor::Callback* callback = nullptr);

/// The absolute path of this program; once it has been replaced on the disk the link in /proc, which still leads to
/// what runs.
plat::String runningExecutable();

/// The absolute path of an executable file of that name, from the absolute directories of PATH only; else "".
plat::String findProgram(const char* name);

} // namespace os
