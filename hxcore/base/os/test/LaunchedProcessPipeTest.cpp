#include "os/LaunchedProcessPipe.h"
#include "crypto/Sha.h"
#include "os/UnixIo.h"
#include "os/launchArgs.h"
#include "os/test/LaunchedChild.h"
#include "plat/Exception.h"
#include "plat/encodings.h"
#include "plat/test/TempDir.h"
#include "rdr/FdInStream.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {

constexpr const char* secret = "0123456789abcdefghijklmnopqrstuv"; // 32 bytes

std::string hashOf(const std::string& bytes) {
    uint8_t digest[32];
    crypto::sha(256, bytes.data(), bytes.size(), digest, sizeof digest);
    return plat::binToHex(sizeof digest, digest).c_str();
}

/// What the words give: "dummy debug hash=.. fork fd=.. name=.. count=..", or the failure behind a "!".
std::string parsed(std::vector<const char*> words) {
    words.push_back(nullptr);
    LaunchArgs args;
    std::string text;
    try {
        args.read(words.data());
    } catch (const plat::Exception& failure) {
        text = std::string("!") + failure.what() + " ";
    }
    text += args.isDummy ? "dummy " : "";
    text += args.debug ? "debug " : "";
    if (!args.hash.isEmpty())
        text += std::string("hash=") + plat::binToHex(static_cast<size_t>(args.hash.size()), args.hash.data()).c_str() +
                " ";
    text += args.fork ? "fork " : "";
    if (args.fd >= 0)
        text += "fd=" + std::to_string(args.fd) + " ";
    if (!args.socketName.isEmpty())
        text += std::string("name=") + args.socketName.c_str() + " ";
    return text + std::to_string(args.count);
}

TEST(LaunchArgs, EveryWordHasItsPlace) {
    const char* const bare = "!plat_this_program_not_directly ";
    const char* const noHash = "!-hash argument bad or missing ";
    const std::string notAName = "!Bad command-line: got ";
    const struct {
        std::vector<const char*> words;
        std::string result;
    } cases[] = {
        {{}, std::string(bare) + "0"},
        {{"-dummy"}, "dummy fd=0 1"},
        {{"-dummy", "-fork", "rest"}, "dummy fd=0 1"},
        {{"7"}, "fd=7 1"},
        {{"0"}, "fd=0 1"},
        {{"2147483647", "-Log=x"}, "fd=2147483647 1"},
        {{"2147483648"}, "!descriptor 2147483648: Bad file descriptor (9) 0"},
        {{"7x"}, "name=7x 1"},
        {{"+7"}, "name=+7 1"},
        {{" 7"}, "name= 7 1"},
        {{"/tmp/sock"}, "name=/tmp/sock 1"},
        {{""}, notAName + " instead of pipe name 0"},
        {{"-"}, notAName + "- instead of pipe name 0"},
        {{"-1"}, notAName + "-1 instead of pipe name 0"},
        {{"-lppDebug"}, std::string(bare) + "debug 1"},
        {{"-lppDebug", "-dummy"}, notAName + "-dummy instead of pipe name debug 1"},
        {{"-hash"}, std::string(noHash) + "1"},
        {{"-hash", ""}, std::string(noHash) + "1"},
        {{"-hash", "0"}, std::string(noHash) + "1"},
        {{"-hash", "0g", "x"}, std::string(noHash) + "1"},
        {{"-hash", "-fork", "x"}, std::string(noHash) + "1"},
        {{"-hash", "00fF"}, std::string(bare) + "hash=00ff 2"},
        {{"-fork"}, std::string(bare) + "fork 1"},
        {{"-fork", "-hash", "00", "x"}, notAName + "-hash instead of pipe name fork 1"},
        {{"-hash", "00", "-lppDebug", "x"}, notAName + "-lppDebug instead of pipe name hash=00 2"},
        {{"-lppDebug", "-hash", "00ff", "-fork", "x", "y"}, "debug hash=00ff fork name=x 5"},
        {{"-LPPDEBUG", "x"}, notAName + "-LPPDEBUG instead of pipe name 0"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(parsed(each.words), each.result) << testing::PrintToString(each.words);
}

/// A socket at which the test plays the parent.
class NamedParent {
public:
    NamedParent() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        strcpy(address.sun_path, path().c_str());
        listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(listening, 5), 0);
    }
    ~NamedParent() {
        close(listening);
        hangUp();
    }
    std::string path() const { return dir / "s"; }
    void accept() { connected = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC); }
    void say(const std::string& bytes) {
        EXPECT_EQ(write(connected, bytes.data(), bytes.size()), ssize_t(bytes.size()));
    }
    void hangUp() {
        if (connected >= 0)
            close(connected);
        connected = -1;
    }

    int connected = -1;

private:
    plat::TempDir dir;
    int listening = -1;
};

const std::string echoMessage = std::string("\x80\x08", 2) + "\x04"
                                                             "echo"
                                                             "\x02"
                                                             "hi";

TEST(LaunchedProcessPipe, TheParentMustProveItself) {
    const std::string good = hashOf(secret);
    const std::string wrong = std::string(secret).replace(31, 1, "x");
    const struct {
        const char* what;
        std::vector<std::string> hash;
        std::string said;
        const char* failure;
    } cases[] = {
        {"nothing", {"-hash", good}, "", "[EndOfStream] End of IO stream\n"},
        {"31 bytes", {"-hash", good}, std::string(secret, 31), "[EndOfStream] End of IO stream\n"},
        {"the last byte wrong", {"-hash", good}, wrong, "Bad hash\n"},
        {"no hash given", {}, secret, "Bad hash\n"},
        {"part of the hash", {"-hash", good.substr(0, 62)}, secret, "Bad hash\n"},
        {"more than the hash", {"-hash", good + "00"}, secret, "Bad hash\n"},
        {"the hash of nothing", {"-hash", hashOf("")}, secret, "Bad hash\n"},
    };
    for (const auto& each : cases) {
        NamedParent parent;
        std::vector<std::string> args{launchedWord};
        args.insert(args.end(), each.hash.begin(), each.hash.end());
        args.push_back(parent.path());
        Child child(args);
        parent.accept();
        parent.say(each.said);
        parent.hangUp();
        const std::string errors = child.readErrors();
        EXPECT_EQ(child.waitForEnd(), 1 << 8) << each.what;
        const size_t secondLine = errors.find('\n') + 1;
        EXPECT_EQ(errors.substr(secondLine), each.failure) << each.what;
        // "2026-01-31 12:00:00Z: connecting to '/...'"
        EXPECT_EQ(errors.substr(20, secondLine - 20), ": connecting to '" + parent.path() + "'\n") << errors;
        EXPECT_EQ(errors[19], 'Z');
    }
}

TEST(LaunchedProcessPipe, TheProofMayComeSlowlyAndTheFirstMessageWithIt) {
    NamedParent parent;
    Child child({launchedWord, "-hash", hashOf(secret), parent.path(), "-Param=1", "more"});
    parent.accept();
    for (const char* byte = secret; byte < secret + 31; ++byte)
        parent.say(std::string(1, *byte));
    usleep(20000); // so that it must wait for the last one
    parent.say(std::string(1, secret[31]) + echoMessage);
    rdr::FdInStream in(parent.connected);
    const std::string hello = nextMessage(in);
    EXPECT_NE(hello.find("||-Param=1 more|0 1 2 "), std::string::npos) << hello;
    EXPECT_EQ(nextMessage(in), "|echoed|hi");
    parent.hangUp();
    EXPECT_EQ(child.waitForEnd(), 0);
}

TEST(LaunchedProcessPipe, WithDummyItSpeaksOnDescriptor0) {
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair), 0);
    Child child({launchedWord, "-dummy"}, pair[1]);
    close(pair[1]);
    rdr::FdInStream in(pair[0]);
    const std::string hello = nextMessage(in);
    EXPECT_NE(hello.find("|dummy||0 1 2"), std::string::npos) << hello;
    ASSERT_EQ(write(pair[0], echoMessage.data(), echoMessage.size()), ssize_t(echoMessage.size()));
    EXPECT_EQ(nextMessage(in), "|echoed|hi");
    close(pair[0]);
    EXPECT_EQ(child.waitForEnd(), 0);
    EXPECT_EQ(child.readErrors(), "");
}

// The launcher waits for what it started; the child that detaches must outlive that, and the launcher's terminal.
TEST(LaunchedProcessPipe, WithForkItGoesOnInASessionOfItsOwn) {
    NamedParent parent;
    Child child({launchedWord, "-hash", hashOf(secret), "-fork", parent.path()});
    const pid_t started = child.pid();
    parent.accept();
    parent.say(secret);
    EXPECT_EQ(child.waitForEnd(), 0) << "while the other one runs";
    rdr::FdInStream in(parent.connected);
    const std::string hello = nextMessage(in);
    EXPECT_EQ(hello.find("|hello|" + std::to_string(started) + "|"), std::string::npos) << hello;
    const std::string pid = hello.substr(7, hello.find('|', 7) - 7);
    EXPECT_EQ(hello.rfind("|hello|" + pid + "|" + pid + "|", 0), 0u) << "leads its session: " << hello;
    parent.say(echoMessage);
    EXPECT_EQ(nextMessage(in), "|echoed|hi");
}

TEST(LaunchedProcessPipe, AConnectionThatIsNotThereIsAnError) {
    const plat::TempDir dir;
    const struct {
        std::string word;
        std::string failure;
    } cases[] = {
        {"123456", "descriptor 123456: Bad file descriptor (9)"},
        {dir / "none", "connect(" + (dir / "none") + "): No such file or directory (2)"},
        {std::string(108, 'x'), "connect(" + std::string(108, 'x') + "): File name too long (36)"},
    };
    for (const auto& each : cases) {
        Child child({launchedWord, each.word});
        EXPECT_NE(child.readErrors().find(each.failure), std::string::npos) << each.word;
        EXPECT_EQ(child.waitForEnd(), 1 << 8) << each.word;
    }
}

class DebugFileTest : public testing::Test {
protected:
    DebugFileTest() : target(open("/dev/null", O_WRONLY | O_CLOEXEC)) {}
    ~DebugFileTest() override { close(target); }

    int refusal() { return redirectToDebugFile(path.c_str(), target) ? 0 : errno; }
    bool targetIsNull() const {
        struct stat info;
        return fstat(target, &info) == 0 && S_ISCHR(info.st_mode);
    }

    plat::TempDir dir;
    std::string path = dir / "log";
    int target;
};

TEST_F(DebugFileTest, OurOwnFileIsAppendedTo) {
    plat::writeTextFile(path, "before\n");
    ASSERT_TRUE(redirectToDebugFile(path.c_str(), target));
    ASSERT_EQ(write(target, "behind\n", 7), 7);
    EXPECT_EQ(plat::readTextFile(path), "before\nbehind\n");
}

TEST_F(DebugFileTest, WhatIsNotOurOwnPlainFileIsNeitherFollowedNorWaitedFor) {
    const std::string victim = dir / "victim";
    plat::writeTextFile(victim, "precious");
    ASSERT_EQ(symlink(victim.c_str(), path.c_str()), 0);
    EXPECT_EQ(refusal(), ELOOP);
    unlink(path.c_str());
    ASSERT_EQ(link(victim.c_str(), path.c_str()), 0);
    EXPECT_EQ(refusal(), EPERM) << "a hard link to something else of ours";
    unlink(path.c_str());
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_EQ(refusal(), ENXIO) << "a FIFO that nobody reads";
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(refusal(), EPERM) << "a FIFO that somebody reads";
    close(reader);
    unlink(path.c_str());
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    EXPECT_EQ(refusal(), EISDIR);
    rmdir(path.c_str());
    if (geteuid() == 0) {
        plat::writeTextFile(path, "");
        ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
        EXPECT_EQ(refusal(), EPERM) << "another user's";
    }
    EXPECT_TRUE(targetIsNull());
    EXPECT_EQ(plat::readTextFile(victim), "precious");
}

} // namespace
} // namespace os
