#include "ui/tx/WFileDialog.h"

#include "plat/test/TempDir.h"
#include "rfb/keySymbols.h"
#include "tx/test/XTest.h"
#include "wvw/WCanvas.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {
namespace key = rfb::key;

struct FileDialogTest : txtest::XTest {
    FileDialogTest() {
        mkdir((dir / "sub").c_str(), 0700);
        for (const char* name : {"a.txt", ".hidden", "sub/deep.txt"})
            plat::writeTextFile(dir / name, "x");
    }
    void open(const std::string& path, unsigned flags = 0) {
        dialog = std::make_unique<ui::WFileDialog>(nullptr, "Choose", path.c_str(), flags);
        dialog->show();
        pump();
        fire(20);
    }
    void press(std::initializer_list<uint32_t> keys) {
        for (const uint32_t keysym : keys) {
            dialog->canvas().handleKey(keysym, true);
            dialog->canvas().handleKey(keysym, false);
        }
        pump();
    }
    std::string path() { return dialog->getPath().c_str(); }

    plat::TempDir dir;
    std::unique_ptr<ui::WFileDialog> dialog;
};

TEST_F(FileDialogTest, AFileIsFoundByKeysAlone) {
    open(dir.root);
    EXPECT_EQ(path(), dir.root + "/");
    EXPECT_EQ(dialog->canvas().getSize(), rfb::Point(400, 200));
    press({'s', key::Return}); // into "sub"
    EXPECT_EQ(path(), dir.root + "/sub/");
    press({key::BackSpace});
    EXPECT_EQ(path(), dir.root + "/");
    press({'s', key::Return, key::Home, key::Return}); // and out again by ".."
    EXPECT_EQ(path(), dir.root + "/");
    press({'a', key::Return});
    EXPECT_EQ(path(), dir.root + "/a.txt");
    EXPECT_TRUE(dialog->isMapped());
    press({key::Tab, key::Return}); // in the path
    EXPECT_FALSE(dialog->isMapped());
    EXPECT_EQ(path(), dir.root + "/a.txt");
}

TEST_F(FileDialogTest, APathMayBeTyped) {
    open(dir / "a.txt"); // begins beside it
    EXPECT_EQ(path(), dir.root + "/a.txt");
    press({key::Tab});
    for (int i = 0; i < 300; i++)
        press({key::BackSpace});
    press({key::Return}); // nothing is no answer
    EXPECT_TRUE(dialog->isMapped());
    press({'s', 'u', 'b', key::Return}); // a folder is shown first
    EXPECT_TRUE(dialog->isMapped());
    EXPECT_EQ(path(), dir.root + "/sub/");
    press({key::Return}); // and is no file
    EXPECT_TRUE(dialog->isMapped());
    press({'n', 'e', 'w', key::Return});
    EXPECT_FALSE(dialog->isMapped());
    EXPECT_EQ(path(), dir.root + "/sub/new");
}

TEST_F(FileDialogTest, FoldersAndHiddenNames) {
    open(dir.root, ui::DirBrowser::FoldersOnly);
    press({'a'}); // no file is there to go to
    press({'s', key::Return, key::Tab, key::Return});
    EXPECT_FALSE(dialog->isMapped());
    EXPECT_EQ(path(), dir.root + "/sub/");
    open(dir.root);
    press({key::Down, key::Return}); // ".." and "a.txt"
    EXPECT_EQ(path(), dir.root + "/a.txt");
    press({key::Tab, key::Tab, key::Space}); // the check
    EXPECT_EQ(path(), dir.root + "/a.txt");  // what is typed stays
    press({key::Tab, key::Tab, key::Tab, key::Down, key::Return});
    EXPECT_EQ(path(), dir.root + "/.hidden");
    press({key::Escape});
    EXPECT_FALSE(dialog->isMapped());
}

// The field holds 255 bytes, but what is chosen is not cut to another name.
TEST_F(FileDialogTest, ALongPathIsChosenWhole) {
    const std::string deep = dir / std::string(200, 'd');
    const std::string file = deep + "/" + std::string(255, 'f');
    mkdir(deep.c_str(), 0700);
    plat::writeTextFile(file, "x");
    open(deep);
    press({'f', key::Return, key::Tab, key::Return});
    EXPECT_FALSE(dialog->isMapped());
    EXPECT_EQ(path(), file);
}

TEST_F(FileDialogTest, WhatIsNoFolderOrGoesAwayIsNoTrouble) {
    open(dir / "nowhere/at/all");
    EXPECT_EQ(path(), "/");
    open(dir.root);
    rmdir((dir / "sub").c_str());
    unlink((dir / "sub/deep.txt").c_str());
    rmdir((dir / "sub").c_str());
    press({'s', key::Return}); // it has gone: like a file
    EXPECT_EQ(path(), dir.root + "/sub");
    if (geteuid() == 0)
        return; // root reads everything
    mkdir((dir / "closed").c_str(), 0);
    open(dir.root);
    press({'c', key::Return});
    EXPECT_TRUE(dialog->isShowingError());
}

} // namespace
