#include "io/FdListener.h"
#include "io/FdSelectManager.h"
#include "io/Io.h"
#include "io/IoHandler.h"
#include "plat/Exception.h"
#include "plat/test/FailingCalls.h"
#include "plat/test/FakeClock.h"
#include "rdr/InStream.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace io {
namespace {

class Acceptor : public IoAcceptor, public IoHandler {
public:
    ~Acceptor() override {
        for (Io* io : ios)
            io->shutdown(false, false);
    }
    void acceptIo(Io* io) override {
        ios.push_back(io);
        io->setHandler(this);
        if (onAccept)
            onAccept();
    }
    void ioClosed(Io* io) override { std::erase(ios, io); }
    void ioReadable(Io* io) override {
        for (;;) {
            got += static_cast<char>(io->inStream()->readU8());
            io->inStream()->checkpoint();
        }
    }
    std::vector<Io*> ios;
    std::string got;
    std::function<void()> onAccept;
};

class FdListenerTest : public testing::Test {
protected:
    FdListenerTest() {
        mgr.emplace();
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
        sockaddr_un any{};
        any.sun_family = AF_UNIX;
        EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&any), sizeof any.sun_family), 0); // an abstract name
        EXPECT_EQ(listen(fd, 20), 0);
        size = sizeof address;
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
        acceptor = std::make_unique<Acceptor>();
        listener = std::make_unique<FdListener>(fd);
        listener->setAcceptor(acceptor.get());
    }
    ~FdListenerTest() override {
        for (const int fd : clients)
            close(fd);
    }
    int connectOne() {
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        EXPECT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&address), size), 0);
        clients.push_back(fd);
        return fd;
    }
    void rounds(int count = 10) {
        for (int i = 0; i < count; ++i)
            mgr->poll(0);
    }
    static bool isClosed(int fd) {
        char c;
        return recv(fd, &c, 1, MSG_DONTWAIT) == 0;
    }

    plat::FakeClock clock;
    std::optional<FdSelectManager> mgr;
    std::unique_ptr<Acceptor> acceptor;
    std::unique_ptr<FdListener> listener;
    std::vector<int> clients;
    sockaddr_un address{};
    socklen_t size;
};

TEST_F(FdListenerTest, HandsOverWhatConnectsUntilNobodyAccepts) {
    connectOne();
    connectOne();
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 2u);
    listener->setAcceptor(nullptr);
    connectOne();
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 2u);
    listener->setAcceptor(acceptor.get());
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 3u);
}

// Whoever waits to be accepted is, in the end: a rest keeps the loop from spinning where the system has no room.
TEST_F(FdListenerTest, RestsWhenDescriptorsRunOutAndLosesNobody) {
    const std::pair<int, bool> errors[] = {{EMFILE, true}, {ENFILE, true},        {ENOBUFS, true}, {EPERM, true},
                                           {EINTR, false}, {ECONNABORTED, false}, {EAGAIN, false}};
    for (const auto& [errNo, rests] : errors) {
        SCOPED_TRACE(errNo);
        connectOne();
        const plat::FailingCalls failing("accept4", errNo);
        rounds(1);
        EXPECT_EQ(acceptor->ios.size(), 0u);
        EXPECT_EQ(mgr->poll(0), !rests);
        plat::FakeClock::advanceMs(99);
        rounds();
        EXPECT_EQ(acceptor->ios.size(), rests ? 0u : 1u);
        plat::FakeClock::advanceMs(1);
        rounds();
        EXPECT_EQ(acceptor->ios.size(), 1u);
        while (!acceptor->ios.empty()) {
            acceptor->ios.back()->shutdown(false, false);
            acceptor->ios.pop_back();
        }
    }
}

TEST_F(FdListenerTest, ARefusedConnectionOrANewSocketLeavesTheRestAsItWas) {
    class Choosy : public FdListener {
    public:
        using FdListener::FdListener;
        using FdListener::replaceFd;
        bool refuses = true;

    private:
        Io* makeIo(int accepted) override {
            if (!refuses)
                return FdListener::makeIo(accepted);
            close(accepted);
            throw plat::Exception("not this one");
        }
    };
    auto choosy = std::make_unique<Choosy>(dup(listener->getFd()));
    listener->setAcceptor(nullptr);
    choosy->setAcceptor(acceptor.get());
    const int refused = connectOne();
    rounds();
    EXPECT_TRUE(isClosed(refused));
    choosy->replaceFd(-1);
    choosy->refuses = false;
    connectOne();
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 0u);
    choosy->replaceFd(dup(listener->getFd()));
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 1u);
}

TEST_F(FdListenerTest, MayDieWhileItHandsOver) {
    acceptor->onAccept = [this] {
        listener.reset();
        throw plat::Exception("and throws");
    };
    connectOne();
    connectOne();
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 1u);
}

TEST_F(FdListenerTest, SilentConnectionsAreFewAndEnd) {
    listener->setSilenceLimit(2, 10000);
    const int a = connectOne();
    const int b = connectOne();
    const int c = connectOne();
    rounds();
    EXPECT_TRUE(isClosed(c)) << "one too many";
    EXPECT_FALSE(isClosed(a));
    EXPECT_EQ(acceptor->ios.size(), 0u);
    EXPECT_EQ(write(b, "hi", 2), 2);
    rounds();
    EXPECT_EQ(acceptor->ios.size(), 1u);
    EXPECT_EQ(acceptor->got, "hi");
    plat::FakeClock::advanceMs(10000);
    rounds();
    EXPECT_TRUE(isClosed(a));
    EXPECT_FALSE(isClosed(b));
    EXPECT_EQ(write(connectOne(), "x", 1), 1) << "there is room again";
    rounds();
    EXPECT_EQ(acceptor->got, "hix");
}

TEST_F(FdListenerTest, SilentConnectionsEndWithTheirAcceptorTheirListenerAndTheLoop) {
    listener->setSilenceLimit(4, 10000);
    const int spoken = connectOne();
    rounds();
    listener->setAcceptor(nullptr);
    EXPECT_EQ(write(spoken, "x", 1), 1);
    rounds();
    char c;
    EXPECT_LE(recv(spoken, &c, 1, MSG_DONTWAIT), 0) << "nobody takes it";
    listener->setAcceptor(acceptor.get());
    auto other = std::make_unique<FdListener>(dup(listener->getFd()));
    listener->setAcceptor(nullptr);
    other->setAcceptor(acceptor.get());
    other->setSilenceLimit(4, 10000);
    const int a = connectOne();
    rounds();
    other.reset();
    rounds();
    EXPECT_TRUE(isClosed(a));
    listener->setAcceptor(acceptor.get());
    const int b = connectOne();
    rounds();
    mgr.reset();
    EXPECT_TRUE(isClosed(b));
    listener->setAcceptor(nullptr);
}

} // namespace
} // namespace io
