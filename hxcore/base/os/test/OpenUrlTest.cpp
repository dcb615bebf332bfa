#include "os/openUrl.h"
#include "io/FdSelectManager.h"
#include "os/LinkCbOpenUrl.h"
#include "os/ProcessMonitor.h"
#include "os/test/ordinaryUser.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace os {
namespace {

/// An opener in PATH that writes what it was given into a FIFO. For use by an ordinary user.
class Desktop {
public:
    Desktop() {
        EXPECT_EQ(mkfifo((dir / "out").c_str(), 0600), 0);
        script("ls /proc/$$/fd | tr '\\n' ' ' > " + (dir / "fds") + "\nprintf '%s|%s' \"$#\" \"$1\" > " +
               (dir / "out"));
        setenv("PATH", (dir.root + ":/usr/bin:/bin").c_str(), 1);
    }
    void script(const std::string& body, const char* interpreter = "#!/bin/sh\n") {
        std::ofstream(dir / "xdg-open") << interpreter << body << "\n";
        chmod((dir / "xdg-open").c_str(), 0755);
    }
    std::string given() { // waits for the opener
        std::ifstream in(dir / "out");
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool hasLogged(const std::string& line) const { return log.has(line); }
    void waitUntilLogged(const std::string& line) {
        for (int i = 0; i < 500 && !log.has(line); ++i)
            loop.poll(10);
        EXPECT_TRUE(log.has(line)) << line;
    }

    io::FdSelectManager loop{/*nested=*/true};
    plat::CapturedLog log;
    plat::TempDir dir;
};

TEST(OpenUrl, GivesTheAddressAsOneArgumentAndNothingElse) {
    asOrdinaryUser([] {
        Desktop desktop;
        const int leaky = dup2(1, 77); // without close-on-exec
        const char* url = "https://example.com/?a=$(touch x)&b='c' \"d\";ls *";
        EXPECT_TRUE(openUrl(url));
        EXPECT_EQ(desktop.given(), std::string("1|") + url);
        std::ifstream fds(desktop.dir / "fds");
        const std::string inOpener{std::istreambuf_iterator<char>(fds), {}};
        EXPECT_EQ((" " + inOpener).find(" " + std::to_string(leaky) + " "), std::string::npos) << inOpener;
        EXPECT_TRUE(desktop.hasLogged(std::string("30 OpenUrl: Opened url: ") + url));
        plat::LinkCbOpenUrl link;
        link.linkClicked("https://b");
        EXPECT_EQ(desktop.given(), "1|https://b");
    });
}

TEST(OpenUrl, TakesOnlyAddressesOfTheWebAndMail) {
    asOrdinaryUser([] {
        Desktop desktop;
        for (const char* url : {"HTTP://x", "https://x", "mailto:a@b"}) {
            EXPECT_TRUE(openUrl(url)) << url;
            EXPECT_EQ(desktop.given(), std::string("1|") + url);
        }
        for (const char* url : {"", "http://", "mailto:", "file:///etc/passwd", "javascript:x", "-help", "/tmp",
                                "example.com", " http://x", "ftp://x", "http:/x", "http://x\ny", "https://x\x7f"})
            EXPECT_FALSE(openUrl(url)) << url;
        EXPECT_FALSE(openUrl(nullptr));
    });
}

TEST(OpenUrl, OpensFoldersThatAreThere) {
    asOrdinaryUser([] {
        Desktop desktop;
        EXPECT_TRUE(openFolder(desktop.dir.root.c_str()));
        EXPECT_EQ(desktop.given(), "1|" + desktop.dir.root);
        for (const char* path : {"", ".", "-x", "/nonexistent/folder", "/etc/passwd"})
            EXPECT_FALSE(openFolder(path)) << path;
        EXPECT_FALSE(openFolder(nullptr));
    });
}

TEST(OpenUrl, TellsWhenTheOpenerIsMissingOrBroken) {
    asOrdinaryUser([] {
        Desktop desktop;
        desktop.script("neither a program nor an interpreter's", "");
        EXPECT_FALSE(openUrl("https://x")) << "execve has no shell to fall back on";
        EXPECT_TRUE(desktop.hasLogged("10 OpenUrl: Failed to open url: https://x"));
        desktop.script("exit 4");
        EXPECT_TRUE(openUrl("https://later"));
        desktop.waitUntilLogged("10 OpenUrl: Failed to open url: https://later");
        EXPECT_TRUE(desktop.hasLogged("10 OpenUrl: xdg-open ended with status 4"));
        setenv("PATH", (desktop.dir / "empty").c_str(), 1);
        EXPECT_FALSE(openUrl("https://x"));
        ASSERT_EQ(chdir(desktop.dir.root.c_str()), 0);
        setenv("PATH", ".:", 1);
        EXPECT_FALSE(openUrl("https://x")) << "not from the working directory";
        ASSERT_EQ(chdir("/"), 0);
    });
}

TEST(OpenUrl, RefusesAsRoot) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only for root";
    plat::inChild([] {
        Desktop desktop;
        EXPECT_FALSE(openUrl("https://x"));
        EXPECT_TRUE(desktop.hasLogged("10 OpenUrl: Refusing to open url as root: https://x"));
        EXPECT_FALSE(openFolder("/tmp"));
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "nothing was started";
    });
}

} // namespace
} // namespace os
