#include "os/LockFile.h"

#include "os/test/TestChild.h"
#include "os/test/ordinaryUser.h"
#include "plat/Exception.h"
#include "plat/test/TempDir.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <memory>
#include <string>
#include <sys/resource.h>
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

TEST(LockFile, LeavesNothingWhenItCantBeWritten) {
    const plat::TempDir dir;
    plat::inChild([&dir] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit none{0, 0};
        setrlimit(RLIMIT_FSIZE, &none);
        EXPECT_EQ(plat::whatOf([&] { LockFile lock((dir / "lock").c_str()); }),
                  "Failed to write lockfile contents: File too large");
        EXPECT_NE(access((dir / "lock").c_str(), F_OK), 0);
    });
}

} // namespace
} // namespace os
