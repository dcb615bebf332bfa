// The test program as a launched process, and a way to watch it from outside.
#pragma once

#include "os/test/ChildRoad.h"
#include "rdr/InStream.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace os {

/// `os_test -launched <words of os::LaunchArgs>` connects to its parent, sends "hello" (string8: its process id, its
/// session, "dummy" or "", the words that are left, its open descriptors) and "echoed" (string8) for each "echo". At
/// the end of the link it exits with 0, on a failure with 1 and the failure on stderr.
constexpr const char* launchedWord = "-launched";

/// One message of the child: its fields, the name first, each behind a "|". Blocks.
std::string nextMessage(rdr::InStream& in);

/// A running program, its error stream in a pipe.
class Child {
public:
    /// The test program with `args`; `input` becomes its standard input, and stays the caller's.
    explicit Child(const std::vector<std::string>& args, int input = -1);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int waitForEnd(); ///< its wait status
    std::string readErrors();
    pid_t pid() const { return child; }

private:
    pid_t child = -1;
    int errors = -1;
};

} // namespace os
