#include "rdr/ZlibInStream.h"

#include "plat/test/thrown.h"
#include "streamTesting.h"

#include <gtest/gtest.h>

#include <zlib.h>

namespace {

using Format = rdr::ZlibInStream::Format;

// "hello, hello, hello\n" as gzip writes it, with the name "h".
const char* const gzipHeader = "1f 8b 08 08 00 00 00 00 00 03 'h' 00";
const char* const gzipBody = "cb 48 cd c9 c9 d7 51 c8 40 a2 b8 00";
const char* const gzipTrailer = "e7 42 6e 52  14 00 00 00";
const std::string plain = "hello, hello, hello\n";

std::string gzipData() { return bytes(gzipHeader) + bytes(gzipBody) + bytes(gzipTrailer); }

std::string compress(const std::string& data, int windowBits) {
    z_stream zs{};
    deflateInit2(&zs, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&zs, data.size()) + 32, '\0');
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    zs.avail_in = static_cast<uInt>(data.size());
    zs.next_out = reinterpret_cast<Bytef*>(out.data());
    zs.avail_out = static_cast<uInt>(out.size());
    deflate(&zs, Z_FINISH);
    out.resize(zs.total_out);
    deflateEnd(&zs);
    return out;
}

std::string readAll(rdr::InStream& in) {
    std::string all;
    try {
        for (;;)
            all += static_cast<char>(in.readU8());
    } catch (const rdr::ZlibEndOfStream& e) {
        EXPECT_STREQ(e.what(), "End of zlib stream");
    }
    return all;
}

TEST(ZlibInStream, ReadsEachFormat) {
    const std::string data = std::string(70000, 'a') + plain;
    const struct {
        Format format;
        int windowBits;
    } cases[] = {{Format::Zlib, 15}, {Format::Raw, -15}, {Format::Gzip, 31}};
    for (const auto& c : cases) {
        for (const int bufSize : {-1, 64, 1}) {
            BytesInStream below(compress(data, c.windowBits) + "rest");
            rdr::ZlibInStream in(bufSize, c.format);
            in.setUnderlying(&below);
            EXPECT_EQ(readAll(in), data);
            EXPECT_EQ(in.pos(), data.size());
            EXPECT_EQ(below.readU32(), 0x72657374U); // what follows is untouched
        }
    }
}

TEST(ZlibInStream, AGzipFileSplitAtEveryByteReadsTheSame) {
    const std::string whole = gzipData();
    for (size_t split = 0; split < whole.size(); ++split) {
        TrickleStream below(whole.substr(0, split));
        rdr::ZlibInStream in(-1, Format::Gzip);
        in.setRewindable(true);
        in.setUnderlying(&below);
        std::string first(plain.size(), ' ');
        try {
            in.readBytes(first.data(), first.size());
            in.checkpoint();
        } catch (const rdr::BlockException&) {
            EXPECT_EQ(in.pos(), 0U);
            first.clear();
        }
        below.put(whole.substr(split));
        EXPECT_EQ(first + readAll(in), plain) << split;
    }
}

TEST(ZlibInStream, AllHeaderFieldsAreSkipped) {
    BytesInStream below(bytes("1f 8b 08 1e 00 00 00 00 00 03  03 00 'xyz'  'name' 00  'comment' 00  12 34") +
                        bytes(gzipBody) + bytes(gzipTrailer));
    rdr::ZlibInStream in(-1, Format::Gzip);
    in.setUnderlying(&below);
    EXPECT_EQ(readAll(in), plain);
}

std::string errorOf(const std::string& data, Format format) {
    BytesInStream below(data);
    rdr::ZlibInStream in(-1, format);
    in.setUnderlying(&below);
    try {
        readAll(in);
    } catch (const plat::Exception& e) {
        return e.what();
    }
    return "";
}

TEST(ZlibInStream, DamageIsToldClearly) {
    EXPECT_EQ(errorOf(bytes("1f 8c 08 00 00 00 00 00 00 03"), Format::Gzip), "Bad gzip header");
    EXPECT_EQ(errorOf(bytes("1f 8b 07 00 00 00 00 00 00 03"), Format::Gzip), "Bad gzip header");
    EXPECT_EQ(errorOf(bytes("1f 8b 08 20 00 00 00 00 00 03"), Format::Gzip), "Bad gzip header");
    EXPECT_EQ(errorOf(bytes("07"), Format::Raw), "ZlibInStream: inflate failed with error -3");
    EXPECT_EQ(errorOf(bytes("78 bb 00 00 00 01"), Format::Zlib), "ZlibInStream: inflate failed with error 2");
    EXPECT_EQ(errorOf(gzipData().substr(0, 20), Format::Gzip), "End of in-memory input stream");
    for (const size_t place : {24U, 28U}) { // checksum and length
        std::string data = gzipData();
        data[place] = static_cast<char>(data[place] ^ 1);
        EXPECT_EQ(errorOf(data, Format::Gzip), "ZlibInStream: inflate failed with error -3");
    }
}

TEST(ZlibInStream, WhatCameBeforeTheDamageIsReadFirst) {
    // A stored block that isn't the last, and a block of no known kind.
    BytesInStream below(bytes("00 05 00 fa ff 'hello'  07"));
    rdr::ZlibInStream in(-1, Format::Raw);
    in.setUnderlying(&below);
    char text[6] = "";
    in.readBytes(text, 5);
    EXPECT_STREQ(text, "hello");
    EXPECT_THROW(in.readU8(), plat::Exception);
}

TEST(ZlibInStream, TheStreamBelowCanChangeAndIsNeeded) {
    rdr::ZlibInStream in(-1, Format::Gzip);
    EXPECT_EQ(plat::whatOf([&] { in.readU8(); }), "ZlibInStream overrun: no underlying stream");
    BytesInStream first(gzipData().substr(0, 15));
    BytesInStream second(gzipData().substr(15));
    in.setUnderlying(&first);
    EXPECT_THROW(in.skip(plain.size()), rdr::EndOfStream);
    in.setUnderlying(&second);
    const std::string rest = readAll(in);
    EXPECT_EQ(rest, plain.substr(plain.size() - rest.size()));
    in.reset();
    BytesInStream again(gzipData());
    in.setUnderlying(&again);
    EXPECT_EQ(readAll(in), plain);
}

} // namespace
