// Starts a process of this family with a message link to it.
#pragma once

#include "os/launchProcess.h"

namespace io {
class Io;
}

namespace os {

/// Launches over a socket pair, or over a named socket where the child must have more rights than we have.
class LaunchWithPipe {
public:
    using Config = LaunchConfig;

    /// A child that runs, and the link to it.
    struct Process {
        io::Io* io = nullptr; ///< the caller's, ended by Io::shutdown
        pid_t pid = 0;        ///< known to the ProcessMonitor; where a program gives the rights, that program
    };

    /// Appends the words of os::LaunchArgs to the arguments, and starts the child; `detach` has it fork ("-fork").
    ///
    /// Over a socket pair this is done at once. With `elevate`, unless we are root, it waits until the child has
    /// connected, up to `timeoutMs` (-1: no limit); the loop does not run meanwhile, and whoever asks for a password
    /// does so in a process of its own.
    ///
    /// Throws what launchProcess throws; os::ElevateCancelled if that process ends and nobody has connected;
    /// os::LaunchFailed where the child did not connect in time or broke off at once. No child is left then, as far as
    /// a signal can end it.
    static Process launch(const Config& cfg, int timeoutMs = -1);
};

} // namespace os
