#include "rdr/FileInStream.h"
#include "rdr/FileOutStream.h"
#include "rdr/TransactedFileOutStream.h"

#include "scratchDir.h"
#include "streamTesting.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>

namespace {

using FileStreams = ScratchDir;

TEST_F(FileStreams, WhatIsWrittenIsReadBack) {
    const std::string path = dir + "/file";
    const std::string block(50000, 'x');
    {
        rdr::FileOutStream out(path.c_str());
        out.writeBytes(block.data(), block.size());
        out.writeU32(1);
    } // writes what is buffered
    rdr::FileInStream in(path.c_str());
    std::string back(block.size(), ' ');
    in.readBytes(back.data(), back.size());
    EXPECT_EQ(back, block);
    EXPECT_EQ(in.readU32(), 1U);
    EXPECT_THROW(in.readU8(), rdr::EndOfStream);
}

TEST_F(FileStreams, AFlushReachesTheFile) {
    rdr::FileOutStream out((dir + "/file").c_str());
    out.writeStr("abc");
    out.flush();
    EXPECT_EQ(contents("file"), "abc");
}

TEST_F(FileStreams, AMissingFileAndADirectoryAreErrors) {
    EXPECT_THROW(rdr::FileInStream((dir + "/none").c_str()), plat::SystemException);
    EXPECT_THROW(rdr::FileOutStream((dir + "/none/file").c_str()), plat::SystemException);
    rdr::FileInStream in(dir.c_str());
    try {
        in.readU8();
        FAIL();
    } catch (const plat::SystemException& e) {
        EXPECT_EQ(e.errNo, EISDIR);
    }
}

TEST(FileOutStream, AFullDiskIsAnError) {
    rdr::FileOutStream out("/dev/full");
    out.writeU8(1);
    try {
        out.close();
        FAIL();
    } catch (const plat::SystemException& e) {
        EXPECT_EQ(e.errNo, ENOSPC);
        EXPECT_EQ(std::string(e.what()).find("writing to file failed"), 0U);
    }
}

TEST(FileOutStream, AFailureInTheDestructorEndsThere) {
    rdr::FileOutStream out("/dev/full");
    out.writeU8(1);
}

TEST_F(FileStreams, NothingCanBeWrittenBehindTheClose) {
    rdr::FileOutStream out((dir + "/file").c_str());
    out.writeU8('a');
    out.close();
    out.close();
    EXPECT_EQ(contents("file"), "a");
    out.writeU8('b');
    EXPECT_THROW(out.flush(), plat::SystemException);
}

TEST_F(FileStreams, ATransactionIsAllOrNothing) {
    write("file", "old");
    const std::string path = dir + "/file";
    {
        rdr::TransactedFileOutStream out(path.c_str());
        out.writeStr("new, dropped");
        out.flush();
        EXPECT_EQ(contents("file"), "old");
    }
    EXPECT_EQ(contents("file"), "old");
    EXPECT_FALSE(exists("file.tmp"));
    ::chmod(path.c_str(), 0640);
    rdr::TransactedFileOutStream out(path.c_str());
    out.writeStr("new");
    out.commit();
    EXPECT_EQ(contents("file"), "new");
    EXPECT_FALSE(exists("file.tmp"));
    struct stat st {};
    ASSERT_EQ(::stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640U); // the old file's mode stays
}

} // namespace
