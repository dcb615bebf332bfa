#include "io/FdSelectManager.h"
#include "io/IoHandler.h"
#include "os/AppInfo.h"
#include "os/NamedPipeListener.h"
#include "os/PipeNameScoped.h"
#include "os/UnixIo.h"
#include "os/test/ordinaryUser.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/FakeClock.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <memory>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace os {
namespace {

class Acceptor : public io::IoAcceptor {
public:
    ~Acceptor() override {
        for (io::Io* each : ios)
            each->shutdown(false, false);
    }
    void acceptIo(io::Io* accepted) override { ios.push_back(accepted); }
    UnixIo& last() { return dynamic_cast<UnixIo&>(*ios.back()); }
    std::vector<io::Io*> ios;
};

/// Runs something in a child that is another user; gives its exit status. Only root can.
int asUser(uid_t uid, const std::function<int()>& what) {
    const pid_t child = fork();
    if (child == 0)
        _exit(setresuid(uid, uid, uid) < 0 ? 99 : what());
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

class LocalSocketTest : public testing::Test {
protected:
    LocalSocketTest() {
        AppInfo::reset();
        AppInfo::setApp("prog");
        AppInfo::setPathComp(plat::strFormat("zeftest%d", getpid()).c_str());
        scoped = plat::strFormat("/tmp/.%s-%u", AppInfo::pathComp(), geteuid()).c_str();
    }
    ~LocalSocketTest() override {
        unlink(scoped.c_str()); // some tests leave no directory there
        if (exists(scoped))
            plat::rmDir(scoped.c_str(), /*recursive=*/true);
        AppInfo::reset();
    }
    void rounds(int count = 10) {
        for (int i = 0; i < count; ++i)
            mgr.poll(0);
    }
    // A socket that nobody listens at.
    static void makeDead(const std::string& path) {
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        strcpy(address.sun_path, path.c_str());
        EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        close(fd);
    }
    static struct stat statOf(const std::string& path) {
        struct stat info {};
        EXPECT_EQ(lstat(path.c_str(), &info), 0) << path;
        return info;
    }
    static bool exists(const std::string& path) {
        struct stat info;
        return lstat(path.c_str(), &info) == 0;
    }

    plat::FakeClock clock;
    io::FdSelectManager mgr{/*nested=*/true}; // the process has one once an AppLoop was made
    std::string scoped;
    plat::TempDir dir;
};

TEST_F(LocalSocketTest, NamesHoldUserAppPidAndCounter) {
    const std::string pid = std::to_string(getpid());
    EXPECT_EQ(scoped + "/progX", PipeNameScoped("X").path());
    EXPECT_EQ(statOf(scoped).st_mode & 07777, 0700u) << "made on the spot";
    EXPECT_EQ(scoped + "/progX.12", PipeNameScoped("X", 12).path());
    EXPECT_EQ(scoped + "/progX.4294967295", PipeNameScoped("X", 0xffffffff).path()) << "not our own pid";
    EXPECT_EQ(scoped + "/progX." + pid, PipeNameScoped("X", PipeNameScoped::ownPid).path());
    EXPECT_EQ(scoped + "/progX." + pid + ".3", PipeNameScoped("X", PipeNameScoped::ownPid, 3).path());
    EXPECT_EQ(scoped + "/progX.0.0", PipeNameScoped("X", 0, 0).path());
    const PipeNameScoped others("X", 0, PipeNameScoped::noCounter, 12345);
    EXPECT_TRUE(plat::endsWith(others.dir(), "-12345"));
    EXPECT_FALSE(exists(others.dir())) << "another user's is not made";
}

TEST_F(LocalSocketTest, APathOf108BytesIsTooLong) {
    const size_t room = 107 - (scoped + "/prog").size();
    EXPECT_EQ(strlen(PipeNameScoped(std::string(room, 'x').c_str()).path()), 107u);
    EXPECT_EQ(plat::errorOf([] { PipeNameScoped name("../X"); }), EINVAL) << "and none leads out";
    EXPECT_EQ(plat::errorOf([&] { PipeNameScoped name(std::string(room + 1, 'x').c_str()); }), ENAMETOOLONG);
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener((dir / std::string(100, 'x')).c_str()); }), ENAMETOOLONG);
}

TEST_F(LocalSocketTest, ListensPrivatelyAndTellsWhoConnects) {
    const std::string path = dir / "sub/s.ock";
    std::unique_ptr<NamedPipeListener> listener;
    const mode_t before = umask(0);
    listener = std::make_unique<NamedPipeListener>(path.c_str());
    EXPECT_EQ(umask(before), 0u) << "the umask is as it was";
    EXPECT_EQ(statOf(dir / "sub").st_mode & 07777, 0700u);
    EXPECT_EQ(statOf(path).st_mode & 0777, 0600u);
    EXPECT_TRUE(statOf(path).st_mode & S_ISVTX);

    Acceptor acceptor;
    listener->setAcceptor(&acceptor);
    UnixIo* client = UnixIo::connect(path.c_str());
    rounds();
    ASSERT_EQ(acceptor.ios.size(), 1u);
    UnixIo& server = acceptor.last();
    const std::string uid = std::to_string(geteuid());
    EXPECT_EQ("<unix-server-" + path + "-uid-" + uid + ">", server.getName().c_str());
    EXPECT_EQ("<unix-client-" + path + "-uid-" + uid + ">", client->getName().c_str());
    EXPECT_TRUE(server.hasFlag("secureTransport"));
    EXPECT_TRUE(server.hasFlag("incoming"));
    EXPECT_EQ(server.getPeerEuid(), geteuid());
    server.namedPipeCredCheck(geteuid());
    EXPECT_THROW(server.namedPipeCredCheck(geteuid() + 1), plat::Exception);
    client->shutdown(false, false);
    listener.reset();
    EXPECT_FALSE(exists(path));
    EXPECT_EQ(plat::errorOf([&] { UnixIo::connect(path.c_str()); }), ENOENT);
}

TEST_F(LocalSocketTest, EndpointsArePercentEncodedByComponent) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    UnixIo io(ends[0], UnixIo::Side::Server, "/tmp/.a b/100%");
    EXPECT_STREQ(io.getPeerEndpoint().c_str(), "[unix:/tmp/.a%20b/100%25]");
    EXPECT_STREQ(io.getPeerEndpointUri().c_str(), io.getPeerEndpoint().c_str());
    UnixIo anonymous(ends[1], UnixIo::Side::Client);
    EXPECT_EQ(std::string(anonymous.getName().c_str()).rfind("<unix-client-anon-uid-", 0), 0u);
}

TEST_F(LocalSocketTest, InheritedDescriptorsAreWrappedByTheirKind) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    io::FdIo* unixEnd = fdToFdIo(ends[0]);
    EXPECT_NE(dynamic_cast<UnixIo*>(unixEnd), nullptr);
    EXPECT_TRUE(fcntl(ends[0], F_GETFD) & FD_CLOEXEC);
    unixEnd->shutdown(false, false);
    close(ends[1]);
    ASSERT_EQ(pipe(ends), 0);
    io::FdIo* pipeEnd = fdToFdIo(ends[0]);
    EXPECT_EQ(dynamic_cast<UnixIo*>(pipeEnd), nullptr);
    pipeEnd->shutdown(false, false);
    close(ends[1]);
    EXPECT_EQ(plat::errorOf([] { fdToFdIo(9999); }), EBADF);

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(listen(listening, 1), 0);
    getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size);
    const int connected = socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_EQ(connect(connected, reinterpret_cast<sockaddr*>(&address), size), 0);
    io::FdIo* tcp = fdToFdIo(connected);
    const std::string peer = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    EXPECT_EQ(tcp->getPeerEndpoint().c_str(), peer);
    EXPECT_EQ(std::string(tcp->getLocalEndpoint().c_str()).rfind("127.0.0.1:", 0), 0u);
    EXPECT_EQ(tcp->getName().c_str(), "<tcp-" + peer + ">");
    tcp->shutdown(false, false);
    close(listening);
}

TEST_F(LocalSocketTest, ANameInUseIsRefusedUnlessTakenOver) {
    const std::string path = dir / "s";
    auto first = std::make_unique<NamedPipeListener>(path.c_str());
    EXPECT_EQ(plat::whatOf([&] { NamedPipeListener second(path.c_str()); }).rfind("name already bound: ", 0), 0u);
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener second(path.c_str()); }), EADDRINUSE);
    NamedPipeListener::Options options;
    options.takeOver = true;
    NamedPipeListener taker(path.c_str(), options);
    first.reset();
    EXPECT_TRUE(exists(path)) << "the old one doesn't remove the new one's name";
    Acceptor acceptor;
    taker.setAcceptor(&acceptor);
    close(connectUnixSocket(path.c_str()));
    rounds();
    EXPECT_EQ(acceptor.ios.size(), 1u);
}

TEST_F(LocalSocketTest, ADeadSocketIsReplacedAndWhatIsNoSocketIsNot) {
    const std::string path = dir / "s";
    makeDead(path);
    { NamedPipeListener listener(path.c_str()); }
    EXPECT_FALSE(exists(path));

    std::ofstream(path) << "precious";
    NamedPipeListener::Options takeOver;
    takeOver.takeOver = true;
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener(path.c_str(), takeOver); }), ENOTSOCK);
    EXPECT_TRUE(S_ISREG(statOf(path).st_mode));
    unlink(path.c_str());
    ASSERT_EQ(symlink((dir / "elsewhere").c_str(), path.c_str()), 0);
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener(path.c_str()); }), ENOTSOCK);
    EXPECT_FALSE(exists(dir / "elsewhere"));
}

TEST_F(LocalSocketTest, AHostileDirectoryIsRefusedAndNothingIsMadeElsewhere) {
    const std::string target = dir / "target";
    plat::mkDir(target.c_str(), /*isPrivate=*/true);

    ASSERT_EQ(symlink(target.c_str(), scoped.c_str()), 0);
    EXPECT_EQ(plat::errorOf([] { PipeNameScoped name("X"); }), ENOTDIR);
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener((scoped + "/s").c_str()); }), ENOTDIR);
    EXPECT_FALSE(exists(target + "/s"));
    unlink(scoped.c_str());

    std::ofstream(scoped) << "a file";
    EXPECT_EQ(plat::errorOf([] { PipeNameScoped name("X"); }), ENOTDIR);
    unlink(scoped.c_str());

    for (const mode_t mode : {0777, 0770, 0701, 0740}) {
        ASSERT_EQ(mkdir(scoped.c_str(), 0700), 0);
        chmod(scoped.c_str(), mode);
        EXPECT_EQ(plat::errorOf([] { PipeNameScoped name("X"); }), EPERM) << mode;
        EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener((scoped + "/s").c_str()); }), EPERM);
        EXPECT_FALSE(exists(scoped + "/s"));
        rmdir(scoped.c_str());
    }
    PipeNameScoped fine("X");
}

TEST_F(LocalSocketTest, AnothersDirectoryIsRefused) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make one";
    ASSERT_EQ(mkdir(scoped.c_str(), 0700), 0);
    ASSERT_EQ(chown(scoped.c_str(), otherUser, otherUser), 0);
    EXPECT_EQ(plat::errorOf([] { PipeNameScoped name("X"); }), EPERM);
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener((scoped + "/s").c_str()); }), EPERM);
    EXPECT_EQ(plat::errorOf([] { PipeNameScoped::clearStale("X", 0); }), EPERM);
}

TEST_F(LocalSocketTest, RootMakesDirectoryAndSocketForAnother) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can";
    const PipeNameScoped name("X", 77, PipeNameScoped::noCounter, otherUser);
    NamedPipeListener::Options options;
    options.owner = otherUser;
    {
        NamedPipeListener listener(name.path(), options);
        EXPECT_EQ(statOf(name.dir()).st_uid, otherUser);
        EXPECT_EQ(statOf(name.dir()).st_mode & 07777, 0700u);
        EXPECT_EQ(statOf(name.path()).st_uid, otherUser);
        Acceptor acceptor;
        listener.setAcceptor(&acceptor);
        const auto connectTo = [&name] {
            const int fd = connectUnixSocket(name.path());
            char c;
            return fd < 0 ? 1 : static_cast<int>(recv(fd, &c, 1, MSG_DONTWAIT) == 0 ? 2 : 0);
        };
        EXPECT_EQ(asUser(otherUser, connectTo), 0);
        EXPECT_EQ(asUser(otherUser - 1, connectTo), 1) << "can't reach it";
        rounds();
        ASSERT_EQ(acceptor.ios.size(), 1u);
        EXPECT_EQ(acceptor.last().getPeerEuid(), otherUser);
    }
    EXPECT_FALSE(exists(name.path()));
    { NamedPipeListener again(name.path(), options); }
    EXPECT_EQ(chown(name.dir(), 0, 0), 0);
    EXPECT_EQ(plat::errorOf([&] { NamedPipeListener listener(name.path(), options); }), EPERM)
        << "not the owner's any more";
    rmdir(name.dir());
}

TEST_F(LocalSocketTest, AStrangerWhoGetsThroughIsRefusedAtAccept) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can become another";
    const std::string path = dir / "s";
    for (const bool openToAll : {false, true}) {
        NamedPipeListener::Options options;
        options.openToAll = openToAll;
        NamedPipeListener listener(path.c_str(), options);
        EXPECT_EQ(statOf(path).st_mode & 0777, openToAll ? 0666u : 0600u);
        chmod(dir.root.c_str(), 0711); // as though somebody had opened the way
        chmod(path.c_str(), 0666);
        Acceptor acceptor;
        listener.setAcceptor(&acceptor);
        EXPECT_EQ(asUser(otherUser, [&path] { return connectUnixSocket(path.c_str()) < 0; }), 0);
        rounds();
        EXPECT_EQ(acceptor.ios.size(), openToAll ? 1u : 0u);
        chmod(dir.root.c_str(), 0700);
    }
}

TEST_F(LocalSocketTest, ADirectorySwappedBehindTheListenerIsLeftAlone) {
    const std::string path = dir / "sub/s";
    auto listener = std::make_unique<NamedPipeListener>(path.c_str());
    rename((dir / "sub").c_str(), (dir / "moved").c_str());
    plat::mkDir((dir / "sub").c_str(), /*isPrivate=*/true);
    std::ofstream(path) << "precious";
    listener.reset();
    EXPECT_TRUE(S_ISREG(statOf(path).st_mode));
}

TEST_F(LocalSocketTest, TheFileIsTouchedAndBroughtBackWithoutLosingDescriptors) {
    EXPECT_EQ(plat::Configuration::global().get("_UnixSocketRefreshInterval").getInt(), 3600);
    const std::string path = dir / "sub/s";
    NamedPipeListener listener(path.c_str());
    Acceptor acceptor;
    listener.setAcceptor(&acceptor);
    const timespec old[2] = {{1000, 0}, {1000, 0}};
    utimensat(AT_FDCWD, path.c_str(), old, 0);
    plat::FakeClock::advanceMs(3599999);
    rounds();
    EXPECT_EQ(statOf(path).st_mtime, 1000);
    plat::FakeClock::advanceMs(1);
    rounds();
    EXPECT_GT(statOf(path).st_mtime, 1000000000);

    const int before = plat::openDescriptors();
    for (int i = 0; i < 100; ++i) {
        unlink(path.c_str());
        if (i % 10 == 0)
            rmdir((dir / "sub").c_str());
        plat::FakeClock::advanceMs(3600000);
        rounds(1);
        ASSERT_TRUE(exists(path));
    }
    EXPECT_EQ(plat::openDescriptors(), before);
    close(connectUnixSocket(path.c_str()));
    rounds();
    EXPECT_EQ(acceptor.ios.size(), 1u) << "the acceptor is kept";

    unlink(path.c_str());
    std::ofstream(path) << "precious";
    plat::FakeClock::advanceMs(3600000);
    rounds();
    EXPECT_TRUE(S_ISREG(statOf(path).st_mode));
    unlink(path.c_str());
    chmod((dir / "sub").c_str(), 0777);
    plat::FakeClock::advanceMs(3600000);
    rounds();
    EXPECT_FALSE(exists(path)) << "not in a directory that is open to others";
}

TEST_F(LocalSocketTest, StaleNamesAreRemovedAndLiveOnesKept) {
    PipeNameScoped("X");
    for (const char* file : {"progX.7", "progX.7.1", "progX.7.22", "progX.77", "progX.7.1x", "progXY.7", "progX"})
        makeDead(scoped + "/" + file);
    std::ofstream(scoped + "/progX.7.5") << "no socket";
    NamedPipeListener live(PipeNameScoped("X", 7, 3).path());
    PipeNameScoped::clearStale("X", 7);
    for (const char* file : {"progX.7", "progX.7.1", "progX.7.22"})
        EXPECT_FALSE(exists(scoped + "/" + file)) << file;
    for (const char* file : {"progX.77", "progX.7.1x", "progXY.7", "progX", "progX.7.5", "progX.7.3"})
        EXPECT_TRUE(exists(scoped + "/" + file)) << file;
    PipeNameScoped::clearStale("X", 0);
    EXPECT_FALSE(exists(scoped + "/progX"));
    EXPECT_TRUE(exists(scoped + "/progX.77"));
}

TEST_F(LocalSocketTest, ABusyListenerCountsAsOne) {
    const std::string path = dir / "s";
    NamedPipeListener listener(path.c_str()); // nobody accepts
    std::vector<int> waiting;
    for (int i = 0; i < 6; ++i)
        waiting.push_back(connectUnixSocket(path.c_str()));
    EXPECT_TRUE(somebodyListens(path.c_str()));
    for (const int fd : waiting)
        close(fd);
    EXPECT_FALSE(somebodyListens((dir / "none").c_str()));
}

} // namespace
} // namespace os
