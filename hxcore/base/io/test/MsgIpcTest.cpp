#include "io/FdIo.h"
#include "io/FdSelectManager.h"
#include "io/test/FakeLink.h"
#include "plat/Configuration.h"
#include "plat/test/thrown.h"
#include "rdr/ByteReader.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace io {
namespace {

// A sequence with a split name, an empty first frame, an unread rest, an unknown name and an empty last frame.
const std::string session = bytes("80 05  01 'a' 02 'x1'"
                                  "00 00  00 01 01  80 04 'a' 02 'x2'"
                                  "80 0b  01 'a' 02 'x3' 'unread'"
                                  "00 03  02 'zz'  80 03 'abc'"
                                  "00 05  01 'a' 02 'x4'  80 00");

TEST(MsgIpc, AnySplitOfTheInputGivesTheSame) {
    const std::vector<std::string> expected{"x1", "x2", "x3", "x4"};
    for (size_t first = 0; first <= session.size(); ++first) {
        for (size_t second = first; second <= session.size(); second += 3) {
            FakeLink link;
            RecordingReader reader(link.ipc, "a");
            link.receive(session.substr(0, first));
            link.receive(session.substr(first, second - first));
            link.receive(session.substr(second));
            ASSERT_EQ(reader.texts, expected) << first << " " << second;
            ASSERT_TRUE(link.isOpen());
        }
    }
}

TEST(MsgIpc, ThePeerMayVanishAtEveryByte) {
    for (size_t len = 0; len <= session.size(); ++len) {
        FakeLink link;
        RecordingReader reader(link.ipc, "a");
        link.receive(session.substr(0, len));
        link.end();
        ASSERT_EQ(link.closed, 1) << len;
        ASSERT_EQ(link.errors, std::vector<std::string>{"[EndOfStream] End of IO stream"});
        ASSERT_FALSE(link.isOpen());
        ASSERT_FALSE(link.ipc.isAttached());
        ASSERT_EQ(reader.stateChanges, 1);
    }
}

TEST(MsgIpc, WritesNameAndBodyInPlaceAndFlushesWhenTold) {
    FakeLink link;
    link.ipc.startMsg("hello").writeU16(0x1234);
    link.ipc.endMsg(/*flush=*/false);
    EXPECT_EQ(link.takeSent(), "");
    link.ipc.startMsg("x");
    link.ipc.endMsg();
    EXPECT_EQ(link.takeSent(), bytes("80 08  05 'hello'  12 34    80 02 01 'x'"));
}

TEST(MsgIpc, AFieldOrANameBeyondTheMessageClosesTheLink) {
    for (const char* frame : {"80 05  01 'a' 09 'x1'", "80 03  05 'ab'", "80 00"}) {
        FakeLink link;
        RecordingReader reader(link.ipc, "a");
        link.receive(bytes(frame));
        EXPECT_EQ(reader.finished, 0) << frame;
        EXPECT_EQ(link.errors, std::vector<std::string>{"[EndOfMsg] End of message"}) << frame;
        EXPECT_EQ(link.closed, 1) << frame;
    }
}

TEST(MsgIpc, UnknownNamesAreSkippedOrTakenForGarbage) {
    struct {
        const char* frame;
        bool open;
    } const table[] = {
        {"80 04 03 'abc'", true},
        {"80 02 01 'A'", true},
        {"80 02 01 '@'", false},
        {"80 03 02 '1a'", false},
        {"80 01 00", false},
        {"80 02 01 7f", true},
        {"80 02 01 '^'", true},
        {"80 03 02 c3 a9", false},
        {"80 02 01 ff", false},               // repaired, and still no letter
        {"80 06 03 'a' 00 'b' 01 'x'", true}, // not the name before the NUL
    };
    for (const auto& row : table) {
        FakeLink link;
        RecordingReader reader(link.ipc, "a");
        link.receive(bytes(row.frame) + bytes("80 04 01 'a' 01 'x'"));
        EXPECT_EQ(link.isOpen(), row.open) << row.frame;
        EXPECT_EQ(link.closed, row.open ? 0 : 1) << row.frame;
        EXPECT_EQ(reader.finished, row.open ? 1 : 0) << row.frame;

        FakeLink lenient;
        RecordingReader other(lenient.ipc, "a");
        lenient.ipc.setCloseOnGarbage(false);
        lenient.receive(bytes(row.frame) + bytes("80 04 01 'a' 01 'x'"));
        EXPECT_EQ(other.finished, 1) << row.frame;
    }
}

TEST(MsgIpc, TheDefaultHandlerTakesWhatNobodyElseDoes) {
    FakeLink link;
    RecordingReader reader(link.ipc, nullptr);
    RecordingReader named(link.ipc, "a");
    link.receive(bytes("80 04 01 'b' 01 'x'  80 04 01 'a' 01 'y'  80 04 01 '1' 01 'z'  80 04 06 'badMsg' 01 'q'"));
    EXPECT_EQ(named.texts, std::vector<std::string>{"y"});
    EXPECT_EQ(reader.names[0], "b");
    EXPECT_EQ(reader.names[1], "1");
}

TEST(MsgIpc, AnswersUnknownNamesIfTold) {
    FakeLink link;
    link.ipc.setReplyBadMsg(true);
    link.receive(bytes("80 04  03 '1bc'"));
    EXPECT_EQ(link.takeSent(), bytes("80 0b  06 'badMsg'  03 '1bc'"));
    EXPECT_TRUE(link.isOpen()) << "an answer instead of the check for garbage";
}

TEST(MsgIpc, APeersBadMsgFailsTheLinkUnlessSomebodyHandlesIt) {
    FakeLink link;
    link.receive(bytes("80 0a  06 'badMsg'  02 'zz'"));
    ASSERT_EQ(link.errors.size(), 1u);
    EXPECT_EQ(link.errors[0], "MsgIpc: expected message <null>, peer reports bad msg name 'zz'");
    EXPECT_EQ(link.closed, 1);

    FakeLink handled;
    RecordingReader reader(handled.ipc, "badMsg");
    handled.receive(bytes("80 0a  06 'badMsg'  02 'zz'"));
    EXPECT_EQ(reader.texts, std::vector<std::string>{"zz"});
    EXPECT_TRUE(handled.isOpen());
}

TEST(MsgIpc, WhatIsNotAllowedIsSkippedOrRefused) {
    FakeLink link;
    RecordingReader a(link.ipc, "a"), b(link.ipc, "b");
    link.refused = {"a"};
    link.receive(bytes("80 04 01 'a' 01 'x'  80 04 01 'b' 01 'y'"));
    EXPECT_EQ(a.entered, 0);
    EXPECT_EQ(b.finished, 1);
    EXPECT_EQ(plat::whatOf([&] { link.ipc.startMsg("a"); }), "MsgIpc::writeMsg: Message not currently allowed");
    link.ipc.startMsg("b");
    link.ipc.endMsg();
    EXPECT_EQ(link.takeSent(), bytes("80 02 01 'b'")) << "the refused one left nothing behind";
}

TEST(MsgIpc, WithoutAnIoMessagesVanish) {
    MsgIpc lone(nullptr, "lone", /*blocking=*/false, /*warnDiscard=*/true);
    lone.startMsg("a").writeBytes(std::string(100000, 'x').data(), 100000);
    lone.endMsg();
    EXPECT_FALSE(lone.isAttached());
}

/// Does one thing to the link inside readMsg, before or behind its reads.
class Meddler : public MsgIpc::Reader {
public:
    enum Deed { RemoveName, RemoveReader, Close, Destroy, Throw, DestroyAndThrow };

    Meddler(FakeLink& link_, Deed deed_, bool early_) : link(&link_), deed(deed_), early(early_) {
        ipc = &link->ipc;
        ipc->addHandler("m", this);
    }

    bool readMsg(const char*, rdr::InStream& in, MsgIpc*) override {
        ++entered;
        if (early && act())
            return answer;
        in.readString8();
        if (!early)
            act();
        return answer;
    }
    void ipcRemoved(MsgIpc* gone) override {
        MsgIpc::Reader::ipcRemoved(gone);
        ++removed;
    }

    int entered = 0;
    int removed = 0;
    bool answer = true;

private:
    bool act() { // true if nothing of the link may be touched any more
        switch (deed) {
        case RemoveName:
            ipc->removeHandler("m");
            return false;
        case RemoveReader:
            ipc->removeReader(this);
            return false;
        case Close:
            ipc->close(/*tell=*/true);
            return true;
        case Throw:
            throw plat::Exception("meddled");
        case Destroy:
            link->destroy();
            return true;
        case DestroyAndThrow:
            link->destroy();
            throw plat::Exception("meddled");
        }
        return false;
    }

    FakeLink* link;
    Deed deed;
    bool early;
};

TEST(MsgIpc, BearsWhatItsReaderDoesInMidMessage) {
    const std::string wire = bytes("80 05 01 'm' 02 'x1'  80 05 01 'm' 02 'x2'  80 05 01 'a' 02 'y1'");
    for (const auto deed : {Meddler::RemoveName, Meddler::RemoveReader, Meddler::Close, Meddler::Destroy,
                            Meddler::Throw, Meddler::DestroyAndThrow}) {
        for (const bool early : {false, true}) {
            for (const bool answer : {false, true}) {
                for (size_t split = 0; split <= wire.size(); ++split) {
                    SCOPED_TRACE(testing::Message() << deed << early << answer << " " << split);
                    FakeLink link;
                    auto other = std::make_unique<RecordingReader>(link.ipc, "a");
                    Meddler meddler(link, deed, early);
                    meddler.answer = answer;
                    link.receive(wire.substr(0, split));
                    link.receive(wire.substr(split));
                    ASSERT_GE(meddler.entered, 1);
                    const bool survives = deed == Meddler::RemoveName || deed == Meddler::RemoveReader;
                    ASSERT_EQ(other->finished, survives ? 1 : 0);
                    ASSERT_EQ(link.isOpen(), survives);
                    ASSERT_EQ(link.closed, deed == Meddler::Close || deed == Meddler::Throw ? 1 : 0);
                    ASSERT_EQ(meddler.removed, deed == Meddler::Destroy || deed == Meddler::DestroyAndThrow ? 1 : 0);
                }
            }
        }
    }
}

TEST(MsgIpc, RemovingAHandlerWhoseMessageWaitsSkipsTheMessage) {
    FakeLink link;
    RecordingReader a(link.ipc, "a"), b(link.ipc, "b");
    link.receive(bytes("80 08  01 'a' 05 'xy'"));
    EXPECT_EQ(a.entered, 1);
    link.ipc.removeHandler("a");
    link.receive(bytes("'zzz'  80 04 01 'b' 01 'x'"));
    EXPECT_EQ(a.entered, 1);
    EXPECT_EQ(b.finished, 1);
}

TEST(MsgIpc, ReplacingAHandlerWhoseMessageWaitsGivesItTheWholeBody) {
    FakeLink link;
    RecordingReader a(link.ipc, "a");
    link.receive(bytes("80 08  01 'a' 05 'xy'"));
    RecordingReader b(link.ipc, "a");
    link.receive(bytes("'zzz'"));
    EXPECT_EQ(a.finished, 0);
    EXPECT_EQ(b.texts, std::vector<std::string>{"xyzzz"});
}

TEST(MsgIpc, TellsEachReaderOnceOfAttachingAndLosing) {
    /// Takes another out, or kills the link, when told.
    class Taker : public RecordingReader {
    public:
        Taker(MsgIpc& link, const char* name) : RecordingReader(link, name) {}
        void ipcStateChanged(MsgIpc* link) override {
            ++stateChanges;
            if (victim)
                link->removeReader(victim);
            if (doomed)
                doomed->destroy();
        }
        RecordingReader* victim = nullptr;
        FakeLink* doomed = nullptr;
    };
    FakeLink link;
    Taker a(link.ipc, "a1");
    link.ipc.addHandler("a2", &a);
    Taker b(link.ipc, "b");
    a.victim = &b;
    b.victim = &a;
    link.ipc.close(/*tell=*/true);
    EXPECT_EQ(a.stateChanges + b.stateChanges, 1) << "the other was taken out before its turn";
    EXPECT_EQ(link.closed, 1);
    link.ipc.close(/*tell=*/true);
    EXPECT_EQ(link.closed, 1) << "nothing was attached";

    FakeLink second;
    Taker killer(second.ipc, "k");
    killer.doomed = &second;
    second.end();
    EXPECT_EQ(killer.stateChanges, 1);
    EXPECT_EQ(second.closed, 0) << "the link died before it could tell";
}

TEST(MsgIpc, TakesANewIoWhenTheOldOneHasGone) {
    FakeLink link;
    RecordingReader reader(link.ipc, "a");
    link.receive(bytes("80 08  01 'a' 05 'xy'"));
    link.ipc.close(/*tell=*/false);
    EXPECT_EQ(link.closed, 0);
    MemIo second;
    link.ipc.acceptIo(&second);
    EXPECT_EQ(reader.stateChanges, 2);
    second.receive(bytes("80 04 01 'a' 01 'z'"));
    EXPECT_EQ(reader.texts, std::vector<std::string>{"z"}) << "nothing is left of the old message";
    link.ipc.startMsg("q");
    link.ipc.endMsg();
    EXPECT_EQ(second.takeSent(), bytes("80 02 01 'q'"));
    link.ipc.close(false);
}

TEST(MsgIpc, CloseMayFlushFirst) {
    for (const bool flush : {false, true}) {
        FakeLink link;
        link.ipc.setFlushOnClose(flush);
        link.ipc.setCloseOnDestroy(true);
        link.ipc.startMsg("q");
        link.ipc.endMsg(/*flush=*/false);
        link.destroy();
        EXPECT_EQ(link.takeSent(), flush ? bytes("80 02 01 'q'") : "");
        EXPECT_FALSE(link.isOpen());
    }
}

TEST(MsgIpc, ReadMessageWaitsForOneAndChecksItsName) {
    FakeLink link(/*blocking=*/true);
    RecordingReader a(link.ipc, "a"), b(link.ipc, "b");
    EXPECT_FALSE(link.getIo().hasHandler());
    link.preload(bytes("80 04 01 'a' 01 'x'  80 04 01 'b' 01 'y'  80 04 01 'a' 01 'z'  80 04 01 'b' 01 'w'"));
    link.ipc.readMessage("a");
    EXPECT_EQ(a.finished, 1);
    EXPECT_EQ(b.finished, 0);
    EXPECT_EQ(plat::whatOf([&] { link.ipc.readMessage("a"); }), "MsgIpc: expected message a, got b");
    EXPECT_EQ(b.finished, 0) << "skipped";
    link.ipc.readMessage(nullptr);
    EXPECT_EQ(a.finished, 2);
    link.ipc.readUntilEnd();
    EXPECT_EQ(b.finished, 1);
    EXPECT_THROW(link.ipc.readMessage(nullptr), rdr::EndOfStream);
}

TEST(MsgIpc, ReadUntilHandlesWhatComesBefore) {
    FakeLink link; // not blocking: it is made so for as long as it takes
    RecordingReader a(link.ipc, "a"), b(link.ipc, "b");
    link.preload(bytes("80 04 01 'b' 01 'x'  00 02 01 'b'  80 02 01 'y'  80 04 01 'a' 01 'z'  80 04 01 'b' 01 'w'"));
    link.ipc.readUntil("a");
    EXPECT_EQ(a.finished, 1);
    EXPECT_EQ(b.finished, 2);
    EXPECT_TRUE(link.getIo().hasHandler()) << "as it was before";
    link.receive("");
    EXPECT_EQ(b.finished, 3) << "what was buffered is not lost";
}

TEST(MsgIpc, ReadMessageDemandsToBeBetweenMessages) {
    FakeLink link;
    RecordingReader a(link.ipc, "a");
    link.receive(bytes("80 08  01 'a' 05 'xy'"));
    EXPECT_THROW(link.ipc.readMessage("a"), plat::Exception);
    link.receive(bytes("'zzz'"));
    EXPECT_EQ(a.finished, 1) << "the message goes on undisturbed";
}

TEST(MsgIpc, AReaderMayEndTheLinkInsideReadMessage) {
    for (const auto deed : {Meddler::Close, Meddler::Destroy, Meddler::DestroyAndThrow}) {
        FakeLink link(/*blocking=*/true);
        Meddler meddler(link, deed, /*early=*/false);
        link.preload(bytes("80 04 01 'm' 01 'x'  80 04 01 'm' 01 'y'"));
        if (deed == Meddler::DestroyAndThrow)
            EXPECT_THROW(link.ipc.readUntil("never"), plat::Exception);
        else if (deed == Meddler::Close)
            EXPECT_THROW(link.ipc.readUntil("never"), plat::Exception) << "the link is gone";
        else
            link.ipc.readUntil("never");
        EXPECT_EQ(meddler.entered, 1);
    }
}

/// A body of `size` bytes in which a byte that is lost or doubled shows.
std::string patterned(size_t size) {
    std::string body(size, ' ');
    for (size_t i = 0; i < size; ++i)
        body[i] = static_cast<char>(i * 7 + i / 251 + size);
    return body;
}

constexpr size_t bodySizes[] = {0,     1,     16377, 16378, 16379, 16384, 32755, 32756, 32757, 32758,
                                32759, 32766, 32767, 32768, 65525, 65527, 65532, 65536, 400000};

// In the peer's place: no more room to send than there must be.
[[noreturn]] void sendLongBodies(int fd, bool blocking) {
    plat::Configuration::global().set("MaxOutBufferSize", "16384");
    const int least = 1; // the kernel takes it for the least that it allows
    setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &least, sizeof least);
    FdSelectManager mgr;
    MsgIpc sender(nullptr, "sender", blocking);
    sender.acceptIo(new FdIo(fd, true, false, -1, /*outBufSize=*/1));
    for (const size_t size : bodySizes) {
        const std::string body = patterned(size);
        sender.startMsg("long").writeU32(static_cast<uint32_t>(size));
        sender.outStream().writeBytes(body.data(), size);
        sender.endMsg();
    }
    sender.getIo()->outStream()->waitUntilFlushed();
    _exit(0);
}

TEST(MsgIpc, LongBodiesPassThroughTheSmallestBuffersWhole) {
    class Long : public MsgIpc::Reader {
    public:
        bool readMsg(const char*, rdr::InStream& in, MsgIpc*) override {
            if (!body.isActive())
                size = in.readU32();
            body.init(in, size);
            const auto got = body.read(/*wait=*/false);
            if (!got)
                return false;
            EXPECT_TRUE(std::string(reinterpret_cast<const char*>(got.data), got.len) == patterned(size)) << size;
            sizes.push_back(size);
            body.reset();
            return true;
        }
        rdr::ByteReader body;
        size_t size = 0;
        std::vector<size_t> sizes;
    };
    for (const bool blocking : {true, false}) {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            close(ends[0]);
            sendLongBodies(ends[1], blocking);
        }
        close(ends[1]);
        FdSelectManager mgr;
        MsgIpc link(nullptr, "receiver");
        Long reader;
        link.addHandler("long", &reader);
        link.acceptIo(new FdIo(ends[0], true, false, /*inBufSize=*/blocking ? -1 : 300));
        while (link.isAttached())
            mgr.poll(-1);
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(reader.sizes, std::vector<size_t>(std::begin(bodySizes), std::end(bodySizes)));
        link.removeReader(&reader);
    }
}

using MsgIpcDeathTest = testing::Test;

TEST(MsgIpcDeathTest, TakesOneIoAtATime) {
    FakeLink link;
    MemIo second;
    EXPECT_DEATH(link.ipc.acceptIo(&second), "!io");
    EXPECT_DEATH(
        {
            rdr::StateMachine<MemIo> machine;
            MemIo io;

            machine.run(io, *io.inStream());
        },
        "stateFn");
}

} // namespace
} // namespace io
