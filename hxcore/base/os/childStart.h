// What a child does between fork and execve.
#pragma once

#include <sys/types.h>
#include <vector>

namespace os {

/// Everything that a child needs, made ready before the fork: after it nothing may allocate, lock or log.
struct ChildStart {
    struct Move {
        int from;
        int to;
        int spare; ///< scratch
    };

    const char* program = nullptr; ///< null: run none
    char* const* argv = nullptr;
    char* const* envp = nullptr;
    const char* workingDir = nullptr; ///< null: stay
    std::vector<Move> moves;          ///< sorted by `to`, each number once
    int nullFd = -1;                  ///< /dev/null, open for reading and writing
    bool nullInput = false;
    bool nullOutput = false;
    bool newSession = false;
    int errorFd = -1;        ///< of the parent's pipe; takes a failure record
    int descriptorLimit = 0; ///< numbers from here on are never open
};

/// Arranges signals, descriptors and directory, then becomes the program. Returns only where there is none to run.
///
/// A failure goes to `errorFd` as errno in 32 bits big-endian, one byte with the length of the name, and the name of
/// the failed call; then the child ends with status 1. Only async-signal-safe calls (signal-safety(7)).
void runChildStart(ChildStart& start);

} // namespace os
