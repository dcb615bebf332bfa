#include "io/LogDestIpc.h"
#include "io/FdSelectManager.h"
#include "io/test/FakeLink.h"
#include "plat/Assert.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

namespace io {
namespace {

class LogDestIpcTest : public testing::Test {
protected:
    LogDestIpcTest() { dest.attach(&link.ipc); }

    void askFor(const char* level) { link.receive(bytes(std::string("80 10 0b 'setLogLevel' 00 00 00 ") + level)); }
    static std::string line(const char* level, const std::string& source, const std::string& text) {
        std::string body = bytes("06 'logMsg' 00 00 00") + bytes(level) + static_cast<char>(source.size()) + source;
        body += std::string(2, '\0') + static_cast<char>(text.size() >> 8) + static_cast<char>(text.size()) + text;
        const auto size = static_cast<unsigned>(body.size());
        return std::string{static_cast<char>(0x80 | size >> 8), static_cast<char>(size)} + body;
    }

    FdSelectManager mgr;
    FakeLink link;
    plat::LogDestIpc dest{nullptr};
};

TEST_F(LogDestIpcTest, WaitsUntilThePeerAsksThenSendsFromTheLoop) {
    dest.write(10, "Src", "early");
    dest.write(100, "Src", "too low");
    mgr.poll(0);
    EXPECT_EQ(link.takeSent(), "");
    askFor("1e"); // 30
    EXPECT_EQ(link.takeSent(), line("0a", "Src", "early"));
    EXPECT_EQ(dest.getLevel(), 30);

    dest.setProcessName("helper");
    std::thread other([this] { dest.write(30, "Thr", "from afar"); });
    other.join();
    dest.write(31, "Src", "too low");
    EXPECT_EQ(link.takeSent(), "") << "not on the thread that logs";
    mgr.poll(-1);
    EXPECT_EQ(link.takeSent(), line("1e", "helper: Thr", "from afar"));
}

TEST_F(LogDestIpcTest, CutsLongTextsAtACharacter) {
    askFor("6e");
    dest.write(0, "Src", (std::string(1023, 'x') + "\xc3\xa9" + "more").c_str());
    mgr.poll(-1);
    EXPECT_EQ(link.takeSent(), line("00", "Src", std::string(1023, 'x')));
}

TEST_F(LogDestIpcTest, TheThousandAndFirstIsAMarkAndTheRestIsDropped) {
    for (int i = 0; i < 1500; ++i)
        dest.write(10, "S", "t");
    askFor("ff");
    const std::vector<std::string> sent = messagesOf(link.takeSent());
    ASSERT_EQ(sent.size(), 1001u);
    EXPECT_EQ(sent[0], line("0a", "S", "t").substr(2));
    EXPECT_EQ(sent[999], sent[0]);
    EXPECT_EQ(sent[1000], line("00", "LogDestIpc", "Too many messages, discarding further ones").substr(2));
    dest.write(10, "S", "again");
    mgr.poll(-1);
    EXPECT_EQ(link.takeSent(), line("0a", "S", "again"));
}

TEST_F(LogDestIpcTest, ANewPeerMustAskAnew) {
    askFor("1e");
    link.end();
    dest.write(10, "S", "kept");
    mgr.poll(0);
    MemIo second;
    link.ipc.acceptIo(&second);
    mgr.poll(0);
    EXPECT_EQ(second.takeSent(), "");
    second.receive(bytes("80 10 0b 'setLogLevel' ff ff ff ff"));
    EXPECT_EQ(second.takeSent(), line("0a", "S", "kept"));
    EXPECT_EQ(dest.getLevel(), 0x7fffffff);
    link.ipc.close(false);
}

TEST_F(LogDestIpcTest, SurvivesItsLink) {
    askFor("1e");
    link.destroy();
    dest.write(10, "S", "t");
    mgr.poll(0);
    dest.flush();
    FakeLink second;
    dest.attach(&second.ipc);
    dest.attach(nullptr);
    EXPECT_TRUE(second.isOpen());
}

TEST_F(LogDestIpcTest, AFailedSendDoesNotReachTheLoop) {
    askFor("1e");
    link.refused = {"logMsg"};
    dest.write(10, "S", "t");
    EXPECT_TRUE(mgr.poll(-1));
    link.refused.clear();
    dest.write(10, "S", "next");
    mgr.poll(-1);
    EXPECT_EQ(link.takeSent(), line("0a", "S", "next"));
}

TEST(LogDestIpcDeathTest, IsEnteredAsIpcAndFlushedByAFailedAssertion) {
    EXPECT_EQ(plat::LogDest::find("IPC"), &plat::LogDestIpc::instance());
    EXPECT_DEATH(
        {
            FakeLink link;
            plat::LogDestIpc& dest = plat::LogDestIpc::instance();
            dest.attach(&link.ipc);
            link.receive(bytes("80 10 0b 'setLogLevel' 00 00 00 1e"));
            dest.write(0, "S", "the cause");
            static MemIo* io = &link.getIo();
            std::signal(SIGABRT, [](int) {
                const bool sent = io->takeSent().find("the cause") != std::string::npos;
                fprintf(stderr, "sent %s\n", sent ? "the cause" : "nothing");
            });
            const bool holds = false;
            ASSERT(holds);
        },
        "sent the cause");
}

} // namespace
} // namespace io
