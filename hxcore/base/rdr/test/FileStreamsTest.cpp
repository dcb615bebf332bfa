#include "rdr/FileConfig.h"
#include "rdr/FileInStream.h"
#include "rdr/FileOutStream.h"

#include "scratchDir.h"
#include "streamTesting.h"

#include "plat/test/FailingCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using FileStreams = ScratchDir;

TEST_F(FileStreams, AMissingFileAndADirectoryAreErrors) {
    EXPECT_THROW(rdr::FileInStream((dir + "/none").c_str()), plat::SystemException);
    EXPECT_THROW(rdr::FileOutStream((dir + "/none/file").c_str()), plat::SystemException);
    ASSERT_EQ(::mkfifo((dir + "/fifo").c_str(), 0600), 0);
    write("file", "x");
    ASSERT_EQ(::symlink("file", (dir + "/link").c_str()), 0);
    const std::pair<const char*, int> rows[] = {{"", EISDIR}, {"/fifo", EPERM}, {"/link", 0}}; // and no wait
    for (const auto& [name, errNo] : rows)
        EXPECT_EQ(plat::errorOf([&] { rdr::FileInStream in((dir + name).c_str()); }), errNo) << name;
}

// A read that fails is told, and not taken for the end of the file.
TEST_F(FileStreams, SignalsAndShortCountsDontShowAndErrorsDo) {
    write("file", "abcd");
    const std::string path = dir + "/file";
    const plat::ShortCounts one(1);
    rdr::FileInStream in(path.c_str());
    {
        const plat::FailingCalls interrupted("read", EINTR, 2, 1);
        EXPECT_EQ(in.readU16(), 0x6162);
        EXPECT_EQ(interrupted.failed(), 2);
    }
    const plat::FailingCalls failing("read", EIO);
    EXPECT_EQ(plat::errorOf([&] { in.readU8(); }), EIO);
    EXPECT_EQ(in.readU16(), 0x6364);
    const plat::FailingCalls noDescriptor("open", EMFILE);
    EXPECT_EQ(plat::errorOf([&] { rdr::FileInStream second(path.c_str()); }), EMFILE);
}

// Whichever step of saving fails, what was set before is still there, and can be saved again.
TEST_F(FileStreams, SettingsSurviveASaveThatFailsAtAnyStep) {
    const std::string old = "Other=kept\nText=old\n";
    write("file", old);
    const std::string path = dir + "/file";
    for (const char* function : {"open", "read", "fdopen", "fflush", "fsync", "fclose", "rename"}) {
        const plat::FailingCalls failing(function, EIO, plat::FailingCalls::always);
        EXPECT_EQ(plat::errorOf([&] { plat::FileConfig::setEntry(path.c_str(), "Text", "new"); }), EIO) << function;
        EXPECT_EQ(contents("file"), old) << function;
        EXPECT_FALSE(exists("file.tmp")) << function;
    }
    plat::FileConfig::setEntry(path.c_str(), "Text", "new");
    EXPECT_EQ(contents("file"), "Other=kept\nText=new\n");
}

TEST(FileOutStream, AFullDiskIsAnError) {
    rdr::FileOutStream out("/dev/full");
    out.writeU8(1);
    EXPECT_EQ(plat::whatOf([&] { out.close(); }), "writing to file failed: No space left on device (28)");
    rdr::FileOutStream dying("/dev/full"); // its destructor logs the same
    dying.writeU8(1);
}

TEST_F(FileStreams, NothingCanBeWrittenBehindTheClose) {
    rdr::FileOutStream out((dir + "/file").c_str());
    out.writeU8('a');
    out.flush();
    EXPECT_EQ(contents("file"), "a");
    out.close();
    out.close();
    EXPECT_EQ(contents("file"), "a");
    out.writeU8('b');
    EXPECT_THROW(out.flush(), plat::SystemException);
}

} // namespace
