#include "io/FdIo.h"
#include "io/FdSelectManager.h"
#include "io/IoHandler.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/FakeClock.h"
#include "rdr/InStream.h"
#include "rdr/exceptions.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace io {
namespace {

/// An FdIo that says when it dies.
class Counted : public FdIo {
public:
    Counted(int fd_, int& alive_) : FdIo(fd_), alive(alive_) { ++alive; }
    ~Counted() override { --alive; }
    int& alive;
};

class Handler : public IoHandler {
public:
    void ioReadable(Io* io) override {
        ++readable;
        if (onRead)
            onRead(io);
    }
    void ioWritable(Io* io) override {
        ++writable;
        if (onWrite)
            onWrite(io);
    }
    void ioClosed(Io* io) override {
        ++closed;
        if (onClosed)
            onClosed(io);
    }
    int readable = 0;
    int writable = 0;
    int closed = 0;
    std::function<void(Io*)> onRead, onWrite, onClosed;
};

class FdIoTest : public testing::Test {
protected:
    FdIoTest() {
        open();
        handler.onRead = [this](Io* from) {
            for (;;) {
                got += static_cast<char>(from->inStream()->readU8());
                from->inStream()->checkpoint();
            }
        };
    }
    ~FdIoTest() override {
        mgr.reset();
        closePeer();
        EXPECT_EQ(alive, 0);
    }
    void open() {
        if (alive == 1)
            return; // the one of the constructor
        closePeer();
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        peer = ends[1];
        fcntl(peer, F_SETFL, O_NONBLOCK);
        if (!mgr)
            mgr.emplace();
        io = new Counted(ends[0], alive);
    }
    void closePeer() {
        if (peer >= 0)
            close(peer);
        peer = -1;
    }
    void rounds(int count = 5) {
        for (int i = 0; i < count; ++i)
            mgr->poll(0);
    }
    size_t drainPeer() const {
        char buf[65536];
        size_t total = 0;
        for (ssize_t n; (n = read(peer, buf, sizeof buf)) > 0;)
            total += static_cast<size_t>(n);
        return total;
    }
    // Until all is sent, the peer reading with it.
    size_t drainAll() {
        size_t total = 0;
        for (int i = 0; i < 1000 && total < size_t{1} << 20; ++i) {
            total += drainPeer();
            mgr->poll(0);
        }
        rounds();
        return total + drainPeer();
    }
    // More than the socket takes.
    void writeTooMuch() {
        const std::string block(1 << 20, 'x');
        io->outStream()->writeBytes(block.data(), block.size());
        io->outStream()->flush();
        EXPECT_GT(io->outStream()->bytesInBuffer(), 0u);
    }

    plat::FakeClock clock;
    int alive = 0;
    int peer = -1;
    std::optional<FdSelectManager> mgr;
    FdIo* io;
    Handler handler;
    std::string got;
};

TEST_F(FdIoTest, BytesLeftInTheBufferReachTheNextHandler) {
    handler.onRead = [this](Io* from) { got += static_cast<char>(from->inStream()->readU8()); };
    io->setHandler(&handler);
    EXPECT_EQ(write(peer, "ab", 2), 2);
    rounds();
    EXPECT_EQ(got, "a") << "no more bytes came, so nobody calls again";
    io->inStream()->checkpoint();
    Handler second;
    second.onRead = handler.onRead;
    io->setHandler(&second);
    rounds();
    EXPECT_EQ(got, "ab");
    io->markReadable();
    rounds();
    EXPECT_EQ(second.readable, 2);
    io->shutdown(false, false);
}

TEST_F(FdIoTest, DrainsWhatWasBlockedAndSaysSo) {
    io->setHandler(&handler);
    writeTooMuch();
    rounds();
    EXPECT_EQ(handler.writable, 0);
    EXPECT_EQ(drainAll(), size_t{1} << 20);
    EXPECT_EQ(handler.writable, 1);
    plat::FakeClock::advanceMs(61000);
    rounds();
    EXPECT_EQ(handler.closed, 0) << "the flush timer ended with the drain";
    io->shutdown(false, false);
}

TEST_F(FdIoTest, APeerThatTakesNothingOrHearsNothingIsGivenUp) {
    const std::function<void()> ways[] = {
        [this] {
            writeTooMuch();
            plat::FakeClock::advanceMs(59000);
            writeTooMuch(); // trying again doesn't put the end off
            plat::FakeClock::advanceMs(999);
        },
        [this] {
            writeTooMuch();
            plat::FakeClock::advanceMs(30000);
            io->shutdown(/*flush=*/true, /*tellHandler=*/true);
            plat::FakeClock::advanceMs(59999);
        },
        [this] {
            ::shutdown(peer, SHUT_RD); // it will never close its own side
            io->outStream()->writeBytes("unheard", 7);
            io->outStream()->flush();
            plat::FakeClock::advanceMs(59999);
        },
    };
    for (const auto& way : ways) {
        open();
        handler.closed = 0;
        io->setHandler(&handler);
        way();
        rounds();
        EXPECT_EQ(handler.closed, 0);
        plat::FakeClock::advanceMs(1);
        rounds();
        EXPECT_EQ(handler.closed, 1);
        EXPECT_EQ(alive, 0);
    }
    auto& timeout = plat::Configuration::global().get("LazyFlushTimeout");
    EXPECT_FALSE(timeout.setInt(-1));
    ASSERT_TRUE(timeout.setInt(0x7fffffff)) << "more milliseconds than a timer holds";
    open();
    io->setHandler(&handler);
    writeTooMuch();
    plat::FakeClock::advanceMs(100000);
    rounds();
    EXPECT_EQ(handler.closed, 1) << "of the last one";
    timeout.unset(plat::PriorityPreference);
    io->shutdown(false, false);
}

TEST_F(FdIoTest, AfterShutdownTheHandlerHearsNothingButTheEnd) {
    io->setHandler(&handler);
    EXPECT_EQ(write(peer, "x", 1), 1);
    handler.onRead = [](Io* self) {
        self->shutdown(/*flush=*/false, /*tellHandler=*/true);
        self->markReadable();
        throw plat::Exception("thrown after the shutdown");
    };
    handler.onClosed = [](Io* self) {
        self->setHandler(nullptr);
        self->shutdown(/*flush=*/true, /*tellHandler=*/false);
        throw plat::Exception("in ioClosed");
    };
    rounds();
    EXPECT_EQ(handler.readable, 1);
    EXPECT_EQ(handler.closed, 1);
    EXPECT_EQ(alive, 0);
}

// How a connection ends by each road, with its loop, without one, and when that goes.
TEST_F(FdIoTest, EveryShutdownEndsItOnceAndTellsWhomItSaid) {
    const struct {
        const char* how;
        bool handled;
        std::function<void()> end;
        int told;
    } roads[] = {
        {"sends all first", true,
         [this] {
             writeTooMuch();
             io->shutdown(/*flush=*/true, /*tellHandler=*/true);
             EXPECT_EQ(drainAll(), size_t{1} << 20);
         },
         1},
        {"the later of two rules", true,
         [this] {
             io->shutdown(/*flush=*/true, /*tellHandler=*/true);
             io->shutdown(/*flush=*/false, /*tellHandler=*/false);
         },
         0},
        {"at once without a handler", false,
         [this] {
             io->outStream()->writeBytes("bye", 3);
             io->shutdown(/*flush=*/true, /*tellHandler=*/false);
             EXPECT_EQ(drainPeer(), 3U);
         },
         0},
        {"completed by the end of its loop", true,
         [this] {
             io->shutdown(/*flush=*/false, /*tellHandler=*/true);
             mgr.reset();
         },
         1},
        {"behind the end of its loop", true,
         [this] {
             mgr.reset();
             io->setHandler(nullptr);
             io->markReadable();
             io->shutdown(/*flush=*/false, /*tellHandler=*/false);
         },
         0},
        {"with its loop, while somebody on the stack reads", true,
         [this] {
             io->setHandler(nullptr);
             io->shutdown(/*flush=*/false, /*tellHandler=*/false);
             EXPECT_EQ(alive, 1);
             mgr.reset();
         },
         0},
        {"by the peer's end while output waits", true,
         [this] {
             io->setHandler(&handler, /*wantRead=*/false);
             writeTooMuch();
             closePeer();
         },
         1},
        {"by a write that fails", true,
         [this] {
             io->setHandler(&handler, /*wantRead=*/false);
             closePeer();
             io->outStream()->writeU8(1);
             io->outStream()->flush();
         },
         1},
    };
    for (const auto& road : roads) {
        SCOPED_TRACE(road.how);
        open();
        if (road.handled)
            io->setHandler(&handler);
        handler.closed = handler.readable = 0;
        road.end();
        if (mgr)
            rounds();
        EXPECT_EQ(handler.closed, road.told);
        EXPECT_EQ(handler.readable, 0);
        EXPECT_EQ(alive, 0);
    }
}

TEST_F(FdIoTest, OneIosEndMayEndAnotherWhileTheLoopGoes) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    FdIo* other = new Counted(ends[0], alive);
    Handler otherHandler;
    io->setHandler(&handler);
    other->setHandler(&otherHandler);
    // Whichever goes first ends the other one.
    handler.onClosed = [&](Io*) {
        if (otherHandler.closed == 0)
            other->shutdown(false, false);
    };
    otherHandler.onClosed = [&](Io*) {
        if (handler.closed == 0)
            io->shutdown(false, false);
    };
    io->shutdown(false, true);
    other->shutdown(false, true);
    mgr.reset();
    EXPECT_EQ(handler.closed + otherHandler.closed, 1);
    EXPECT_EQ(alive, 0);
    close(ends[1]);
}

TEST_F(FdIoTest, AShutdownInANestedLoopCompletesInItsOwn) {
    io->setHandler(&handler);
    {
        FdSelectManager inner(/*nested=*/true);
        io->shutdown(/*flush=*/false, /*tellHandler=*/true);
        inner.poll(0);
        EXPECT_EQ(handler.closed, 0);
    }
    rounds();
    EXPECT_EQ(handler.closed, 1);
}

TEST_F(FdIoTest, MayBeDeletedWhileItIsReadable) {
    handler.onRead = [](Io* self) {
        delete self;
        throw plat::Exception("thrown behind it");
    };
    io->setHandler(&handler);
    EXPECT_EQ(write(peer, "x", 1), 1);
    rounds();
    EXPECT_EQ(alive, 0);
}

TEST_F(FdIoTest, WritingToAPeerThatHasGoneThrowsNothingAndLosesNothingItSent) {
    io->setHandler(&handler);
    EXPECT_EQ(write(peer, "last words", 10), 10);
    closePeer();
    for (int i = 0; i < 3; ++i) {
        io->outStream()->writeBytes("unheard", 7);
        io->outStream()->flush();
    }
    rounds();
    EXPECT_EQ(got, "last words");
    EXPECT_EQ(handler.closed, 1);
}

TEST_F(FdIoTest, ThrowsInBlockingUse) {
    EXPECT_EQ(io->getName(), plat::strFormat("<fd%d>", io->getFd()));
    io->setTimeout(1);
    EXPECT_THROW(io->inStream()->readU8(), plat::TimedOut);
    closePeer();
    io->outStream()->writeBytes("unheard", 7);
    EXPECT_THROW(io->outStream()->flush(), plat::SystemException);
    EXPECT_THROW(io->inStream()->readU8(), rdr::EndOfStream);
    io->shutdown(false, false);
}

TEST_F(FdIoTest, TellsTheEndOfWritingOnceAllIsSent) {
    io->setHandler(&handler);
    writeTooMuch();
    io->shutdownWrite();
    EXPECT_EQ(drainAll(), size_t{1} << 20);
    char last;
    EXPECT_EQ(recv(peer, &last, 1, 0), 0) << "the peer sees the end";
    EXPECT_EQ(write(peer, "still heard", 11), 11);
    rounds();
    EXPECT_EQ(got, "still heard");
    EXPECT_EQ(handler.writable, 0);
    io->shutdown(false, false);
}

TEST_F(FdIoTest, AConnectUnderWayIsToldByTheFirstWritable) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    auto* late = new FdIo(-1);
    EXPECT_EQ(late->inStream(), nullptr);
    late->setName("late");
    late->attachFd(ends[0], /*nowConnecting=*/true);
    EXPECT_TRUE(late->isConnecting());
    late->setHandler(&handler);
    rounds();
    EXPECT_EQ(handler.writable, 1);
    EXPECT_FALSE(late->isConnecting());
    EXPECT_EQ(late->getSockError(), 0);
    EXPECT_STREQ(late->getName().c_str(), "late");
    late->shutdown(false, false);
    io->shutdown(false, false);
    rounds();
    close(ends[1]);
}

using FdIoDeathTest = FdIoTest;

TEST_F(FdIoDeathTest, AssertsItsRules) {
    EXPECT_DEATH(io->shutdown(/*flush=*/false, /*tellHandler=*/true), "!tellHandler");
    EXPECT_DEATH(io->attachFd(7), "fd < 0");
    mgr.reset();
    EXPECT_DEATH(io->setHandler(&handler), "fdMgr");
    io->shutdown(false, false);
}

} // namespace
} // namespace io
