#include "rdr/InStreamV4.h"
#include "rdr/OutStreamV4.h"

#include "streamTesting.h"

#include "plat/test/thrown.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "rdr/NullOutStream.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Reads messages in states, each of which runs again until nothing blocks.
class MessageLoop {
public:
    explicit MessageLoop(rdr::InStream* below) : in(below) {}

    void run() {
        try {
            for (;;) {
                if (!step())
                    return;
                in.checkpoint();
            }
        } catch (const rdr::BlockException&) {
        }
    }

    rdr::InStreamV4 in;
    std::vector<std::string> texts;

private:
    bool step() {
        if (!in.isInMsg())
            return in.startMsg(/*wait=*/false);
        if (!bodyDone) {
            const uint32_t number = in.readU32();
            const plat::String name = in.readString8();
            texts.push_back(std::to_string(number) + " " + name.c_str());
            bodyDone = true;
            return true;
        }
        in.skipToEndOfMsg();
        in.endMsg();
        bodyDone = false;
        return true;
    }

    bool bodyDone = false;
};

// 66051 and "abc" in frames of all kinds, with a rest that an older reader doesn't know.
const char* const messages[] = {
    "80 09  00 01 02 03 03 'abc' 99",
    "00 02 00 01  00 02 02 03  00 01 03  80 03 'abc'",                                          // inside a field
    "00 01 00  00 01 01  00 01 02  00 01 03  00 01 03  00 01 'a'  00 01 'b'  00 01 'c'  80 00", // byte by byte
    "00 08 00 01 02 03 03 'abc'  00 00  00 00  00 03 'xyz'  80 00", // empty frames in between
};

TEST(FramedInStream, AMessageSplitAtEveryByteReadsTheSame) {
    for (const char* const message : messages) {
        const std::string whole = bytes(message) + bytes("80 06 00 00 00 01 01 'z'");
        for (size_t split = 0; split <= whole.size(); ++split) {
            TrickleStream below(whole.substr(0, split));
            MessageLoop loop(&below);
            loop.run();
            below.put(whole.substr(split));
            loop.run();
            EXPECT_EQ(loop.texts, (std::vector<std::string>{"66051 abc", "1 z"})) << message << " split at " << split;
        }
    }
}

TEST(FramedInStream, ABlockingSourceNeedsNoCheckpoints) {
    for (const char* const message : messages) {
        TrickleStream below(bytes(message), 4);
        below.setNonBlocking(false);
        rdr::InStreamV4 in(&below);
        in.startMsg();
        EXPECT_EQ(in.readU32(), 66051U);
        EXPECT_STREQ(in.readString8().c_str(), "abc");
        in.skipToEndOfMsg();
        in.endMsg();
        EXPECT_FALSE(in.isRewindable());
    }
}

TEST(FramedInStream, NothingIsReadPastTheMessage) {
    BytesInStream below(bytes("80 02 'ab' 80 01 'c'"));
    rdr::InStreamV4 in(&below);
    in.startMsg();
    EXPECT_THROW(in.startMsg(), rdr::FrameException);
    EXPECT_FALSE(in.atEnd());
    EXPECT_EQ(in.readU16(), 0x6162);
    EXPECT_TRUE(in.atEnd());
    EXPECT_THROW(in.readU8(), rdr::EndOfMsg);
    in.endMsg();
    EXPECT_THROW(in.readU8(), rdr::FrameException);
    EXPECT_THROW(in.endMsg(), rdr::FrameException);
    in.startMsg();
    EXPECT_EQ(plat::whatOf([&] { in.endMsg(); }), "FramedInStream::endMsg: data left in msg");
    EXPECT_EQ(in.pos(), 2U);
    std::string line;
    in.readLine(line); // the message ends it as well as a line feed
    EXPECT_EQ(line, "c");
    EXPECT_THROW(in.readLine(line), rdr::EndOfMsg);
    BytesInStream cut(bytes("00 02 'ab' 80 01 'c' 80 00"));
    rdr::InStreamV4 inItem(&cut);
    inItem.startMsg();
    EXPECT_THROW(inItem.readU32(), rdr::EndOfMsg);
}

// Skipping takes no memory, so a message may be longer than any buffer.
TEST(FramedInStream, AMessageLongerThanTheBufferIsSkippedOrCopiedPieceByPiece) {
    TrickleStream below("", 64);
    rdr::InStreamV4 in(&below);
    const std::string frame = bytes("7f ff") + std::string(32767, 'x');
    below.put(frame + frame);
    EXPECT_TRUE(in.startMsg(/*wait=*/false));
    in.checkpoint();
    EXPECT_THROW(in.skipToEndOfMsg(), rdr::BlockException);
    below.put(bytes("80 02 'ab' 80 02 'cd'"));
    in.skipToEndOfMsg();
    in.endMsg();

    in.checkpoint();
    EXPECT_TRUE(in.startMsg());
    rdr::MemOutStream copy;
    in.copyToEndOfMsg(copy);
    in.endMsg();
    EXPECT_EQ(contents(copy), "cd");
}

TEST(FramedInStream, RewindGoesBackAcrossFrames) {
    TrickleStream below(bytes("00 02 'ab' 00 01 'c' 80 02 'de'"));
    rdr::InStreamV4 in(&below);
    in.startMsg();
    in.readU8();
    in.checkpoint();
    char buf[5] = "";
    in.readBytes(buf, 4);
    EXPECT_STREQ(buf, "bcde");
    in.rewind();
    EXPECT_EQ(in.pos(), 1U);
    in.readBytes(buf, 4);
    EXPECT_STREQ(buf, "bcde");
    in.setPos(3);
    EXPECT_EQ(in.readU8(), 'd');
}

TEST(FramedOutStream, AMessageIsBuiltInPlace) {
    rdr::MemOutStream below;
    rdr::OutStreamV4 out(&below);
    out.startMsg();
    out.writeString8("ping");
    out.writeU16(5);
    EXPECT_EQ(out.length(), 7U);
    out.endMsg();
    out.startMsg();
    out.endMsg();
    EXPECT_EQ(contents(below), bytes("80 07 04 'ping' 00 05  80 00"));
    EXPECT_FALSE(out.isInMsg());
}

TEST(FramedOutStream, AFlushMakesAFrameBoundaryButNoEmptyFrame) {
    rdr::MemOutStream below;
    rdr::OutStreamV4 out(&below);
    out.startMsg();
    out.flush();
    out.writeU8('a');
    out.flush();
    out.flush();
    out.endMsg();
    out.flush();
    EXPECT_EQ(contents(below), bytes("00 01 'a' 80 00"));
}

// The full frame is 32766 bytes, and never the last.
TEST(FramedOutStream, MessagesAtTheEdgeOfAFrame) {
    const struct {
        size_t len;
        const char* firstHeader;
        const char* secondHeader;
    } cases[] = {{32765, "ff fd", ""}, {32766, "7f fe", "80 00"}, {32767, "7f fe", "80 01"}};
    for (const auto& c : cases) {
        rdr::MemOutStream below(100000);
        rdr::OutStreamV4 out(&below);
        out.startMsg();
        const std::string body(c.len, 'x');
        out.writeBytes(body.data(), body.size());
        out.endMsg();
        const std::string wire = contents(below);
        EXPECT_EQ(wire.substr(0, 2), bytes(c.firstHeader)) << c.len;
        EXPECT_EQ(wire.size() > 2 + 32766 ? wire.substr(2 + 32766, 2) : "", bytes(c.secondHeader)) << c.len;

        rdr::MemInStream back(wire.data(), wire.size());
        rdr::InStreamV4 in(&back);
        in.startMsg();
        std::string read(c.len, ' ');
        in.readBytes(read.data(), read.size());
        in.endMsg();
        EXPECT_EQ(read, body);
        EXPECT_TRUE(back.atEnd());
    }
}

TEST(FramedOutStream, ALongBodyIsSplitToFitTheBufferBelow) {
    ThrottledStream below;
    rdr::OutStreamV4 out(&below);
    out.startMsg();
    std::string body;
    for (uint32_t i = 0; i < 50000; ++i) {
        out.writeU32(i);
        body +=
            {static_cast<char>(i >> 24), static_cast<char>(i >> 16), static_cast<char>(i >> 8), static_cast<char>(i)};
    }
    out.endMsg();
    out.waitUntilFlushed();
    below.flush();
    EXPECT_EQ(out.length(), body.size());
    EXPECT_EQ(out.bytesInBuffer(), 0U);

    rdr::MemInStream back(below.taken.data(), below.taken.size());
    rdr::InStreamV4 in(&back);
    in.startMsg();
    std::string read(body.size(), ' ');
    in.readBytes(read.data(), read.size());
    EXPECT_EQ(read, body);
    EXPECT_TRUE(in.atEnd());
    in.endMsg();
    EXPECT_TRUE(back.atEnd());
}

TEST(FramedOutStream, WritesToNobodyVanish) {
    rdr::NullOutStream nobody;
    rdr::OutStreamV4 out(&nobody);
    out.startMsg();
    const std::string body(1000000, 'x');
    out.writeBytes(body.data(), body.size());
    EXPECT_GT(out.spaceAvailable(), 0U);
    out.endMsg();
    EXPECT_EQ(out.length(), 1000000U);
}

TEST(FramedOutStream, CallsOutOfOrderAreToldApart) {
    rdr::MemOutStream below;
    rdr::OutStreamV4 out(&below);
    EXPECT_EQ(plat::whatOf([&] { out.endMsg(); }), "FramedOutStream::endMsg: not in frame");
    EXPECT_EQ(plat::whatOf([&] { out.writeU8(1); }), "FramedOutStream::endFrame: not in frame");
    out.startMsg();
    EXPECT_EQ(plat::whatOf([&] { out.startMsg(); }), "FramedOutStream::startMsg: already in msg");
    out.writeU8(1);
    below.writeU8(9); // past the framed stream
    EXPECT_EQ(plat::whatOf([&] { out.endMsg(); }), "FramedOutStream::endFrame: no space for header");
    rdr::MemOutStream fresh;
    out.setUnderlying(&fresh);
    out.startMsg();
    out.endMsg();
    EXPECT_EQ(contents(fresh), bytes("80 00"));
}

} // namespace
