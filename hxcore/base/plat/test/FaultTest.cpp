// Files, directories and waits while system calls fail: what each ends in, and that nothing is lost.
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/LogDestFile.h"
#include "plat/Thread.h"
#include "plat/TransactedFile.h"
#include "plat/Uuid.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"
#include "plat/waitForFd.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <filesystem>
#include <functional>

namespace plat {
namespace {

class FaultTest : public testing::Test {
protected:
    FaultTest() { writeTextFile(path, "old"); }
    ~FaultTest() override { EXPECT_EQ(openDescriptors(), descriptors); }

    void replace() const {
        TransactedFile file(path.c_str(), FilePrivate);
        file.write("new", 3);
        file.commit();
    }

    TempDir dir;
    const std::string path = dir / "file";
    const int descriptors = openDescriptors();
};

TEST_F(FaultTest, AReplacementThatFailsAtAnyStepLeavesTheOldFile) {
    const struct {
        const char* function;
        int errNo;
    } steps[] = {{"unlink", EROFS},  {"open", EMFILE}, {"open", ENOSPC},  {"fdopen", ENOMEM}, {"fchown", EPERM},
                 {"fflush", ENOSPC}, {"fsync", EIO},   {"fsync", ENOSPC}, {"fclose", EIO},    {"rename", EXDEV}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.function);
        {
            const FailingCalls failing(step.function, step.errNo);
            EXPECT_EQ(errorOf([this] { replace(); }), step.errNo);
            EXPECT_EQ(failing.failed(), 1);
        }
        EXPECT_EQ(readTextFile(path), "old");
        EXPECT_FALSE(fileExists((path + ".tmp").c_str()));
        EXPECT_EQ(openDescriptors(), descriptors);
    }
    for (const int errNo : {EINVAL, EROFS, EINTR}) { // a file system that can't, and a signal
        const FailingCalls failing("fsync", errNo);
        replace();
        EXPECT_EQ(readTextFile(path), "new");
    }
}

TEST_F(FaultTest, SignalsAndShortCountsDontShow) {
    const ShortCounts one(1);
    for (const char* function : {"open", "read", "flock", "ftruncate", "fsync"}) {
        const FailingCalls interrupted(function, EINTR, 3);
        const int fd = fileOpenFd(path.c_str(), O_RDWR);
        fileLock(fd);
        EXPECT_TRUE(fileTryLock(fd));
        fileTruncate(fd, 2);
        fileSync(fd);
        close(fd);
        EXPECT_EQ(fileReadAll(path.c_str()), "ol");
        EXPECT_EQ(interrupted.failed(), 3) << function;
    }
}

TEST_F(FaultTest, WhatFilesAndDirectoriesThrowNamesTheCallAndThePath) {
    const std::string sub = dir / "sub";
    mkDir(sub.c_str());
    const struct {
        const char* function;
        int errNo;
        std::function<void()> call;
        std::string text;
    } rows[] = {
        {"read", EIO, [this] { fileReadAll(path.c_str()); }, "fileReadAll(" + path + ")"},
        {"open", EMFILE, [this] { fileReadAll(path.c_str()); }, "fileOpenFd(" + path + ")"},
        {"fstat", EIO, [this] { close(fileOpenOwnFd(path.c_str(), O_RDONLY)); }, "fileOpenFd(" + path + ")"},
        {"ftruncate", EIO, [this] { fileOpenOwnFd(path.c_str(), O_RDWR | O_TRUNC); }, "fileOpenFd(" + path + ")"},
        {"stat", EACCES, [this] { fileExists(path.c_str()); }, "fileExists(" + path + ")"},
        {"lstat", EACCES, [this] { fileUniqueName(dir.root.c_str(), "file"); }, "fileUniqueName(" + path + ")"},
        {"mkdir", ENOSPC, [this] { mkDirs((dir / "a/b").c_str()); }, "mkDir(" + (dir / "a") + ")"},
        {"open", EACCES, [&sub] { rmDir(sub.c_str(), /*recursive=*/true); }, "rmDir(" + sub + ")"},
        {"unlinkat", EROFS, [this] { rmDir(dir.root.c_str(), /*recursive=*/true); }, "rmDir(" + dir.root + ")"},
        {"fchmod", EIO, [&sub] { mkDir(sub.c_str(), /*isPrivate=*/true, /*fixPerms=*/true); }, "mkDir(" + sub + ")"},
        {"fstat", EIO, [&sub] { mkDir(sub.c_str(), /*isPrivate=*/true, /*fixPerms=*/true); }, "mkDir(" + sub + ")"},
        {"getrandom", EIO, [] { Uuid::random(); }, "getrandom"},
        {"select", ENOMEM, [] { waitForFd(0, 0, true, false); }, "select"},
    };
    for (const auto& row : rows) {
        const FailingCalls failing(row.function, row.errNo);
        try {
            row.call();
            ADD_FAILURE() << row.function;
        } catch (const SystemException& e) {
            EXPECT_EQ(e.errNo, row.errNo) << e.what();
            EXPECT_EQ(std::string(e.what()).find(row.text), 0u) << e.what();
        }
    }
    EXPECT_TRUE(fileExists(path.c_str())) << "what could not be removed is there";
}

TEST_F(FaultTest, ASignalDuringAWaitOrAReadOfRandomBytesEndsNothing) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    {
        const FailingCalls interrupted("select", EINTR, 3);
        EXPECT_TRUE(waitForFd(ends[0], -1, /*read=*/false, /*write=*/true));
        EXPECT_EQ(interrupted.failed(), 3);
    }
    const FailingCalls interrupted("getrandom", EINTR, 2);
    EXPECT_FALSE(Uuid::random().isZero());
    close(ends[0]);
    close(ends[1]);
}

TEST(ThreadFault, AThreadThatCannotStartMayBeStartedLater) {
    struct Nothing : Runnable {
        void run() override { ran = true; }
        bool ran = false;
    } nothing;
    Thread thread("t", &nothing);
    {
        const FailingCalls failing("pthread_create", EAGAIN);
        EXPECT_EQ(errorOf([&thread] { thread.start(); }), EAGAIN);
    }
    EXPECT_EQ(thread.getState(), Thread::State::Created);
    thread.start();
    thread.join();
    EXPECT_TRUE(nothing.ran);
}

/// A log file in a directory of its own, in a process of its own.
class LogFaultTest : public testing::Test {
protected:
    void run(const std::function<void(LogDestFile&)>& body) {
        inChild([&] {
            ASSERT_TRUE(Configuration::global().set("LogDir", dir.root.c_str(), PriorityDefault));
            ASSERT_TRUE(Configuration::global().set("LogFile", "app.log", PriorityDefault));
            testing::internal::CaptureStderr();
            logSetSpec("*:file:30");
            logActivate();
            LogDestFile::setFileEnabled(true);
            body(LogDestFile::fileDest());
            told = testing::internal::GetCapturedStderr();
        });
    }
    int countFiles() const {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(dir.root), {}));
    }

    TempDir dir;
    const std::string path = dir / "app.log";
    std::string told;
};

// No descriptor is left, say: what is logged meanwhile reaches the file once it can be opened.
TEST_F(LogFaultTest, WhatFindsNoFileIsKeptForIt) {
    for (const auto& [function, errNo] : {std::pair("open", EMFILE), {"fdopen", ENOMEM}, {"lstat", EIO}}) {
        run([&](LogDestFile& dest) {
            LogSrc foo("Foo");
            {
                const FailingCalls failing(function, errNo, FailingCalls::always);
                foo.info("early");
                EXPECT_FALSE(dest.isActive());
            }
            foo.info("second");
            EXPECT_FALSE(dest.isActive()) << "not tried again with each message";
            LogDestFile::setFileEnabled(true);
            const std::string text = readTextFile(path);
            EXPECT_NE(text.find("Foo: early"), std::string::npos) << text;
            EXPECT_LT(text.find("Foo: early"), text.find("Foo: second")) << text;
        });
    }
}

TEST_F(LogFaultTest, ARotationGoesOnWithoutAListAndWithoutRenameat2) {
    writeTextFile(path, "old");
    run([&](LogDestFile&) {
        const FailingCalls noList("opendir", EACCES, FailingCalls::always);
        const FailingCalls oldKernel("renameat2", EINVAL, FailingCalls::always);
        LogSrc("Foo").info("text");
        EXPECT_EQ(countFiles(), 2) << "the old one under its new name";
        EXPECT_NE(readTextFile(path).find("Foo: text"), std::string::npos);
        LogDestFile::fileDest().close();
        LogSrc("Foo").info("again"); // within the second, so that the name is taken
        EXPECT_EQ(countFiles(), 3);
    });
}

TEST_F(LogFaultTest, AFileThatCannotBeMovedIsNotWrittenOver) {
    writeTextFile(path, "old");
    for (const char* function : {"renameat2", "rename"}) {
        run([&](LogDestFile& dest) {
            const FailingCalls oldKernel("renameat2", ENOSYS, FailingCalls::always);
            const FailingCalls failing(function, EACCES, FailingCalls::always);
            LogSrc("Foo").info("text");
            EXPECT_FALSE(dest.isActive());
        });
        EXPECT_EQ(readTextFile(path), "old");
    }
}

TEST_F(LogFaultTest, AFailingCloseIsToldOnStderr) {
    run([&](LogDestFile& dest) {
        LogSrc("Foo").info("text");
        const FailingCalls failing("fclose", EIO);
        dest.close();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error closing log file: Input/output error\n");
        testing::internal::CaptureStderr();
    });
}

} // namespace
} // namespace plat
