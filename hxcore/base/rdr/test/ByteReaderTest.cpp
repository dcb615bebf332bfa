#include "rdr/ByteReader.h"

#include "streamTesting.h"

#include "rdr/InStreamV4.h"
#include "rdr/MemInStream.h"

#include <gtest/gtest.h>

namespace {

std::string text(const rdr::ByteReader::Bytes& found) {
    return std::string(reinterpret_cast<const char*>(found.data), found.len);
}

TEST(ByteReader, AFieldLongerThanTheBufferComesInPieces) {
    TrickleStream in("head", 8);
    EXPECT_EQ(in.readU32(), 0x68656164U);
    rdr::ByteReader reader;
    const std::string field(1000, 'x');
    for (size_t sent = 0; sent < field.size(); sent += 10) {
        reader.init(in, field.size());
        EXPECT_FALSE(reader.read(/*wait=*/false)) << sent;
        in.put(field.substr(sent, 10));
    }
    in.put("tail");
    reader.init(in, field.size());
    EXPECT_EQ(text(reader.read(/*wait=*/false)), field);
    EXPECT_EQ(text(reader.read(/*wait=*/false)), field); // asked again, it takes nothing more
    EXPECT_EQ(in.readU32(), 0x7461696cU);
    EXPECT_TRUE(reader.isActive());
    reader.reset();
    EXPECT_FALSE(reader.isActive());
}

// A handler that blocks behind the field is run again and must find it once more.
TEST(ByteReader, AFieldInTheWindowIsFoundAgainAfterABlock) {
    TrickleStream in("field");
    rdr::ByteReader reader;
    reader.init(in, 5);
    EXPECT_EQ(text(reader.read(/*wait=*/true)), "field");
    EXPECT_THROW(in.readU8(), rdr::BlockException);
    in.put("!");
    reader.init(in, 5);
    EXPECT_EQ(text(reader.read(/*wait=*/true)), "field");
    EXPECT_EQ(in.readU8(), '!');
}

TEST(ByteReader, CopiesWhenToldToAndIntoABufferThatIsLent) {
    TrickleStream in("abcdef");
    rdr::ByteReader reader;
    uint8_t lent[3];
    reader.init(in, 3, lent, /*alwaysCopy=*/true);
    const auto found = reader.read(/*wait=*/true);
    EXPECT_EQ(found.data, lent);
    EXPECT_EQ(text(found), "abc");
    EXPECT_THROW(reader.init(in, 4), plat::Exception);
    reader.reset();
    reader.init(in, 0);
    const auto empty = reader.read(/*wait=*/true);
    EXPECT_TRUE(static_cast<bool>(empty));
    EXPECT_EQ(empty.len, 0U);
}

TEST(ByteReader, SkipsWithoutKeeping) {
    TrickleStream in("", 4);
    rdr::ByteReader reader;
    reader.init(in, 100000);
    in.put(std::string(99999, 'x'));
    EXPECT_FALSE(reader.skip(/*wait=*/false));
    EXPECT_THROW(reader.skip(/*wait=*/true), rdr::BlockException);
    in.put("xy");
    EXPECT_TRUE(reader.skip(/*wait=*/false));
    EXPECT_EQ(in.readU8(), 'y');
}

TEST(ByteReader, AStringSplitAtEveryByteAcrossFramesReadsTheSame) {
    const std::string whole = bytes("00 03 00 00 00  00 04 05 'ab' c3  80 02 28 'd'");
    for (size_t split = 0; split <= whole.size(); ++split) {
        TrickleStream below(whole.substr(0, split));
        rdr::InStreamV4 in(&below);
        rdr::ByteReader reader;
        std::string got;
        for (int run = 0; run < 2; ++run) {
            if (in.isInMsg() || in.startMsg(/*wait=*/false)) {
                in.checkpoint();
                const auto found = reader.readString32(in, 5, /*wait=*/false);
                if (found)
                    got = reinterpret_cast<const char*>(found.data); // ends in a NUL
            }
            if (run == 0)
                below.put(whole.substr(split));
        }
        EXPECT_EQ(got, "ab\xef\xbf\xbd(d") << split;
        EXPECT_TRUE(in.atEnd());
    }
}

TEST(ByteReader, AStringBeyondItsLimitIsRefusedAndAnAnnouncedLengthTakesNoMemory) {
    const std::string tooLong = bytes("00 00 00 06 'abcdef'");
    rdr::MemInStream in(tooLong.data(), tooLong.size());
    rdr::ByteReader reader;
    EXPECT_THROW(reader.readString32(in, 5, /*wait=*/true), rdr::StringTooLongException);

    TrickleStream huge(bytes("ff ff ff ff 'abc'"));
    EXPECT_FALSE(reader.readString32(huge, 0xffffffff, /*wait=*/false));
    EXPECT_TRUE(reader.isActive());
    EXPECT_THROW(reader.readString32(huge, 0xffffffff, /*wait=*/true), rdr::BlockException);
}

} // namespace
