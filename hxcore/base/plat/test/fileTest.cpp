#include "plat/file.h"

#include "plat/Exception.h"
#include "plat/FilePtr.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"
#include "plat/test/inChild.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

namespace plat {
namespace {

class FileTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return dir / name; }

    mode_t modeOf(const std::string& name) const {
        struct stat info {};
        EXPECT_EQ(lstat(path(name).c_str(), &info), 0) << name;
        return info.st_mode & 07777;
    }

    TempDir dir;
};

/// Sets the umask for a scope.
class UmaskScope {
public:
    explicit UmaskScope(mode_t mask) : old(umask(mask)) {}
    ~UmaskScope() { umask(old); }

private:
    mode_t old;
};

TEST_F(FileTest, FailuresNameTheFunctionAndThePath) {
    const std::string none = path("none");
    const char* p = none.c_str();
    const struct {
        std::string text;
        std::function<void()> call;
    } rows[] = {
        {"fileGetSize(" + none, [&] { fileGetSize(p); }},
        {"fileGetTime(" + none, [&] { fileGetTime(p); }},
        {"fileSetTime(" + none, [&] { fileSetTime(p, Time::now()); }},
        {"fileRemove(" + none, [&] { fileRemove(p); }},
        {"fileRename(" + none + ",x", [&] { fileRename(p, "x"); }},
        {"fileOpenFd(" + none, [&] { fileOpenFd(p, O_RDONLY); }},
        {"fileOpenFd(" + none, [&] { fileMakePrivate(p); }},
        {"fileMakeSticky(" + none, [&] { fileMakeSticky(p); }},
        {"fileCopyPerms(" + none, [&] { fileCopyPerms(p, 0); }},
        {"mkDir(" + none + "/a", [&] { mkDir((none + "/a").c_str()); }},
        {"rmDir(" + none, [&] { rmDir(p); }},
        {"rmDir(" + none, [&] { rmDir(p, /*recursive=*/true); }},
    };
    for (const auto& row : rows)
        EXPECT_EQ(whatOf(row.call), row.text + "): No such file or directory (2)");
    for (const std::function<void()>& call : {std::function<void()>([] { fileTruncate(-1, 0); }),
                                              {[] { fileTell(-1); }},
                                              {[] { fileSeek(-1, 0); }},
                                              {[] { fileLock(-1); }},
                                              {[] { fileTryLock(-1); }},
                                              {[] { fileUnlock(-1); }}})
        EXPECT_EQ(errorOf(call), EBADF);
    EXPECT_FALSE(fileRemove(p, /*mayBeMissing=*/true));
    EXPECT_FALSE(fileExists(p));
    EXPECT_FALSE(fileExists(nullptr));
    EXPECT_EQ(errorOf([&] { fileExists(std::string(5000, 'x').c_str()); }), ENAMETOOLONG);
}

TEST_F(FileTest, TimesSizesAndNames) {
    const std::string a = path("a");
    writeTextFile(a, "hello");
    EXPECT_EQ(fileGetSize(a.c_str()), 5);
    for (const Time t : {Time::fromUnix(1709208000) + 1234567, Time::fromUnix(-1) + 5}) {
        fileSetTime(a.c_str(), t);
        EXPECT_EQ(fileGetTime(a.c_str()), t);
    }
    fileRename(a.c_str(), path("b").c_str());
    EXPECT_FALSE(fileExists(a.c_str()));
    EXPECT_FALSE(fileExists((path("b") + "/below").c_str()));
    EXPECT_EQ(fileReadAll(path("b").c_str()), "hello");
    EXPECT_EQ(fileReadAll(path("b").c_str(), 5), "hello");
    EXPECT_EQ(errorOf([&] { fileReadAll(path("b").c_str(), 4); }), EFBIG);
    EXPECT_EQ(errorOf([&] { fileReadAll(dir.root.c_str()); }), EISDIR);
    EXPECT_TRUE(fileRemove(path("b").c_str()));
}

TEST_F(FileTest, DescriptorsCloseOnExecAndSeek) {
    const int fd = fileOpenFd(path("f").c_str(), O_RDWR | O_CREAT);
    EXPECT_TRUE(fcntl(fd, F_GETFD) & FD_CLOEXEC);
    fileTruncate(fd, 100);
    fileSeek(fd, 42);
    EXPECT_EQ(fileTell(fd), 42);
    EXPECT_EQ(fileGetSize(path("f").c_str()), 100);
    EXPECT_TRUE(fileIsSameAsFd(path("f").c_str(), fd));
    std::filesystem::create_symlink(path("f").c_str(), path("link").c_str());
    EXPECT_FALSE(fileIsSameAsFd(path("link").c_str(), fd));
    fileRename(path("f").c_str(), path("g").c_str());
    EXPECT_FALSE(fileIsSameAsFd(path("f").c_str(), fd));
    EXPECT_EQ(errorOf([&] { fileIsSameAsFd(std::string(5000, 'x').c_str(), fd); }), ENAMETOOLONG);
    close(fd);
}

TEST_F(FileTest, LocksExcludeOtherDescriptors) {
    const int first = fileOpenFd(path("lock").c_str(), O_RDWR | O_CREAT);
    const int second = fileOpenFd(path("lock").c_str(), O_RDWR);
    fileLock(first, /*exclusive=*/false);
    EXPECT_FALSE(fileTryLock(second));
    EXPECT_TRUE(fileTryLock(second, /*exclusive=*/false));
    fileUnlock(first);
    EXPECT_TRUE(fileTryLock(second));
    close(first);
    close(second);
}

TEST_F(FileTest, AnotherUsersThingsAreRefused) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make another user's files";
    mkDirs(path("theirs/closed").c_str());
    writeTextFile(path("theirs/closed/file"), "");
    writeTextFile(path("rootFile"), "root");
    writeTextFile(path("otherFile"), "other");
    ASSERT_EQ(chown(path("otherFile").c_str(), 54321, 54321), 0);
    for (const char* open : {"", "theirs", "theirs/closed", "rootFile", "otherFile"})
        chmod(path(open).c_str(), 0777);
    chmod(path("theirs").c_str(), 0755);
    inChild([this] {
        ASSERT_EQ(seteuid(12345), 0);
        EXPECT_EQ(errorOf([&] { mkDir(path("theirs").c_str(), /*isPrivate=*/true, /*fixPerms=*/true); }), EPERM);
        EXPECT_EQ(errorOf([&] { fileOpenOwnFd(path("otherFile").c_str(), O_RDWR | O_TRUNC); }), EPERM);
        EXPECT_EQ(readTextFile(path("otherFile")), "other");
        close(fileOpenOwnFd(path("rootFile").c_str(), O_RDONLY)); // root's are trusted
        EXPECT_EQ(errorOf([&] { fileMakePrivate(path("otherFile").c_str()); }), EPERM);
        EXPECT_EQ(errorOf([&] { fileMakeSticky(path("theirs").c_str()); }), EPERM);
        EXPECT_EQ(errorOf([&] { rmDir(path("theirs").c_str(), /*recursive=*/true); }), EACCES);
        mkDirMatchParent(path("ours").c_str());
        EXPECT_EQ(modeOf("ours"), 0777u);
        ASSERT_EQ(seteuid(0), 0);
    });
    EXPECT_TRUE(fileExists(path("theirs/closed").c_str()));
}

TEST_F(FileTest, OwnFilesAreNoLinksPipesOrDirectories) {
    const std::string f = path("own");
    const int fd = fileOpenOwnFd(f.c_str(), O_WRONLY | O_CREAT | O_APPEND);
    EXPECT_EQ(modeOf("own"), 0600u);
    EXPECT_EQ(fcntl(fd, F_GETFL) & (O_APPEND | O_NONBLOCK), O_APPEND);
    close(fd);
    writeTextFile(f, "text");
    std::filesystem::create_symlink(f.c_str(), path("link").c_str());
    EXPECT_EQ(errorOf([&] { fileOpenOwnFd(path("link").c_str(), O_WRONLY | O_TRUNC); }), ELOOP);
    EXPECT_EQ(readTextFile(f), "text");
    close(fileOpenOwnFd(f.c_str(), O_WRONLY | O_TRUNC));
    EXPECT_EQ(readTextFile(f), "");
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { fileOpenOwnFd(path("fifo").c_str(), O_RDONLY); }), EPERM);
    EXPECT_EQ(errorOf([&] { fileOpenOwnFd(path("fifo").c_str(), O_WRONLY); }), ENXIO); // and doesn't wait
    EXPECT_EQ(errorOf([&] { fileOpenOwnFd(dir.root.c_str(), O_RDONLY); }), EPERM);
    EXPECT_EQ(errorOf([&] { fileOpenOwnFd("/dev/null", O_RDONLY); }), EPERM);
}

TEST_F(FileTest, PermissionsAreCopiedAndNarrowed) {
    const std::string from = path("from");
    writeTextFile(from, "");
    chmod(from.c_str(), 04751);
    const int fd = fileOpenFd(path("to").c_str(), O_RDWR | O_CREAT);
    fileCopyPerms(from.c_str(), fd);
    EXPECT_EQ(modeOf("to"), 0751u);
    fileMakePrivate(fd);
    EXPECT_EQ(modeOf("to"), 0600u);
    close(fd);
    fileMakePrivate(from.c_str());
    EXPECT_EQ(modeOf("from"), 0600u);
    std::filesystem::create_symlink(from.c_str(), path("link").c_str());
    EXPECT_EQ(errorOf([&] { fileMakePrivate(path("link").c_str()); }), ELOOP);
    EXPECT_EQ(errorOf([&] { fileCopyPerms(path("link").c_str(), 0); }), EINVAL);
    mkDir(path("d").c_str());
    chmod(path("d").c_str(), 0755);
    fileMakeSticky(path("d").c_str());
    EXPECT_EQ(modeOf("d"), 01755u);
}

TEST_F(FileTest, PrivateDirectoriesAreSoWhateverTheUmask) {
    {
        UmaskScope mask(0777);
        mkDir(path("private").c_str(), /*isPrivate=*/true);
    }
    EXPECT_EQ(modeOf("private"), 0700u);
    UmaskScope mask(022);
    mkDir(path("plain").c_str());
    EXPECT_EQ(modeOf("plain"), 0755u);
    mkDir(path("plain").c_str(), /*isPrivate=*/true); // exists: no error, and left alone
    EXPECT_EQ(modeOf("plain"), 0755u);
    mkDir(path("plain").c_str(), /*isPrivate=*/true, /*fixPerms=*/true);
    EXPECT_EQ(modeOf("plain"), 0700u);
    std::filesystem::create_symlink(path("plain").c_str(), path("link").c_str());
    mkDir(path("link").c_str());
    EXPECT_EQ(errorOf([&] { mkDir(path("link").c_str(), /*isPrivate=*/true, /*fixPerms=*/true); }), EPERM);
    writeTextFile(path("file"), "");
    EXPECT_EQ(errorOf([&] { mkDir(path("file").c_str()); }), EEXIST);
}

TEST_F(FileTest, ParentsAreMadeAndMatched) {
    UmaskScope mask(022);
    mkDirs(path("a/b//c/").c_str(), /*isPrivate=*/true);
    EXPECT_EQ(modeOf("a"), 0755u);
    EXPECT_EQ(modeOf("a/b/c"), 0700u);
    mkDirs(path("a/b/c").c_str());
    chmod(path("a/b").c_str(), 0711);
    mkDirMatchParent(path("a/b/d").c_str());
    EXPECT_EQ(modeOf("a/b/d"), 0711u);
    chmod(path("a/b/d").c_str(), 0700);
    mkDirMatchParent(path("a/b/d").c_str());
    EXPECT_EQ(modeOf("a/b/d"), 0700u);
    EXPECT_EQ(errorOf([&] { mkDirMatchParent(path("x/y").c_str()); }), ENOENT);
    std::string deep = "/";
    for (int i = 0; i < 100000; ++i)
        deep += "a/";
    EXPECT_EQ(errorOf([&] { mkDirs(deep.c_str()); }), ENAMETOOLONG);
}

TEST_F(FileTest, RecursiveRemovalDoesNotFollowLinks) {
    mkDirs(path("tree/a/b").c_str());
    mkDirs(path("outside").c_str());
    writeTextFile(path("outside/kept"), "kept");
    writeTextFile(path("tree/a/file"), "");
    std::filesystem::create_symlink(path("outside").c_str(), path("tree/a/link").c_str());
    EXPECT_EQ(errorOf([&] { rmDir(path("tree").c_str()); }), ENOTEMPTY);
    rmDir(path("tree").c_str(), /*recursive=*/true);
    EXPECT_FALSE(fileExists(path("tree").c_str()));
    EXPECT_EQ(readTextFile(path("outside/kept")), "kept");
    std::filesystem::create_symlink(path("outside").c_str(), path("root").c_str());
    EXPECT_NE(errorOf([&] { rmDir(path("root").c_str(), /*recursive=*/true); }), 0);
    EXPECT_EQ(readTextFile(path("outside/kept")), "kept");
}

TEST_F(FileTest, UniqueNamesCountBeforeTheExtension) {
    const auto next = [&](const char* name) { return std::string(fileUniqueName(dir.root.c_str(), name).c_str()); };
    EXPECT_EQ(next("a.tar.gz"), path("a.tar.gz"));
    writeTextFile(path("a.tar.gz"), "");
    EXPECT_EQ(next("a.tar.gz"), path("a.tar (1).gz"));
    std::filesystem::create_symlink("/nowhere", path("a.tar (1).gz").c_str());
    EXPECT_EQ(next("a.tar.gz"), path("a.tar (2).gz"));
    writeTextFile(path(".profile"), "");
    EXPECT_EQ(next(".profile"), path(".profile (1)"));
    EXPECT_EQ(whatOf([&] { fileUniqueName(dir.root.c_str(), "a.tar.gz", " (", ")", 1); }),
              "Too many files with same name");
    EXPECT_EQ(std::string(fileUniqueName(dir.root.c_str(), "a.tar.gz", "-", "").c_str()), path("a.tar-1.gz"));
    EXPECT_EQ(errorOf([&] { fileUniqueName(path(".profile").c_str(), "x"); }), ENOTDIR);
}

TEST_F(FileTest, FilePtrModes) {
    UmaskScope mask(0);
    const std::string f = path("f");
    const char* p = f.c_str();
    const auto put = [p](const char* text, FileMode mode, int flags = 0) {
        FilePtr file(p, mode, flags);
        std::fputs(text, file.get());
    };
    EXPECT_EQ(whatOf([&] { FilePtr file(p); }), "Error opening \"" + f + "\": No such file or directory (2)");
    EXPECT_FALSE(FilePtr(p, FileRead, FileOptional).isOpen());
    EXPECT_EQ(errorOf([&] { FilePtr file(p, FileReadWrite); }), ENOENT);
    put("one", FileWrite);
    EXPECT_EQ(modeOf("f"), 0664u);
    put(" two", FileWrite, FileAppend);
    put("ONE", FileReadWrite);
    EXPECT_EQ(readTextFile(f), "ONE two");
    put("", FileReadWrite, FileTruncate);
    EXPECT_EQ(readTextFile(f), "");
    put("x", FileReadWrite, FileAppend);
    EXPECT_EQ(readTextFile(f), "x");
    FilePtr(path("new").c_str(), FileReadWrite, FileCreate | FilePrivate).close();
    EXPECT_EQ(modeOf("new"), 0600u);
    std::filesystem::create_symlink(p, path("link").c_str());
    EXPECT_EQ(errorOf([&] { FilePtr file(path("link").c_str(), FileRead, FileOwn); }), ELOOP);
    FilePtr own(p, FileRead, FileOwn);
    EXPECT_TRUE(fcntl(own.fd(), F_GETFD) & FD_CLOEXEC);
    FilePtr moved = std::move(own);
    EXPECT_FALSE(own); // NOLINT(bugprone-use-after-move)
    std::fclose(moved.release());
    EXPECT_EQ(moved.fd(), -1);
}

TEST_F(FileTest, DashIsTheStandardStreamAndStaysOpen) {
    {
        FilePtr in("-");
        EXPECT_EQ(in.get(), stdin);
        FilePtr out("-", FileWrite);
        EXPECT_EQ(out.get(), stdout);
    }
    EXPECT_GE(fcntl(fileno(stdout), F_GETFD), 0);
    EXPECT_EQ(whatOf([] { FilePtr both("-", FileReadWrite); }), "Invalid mode for stdin/stdout");
}

TEST_F(FileTest, FullDiskShowsAtCloseAndIsLoggedByTheDestructor) {
    FilePtr file("/dev/full", FileWrite);
    std::fputs("x", file.get());
    EXPECT_EQ(errorOf([&] { file.close(); }), ENOSPC);
    EXPECT_FALSE(file.isOpen());
    CapturedLog log;
    {
        FilePtr again("/dev/full", FileWrite);
        std::fputs("x", again.get());
    }
    EXPECT_TRUE(log.has("0 FilePtr: Error closing \"/dev/full\": No space left on device (28)"));
    EXPECT_EQ(errorOf([&] { file.adopt(-1, "none", "r"); }), EBADF);
}

} // namespace
} // namespace plat
