// What the system tells of processes, through /proc.
#pragma once

#include "plat/NonCopyable.h"

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace os {

/// From /proc/<pid>/stat.
struct ProcessStat {
    std::string name; ///< at most 15 bytes, as the process likes it
    char state = '?';
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    int terminal = 0; ///< device number, 0 for none
};

/// From /proc/<pid>/status.
struct ProcessIds {
    uid_t realUser = 0, effectiveUser = 0, savedUser = 0;
    gid_t realGroup = 0, effectiveGroup = 0, savedGroup = 0;
    pid_t parent = 0;
};

/// All give false, with `out` unchanged, for a process that is gone or may not be looked at, and for text of another
/// form. What a process says of itself is its own choice: bytes of any kind, at most 4 MiB of them.
bool readProcessArgs(pid_t pid, std::vector<std::string>* out);
bool readProcessEnvironment(pid_t pid, std::vector<std::string>* out); ///< "NAME=value" entries, as at its start
bool readProcessStat(pid_t pid, ProcessStat* out);
bool readProcessIds(pid_t pid, ProcessIds* out);

bool parseProcessStat(std::string_view text, ProcessStat* out);
bool parseProcessIds(std::string_view text, ProcessIds* out);

/// Walks the processes that there are.
///
///     for (ProcessEnumerator all; all.next();)
///         look(all.pid());
class ProcessEnumerator : private plat::NonCopyable {
public:
    explicit ProcessEnumerator(const char* procDir = "/proc"); ///< throws plat::SystemException "opendir"
    ~ProcessEnumerator();

    bool next(); ///< false at the end
    pid_t pid() const { return current; }

private:
    void* dir; // a DIR
    pid_t current = 0;
};

} // namespace os
