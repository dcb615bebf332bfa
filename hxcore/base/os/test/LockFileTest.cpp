#include "os/LockFile.h"

#include "os/test/TestChild.h"
#include "os/test/ordinaryUser.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

int lockError(const std::string& path) {
    return plat::errorOf([&path] { LockFile lock(path.c_str()); });
}

TEST(LockFile, HoldsTheProcessIdAndIsThereOnce) {
    const plat::TempDir dir;
    const std::string path = dir / "lock";
    {
        const LockFile lock(path.c_str());
        EXPECT_EQ(readText(path), std::to_string(getpid()) + "\n");
        EXPECT_EQ(lockError(path), EEXIST);
        EXPECT_EQ(readText(path), std::to_string(getpid()) + "\n") << "the first one's is untouched";
        plat::inChild([] {}); // which destroys nothing of ours
        EXPECT_EQ(access(path.c_str(), F_OK), 0);
    }
    EXPECT_NE(access(path.c_str(), F_OK), 0);

    ASSERT_EQ(symlink((dir / "elsewhere").c_str(), path.c_str()), 0);
    EXPECT_EQ(lockError(path), EEXIST) << "not through a link";
    EXPECT_NE(access((dir / "elsewhere").c_str(), F_OK), 0);
    EXPECT_EQ(lockError(dir / "none/lock"), ENOENT);
}

TEST(LockFile, RemovesOnlyItsOwn) {
    const plat::TempDir dir;
    const std::string path = dir / "lock";
    {
        const LockFile lock(path.c_str());
        std::ofstream(dir / "new") << "another's";
        rename((dir / "new").c_str(), path.c_str());
    }
    EXPECT_EQ(readText(path), "another's");
    unlink(path.c_str());
    {
        const LockFile lock(path.c_str());
        unlink(path.c_str());
    }
}

TEST(LockFile, LeavesNothingWhenItCantBeWrittenAndBearsInterruptions) {
    const plat::TempDir dir;
    const std::string path = dir / "lock";
    for (const char* function : {"write", "close"}) {
        const plat::FailingCalls failing(function, ENOSPC);
        EXPECT_EQ(plat::whatOf([&path] { LockFile lock(path.c_str()); }),
                  "Failed to write lockfile contents: No space left on device");
        EXPECT_NE(access(path.c_str(), F_OK), 0) << function;
    }
    const plat::FailingCalls interrupted("write", EINTR, 2);
    const plat::ShortCounts one(1);
    auto lock = std::make_unique<LockFile>(path.c_str());
    EXPECT_EQ(readText(path), std::to_string(getpid()) + "\n");
    plat::CapturedLog log;
    const plat::FailingCalls kept("unlink", EACCES);
    lock.reset();
    EXPECT_TRUE(log.has("0 LockFile: unlink(" + path + "): Permission denied"));
}

} // namespace
} // namespace os
