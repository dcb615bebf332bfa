// The loop, connections and listeners while system calls fail: what each ends in, and that nothing is lost.
#include "io/FdIo.h"
#include "io/FdKicker.h"
#include "io/FdSelectManager.h"
#include "io/test/FakeLink.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/FailingCalls.h"
#include "rdr/FdInStream.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace io {
namespace {

class Deadline : public plat::Timer::Callback {
public:
    bool timerExpired(plat::Timer*) override { return ++fired, false; }
    int fired = 0;
    plat::Timer timer{this};
};

TEST(FdSelectManagerFault, ASignalEndsAWait) {
    FdSelectManager mgr;
    Deadline deadline;
    deadline.timer.start(0);
    {
        const plat::FailingCalls interrupted("select", EINTR);
        mgr.poll(-1);
    }
    EXPECT_EQ(deadline.fired, 1) << "what is due is done";
}

TEST(FdKickerFault, AKickSurvivesSignalsAndAFullPipe) {
    class Counter : public FdKickerCallback {
    public:
        void kicked(FdKicker* kicker) override { drained += kicker->drain(); }
        int drained = 0;
    } counter;
    FdSelectManager mgr;
    {
        const plat::FailingCalls failing("pipe2", EMFILE);
        EXPECT_THROW(FdKicker kicker(&counter), plat::SystemException);
    }
    FdKicker kicker(&counter);
    errno = ENOENT;
    {
        const plat::FailingCalls interrupted("write", EINTR, 3);
        kicker.kick(1);
        const plat::FailingCalls full("write", EAGAIN);
        kicker.kick(2);
        EXPECT_EQ(interrupted.failed() + full.failed(), 4);
    }
    EXPECT_EQ(errno, ENOENT);
    mgr.poll(0);
    EXPECT_EQ(counter.drained, 1);
}

/// A link on a socket whose other end is the test.
class LinkFaultTest : public testing::Test, private MsgIpc::Callback {
protected:
    LinkFaultTest() {
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        peer = ends[1];
        link.acceptIo(new FdIo(ends[0]));
    }
    ~LinkFaultTest() override {
        link.close(/*tell=*/false);
        close(peer);
    }
    void send(std::string_view data) const {
        EXPECT_EQ(::write(peer, data.data(), data.size()), static_cast<ssize_t>(data.size()));
    }
    void rounds() {
        for (int i = 0; i < 5; ++i)
            mgr.poll(0);
    }

    void ipcClosed(MsgIpc*) override { ++closed; }
    void ipcError(MsgIpc*, const plat::Exception& e) override { error = e.describe().c_str(); }

    FdSelectManager mgr;
    int peer = -1;
    int closed = 0;
    std::string error;
    MsgIpc link{this, "test"};
    RecordingReader reader{link, "a"};
};

TEST_F(LinkFaultTest, AConnectionThatEndsByItselfEndsTheLink) {
    link.getIo()->shutdown(/*flush=*/true, /*tellHandler=*/true);
    rounds();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(link.isAttached());
    EXPECT_EQ(error, "");
}

// The failure that counts is the first; that the rest of its message never came is only logged.
TEST(MsgIpcFault, AMessageThatCannotBeSkippedTellsWhyItWasRefused) {
    plat::CapturedLog log;
    FakeLink link(/*blocking=*/true);
    link.preload(bytes("00 03 01 'bx'"));
    EXPECT_EQ(plat::whatOf([&] { link.ipc.readMessage("a"); }), "MsgIpc: expected message a, got b");
    EXPECT_TRUE(log.has("0 MsgIpc: test: skip error: [EndOfStream] End of IO stream"));
    EXPECT_THROW(link.ipc.readMessage("a"), rdr::EndOfStream) << "in step for what would come next";
}

// What had arrived before is still handled: only then the link ends, though the failure of the write came first.
TEST_F(LinkFaultTest, AWriteErrorEndsTheLinkBehindWhatThePeerSaid) {
    plat::CapturedLog log;
    send(bytes("80 04 01 'a' 01 'x'"));
    const plat::FailingCalls failing("send", EPIPE);
    link.startMsg("q");
    link.endMsg();
    EXPECT_TRUE(log.has("30 FdIo: Write error: [System-32] write: Broken pipe (32)"));
    EXPECT_EQ(closed, 0) << "not from within the write";
    rounds();
    EXPECT_EQ(reader.texts, std::vector<std::string>{"x"});
    ::shutdown(peer, SHUT_WR);
    rounds();
    EXPECT_EQ(closed, 1);
}

TEST_F(LinkFaultTest, AFlushBeforeTheEndMayFail) {
    plat::CapturedLog log;
    link.setFlushOnClose(true);
    link.setBlocking(true); // where a write throws at once
    link.startMsg("q");
    link.endMsg(/*flush=*/false);
    const plat::FailingCalls failing("send", EPIPE, plat::FailingCalls::always);
    link.close(/*tell=*/true);
    EXPECT_TRUE(log.has("100 Ipc: test: [System-32] write: Broken pipe (32)"));
    EXPECT_EQ(closed, 1);
}

// Switching to non-blocking tries to flush; that it fails shows in the loop, not in who switches.
TEST_F(LinkFaultTest, ASwitchOfModeThatFailsIsLogged) {
    plat::CapturedLog log;
    link.setBlocking(true);
    link.startMsg("q");
    link.endMsg(/*flush=*/false);
    auto* io = dynamic_cast<FdIo*>(link.getIo());
    const plat::FailingCalls failing("send", ECONNRESET);
    io->setHandler(nullptr);
    EXPECT_TRUE(log.has("0 FdIo: setHandler: [System-104] write: Connection reset by peer (104)"));
    const plat::FailingCalls noError("getsockopt", ENOTSOCK);
    EXPECT_THROW(io->getSockError(), plat::SystemException);
    EXPECT_EQ(io->getSockError(), 0);
    EXPECT_THROW(FdIo(9999, /*ownFd=*/false), plat::SystemException);
}

} // namespace
} // namespace io
