#include "rdr/FdInStream.h"
#include "rdr/FdOutStream.h"

#include "streamTesting.h"

#include "plat/test/FailingCalls.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// Two ends of a socket pair, both non-blocking, with small buffers.
class Pair : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, fds), 0);
        const int size = 4096;
        ASSERT_EQ(::setsockopt(fds[0], SOL_SOCKET, SO_SNDBUF, &size, sizeof size), 0);
    }
    ~Pair() override {
        closeFd(0);
        closeFd(1);
    }
    void closeFd(int which) {
        if (fds[which] >= 0)
            ::close(fds[which]);
        fds[which] = -1;
    }
    std::string drain() {
        std::string all;
        char buf[65536];
        for (ssize_t n = 0; (n = ::read(fds[1], buf, sizeof buf)) > 0;)
            all.append(buf, static_cast<size_t>(n));
        return all;
    }

    int fds[2] = {-1, -1};
};

class RecordingCallback : public rdr::FdOutStream::Callback {
public:
    void outputBlocked(rdr::FdOutStream*, bool isBlocked) override {
        blocked = isBlocked;
        ++calls;
    }
    void outputShutdown(rdr::FdOutStream*) override { ++shutdowns; }

    bool blocked = false;
    int calls = 0;
    int shutdowns = 0;
};

TEST_F(Pair, ANonBlockingReadWaitsForNothing) {
    rdr::FdInStream in(fds[1]);
    in.setNonBlocking(true);
    EXPECT_EQ(plat::whatOf([] { rdr::FdInStream(-1).readU8(); }), "read: Bad file descriptor (9)");
    ASSERT_EQ(::write(fds[0], "abc", 3), 3);
    EXPECT_THROW(in.readU32(), rdr::BlockException);
    ASSERT_EQ(::write(fds[0], "de", 2), 2);
    EXPECT_EQ(in.readU32(), 0x61626364U);
    closeFd(0);
    EXPECT_EQ(in.readU8(), 'e');
    EXPECT_THROW(in.readU8(), rdr::EndOfStream);
}

TEST_F(Pair, ABlockingReadTimesOut) {
    rdr::FdInStream in(fds[1], /*timeoutMs=*/1);
    EXPECT_THROW(in.readU8(), plat::TimedOut);
    ASSERT_EQ(::write(fds[0], "a", 1), 1);
    EXPECT_EQ(in.readU8(), 'a');
    in.setTimedOut(true);
    ASSERT_EQ(::write(fds[0], "b", 1), 1);
    EXPECT_THROW(in.readU8(), plat::TimedOut); // given up, whatever comes
}

// Each byte comes in time, but all of them don't.
TEST_F(Pair, ADeadlineIsForAllReadsTogether) {
    const pid_t dripping = fork();
    if (dripping == 0) {
        for (int i = 0; i < 5000; ++i) {
            if (::write(fds[0], "abc", 3) < 0 && errno != EAGAIN)
                break;
            ::usleep(1000);
        }
        ::_exit(0);
    }
    rdr::FdInStream in(fds[1], /*timeoutMs=*/1000);
    in.setDeadline(30);
    EXPECT_THROW(in.skip(1000000), plat::TimedOut);
    in.setDeadline(-1);
    in.skip(10);
    ::kill(dripping, SIGKILL);
    ::waitpid(dripping, nullptr, 0);
}

TEST_F(Pair, ABlockingWriterTimesOutOnAPeerThatDoesntRead) {
    rdr::FdOutStream out(fds[0], /*ownFd=*/false);
    out.setTimeout(1);
    out.writeStr("%s", std::string(100000, 'x').c_str());
    EXPECT_THROW(out.flush(), plat::TimedOut);
    out.setNonBlocking(true); // lets the destructor go
}

TEST_F(Pair, ANonBlockingWriterKeepsWhatDoesntGoAndTells) {
    RecordingCallback callback;
    rdr::FdOutStream out(fds[0], /*ownFd=*/false, &callback);
    out.setNonBlocking(true);
    std::string sent;
    std::string got;
    for (uint32_t i = 0; i < 50000; ++i)
        out.writeU32(i);
    for (uint32_t i = 0; i < 50000; ++i)
        for (const int shift : {24, 16, 8, 0})
            sent += static_cast<char>(i >> shift);
    out.flush();
    EXPECT_TRUE(callback.blocked);
    EXPECT_GT(out.bytesInBuffer(), 0U);
    out.shutdownWrite();
    EXPECT_EQ(callback.shutdowns, 0); // bytes are unsent
    while (out.bytesInBuffer() > 0) {
        got += drain();
        out.flush();
    }
    EXPECT_FALSE(callback.blocked);
    out.shutdownWrite();
    EXPECT_EQ(callback.shutdowns, 1);
    got += drain();
    EXPECT_EQ(got, sent);
    char more = 0;
    EXPECT_EQ(::read(fds[1], &more, 1), 0); // the peer sees the end
}

TEST_F(Pair, APeerThatHasGoneIsAnErrorAndNoSignal) {
    rdr::FdOutStream out(fds[0], /*ownFd=*/false);
    closeFd(1);
    out.writeU8(1);
    EXPECT_EQ(plat::errorOf([&] { out.flush(); }), EPIPE);
    out.setThrowErrors(false);
    EXPECT_DEATH(out.flush(), "!needWrite") << "what doesn't throw must not wait";
    EXPECT_NO_THROW(out.setNonBlocking(true)); // logged; the byte stays
    EXPECT_EQ(out.bytesInBuffer(), 1U);
}

TEST(FdOutStream, WritesToWhatIsNoSocket) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    {
        rdr::FdOutStream out(ends[1], /*ownFd=*/true);
        out.writeU8(0x68);
        out.flush();
        EXPECT_THROW(out.shutdownWrite(), plat::SystemException);
        out.writeU8(0x69); // the destructor sends what is left
    }
    rdr::FdInStreamOwn in(ends[0]);
    EXPECT_EQ(in.readU16(), 0x6869);
}

// A write that fails loses nothing that can still be sent.
TEST_F(Pair, AFailedWriteKeepsItsBytes) {
    const plat::ShortCounts three(3);
    rdr::FdOutStream out(fds[0], /*ownFd=*/false);
    out.writeStr("0123456789");
    for (const int errNo : {EIO, ENOSPC, ENOBUFS}) {
        const plat::FailingCalls failing("send", errNo, 1, /*after=*/1);
        EXPECT_EQ(plat::errorOf([&out] { out.flush(); }), errNo);
    }
    const plat::FailingCalls interrupted("send", EINTR, 2);
    out.waitUntilFlushed();
    EXPECT_EQ(drain(), "0123456789");
    const plat::FailingCalls notThere("shutdown", ENOTCONN);
    EXPECT_THROW(out.shutdownWrite(), plat::SystemException);
}

// Reading goes on after a signal, and after nothing where it waits; an error is told and nothing lost.
TEST_F(Pair, AReadThatFailsLosesNothing) {
    const plat::ShortCounts one(1);
    rdr::FdInStream in(fds[1], /*timeoutMs=*/1000);
    ASSERT_EQ(::write(fds[0], "a", 1), 1);
    ASSERT_EQ(::write(fds[0], "b", 1), 1);
    const plat::FailingCalls interrupted("read", EINTR, 2);
    const plat::FailingCalls nothing("read", EAGAIN, 1, /*after=*/1);
    EXPECT_EQ(in.readU16(), 0x6162);
    EXPECT_EQ(interrupted.failed() + nothing.failed(), 3);
    ASSERT_EQ(::write(fds[0], "c", 1), 1);
    const plat::FailingCalls failing("read", EIO);
    EXPECT_EQ(plat::errorOf([&in] { in.readU8(); }), EIO);
    EXPECT_EQ(in.readU8(), 'c');
}

} // namespace
