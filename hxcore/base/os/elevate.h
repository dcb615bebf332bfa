// The way to root: which program asks the user for the password, and how a command is put behind it.
#pragma once

#include "plat/String.h"

#include <vector>

namespace os {

/// A program that runs a command as root.
struct ElevateProg {
    std::vector<plat::String> args; ///< the command's words follow
    bool singleArg = false;         ///< as one argument, quoted for a shell, instead of one by one
};

/// The way to root that the parameters and the programs on the PATH offer, first match of: the parameter ElevateCmd;
/// pkexec under a session bus, unless it was turned off; a terminal with su or sudo in it.
///
/// `title` is the application's, for the title of that terminal's window; may be null. Names are as found on the PATH,
/// without a directory. Throws os::LaunchFailed "Elevation not supported: no su or sudo found" or
/// "Elevation not supported: no terminal found".
ElevateProg getElevateProg(const char* title);

/// Whether pkexec may be used, process-wide; at first it may.
void setPkexecAllowed(bool allowed);

/// The whole argument list that runs `command` as root.
std::vector<plat::String> elevatedCommand(const ElevateProg& prog, const std::vector<plat::String>& command);

/// The words as one line that a shell takes apart again: each in single quotes, joined by blanks.
plat::String shellQuote(const std::vector<plat::String>& words);

} // namespace os
