#include "os/openUrl.h"

#include "os/LinkCbOpenUrl.h"
#include "os/test/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace os {
namespace {

/// Puts an opener into PATH that writes what it was given into a FIFO.
class OpenUrlTest : public testing::Test {
protected:
    OpenUrlTest() : oldPath(getenv("PATH")) {
        EXPECT_EQ(mkfifo((dir / "out").c_str(), 0600), 0);
        script("#!/bin/sh\nls /proc/$$/fd | tr '\\n' ' ' > " + (dir / "fds") + "\nprintf '%s|%s' \"$#\" \"$1\" > " +
               (dir / "out") + "\n");
        setenv("PATH", (dir.path + ":/usr/bin:/bin").c_str(), 1);
    }
    ~OpenUrlTest() override { setenv("PATH", oldPath.c_str(), 1); }
    void script(const std::string& body) {
        std::ofstream(dir / "xdg-open") << body;
        chmod((dir / "xdg-open").c_str(), 0755);
    }
    std::string given() { // waits for the opener
        std::ifstream in(dir / "out");
        return {std::istreambuf_iterator<char>(in), {}};
    }

    TempDir dir;
    std::string oldPath;
};

TEST_F(OpenUrlTest, GivesTheAddressAsOneArgumentAndLeavesNoChild) {
    const int leaky = fcntl(STDERR_FILENO, F_DUPFD, 77); // without close-on-exec, and no number that a shell uses
    const char* url = "https://example.com/?a=$(touch x)&b='c' \"d\";ls *";
    EXPECT_TRUE(openUrl(url));
    EXPECT_EQ(given(), std::string("1|") + url);
    errno = 0;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    std::ifstream fds(dir / "fds");
    const std::string open{std::istreambuf_iterator<char>(fds), {}};
    EXPECT_EQ((" " + open).find(" " + std::to_string(leaky) + " "), std::string::npos) << open;
    close(leaky);
}

TEST_F(OpenUrlTest, TakesOnlyAddressesOfTheWebAndMail) {
    plat::LinkCbOpenUrl().linkClicked("https://link");
    EXPECT_EQ(given(), "1|https://link");
    for (const char* url : {"HTTP://x", "https://x", "mailto:a@b"}) {
        EXPECT_TRUE(openUrl(url)) << url;
        EXPECT_EQ(given(), std::string("1|") + url);
    }
    for (const char* url : {"", "http://", "mailto:", "file:///etc/passwd", "javascript:x", "-help", "/tmp",
                            "example.com", " http://x", "ftp://x", "http:/x", "http://x\ny", "https://x\x7f"})
        EXPECT_FALSE(openUrl(url)) << url;
    EXPECT_FALSE(openUrl(nullptr));
}

TEST_F(OpenUrlTest, OpensFoldersThatAreThere) {
    EXPECT_TRUE(openFolder(dir.path.c_str()));
    EXPECT_EQ(given(), "1|" + dir.path);
    for (const char* path : {"", ".", "-x", "/nonexistent/folder", "/etc/passwd"})
        EXPECT_FALSE(openFolder(path)) << path;
    EXPECT_FALSE(openFolder(nullptr));
}

TEST_F(OpenUrlTest, TellsWhenTheOpenerIsMissingOrBroken) {
    script("no interpreter line, and no program\n");
    EXPECT_FALSE(openUrl("https://x")) << "execve has no shell to fall back on";
    setenv("PATH", (dir / "empty").c_str(), 1);
    EXPECT_FALSE(openUrl("https://x"));
    ASSERT_EQ(chdir(dir.path.c_str()), 0);
    setenv("PATH", ".:", 1);
    EXPECT_FALSE(openUrl("https://x")) << "not from the working directory";
    ASSERT_EQ(chdir("/"), 0);
}

} // namespace
} // namespace os
