// Running a test's body in a process of its own.
#pragma once

#include "plat/LogRegistry.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace plat {

/// Puts logging back to where a process starts.
struct LogRegistryTest {
    static void startOver() {
        LogRegistry& registry = LogRegistry::instance();
        LogRegistry::active = false;
        registry.memory().clear();
        registry.setSpec(""); // no mappings
        registry.specSet = false;
    }
};

/// Runs `body` in a child with fresh logging, so that what it does to the process (activating the log, limits) stays
/// there.
template <class Body>
void inChild(Body body) {
    std::fflush(nullptr);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        LogRegistryTest::startOver();
        try {
            body();
        } catch (const std::exception& e) { // must not go on with the parent's tests
            ADD_FAILURE() << e.what();
        }
        std::fflush(nullptr);
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "child status " << status;
}

} // namespace plat
