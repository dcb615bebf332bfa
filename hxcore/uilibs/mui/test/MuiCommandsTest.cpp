#include "mui/MuiCommands.h"

#include "mui/MuInfoFrame.h"
#include "mui/test/FakeElements.h"
#include "plat/Exception.h"

#include <gtest/gtest.h>

namespace mui {
namespace {

class CommandsTest : public testing::Test {
protected:
    CommandsTest() {
        dialog = std::make_unique<FakeDialog>("dlg", rfb::Point{400, 300}, MuDialog::FixedSize | MuDialog::Modal);
        MuLayout* column = MuLayout::create(dialog.get(), "", Orientation::Vertical);
        MuLayout* row = MuLayout::create(column, "row", Orientation::Horizontal);
        button = MuButton::create(row, "go", "Go");
        text = MuText::create(row, "text", "See <a href=\"one:1\">one</a> and <a href=\"two:2\">two</a>");
        check = MuCheck::create(row, "check", "Check");
        dialog->addObserver(&listener, true);
        dialog->setShown(true);
    }

    std::string run(const std::string& line) {
        plat::DString reply;
        MuiCommands::run(&toolkit, line, reply);
        return reply.c_str();
    }

    FakeToolkit toolkit;
    std::string heard;
    Listener listener{&heard, "d"};
    std::unique_ptr<FakeDialog> dialog;
    MuButton* button;
    MuText* text;
    MuCheck* check;
};

TEST_F(CommandsTest, DialogsByNumberAndName) {
    FakeDialog second("second");
    EXPECT_EQ(run("version"), "1\n\n");
    EXPECT_EQ(run("dialogs"), "0 dlg\n1 second\n\n");
    EXPECT_EQ(run("lists dlg"), "row (layout)\nrow.go (button)\nrow.text (text)\nrow.check (check)\n\n");
    EXPECT_EQ(run("lists 0.row"), "row.go (button)\nrow.text (text)\nrow.check (check)\n\n");
    EXPECT_EQ(run("lists 1"), "\n");
    dialog.reset();
    EXPECT_EQ(run("dialogs"), "1 second\n\n");
    EXPECT_EQ(run("lists 0"), "0\n\n");
}

TEST_F(CommandsTest, NoDialogIsAnEmptyLine) {
    dialog.reset();
    EXPECT_EQ(run("dialogs"), "\n\n");
}

TEST_F(CommandsTest, State) {
    button->setPosition({3, 4});
    button->setSize({50, 20});
    button->setImage("picture");
    EXPECT_EQ(run("state dlg.row.go"), "element Button\ntype Normal\nimage picture\nshown 1\nenabled 1\nlocked 0\n"
                                       "pos 3,4\nsize 50,20\nlabel Go\n\n");
    EXPECT_EQ(run("state 0"), "element Dialog\nfixedsize 1\ndisableclose 0\nnohide 0\nmodal 1\nabsfixedsize 0\n"
                              "shown 1\nenabled 1\nlocked 0\npos 0,0\nsize 400,300\nlabel Title\n\n");
    EXPECT_EQ(run("state 0.row.text").substr(0, 32), "element Text\n0 one:1\n1 two:2\nsho");
    EXPECT_EQ(run("state 0.row.check").substr(0, 51), "element Check\ntype Normal\nvalue 0\nindeterminate 0\ns");
    EXPECT_EQ(run("listitems 0.row.check"), "\n\n");
    EXPECT_EQ(run("state 0.row.nothing"), "0\n\n");
}

// A label is text like any other: it must not look like the end of a reply.
TEST_F(CommandsTest, TextOnAStateLineStaysOnIt) {
    button->setLabel("a\n\nelement Dialog\r\x01");
    EXPECT_NE(run("state 0.row.go").find("label a  element Dialog  \n\n"), std::string::npos);
}

TEST_F(CommandsTest, Clicks) {
    EXPECT_EQ(run("click dlg.row.go"), "1\n\n");
    EXPECT_EQ(run("click dlg.row.go 1"), "1\n\n");
    EXPECT_EQ(run("click dlg.row.check 1"), "1\n\n");
    EXPECT_TRUE(check->isChecked());
    EXPECT_EQ(run("click dlg.row.check 0"), "1\n\n");
    EXPECT_FALSE(check->isChecked());
    EXPECT_EQ(heard, "d:go/1 d:go/1 d:check/0 d:check/0 ");
    for (const char* bad : {"click dlg.row.check", "click dlg.row.check x", "click dlg.row.check 1x",
                            "click dlg.row.check 99999999999", "click dlg.row.go 1 2", "click dlg.row.go ",
                            "dblclick dlg.row.go", "select dlg.row.go 1", "settext dlg.row.go x", "click", "click "})
        EXPECT_EQ(run(bad), "0\n\n") << bad;
}

TEST_F(CommandsTest, WhatIsInertOrHiddenRefuses) {
    button->setEnabled(false);
    EXPECT_EQ(run("click dlg.row.go"), "0\n\n");
    check->setLocked(true);
    EXPECT_EQ(run("click dlg.row.check 1"), "0\n\n");
    check->setLocked(false);
    dialog->setShown(false);
    EXPECT_EQ(run("click dlg.row.check 1"), "0\n\n");
    EXPECT_EQ(heard, "");
}

TEST_F(CommandsTest, LinksAreActivatedByNumber) {
    class Links : public plat::Markup::LinkCallback {
    public:
        void linkClicked(const char* href) override { last = href; }
        plat::String last;
    } links;
    text->setLinkCallback(&links);
    EXPECT_EQ(run("click dlg.row.text 1"), "1\n\n");
    EXPECT_STREQ(links.last.c_str(), "two:2");
    EXPECT_EQ(run("click dlg.row.text 2"), "0\n\n");
    EXPECT_EQ(run("click dlg.row.text -1"), "0\n\n");
    text->setText("<bad");
    EXPECT_EQ(run("click dlg.row.text 0"), "0\n\n");
}

TEST_F(CommandsTest, ShowCloseAndFocus) {
    EXPECT_EQ(run("show dlg.row 0"), "1\n\n");
    EXPECT_EQ(run("show dlg.row 0"), "0\n\n");
    EXPECT_EQ(run("show dlg.row 2"), "0\n\n");
    EXPECT_EQ(run("show dlg.row 1"), "1\n\n");
    EXPECT_EQ(run("focus dlg 1"), "1\n\n");
    EXPECT_EQ(run("focus dlg.row.go 0"), "1\n\n");
    EXPECT_EQ(run("focus dlg"), "0\n\n");
    EXPECT_EQ(run("close dlg.row"), "0\n\n");
    EXPECT_EQ(run("close dlg"), "1\n\n");
    EXPECT_EQ(heard, "d:dlg/4 d:go/5 d:dlg/3 ");
    EXPECT_FALSE(dialog->isShown());
}

TEST_F(CommandsTest, CheckLayout) {
    static_cast<FakeButton*>(button)->fake.minSize = {0, 9};
    EXPECT_EQ(run("checklayout dlg.row.go"), "row.go: Overflowing by 9 units\n\n");
    button->setSize({0, 9});
    EXPECT_EQ(run("checklayout dlg.row.go"), "\n\n");
}

TEST_F(CommandsTest, ACommandMayDeleteWhatItWorksOn) {
    listener.action = [this] { dialog.reset(); };
    EXPECT_EQ(run("click dlg.row.go"), "1\n\n");
    EXPECT_EQ(run("click dlg.row.go"), "0\n\n");
}

TEST_F(CommandsTest, AFailingActionIsAFailure) {
    listener.action = [] { throw plat::Exception("no"); };
    EXPECT_EQ(run("click dlg.row.go"), "0\n\n");
}

TEST_F(CommandsTest, GarbageIsAFailure) {
    for (const std::string& line :
         {std::string(), std::string(" "), std::string("Version"), std::string("version\0", 8), std::string("\xff\xfe"),
          std::string("state "), std::string("state ."), std::string("state 0."), std::string("state -1"),
          std::string("state 99999999999999999999"), std::string("inspect"), std::string("menubar listitems"),
          std::string("popupmenu"), std::string("menu x state 0"), std::string(1024, '.')})
        EXPECT_EQ(run(line), line == "state 0." ? run("state 0") : "0\n\n") << line;
}

} // namespace
} // namespace mui
