#include "plat/TransactedFile.h"

#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

namespace plat {
namespace {

class TransactedFileTest : public testing::Test {
protected:
    mode_t mode() const {
        struct stat info {};
        EXPECT_EQ(lstat(path.c_str(), &info), 0);
        return info.st_mode & 07777;
    }

    void replace(const std::string& text, int flags = 0) const {
        TransactedFile file(path.c_str(), flags);
        file.write(text.data(), text.size());
        file.commit();
    }

    bool tmpExists() const {
        struct stat info;
        return lstat(tmp.c_str(), &info) == 0;
    }

    TempDir dir;
    const std::string path = dir / "file";
    const std::string tmp = path + ".tmp";
};

TEST_F(TransactedFileTest, ReplacesOnCommitOnly) {
    writeTextFile(path, "old");
    {
        TransactedFile file(path.c_str());
        file.write("new", 3);
        EXPECT_EQ(readTextFile(path), "old");
    }
    EXPECT_EQ(readTextFile(path), "old");
    EXPECT_FALSE(tmpExists());
    replace("new");
    EXPECT_EQ(readTextFile(path), "new");
    EXPECT_FALSE(tmpExists());
}

TEST_F(TransactedFileTest, KeepsTheOldModeUnlessPrivate) {
    writeTextFile(path, "old");
    chmod(path.c_str(), 0640);
    replace("new");
    EXPECT_EQ(mode(), 0640u);
    replace("newer", FilePrivate);
    EXPECT_EQ(mode(), 0600u);
    unlink(path.c_str());
    const mode_t mask = umask(0);
    replace("fresh");
    EXPECT_EQ(mode(), 0664u);
    umask(mask);
}

TEST_F(TransactedFileTest, ReplacesWhateverStandsInItsPlace) {
    const std::string victim = dir / "victim";
    writeTextFile(victim, "victim");
    chmod(victim.c_str(), 0666);

    std::filesystem::create_symlink(victim.c_str(), path.c_str());
    std::filesystem::create_symlink(victim.c_str(), tmp.c_str());
    replace("by link", FilePrivate);
    EXPECT_EQ(readTextFile(victim), "victim");
    EXPECT_EQ(readTextFile(path), "by link");
    EXPECT_EQ(mode(), 0600u);

    unlink(path.c_str());
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(tmp.c_str(), 0600), 0);
    replace("by fifo");
    EXPECT_EQ(readTextFile(path), "by fifo");

    unlink(path.c_str());
    ASSERT_EQ(link(victim.c_str(), path.c_str()), 0);
    ASSERT_EQ(link(victim.c_str(), tmp.c_str()), 0);
    replace("by hard link");
    EXPECT_EQ(readTextFile(victim), "victim");
    EXPECT_EQ(readTextFile(path), "by hard link");
}

TEST_F(TransactedFileTest, RefusesDirectories) {
    ASSERT_EQ(mkdir(tmp.c_str(), 0700), 0);
    EXPECT_THROW(TransactedFile file(path.c_str()), SystemException);
    rmdir(tmp.c_str());
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    TransactedFile file(path.c_str());
    EXPECT_THROW(file.commit(), SystemException);
    EXPECT_FALSE(tmpExists());
    try {
        TransactedFile missing((dir / "none/file").c_str());
        FAIL();
    } catch (const SystemException& e) {
        EXPECT_EQ("Error opening \"" + (dir / "none/file.tmp") + "\": No such file or directory (2)", e.what());
    }
}

TEST_F(TransactedFileTest, LeavesTheNameToAWriterWhoTookIt) {
    writeTextFile(path, "old");
    TransactedFile first(path.c_str());
    first.write("first", 5);
    TransactedFile second(path.c_str());
    EXPECT_THROW(first.commit(), SystemException);
    second.write("second", 6);
    second.commit();
    EXPECT_EQ(readTextFile(path), "second");
}

// The limit on a file's size stands in for a full disk.
TEST_F(TransactedFileTest, FullDiskLeavesTheOldFile) {
    writeTextFile(path, "old");
    inChild([this] {
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{4096, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limit);
        const std::string text(100000, 'x');
        TransactedFile file(path.c_str());
        file.write("y", 1);
        EXPECT_EQ(whatOf([&] { file.write(text.data(), text.size()); }), "writing to file failed: File too large (27)");
        EXPECT_EQ(whatOf([&] { file.commit(); }), "writing to file failed: Input/output error (5)");
        limit.rlim_cur = RLIM_INFINITY; // a coverage build writes its counts at exit
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(readTextFile(path), "old");
    EXPECT_FALSE(tmpExists());
}

// Giving a file away takes privilege: without it the new file is ours, and as good.
TEST_F(TransactedFileTest, AnothersFileIsReplacedWithALogLine) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make another user's file";
    writeTextFile(path, "old");
    chmod(dir.root.c_str(), 0777);
    inChild([this] {
        ASSERT_EQ(seteuid(12345), 0);
        CapturedLog log;
        replace("new");
        EXPECT_EQ(log.lines, std::vector<std::string>(
                                 {"0 TransactedFile: fileCopyPerms(" + path + "): Operation not permitted (1)"}));
        ASSERT_EQ(seteuid(0), 0);
    });
    EXPECT_EQ(readTextFile(path), "new");
}

// A byte goes through `progress` before each step, so that the parent can choose where to end it.
void replaceForEver(const char* path, int progress) {
    for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
        const std::string text(50000, letter);
        TransactedFile file(path);
        for (size_t done = 0; done < text.size(); done += 5000) {
            if (write(progress, "w", 1) != 1)
                _exit(1);
            file.write(text.data() + done, 5000);
        }
        if (write(progress, "c", 1) != 1)
            _exit(1);
        file.commit();
    }
}

// Killed at any point, the file is one whole writing, and the next writer is not hindered by what was left.
TEST_F(TransactedFileTest, KilledWritersLeaveNoMix) {
    for (int round = 0; round < 60; ++round) {
        int progress[2];
        ASSERT_EQ(pipe(progress), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            replaceForEver(path.c_str(), progress[1]);
            _exit(1);
        }
        close(progress[1]);
        char step;
        for (int steps = 0; steps <= round; ++steps)
            ASSERT_EQ(read(progress[0], &step, 1), 1);
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        close(progress[0]);
        const std::string text = readTextFile(path);
        if (text != "<none>") {
            ASSERT_EQ(text.size(), 50000u);
            EXPECT_EQ(text, std::string(50000, text[0]));
        }
    }
    replace("after all");
    EXPECT_EQ(readTextFile(path), "after all");
}

} // namespace
} // namespace plat
