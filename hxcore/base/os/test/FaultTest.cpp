// Local sockets and stores while system calls fail: what each ends in, and that nothing is lost.
#include "io/FdSelectManager.h"
#include "io/IoHandler.h"
#include "os/AppInfo.h"
#include "os/NamedPipeListener.h"
#include "os/PersistentStoreFile.h"
#include "os/PipeNameScoped.h"
#include "os/UnixIo.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/FakeClock.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

namespace os {
namespace {

class SocketFaultTest : public testing::Test, protected io::IoAcceptor {
protected:
    ~SocketFaultTest() override {
        if (accepted)
            accepted->shutdown(false, false);
    }
    void acceptIo(io::Io* io) override { accepted = io; }
    void rounds() {
        for (int i = 0; i < 5; ++i)
            mgr.poll(0);
    }
    bool exists() const { return access(path.c_str(), F_OK) == 0; }

    plat::FakeClock clock;
    io::FdSelectManager mgr{/*nested=*/true};
    plat::TempDir dir;
    const std::string path = dir / "sub/s";
    io::Io* accepted = nullptr;
};

TEST_F(SocketFaultTest, AListenerThatCannotBeMadeLeavesNothingBehind) {
    const int descriptors = plat::openDescriptors();
    for (const auto& [function, errNo] : {std::pair("mkdir", EACCES),
                                          {"open", EMFILE},
                                          {"fstat", EIO},
                                          {"socket", EMFILE},
                                          {"fstatat", EIO},
                                          {"bind", EACCES},
                                          {"listen", EADDRINUSE}}) {
        const plat::FailingCalls failing(function, errNo, plat::FailingCalls::always);
        EXPECT_EQ(plat::errorOf([this] { NamedPipeListener listener(path.c_str()); }), errNo) << function;
        EXPECT_FALSE(exists()) << function;
        EXPECT_EQ(plat::openDescriptors(), descriptors) << function;
    }
    plat::CapturedLog log;
    const plat::FailingCalls notSticky("fchmodat", EPERM);
    NamedPipeListener listener(path.c_str());
    EXPECT_TRUE(exists());
    EXPECT_TRUE(log.has("100 NamedPipe: Failed to set sticky bit on " + path + ": Operation not permitted"));
}

TEST_F(SocketFaultTest, AFileThatCannotBeBroughtBackIsTriedForAgain) {
    NamedPipeListener listener(path.c_str());
    listener.setAcceptor(this);
    unlink(path.c_str());
    plat::CapturedLog log;
    {
        const plat::FailingCalls noDescriptor("socket", EMFILE);
        plat::FakeClock::advanceMs(3600000);
        rounds();
        EXPECT_FALSE(exists());
        EXPECT_TRUE(log.has("100 NamedPipe: Failed to recreate socket: [System-24] socket: Too many open files (24)"));
    }
    plat::FakeClock::advanceMs(3600000);
    rounds();
    ASSERT_TRUE(exists());
    const int client = connectUnixSocket(path.c_str());
    rounds();
    EXPECT_NE(accepted, nullptr);
    close(client);
    const plat::FailingCalls noDir("open", EMFILE, plat::FailingCalls::always);
    listener.setAcceptor(nullptr);
}

TEST_F(SocketFaultTest, AFileThatCannotBeRemovedAtTheEndIsLogged) {
    auto listener = std::make_unique<NamedPipeListener>(path.c_str());
    plat::CapturedLog log;
    const plat::FailingCalls failing("open", EMFILE);
    listener.reset();
    EXPECT_TRUE(log.has("100 NamedPipe: Failed to remove socket: [System-24] open(" + dir / "sub" +
                        "): Too many open files (24)"));
}

TEST_F(SocketFaultTest, APeerThatCannotBeToldIsRefused) {
    NamedPipeListener listener(path.c_str());
    listener.setAcceptor(this);
    const int client = connectUnixSocket(path.c_str());
    const int descriptors = plat::openDescriptors();
    const plat::FailingCalls failing("getsockopt", EIO, plat::FailingCalls::always);
    rounds();
    EXPECT_EQ(accepted, nullptr);
    EXPECT_EQ(plat::openDescriptors(), descriptors);
    char c;
    EXPECT_EQ(recv(client, &c, 1, MSG_DONTWAIT), 0) << "closed";
    UnixIo io(client, UnixIo::Side::Client);
    EXPECT_EQ(plat::errorOf([&io] { io.getPeerEuid(); }), EIO);
    EXPECT_STREQ(io.getName().c_str(), "<unix-client-anon>");
}

TEST_F(SocketFaultTest, AConnectSurvivesSignalsAndTellsErrors) {
    NamedPipeListener listener(path.c_str());
    {
        const plat::FailingCalls interrupted("connect", EINTR, 3);
        UnixIo::connect(path.c_str())->shutdown(false, false);
        EXPECT_EQ(interrupted.failed(), 3);
    }
    const int descriptors = plat::openDescriptors();
    for (const auto& [function, errNo] : {std::pair("socket", EMFILE), {"connect", ECONNREFUSED}}) {
        const plat::FailingCalls failing(function, errNo);
        EXPECT_EQ(plat::errorOf([this] { UnixIo::connect(path.c_str()); }), errNo);
    }
    EXPECT_EQ(plat::errorOf([] { UnixIo::connect(std::string(200, 'x').c_str()); }), ENAMETOOLONG);
    EXPECT_EQ(plat::openDescriptors(), descriptors);
}

class StoreFaultTest : public testing::Test {
protected:
    StoreFaultTest() {
        AppInfo::reset();
        AppInfo::setApp("prog");
        AppInfo::setPathComp(plat::strFormat("zeffault%d", getpid()).c_str());
        AppInfo::setConfigDir(dir.root.c_str());
        store = std::make_unique<PersistentStoreFile>();
    }
    ~StoreFaultTest() override { AppInfo::reset(); }
    void save(const std::string& text) const {
        store->save("a/b", {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    }
    std::string load() {
        plat::MBuf<uint8_t> out;
        return store->load("a/b", out) ? std::string(out.begin(), out.end()) : "<none>";
    }

    plat::TempDir dir;
    std::unique_ptr<PersistentStoreFile> store;
};

TEST_F(StoreFaultTest, AReadThatFailsIsNotTakenForAnEmptyBlob) {
    save("text");
    const plat::ShortCounts one(1);
    {
        const plat::FailingCalls interrupted("read", EINTR, 2, 1);
        EXPECT_EQ(load(), "text");
        EXPECT_EQ(interrupted.failed(), 2);
    }
    for (const auto& [function, after] : {std::pair("read", 1), {"fstat", 1}}) { // the first fstat belongs to opening
        const plat::FailingCalls failing(function, EIO, 1, after);
        EXPECT_EQ(plat::errorOf([this] { load(); }), EIO) << function;
    }
    const plat::FailingCalls unreadable("open", EACCES);
    EXPECT_EQ(load(), "<none>");
}

TEST_F(StoreFaultTest, NamesThatCannotBeLookedForAreTold) {
    const PipeNameScoped name("X");
    const plat::FailingCalls failing("opendir", EMFILE);
    EXPECT_EQ(plat::errorOf([] { PipeNameScoped::clearStale("X", 0); }), EMFILE);
    rmdir(name.dir());
    const plat::FailingCalls noProc("readlink", EACCES);
    EXPECT_STREQ(AppInfo::executableDir(), "");
}

} // namespace
} // namespace os
