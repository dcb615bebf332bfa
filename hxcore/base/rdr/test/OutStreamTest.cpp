#include "rdr/OutStream.h"

#include "streamTesting.h"

#include "plat/Configuration.h"
#include "plat/MBuf.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/thrown.h"
#include "rdr/MemOutStream.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(OutStream, TypedWritesAreBigEndian) {
    rdr::MemOutStream out;
    out.writeU8(7);
    out.writeU16(0x0102);
    out.writeU32(0x10000);
    out.writeU64(0x0102030405060708);
    out.writeS8(-1);
    out.writeS16(-2);
    out.writeS32(-3);
    out.writeS64(-4);
    out.writeBool(true);
    out.writeString8("abc");
    out.writeString32(static_cast<const char*>(nullptr));
    out.writeString32("abcdef", 2);
    out.writeString32(std::string("a\0bc", 4), 3);
    out.writeFlags({"b", "a"});
    out.writeStr("%d%%", 50);
    EXPECT_EQ(contents(out), bytes("07  01 02  00 01 00 00  01 02 03 04 05 06 07 08  ff  ff fe  ff ff ff fd"
                                   "  ff ff ff ff ff ff ff fc  01  03 'abc'  00 00 00 00  00 00 00 02 'ab'"
                                   "  00 00 00 03 'a' 00 'b'  02 01 'a' 01 'b'  '50%'"));
    EXPECT_EQ(out.length(), contents(out).size());
    rdr::MemOutStream cut;
    cut.writeString8(std::string(300, 'x'));
    cut.writeString8(std::string(300, 'y').c_str());
    EXPECT_EQ(contents(cut), bytes("ff") + std::string(255, 'x') + bytes("ff") + std::string(255, 'y'));
    EXPECT_FALSE(rdr::MemOutStream(0).takeString().isNull());
}

TEST(OutStream, ItemsThatMeetTheEndOfTheWindowAreWhole) {
    for (int size = 1; size < 12; ++size) {
        rdr::MemOutStream out(size);
        out.writeU8(1);
        out.writeU64(0x0203040506070809);
        out.writeU16(0x0a0b);
        EXPECT_EQ(contents(out), bytes("01 02 03 04 05 06 07 08 09 0a 0b")) << size;
    }
}

TEST(MemOutStream, StopsAtItsLimitAndKeepsWhatFitted) {
    rdr::MemOutStream out(0, 5);
    EXPECT_EQ(out.data(), nullptr);
    out.writeU32(0x31323334);
    EXPECT_THROW(out.writeU16(0x3536), rdr::OutStreamFull);
    out.writeU8('5');
    EXPECT_EQ(out.spaceAvailable(), 0U);
    EXPECT_THROW(out.writeU8('6'), rdr::OutStreamFull);
    EXPECT_STREQ(out.takeString().c_str(), "12345");
    EXPECT_EQ(out.size(), 0U);
    out.writeU8('x'); // goes on from nothing
    plat::MBuf<uint8_t> buf;
    buf.setSecure(true);
    out.getBuffer(buf);
    ASSERT_EQ(buf.size(), 1);
    EXPECT_EQ(buf[0], 'x');
    EXPECT_EQ(out.length(), 0U);
}

TEST(BufferedOutStream, KeepsBackpressureInOrder) {
    ThrottledStream out(16);
    out.setNonBlocking(true);
    out.allowance = 0;
    std::string sent;
    for (unsigned i = 0; i < 3000; ++i) {
        out.writeU16(static_cast<uint16_t>(i));
        sent += {static_cast<char>(i >> 8), static_cast<char>(i)};
        out.allowance = i % 7 == 0 ? 5 : 0;
        if (i % 11 == 0)
            out.flush();
        ASSERT_EQ(out.length(), sent.size());
        ASSERT_EQ(out.taken.size() + out.bytesInBuffer(), sent.size());
    }
    EXPECT_GT(out.bytesInBuffer(), 0U);
    out.allowance = SIZE_MAX;
    out.flush();
    EXPECT_EQ(out.taken, sent);
    EXPECT_EQ(out.waits, 0);
}

// Long writes try to send as they go, so that nothing but the window is ever kept of them.
TEST(BufferedOutStream, ALongWriteSendsWindowByWindow) {
    ThrottledStream out;
    const std::string block(1000000, 'x');
    out.writeBytes(block.data(), block.size());
    EXPECT_LE(out.bytesInBuffer(), rdr::BufferedOutStream::windowBytes);
    out.flush();
    EXPECT_EQ(out.taken, block);
}

class SmallLimit : public ::testing::Test {
protected:
    ~SmallLimit() override { plat::Configuration::global().get("MaxOutBufferSize").unset(plat::PriorityPreference); }

    void SetUp() override { ASSERT_TRUE(plat::Configuration::global().set("MaxOutBufferSize", "40000")); }
};

TEST_F(SmallLimit, GrowsToItAndOnlyThenWaits) {
    ThrottledStream out;
    out.setNonBlocking(true);
    out.allowance = 0;
    const std::string block(40000, 'x');
    out.writeBytes(block.data(), block.size());
    EXPECT_EQ(out.bytesInBuffer(), 40000U);
    EXPECT_EQ(out.spaceAvailable(), 0U);
    EXPECT_EQ(out.waits, 0);
    out.writeU16(0x7879);
    EXPECT_EQ(out.waits, 2);
    EXPECT_EQ(out.bytesInBuffer(), 40000U);
    out.allowance = SIZE_MAX;
    out.flush();
    EXPECT_EQ(out.taken, block + "xy");
}

TEST_F(SmallLimit, WhatCannotFitOrGoIsAnError) {
    ThrottledStream out;
    EXPECT_THROW(out.check(40001), plat::Exception);
    EXPECT_EQ(out.check(40000), 1U); // a single item may be larger than the window
    out.setNonBlocking(true);
    out.allowance = 0;
    out.yieldsToWait = false;
    const std::string block(40000, 'x');
    out.writeBytes(block.data(), block.size());
    EXPECT_EQ(plat::whatOf([&] { out.writeU8(1); }), "BufferedOutStream overrun: unable to write");
}

TEST(BufferedOutStream, WithoutABufferItIsFull) {
    ThrottledStream out(0);
    EXPECT_THROW(out.writeU8(1), rdr::OutStreamFull);
    out.flush();
    EXPECT_EQ(out.length(), 0U);
}

TEST(BufferedStreams, DumpWhatPassesToTheLog) {
    const plat::CapturedLog log;
    ThrottledStream out;
    out.setDump(true);
    out.writeStr("0123456789abcdef\n%%");
    out.flush();
    TrickleStream in("x\xff");
    in.setDump(true);
    in.readU16();
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{
                  "110 OutStream:  --> 0000  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  0123456789abcdef",
                  "110 OutStream:  --> 0010  0a 25                                            .%",
                  "110 InStream:  <-- 0000  78 ff                                            x."}));
}

} // namespace
