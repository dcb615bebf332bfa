// The file chooser, driven by what its elements tell.
#include "mui/MuFileDialog.h"

#include "mui/MuButton.h"
#include "mui/MuChoice.h"
#include "mui/MuEdit.h"
#include "mui/MuList.h"
#include "mui/MuSuperbox.h"
#include "mui/tx/test/DialogTxTest.h"
#include "plat/test/TempDir.h"

#include <sys/stat.h>
#include <unistd.h>

#include <X11/keysym.h>

namespace mui {
namespace {

class FileDialogTest : public DialogTxTest, protected MuFileDialog::Callback {
protected:
    FileDialogTest() {
        setenv("HOME", dir.root.c_str(), 1);
        unsetenv("XDG_DESKTOP_DIR");
        mkdir((dir / "folder").c_str(), 0700);
        mkdir((dir / "folder/inner").c_str(), 0700);
        for (const char* name : {"one.png", "two.txt", ".hidden.png"})
            plat::writeTextFile(dir / name, "x");
        chooser = MuFileDialog::create(nullptr, this);
    }

    void fileChosen(const char* path) override { told += path ? "chosen " + relative(path) : std::string("cancelled"); }
    void fileFailed(const char* message) override { told += std::string("failed ") + message; }

    std::string relative(const std::string& path) const {
        return path.starts_with(dir.root + "/") ? path.substr(dir.root.size() + 1) : path;
    }

    bool open(const char* patterns = nullptr, const char* label = nullptr, bool filesMode = true) {
        chooser->showOpen("Open", dir.root.c_str(), patterns, label, filesMode);
        return found();
    }

    bool found() {
        for (const auto& [serial, top] : toolkit.getDialogs())
            if (strcmp(top->getName(), "saveDlg") == 0)
                dialog = dynamic_cast<MuDialog*>(top);
        return dialog && waitFor([&] { return windowOf(*dialog)->isMapped(); });
    }

    template <class T>
    T* element(const char* path) {
        T* const result = dynamic_cast<T*>(dialog->findElement(path));
        EXPECT_NE(result, nullptr) << path;
        return result;
    }
    MuEdit* name() { return element<MuEdit>("mainLyt.name"); }
    MuList* files() { return element<MuList>("mainLyt.browseLyt.files"); }
    MuButton* button(const char* which) { return element<MuButton>((std::string("buttons.") + which).c_str()); }

    std::string rows() {
        std::string all;
        for (int row = 0; row < files()->getRowCount(); ++row)
            all += std::string(files()->getCell(row, 1)) + " ";
        return all;
    }
    void pick(int row) {
        files()->setSelected(row);
        files()->notify(EventChanged);
    }
    void type(KeySym key) {
        sendKey(*dialog, key);
        XSync(tx::dpy, False);
        while (tx::processEvents()) {
        }
    }
    std::string answer() {
        EXPECT_TRUE(waitFor([&] { return !told.empty(); }));
        return std::exchange(told, {});
    }

    const plat::TempDir dir;
    std::string told;
    std::unique_ptr<MuFileDialog> chooser;
    MuDialog* dialog = nullptr;
};

TEST_F(FileDialogTest, AFileIsChosenFromTheList) {
    ASSERT_TRUE(open());
    EXPECT_EQ(rows(), "folder one.png two.txt ");
    EXPECT_FALSE(button("open")->isEnabled());
    pick(0);
    EXPECT_STREQ(name()->getText(), "") << "a folder is no file";
    EXPECT_FALSE(button("open")->isEnabled());
    pick(2);
    EXPECT_STREQ(name()->getText(), "two.txt");
    EXPECT_TRUE(button("open")->isEnabled());
    button("open")->notify(EventActivated);
    EXPECT_EQ(told, "") << "told from the loop, not from within the button";
    EXPECT_EQ(answer(), "chosen two.txt");
    EXPECT_FALSE(dialog->isShown());
}

TEST_F(FileDialogTest, FiltersHideAndFoldersAreEntered) {
    for (const char* patterns : {"PNG", ".png", "gif,,.pNg"}) {
        ASSERT_TRUE(open(patterns, "Pictures"));
        EXPECT_EQ(rows(), "folder one.png ") << patterns;
    }
    auto* filter = element<MuChoice>("mainLyt.filterLyt.filter");
    filter->setSelected(0);
    filter->notify(EventChanged);
    EXPECT_EQ(rows(), ".. folder .hidden.png one.png two.txt ");
    files()->activateRow(1);
    EXPECT_STREQ(element<MuSuperbox>("mainLyt.folderLyt.folder")->getText(), (dir / "folder").c_str());
    EXPECT_EQ(rows(), ".. inner ");
    element<MuButton>("mainLyt.folderLyt.upBtn")->notify(EventActivated);
    EXPECT_EQ(element<MuList>("mainLyt.browseLyt.places")->getSelected(), 0) << "home again";
    files()->activateRow(3);
    EXPECT_EQ(answer(), "chosen one.png") << "a double click on a file is the open button";
}

TEST_F(FileDialogTest, APathIsCompletedAsItIsTyped) {
    ASSERT_TRUE(open());
    name()->setFocus();
    name()->setText((dir.root + "/").c_str());
    type('f');
    EXPECT_STREQ(name()->getText(), (dir / "folder/").c_str());
    EXPECT_FALSE(button("open")->isEnabled()) << "a folder";
    type('/'); // accepts the completion
    EXPECT_STREQ(name()->getText(), (dir / "folder/").c_str());
    type('n');
    type('e');
    EXPECT_STREQ(name()->getText(), (dir / "folder/ne").c_str());
    EXPECT_TRUE(button("open")->isEnabled());
    type(XK_Return);
    EXPECT_EQ(answer(), "chosen folder/ne");
}

TEST_F(FileDialogTest, SavingKeepsTheExtensionAndFoldersCanBeChosen) {
    chooser->showSave("Save", (dir / "report.tar.gz").c_str(), nullptr, nullptr, true);
    ASSERT_TRUE(found());
    int start, end;
    name()->getSelection(&start, &end);
    EXPECT_EQ(std::string(name()->getText()).substr(0, static_cast<size_t>(end)), "report.tar");
    EXPECT_EQ(start, 0);
    button("save")->notify(EventActivated);
    EXPECT_EQ(answer(), "chosen report.tar.gz");
    chooser->showSave("Save", (dir / "report").c_str(), nullptr, nullptr, true);
    name()->getSelection(&start, &end);
    EXPECT_EQ(end, 6) << "all of a name without an extension";
    chooser->showOpen("Choose", (dir / "missing/deep").c_str(), nullptr, nullptr, false);
    ASSERT_TRUE(found());
    EXPECT_STREQ(element<MuSuperbox>("mainLyt.folderLyt.folder")->getText(), "/") << "its folder doesn't exist";
    EXPECT_TRUE(button("open")->isEnabled());
    type(XK_Escape);
    EXPECT_EQ(answer(), "cancelled");
}

TEST_F(FileDialogTest, AFolderThatGoesAwayIsAFailureToldOnce) {
    ASSERT_TRUE(open());
    EXPECT_EQ(rows(), "folder one.png two.txt ");
    ASSERT_EQ(rmdir((dir / "folder/inner").c_str()), 0);
    ASSERT_EQ(rmdir((dir / "folder").c_str()), 0);
    files()->activateRow(0);
    EXPECT_EQ(answer().substr(0, 13), "failed access");
    EXPECT_FALSE(dialog->isShown());
}

TEST_F(FileDialogTest, NamesAreShownSafelyAndChosenExactly) {
    const std::string longName(255, 'n');
    const std::pair<const char*, std::string> names[] = {
        {"a line.txt", "a\nline.txt"}, {"evilgnp.exe", "evil\u202egnp.exe"}, {"\ufffd", "\u200b"},
        {"z\"' \\$", "z\"' \\$"},      {longName.c_str(), longName},
    };
    for (const auto& [shown, name] : names)
        plat::writeTextFile(dir / name, "x");
    plat::writeTextFile(dir / "bad\xff", "x"); // no text at all: left out
    mkfifo((dir / "fifo").c_str(), 0600);
    for (const auto& [target, link] : {std::pair("round1", "round2"), std::pair("round2", "round1")})
        EXPECT_EQ(symlink(target, (dir / link).c_str()), 0);
    for (const auto& [shown, name] : names) {
        ASSERT_TRUE(open());
        EXPECT_EQ(files()->getRowCount(), 11);
        int row = 0;
        while (row < 10 && std::string_view(files()->getCell(row, 1)) != shown)
            ++row;
        pick(row);
        button("open")->notify(EventActivated);
        EXPECT_EQ(answer(), "chosen " + name);
    }
}

TEST_F(FileDialogTest, HomeIsATildeAndOtherFoldersAreMeantFromHere) {
    ASSERT_TRUE(open());
    name()->setFocus();
    name()->setText("~"); // no key of its own
    EXPECT_STREQ(name()->getText(), "~");
    type('/');
    EXPECT_STREQ(name()->getText(), (dir.root + "/").c_str());
    type('f');
    EXPECT_STREQ(name()->getText(), (dir / "folder/").c_str());
    auto* folder = element<MuSuperbox>("mainLyt.folderLyt.folder");
    const struct {
        const char* typed;
        std::string entered;
    } cases[] = {
        {"folder", dir / "folder"},
        {"inner/", dir / "folder/inner"},
        {"..", dir / "folder"},
        {"nowhere", dir / "folder"},
        {"~", dir.root},
        {"~/folder/./inner", dir / "folder/inner"},
        {"/", "/"},
    };
    for (const auto& c : cases) {
        folder->handleCommand("pressenter", c.typed);
        const bool isThere = strcmp(c.typed, "nowhere") != 0;
        EXPECT_STREQ(folder->getText(), isThere ? c.entered.c_str() : c.typed) << c.typed;
        EXPECT_TRUE(dialog->isShown());
    }
}

} // namespace
} // namespace mui
