#include "ui/DirBrowser.h"

#include "plat/Exception.h"
#include "plat/test/TempDir.h"

#include <sys/stat.h>
#include <unistd.h>

namespace ui {
namespace {

struct DirBrowserTest : testing::Test {
    DirBrowserTest() {
        mkdir((dir / "sub").c_str(), 0700);
        mkdir((dir / ".cache").c_str(), 0700);
        for (const char* name : {"b.txt", "a.txt", ".hidden", "bad\xff"})
            plat::writeTextFile(dir / name, "x");
        EXPECT_EQ(symlink("sub", (dir / "link").c_str()), 0);
        EXPECT_EQ(symlink("nowhere", (dir / "stale").c_str()), 0);
    }
    /// The names, folders with "/".
    std::string names(unsigned flags) {
        DirBrowser browser(flags);
        browser.browse(dir.root.c_str());
        std::string all;
        for (const TreeBrowser::Entry& entry : browser.entries()) {
            EXPECT_EQ(std::string(entry.path.c_str()).rfind(dir.root + "/", 0), 0U);
            all += std::string(entry.path.c_str()).substr(dir.root.size() + 1) + (entry.isBranch ? "/ " : " ");
        }
        return all;
    }

    plat::TempDir dir;
};

TEST_F(DirBrowserTest, ListsByNameWhatTheFlagsWant) {
    EXPECT_EQ(names(0), "../ a.txt b.txt link/ stale sub/ ");
    EXPECT_EQ(names(DirBrowser::FoldersOnly), "../ link/ sub/ ");
    EXPECT_EQ(names(DirBrowser::ShowHidden), "../ .cache/ .hidden a.txt b.txt link/ stale sub/ ");
    EXPECT_EQ(names(DirBrowser::ShowHidden | DirBrowser::FoldersOnly), "../ .cache/ link/ sub/ ");
}

TEST_F(DirBrowserTest, AFolderThatCannotBeReadLeavesWhatWasThere) {
    DirBrowser browser;
    browser.browse(dir.root.c_str());
    const size_t count = browser.entries().size();
    EXPECT_THROW(browser.browse((dir / "nowhere").c_str()), plat::SystemException);
    EXPECT_THROW(browser.browse((dir / "a.txt").c_str()), plat::SystemException);
    EXPECT_EQ(browser.entries().size(), count);
    browser.browse("/");
    EXPECT_EQ(std::string(browser.entries().front().path.c_str()).rfind("//", 0), std::string::npos);
}

} // namespace
} // namespace ui
