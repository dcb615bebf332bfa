// What the test program does when a test starts it as a child.
#pragma once

#include <string>

namespace os {

/// A road of the test program: `os_test <word> ...` runs it in place of the tests. Make it a static of a test.
class ChildRoad {
public:
    using Run = int(int argc, char** argv); // the exit status

    ChildRoad(const char* roadWord, Run* roadRun) : word(roadWord), run(roadRun), next(first) { first = this; }

    /// The road that the first argument names, or null.
    static const ChildRoad* find(int argc, char** argv);

    /// The path of the test program.
    static std::string program();

    const char* const word;
    Run* const run;

private:
    static inline ChildRoad* first = nullptr;
    ChildRoad* next;
};

} // namespace os
