// The inside of getElevateProg, on any system.
#pragma once

#include "os/elevate.h"

namespace os {

/// What the choice of the way to root looks at.
struct ElevateSystem {
    const char* elevateCmd = ""; ///< absolute path and arguments, parted by blanks
    bool elevateCmdSingleArg = false;
    bool pkexecAllowed = true;
    const char* sessionBus = nullptr;               ///< its address, may be null
    const char* suMarkFile = "/etc/redhat-release"; ///< with this file su is chosen even where there is sudo
};

ElevateProg chooseElevateProg(const ElevateSystem& system, const char* title);

} // namespace os
