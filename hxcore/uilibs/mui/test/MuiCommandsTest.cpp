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

TEST_F(CommandsTest, Menus) {
    EXPECT_EQ(run("menu"), "\n\n");
    FakeMenu edit;
    FakeMenu empty;
    toolkit.addMenu("edit", &edit);
    toolkit.addMenu("empty", &empty);
    std::string chosen;
    FakeMenu::Action action(&chosen);
    edit.addItem("&Copy", nullptr, nullptr, &action)->setChecked(true);
    edit.addSeparator();
    edit.addItem("Cut\nall", nullptr, nullptr, &action)->setEnabled(false);
    edit.addItem("7", nullptr, nullptr, &action);
    edit.addItem("A && B", nullptr, nullptr, &action);
    const struct {
        const char* line;
        const char* reply;
    } cases[] = {
        {"menu", "edit\nempty\n"},
        {"popupmenu", "edit\nempty\n"},
        {"menu edit listitems", "&Copy\n-\nCut all\n7\nA && B\n"},
        {"menu empty listitems", "\n"},
        {"popupmenu edit state 0", "1 1\n"},
        {"menu edit state Copy", "1 1\n"},
        {"menu edit state &Copy", "1 1\n"},
        {"menu edit state 2", "0 0\n"},
        {"menu edit state 7", "1 0\n"}, // no such number, but a label
        {"menu edit invoke 7", "1\n"},
        {"menu edit invoke A & B", "1\n"},
        {"menu edit invoke 2", "0\n"}, // disabled
        {"menu edit invoke 1", "0\n"}, // a separator
        {"menu edit invoke Paste", "0\n"},
        {"menu edit invoke", "0\n"},
        {"menu edit press 0", "0\n"},
        {"menu edit", "0\n"},
        {"menu edits listitems", "0\n"},
        {"menubar listitems", "0\n"}, // there is none
    };
    for (const auto& c : cases)
        EXPECT_EQ(run(c.line), std::string(c.reply) + "\n") << c.line;
    EXPECT_EQ(chosen, "7 A && B ");
}

// The words that each kind of element takes, what they raise, and what its lists show.
TEST_F(CommandsTest, EveryKindOfElement) {
    auto* row = static_cast<MuContainer*>(dialog->findElement("row"));
    auto* edit = new FakeEdit("edit", "E", MuEdit::Type::Normal);
    auto* secret = new FakeEdit("secret", "S", MuEdit::Type::Password);
    auto* choice = new Fake<TestChoice>("choice", "C", false);
    auto* list = new FakeList("list");
    auto* pager = new Fake<TestPager>("pager");
    auto* slider = new Fake<TestSlider>("slider", 2, 9);
    for (MuElement* element : std::initializer_list<MuElement*>{edit, secret, choice, list, pager, slider})
        row->add(element);
    choice->addItem(3, "Three & more");
    choice->addItem(1, "One");
    list->addColumn(MuList::ColumnType::Text, "A");
    list->addColumn(MuList::ColumnType::Text, "B");
    list->addRow({"a\n", "b"});
    list->addRow({"c"});
    list->addRow({"no"});
    list->setRowSelectable(2, false);
    pager->addPage(new FakeElement("p0"), "First");
    pager->addPage(new FakeElement("p1"), "Second");
    heard.clear();
    const struct {
        const char* line;
        const char* reply;
        const char* events;
    } cases[] = {
        {"settext dlg.row.edit some  words", "1\n", "edit/0"},
        {"state dlg.row.edit", "element Edit\ntype Normal\nvalue some  words\n*", ""},
        {"settext dlg.row.secret hush", "1\n", "secret/0"},
        {"state dlg.row.secret", "element Edit\ntype Password\nvalue <hidden>\n*", ""},
        {"settext dlg.row.edit", "1\n", "edit/0"},
        {"click dlg.row.choice", "1\n", "choice/1"},
        {"select dlg.row.choice 3", "1\n", "choice/0"},
        {"state dlg.row.choice", "element Choice\nvalue 3\nvaluestr Three & more\n*", ""},
        {"settext dlg.row.choice One", "1\n", "choice/0"},
        {"settext dlg.row.choice Two", "0\n", ""},
        {"select dlg.row.choice 2", "0\n", ""},
        {"listitems dlg.row.choice", "1:One\n3:Three & more\n", ""},
        {"select dlg.row.list 1", "1\n", "list/0"},
        {"state dlg.row.list", "element List\nvalue 1\n*", ""},
        {"select dlg.row.list 2", "0\n", ""},
        {"select dlg.row.list 3", "0\n", ""},
        {"dblclick dlg.row.list", "1\n", "list/1"},
        {"rightclick dlg.row.list", "1\n", "list/2"},
        {"click dlg.row.list", "0\n", ""},
        {"listitems dlg.row.list", "0:\"a \",\"b\"\n1:\"c\",\"\"\n2:\"no\",\"\"\n", ""},
        {"select dlg.row.pager 1", "1\n", "pager/0"},
        {"select dlg.row.pager 2", "0\n", ""},
        {"state dlg.row.pager", "element Pager\npage 1\n*", ""},
        {"listitems dlg.row.pager", "0:First\n1:Second\n", ""},
        {"click dlg.row.slider 4", "1\n", "slider/0"},
        {"click dlg.row.slider 10", "0\n", ""},
        {"state dlg.row.slider", "element Slider\nvalue 4\nmin 2\nmax 9\n*", ""},
        {"pressenter dlg.row.edit x", "0\n", ""},
    };
    for (const auto& c : cases) {
        heard.clear();
        const std::string got = run(c.line);
        std::string wanted = c.reply;
        if (wanted.ends_with("*"))
            EXPECT_EQ(got.substr(0, wanted.size() - 1), wanted.substr(0, wanted.size() - 1)) << c.line;
        else
            EXPECT_EQ(got, wanted + "\n") << c.line;
        EXPECT_EQ(heard, *c.events ? "d:" + std::string(c.events) + " " : "") << c.line;
    }
    heard.clear();
    for (MuElement* element : std::initializer_list<MuElement*>{edit, choice, list, pager, slider})
        element->setEnabled(false);
    for (const char* line :
         {"settext dlg.row.edit x", "click dlg.row.choice", "select dlg.row.choice 1", "select dlg.row.list 0",
          "dblclick dlg.row.list", "rightclick dlg.row.list", "select dlg.row.pager 0", "click dlg.row.slider 3"})
        EXPECT_EQ(run(line), "0\n\n") << line;
    EXPECT_EQ(heard, "");
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
          std::string("menubar"), std::string("menu x state 0"), std::string("popupmenu x"), std::string(1024, '.')})
        EXPECT_EQ(run(line), line == "state 0." ? run("state 0") : "0\n\n") << line;
}

} // namespace
} // namespace mui
