#include "rdr/InStream.h"

#include "streamTesting.h"

#include "plat/DString.h"
#include "plat/test/thrown.h"
#include "rdr/CircularInStream.h"
#include "rdr/MemInStream.h"
#include "rdr/PseudoRandomStream.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// What a unit of work read, as text.
struct Record {
    std::string text;

    void read(rdr::InStream& in) {
        std::ostringstream fresh;
        fresh << unsigned{in.readU8()} << ',';
        fresh << in.readU16() << ',';
        fresh << in.readU32() << ',';
        fresh << in.readU64() << ',';
        fresh << in.readS16() << ',';
        fresh << in.readS32() << ',';
        fresh << in.readString8().c_str() << ',';
        fresh << in.readString32(100).c_str();
        text = fresh.str();
    }
};

const char* const recordBytes = "07  01 02  00 01 00 00  00 00 00 01 00 00 00 02  ff fe  ff ff ff fd  03 'abc'"
                                "  00 00 00 02 'de'";
const char* const recordText = "7,258,65536,4294967298,-2,-3,abc,de";

TEST(InStream, ARecordSplitAtEveryByteReadsTheSame) {
    const std::string whole = bytes(recordBytes);
    for (size_t split = 0; split < whole.size(); ++split) {
        TrickleStream in(whole.substr(0, split));
        Record record;
        EXPECT_THROW(record.read(in), rdr::BlockException) << split;
        EXPECT_EQ(in.pos(), 0U) << split; // back at the checkpoint
        in.put(whole.substr(split));
        record.read(in);
        EXPECT_EQ(record.text, recordText) << split;
        EXPECT_EQ(in.pos(), whole.size());
    }
}

TEST(InStream, ARecordInSingleBytesThroughATinyBufferReadsTheSame) {
    const std::string whole = bytes(recordBytes);
    TrickleStream in("", static_cast<int>(whole.size())); // just holds the unit of work
    in.mostAtOnce = 1;
    Record record;
    for (int round = 0; round < 3; ++round) {
        for (const char byte : whole) {
            EXPECT_THROW(record.read(in), rdr::BlockException);
            in.put(std::string(1, byte));
        }
        record.read(in);
        EXPECT_EQ(record.text, recordText);
        in.checkpoint();
    }
    EXPECT_EQ(in.pos(), 3 * whole.size());
}

TEST(InStream, AUnitOfWorkLongerThanTheBufferIsAnError) {
    TrickleStream in("123456789", 8);
    char buf[9];
    EXPECT_EQ(plat::whatOf([&] { in.readBytes(buf, sizeof buf); }), "InStream overrun: buffer size exceeded");
}

// A blocking stream never runs work again, so any length passes through its buffer.
TEST(InStream, ABlockingStreamReadsMoreThanItsBufferHolds) {
    TrickleStream in(std::string(100000, 'x'), 16);
    in.setNonBlocking(false);
    std::string buf(99999, ' ');
    in.readBytes(buf.data(), buf.size());
    EXPECT_EQ(buf, std::string(99999, 'x'));
    EXPECT_EQ(in.pos(), 99999U);
    EXPECT_THROW(in.rewind(), plat::Exception);
}

TEST(InStream, SwitchingToNonBlockingKeepsWhatWasConsumedConsumed) {
    TrickleStream in("ab");
    in.setNonBlocking(false);
    EXPECT_EQ(in.readU8(), 'a');
    in.setNonBlocking(true);
    EXPECT_EQ(in.readU8(), 'b');
    in.rewind();
    EXPECT_EQ(in.readU8(), 'b');
}

TEST(InStream, SetPosGoesToTheCheckpointAndBeyondButNotBefore) {
    rdr::MemInStream in("abcdef", 6);
    in.skip(2);
    in.checkpoint();
    in.skip(3);
    in.setPos(2);
    EXPECT_EQ(in.readU8(), 'c');
    in.setPos(4);
    EXPECT_EQ(in.readU8(), 'e');
    EXPECT_EQ(plat::whatOf([&] { in.setPos(1); }), "Can't reposition before checkpoint");
}

TEST(InStream, CheckCutsToWholeItemsAndConsumesNothing) {
    TrickleStream in("abcdefg");
    size_t items = 9;
    const uint8_t* const place = in.check(2, &items);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(items, 3U);
    EXPECT_EQ(*place, 'a');
    EXPECT_EQ(in.pos(), 0U);
    items = 1;
    EXPECT_EQ(in.check(8, &items, /*wait=*/false), nullptr);
    EXPECT_THROW(in.check(8, &items), rdr::BlockException);
    items = 0;
    EXPECT_DEATH(in.check(1, &items), "\\*nItems > 0");
}

TEST(InStream, StringsAtTheirLimits) {
    const std::string text255(255, 'x');
    BytesInStream full(bytes("ff") + text255);
    EXPECT_STREQ(full.readString8().c_str(), text255.c_str());
    for (const char* length : {"00 00 00 00", "00 00 00 04", "00 00 00 05"}) {
        BytesInStream in(bytes(length) + "12345"), other(bytes(length) + "12345");
        EXPECT_EQ(other.readStdString32(5), in.readString32(5).c_str()) << length;
    }
    for (const char* length : {"00 00 00 06", "7f ff ff ff", "80 00 00 00", "ff ff ff ff"}) {
        BytesInStream in(bytes(length) + "12345"), other(bytes(length) + "12345");
        EXPECT_THROW(in.readString32(5), rdr::StringTooLongException) << length;
        EXPECT_THROW(other.readStdString32(5), rdr::StringTooLongException) << length;
    }
}

// A peer that announces 4 GiB and sends nothing must not cost us memory.
TEST(InStream, AnAnnouncedLengthTakesNoMemoryBeforeTheBytesArrive) {
    const std::string data = bytes("ff ff ff f0 'few'");
    rdr::MemInStream in(data.data(), data.size());
    EXPECT_THROW(in.readString32(0xffffffff), rdr::EndOfStream);
}

TEST(InStream, StringsAreRepairedOnlyWhenAsked) {
    const std::string data = bytes("02 c3 28  02 c3 28  03 61 00 62  03 61 00 62");
    rdr::MemInStream in(data.data(), data.size());
    EXPECT_STREQ(in.readString8().c_str(), "\xef\xbf\xbd(");
    EXPECT_STREQ(in.readString8(/*repairUtf8=*/false).c_str(), "\xc3(");
    EXPECT_STREQ(in.readString8().c_str(), "a"); // a NUL ends it
    EXPECT_EQ(in.readStdString8(/*repairUtf8=*/false), std::string("a\0b", 3));
}

TEST(InStream, ReadLineDropsLineEndsRunsAgainAndStopsAtItsLimit) {
    rdr::MemInStream in("abc\r\n\nlast");
    plat::DString line;
    for (const char* expected : {"abc", "", "last"}) {
        in.readLine(line);
        EXPECT_STREQ(line.c_str(), expected);
    }
    EXPECT_THROW(in.readLine(line), rdr::EndOfStream);

    TrickleStream blocked("ab");
    EXPECT_THROW(blocked.readLine(line), rdr::BlockException);
    blocked.put("c\n");
    blocked.readLine(line);
    EXPECT_STREQ(line.c_str(), "abc");

    const std::string longest(262144, 'x');
    BytesInStream limits("12345\n123456\n" + longest + "\n" + longest + "x\n");
    std::string text;
    limits.readLine(text, 5);
    EXPECT_EQ(text, "12345");
    EXPECT_THROW(limits.readLine(text, 5), rdr::StringTooLongException);
    BytesInStream longLines(longest + "\n" + longest + "x\n");
    longLines.readLine(text);
    EXPECT_EQ(text.size(), 262144U);
    EXPECT_THROW(longLines.readLine(text), rdr::StringTooLongException);
}

TEST(InStream, ReadUniformRejectsTheUnevenShareNineTimesAtMost) {
    // Of 2^32 numbers, the lowest 4 are one share too many for 6.
    BytesInStream rejected(bytes("00 00 00 03  00 00 00 04  00 00 00 0b"));
    EXPECT_EQ(rejected.readUniform(6), 4U);
    EXPECT_EQ(rejected.readUniform(6), 5U);

    const std::string stuck(9 * 4, '\0');
    rdr::MemInStream in(stuck.data(), stuck.size());
    EXPECT_EQ(in.readUniform(6), 0U);
    EXPECT_TRUE(in.atEnd());

    BytesInStream any(bytes("de ad be ef"));
    EXPECT_EQ(any.readUniform(0), 0xdeadbeefU);
}

TEST(CircularInStream, WrapsAndKeepsWhatTheCheckpointNeeds) {
    rdr::CircularInStream ring(8);
    ring.write("abcdef", 6);
    EXPECT_EQ(ring.readU32(), 0x61626364U);
    EXPECT_THROW(ring.write("ghi", 3), rdr::OutStreamFull); // the checkpoint still holds the start
    EXPECT_EQ(ring.available(), 2U);
    ring.checkpoint();
    ring.write("ghijkl", 6);
    EXPECT_EQ(ring.freeSpace(), 0U);
    EXPECT_EQ(ring.readU32(), 0x65666768U); // straddles the physical end
    ring.rewind();
    EXPECT_EQ(ring.pos(), 4U);
    char buf[9] = "";
    ring.readBytes(buf, 8);
    EXPECT_STREQ(buf, "efghijkl");
    EXPECT_THROW(ring.readU8(), rdr::BlockException);
    EXPECT_EQ(ring.available(), 8U); // back at the checkpoint
}

TEST(CircularInStream, AnEmptyRingIsTheEndOnlyWhenToldSo) {
    rdr::CircularInStream ring(4);
    ring.write("x", 1);
    ring.setEndOfData(true);
    EXPECT_EQ(ring.readU8(), 'x');
    EXPECT_EQ(plat::whatOf([&] { ring.readU8(); }), "Data buffer exhausted");
    ring.clear();
    EXPECT_THROW(ring.readU8(), rdr::BlockException);
    EXPECT_EQ(ring.freeSpace(), 4U);
}

TEST(CircularInStream, ALongStreamInOddPiecesComesThroughWhole) {
    rdr::CircularInStream ring(7);
    std::string sent;
    std::string got;
    for (unsigned round = 0; round < 500; ++round) {
        const std::string piece(round % 5, static_cast<char>('a' + round % 26));
        ring.write(piece.data(), piece.size());
        sent += piece;
        while (ring.available() > round % 2)
            got += static_cast<char>(ring.readU8());
        ring.checkpoint();
    }
    EXPECT_EQ(got, sent.substr(0, got.size()));
    EXPECT_LE(sent.size() - got.size(), 1U);
}

TEST(PseudoRandomStream, RepeatsForASeedAndNeverEnds) {
    rdr::PseudoRandomStream a(7);
    rdr::PseudoRandomStream b(7);
    rdr::PseudoRandomStream other(8);
    EXPECT_NE(other.readU64(), rdr::PseudoRandomStream(7).readU64());
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(a.readU32(), b.readU32());
    EXPECT_EQ(a.pos(), 0U);
    EXPECT_THROW(a.rewind(), plat::Exception);
}

} // namespace
