// The UI as a child process.
#pragma once

#include "plat/NonCopyable.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace democore {

/// Starts the UI with one end of a socket pair, as a server core does.
class UiProcess : private plat::NonCopyable {
public:
    /// `road` stands before the descriptor: a mode, or the words of another road; `args` behind it. Throws
    /// plat::SystemException.
    UiProcess(const std::string& executable, const std::vector<std::string>& road,
              const std::vector<std::string>& args);
    ~UiProcess(); ///< ends a child that is still there

    int takeLink(); ///< our end of the pair; the caller closes it
    pid_t pid() const { return child; }

    /// Waits for its end, at most that long; "exited N", "killed by N", or "still running".
    std::string waitForEnd(int timeoutMs);

private:
    pid_t child = -1;
    int link = -1;
    std::string ending; // how it ended, once that is known
};

} // namespace democore
