#include "io/FdIo.h"
#include "io/test/FakeLink.h"
#include "os/AppInfo.h"
#include "os/PersistentStoreBlockingIpc.h"
#include "os/PersistentStoreFile.h"
#include "plat/Exception.h"
#include "plat/test/TempDir.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

std::span<const uint8_t> span(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string text(const plat::MBuf<uint8_t>& buf) {
    return {reinterpret_cast<const char*>(buf.data()), static_cast<size_t>(buf.size())};
}

class PersistentStoreFileTest : public testing::Test {
protected:
    PersistentStoreFileTest() {
        AppInfo::reset();
        AppInfo::setApp("prog");
        AppInfo::setConfigDir(dir.root.c_str());
        plat::mkDirs((dir / "config.d").c_str());
        root = dir / "config.d/prog.d";
    }
    ~PersistentStoreFileTest() override { AppInfo::reset(); }
    static mode_t modeOf(const std::string& path) {
        struct stat info {};
        EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
        return info.st_mode & 07777;
    }

    plat::TempDir dir;
    std::string root;
    plat::MBuf<uint8_t> out;
};

TEST_F(PersistentStoreFileTest, TheFileIsTheBlobAndAllIsPrivate) {
    const mode_t before = umask(0);
    PersistentStoreFile store;
    const std::string blob("\x00\xff\ntext", 7);
    store.save("a/b/c", span(blob));
    umask(before);
    std::ifstream file(root + "/a/b/c", std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), blob);
    EXPECT_EQ(modeOf(root + "/a/b/c"), 0600u);
    for (const char* sub : {"", "/a", "/a/b"})
        EXPECT_EQ(modeOf(root + sub), 0700u) << sub;
    out.resize(3);
    EXPECT_TRUE(store.load("a/b/c", out));
    EXPECT_EQ(text(out), blob);
    store.save("a/b/c", {});
    EXPECT_TRUE(store.load("a/b/c", out));
    EXPECT_EQ(out.size(), 0);
    EXPECT_STREQ(PersistentStoreFile("other").dir(), (dir / "config.d/other.d").c_str());
}

TEST_F(PersistentStoreFileTest, WhatIsNotThereOrNoPlainFileIsNotLoaded) {
    PersistentStoreFile store;
    out.resize(3);
    EXPECT_FALSE(store.load("none", out));
    EXPECT_EQ(out.size(), 0) << "emptied all the same";
    store.save("d/x", span("x"));
    EXPECT_FALSE(store.load("d", out));
    EXPECT_FALSE(store.load("d/x/y", out));
    ASSERT_EQ(mkfifo((root + "/fifo").c_str(), 0600), 0);
    EXPECT_FALSE(store.load("fifo", out)) << "and nobody waits for its other end";
    ASSERT_EQ(symlink("/etc/passwd", (root + "/link").c_str()), 0);
    EXPECT_FALSE(store.load("link", out));
    store.save("link", span("mine"));
    EXPECT_TRUE(store.load("link", out)) << "replaced, not followed";
}

TEST_F(PersistentStoreFileTest, RemovingTakesEmptyDirectoriesButNotTheRoot) {
    PersistentStoreFile store;
    store.save("a/b/c", span("1"));
    store.save("a/d", span("2"));
    store.remove("a/b/c");
    EXPECT_NE(access((root + "/a/b").c_str(), F_OK), 0);
    EXPECT_EQ(access((root + "/a/d").c_str(), F_OK), 0);
    store.remove("a/d");
    store.remove("a/d");
    EXPECT_NE(access((root + "/a").c_str(), F_OK), 0);
    EXPECT_EQ(access(root.c_str(), F_OK), 0);
    store.save("x/y", span("3"));
    store.remove("");
    EXPECT_NE(access(root.c_str(), F_OK), 0);
    store.remove(nullptr);
}

TEST_F(PersistentStoreFileTest, NamesThatLeadOutAreRefused) {
    PersistentStoreFile store;
    std::ofstream(dir / "config.d/victim") << "precious";
    for (const char* name :
         {"../victim", "..", ".", "a/../../victim", "/etc/passwd", "a//b", "a/", "a/./b", "a.tmp", "b.tmp/c"}) {
        EXPECT_THROW(store.save(name, span("x")), plat::Exception) << name;
        EXPECT_THROW(store.load(name, out), plat::Exception) << name;
        EXPECT_THROW(store.remove(name), plat::Exception) << name;
    }
    EXPECT_EQ(access((dir / "config.d/victim").c_str(), F_OK), 0);
}

class PersistentStoreIpcTest : public testing::Test {
protected:
    io::FakeLink link; // not blocking, as the link to the core is
    PersistentStoreBlockingIpc store{link.ipc};
    plat::MBuf<uint8_t> out;
};

TEST_F(PersistentStoreIpcTest, AsksAndWaitsWhileOtherMessagesAreHandled) {
    io::RecordingReader other(link.ipc, "other");
    link.preload(io::bytes("80 08 05 'other' 01 'x'"
                           "00 18 13 'persistentStoreResp' 00 01 'da'  80 02 'ta'"));
    EXPECT_TRUE(store.load("a/b", out));
    EXPECT_EQ(text(out), "data");
    EXPECT_EQ(other.finished, 1);
    EXPECT_EQ(link.takeSent(), io::bytes("80 18 0f 'persistentStore' 00 00 00 03 'a/b' 00"));

    link.preload(io::bytes("80 16 13 'persistentStoreResp' 00 00"));
    EXPECT_FALSE(store.load("c", out));
    EXPECT_EQ(out.size(), 0);
    link.takeSent();

    link.preload(io::bytes("80 15 13 'persistentStoreResp' 01"));
    store.save("a", span("blob"));
    EXPECT_EQ(link.takeSent(), io::bytes("80 1a 0f 'persistentStore' 00 00 00 01 'a' 01 'blob'"));
    link.preload(io::bytes("80 15 13 'persistentStoreResp' 02"));
    store.remove(nullptr);
    EXPECT_EQ(link.takeSent(), io::bytes("80 15 0f 'persistentStore' 00 00 00 00 02"));
}

TEST_F(PersistentStoreIpcTest, AnAnswerThatNobodyAwaitsClosesTheLink) {
    link.receive(io::bytes("80 15 13 'persistentStoreResp' 01"));
    EXPECT_TRUE(link.isOpen()) << "of a save, it says nothing";
    link.receive(io::bytes("80 17 13 'persistentStoreResp' 00 01 'x'"));
    ASSERT_EQ(link.errors.size(), 1u);
    EXPECT_NE(link.errors[0].find("Assertion 'loadData' failed"), std::string::npos);
    EXPECT_FALSE(link.isOpen());
}

TEST_F(PersistentStoreIpcTest, AnEndlessAnswerIsCutOff) {
    std::string wire = io::bytes("00 16 13 'persistentStoreResp' 00 01");
    const std::string frame = io::bytes("7f ff") + std::string(0x7fff, 'x');
    for (int i = 0; i < 64 * 1024 * 1024 / 0x7fff + 2; ++i)
        wire += frame;
    link.preload(wire);
    EXPECT_EQ(plat::whatOf([&] { store.load("a", out); }), "String exceeds maximum length");
}

TEST_F(PersistentStoreIpcTest, WithoutALinkItThrows) {
    link.preload("");
    EXPECT_THROW(store.load("a", out), plat::Exception) << "the peer ended instead of answering";
    link.ipc.close(false);
    EXPECT_THROW(store.save("a", span("x")), plat::Exception);
    link.destroy();
    EXPECT_THROW(store.remove("a"), plat::Exception);
}

} // namespace
} // namespace os
