#include "mui/wvw/test/TwinsTest.h"

#include "loc/Localize.h"
#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuLine.h"
#include "mui/MuList.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSlider.h"
#include "mui/MuSplitter.h"
#include "mui/MuStatic.h"
#include "mui/wvw/MuMenuBarWvw.h"
#include "mui/wvw/MuSuperboxWvw.h"
#include "rfb/keySymbols.h"

namespace mui {
namespace {

class ControlsTest : public TwinsTest {
protected:
    std::string takeHeard() { return std::exchange(heard, ""); }
    void type(const char* text) {
        for (; *text; ++text)
            window.key(static_cast<unsigned char>(*text));
    }
};

TEST_F(ControlsTest, AnEditTellsOfTheUserAndNotOfTheProgram) {
    MuEdit* edit = MuEdit::create(column, "edit", "&Name");
    MuEdit::NumericFilter ports(0, 65535);
    layOut();
    edit->setText("text");
    EXPECT_EQ(heard, "");
    edit->setFocus();
    type("s");
    EXPECT_STREQ(edit->getText(), "texts");
    EXPECT_EQ(takeHeard(), "edit/0 ");
    edit->setText("6553");
    edit->setFilter(&ports);
    type("x");
    type("6");
    EXPECT_STREQ(edit->getText(), "6553");
    EXPECT_EQ(heard, "");
    type("5");
    EXPECT_STREQ(edit->getText(), "65535");
    EXPECT_EQ(takeHeard(), "edit/0 ");
    edit->setLocked(true);
    type("1");
    EXPECT_STREQ(edit->getText(), "65535");
    // The label takes no room from a field that may grow.
    EXPECT_EQ(edit->getSize().x, 300);
    edit->setFieldWidth(200);
    EXPECT_GT(edit->getMinWidth(0), 200);
}

TEST_F(ControlsTest, APasswordLooksTheSameWhateverItIs) {
    MuEdit* edit = MuEdit::create(column, "pw", nullptr, MuEdit::Type::Password);
    layOut();
    std::vector<uint32_t> looks[2];
    for (int i = 0; i < 2; ++i) {
        edit->setText(i ? "iiii" : "MWMW");
        window.paintAll();
        for (int y = 0; y < edit->getSize().y; ++y)
            for (int x = 0; x < 300; ++x)
                looks[i].push_back(window.pixelAt(x, y));
    }
    EXPECT_EQ(looks[0], looks[1]);
    EXPECT_EQ(std::string(edit->getState().c_str()).find("MWMW"), std::string::npos);
    EXPECT_NE(std::string(edit->getState().c_str()).find("value <hidden>\n"), std::string::npos);
}

TEST_F(ControlsTest, AChoiceShowsAmpersandsAndTellsOfClicksFirst) {
    MuChoice* choice = MuChoice::create(column, "choice", "Pick");
    choice->addItem(1, "R&D");
    choice->addItem(2, "Sales && more");
    layOut();
    choice->setSelected(1);
    EXPECT_EQ(heard, "");
    EXPECT_STREQ(choice->getText(), "R&D");
    choice->setFocus();
    window.key(rfb::key::Down);
    EXPECT_EQ(takeHeard(), "choice/0 ");
    EXPECT_EQ(choice->getSelected(), 2);
    EXPECT_STREQ(choice->getText(), "Sales && more");
    const rfb::Point at = middleOf(choice);
    window.click(at.x + 60, at.y);
    EXPECT_EQ(takeHeard(), "choice/1 ");
    EXPECT_TRUE(window.anyPopup());
    choice->removeAll();
    EXPECT_STREQ(choice->getText(), "");
    EXPECT_EQ(choice->getSelected(), -1);
    EXPECT_EQ(heard, "");
}

TEST_F(ControlsTest, AListTellsOfSelectionClickAndDoubleClick) {
    MuList* list = MuList::create(column, "list", MuList::Heading);
    list->addColumn(MuList::ColumnType::Text, "Name");
    list->addColumn(MuList::ColumnType::Text, "Size", 60, MuList::Align::End);
    for (int i = 0; i < 500; ++i)
        list->addRow({plat::strFormat("row %d", i), "1"});
    column->setChildLayout(list, MuLayout::Fixed, 180);
    layOut();
    EXPECT_LT(list->getMinHeight(0), 300); // it scrolls
    list->setSelected(3);
    EXPECT_EQ(heard, "");
    int y = 0;
    while (list->rowAt({20, y}) != 1)
        ++y;
    window.click(20, y + 3);
    EXPECT_EQ(takeHeard(), "list/0 list/1 ");
    EXPECT_EQ(list->getSelected(), 1);
    window.click(20, y + 3);
    EXPECT_EQ(takeHeard(), "list/2 "); // the selection is the same
    window.key(rfb::key::Down);
    EXPECT_EQ(takeHeard(), "list/0 ");
    EXPECT_EQ(list->getSelected(), 2);
    window.click(20, y + 3, 2); // a right click says which row its menu is for
    EXPECT_EQ(takeHeard(), "list/0 ");
    EXPECT_EQ(list->getSelected(), 1);
    list->removeRow(0);
    EXPECT_EQ(list->getSelected(), 0);
    list->removeAllRows();
    EXPECT_EQ(list->getSelected(), -1);
    EXPECT_EQ(heard, "");
    toDelete = list;
    list->addRow({"only"});
    layOut();
    window.click(20, y - 3); // the list goes while it tells
    EXPECT_EQ(column->getChildCount(), 0);
}

TEST_F(ControlsTest, APagerKeepsTabsAndPagesInStep) {
    MuPager* pager = MuPager::create(column, "pager");
    MuLayout* first = MuLayout::create(pager, "first", Orientation::Vertical);
    MuLayout* second = MuLayout::create(pager, "second", Orientation::Vertical);
    pager->addPage(first, "&First");
    pager->addPage(second, "Se&cond");
    MuButton* a = MuButton::create(first, "a", "A");
    MuButton* b = MuButton::create(second, "b", "B");
    column->setChildLayout(pager, MuLayout::Fixed, 150);
    layOut();
    EXPECT_EQ(pager->getMinHeight(300), a->getMinHeight(0) + 20 + pager->getContentOrigin().y - 10);
    EXPECT_TRUE(a->isShownFully());
    EXPECT_FALSE(b->isShownFully());
    a->setFocus();
    window.hold(rfb::key::ControlL);
    window.key(rfb::key::PageDown);
    window.letGo(rfb::key::ControlL);
    EXPECT_EQ(takeHeard(), "pager/0 ");
    EXPECT_EQ(pager->getPage(), 1);
    EXPECT_TRUE(b->isShownFully());
    EXPECT_FALSE(a->isShownFully());
    EXPECT_GT(b->getSize().x, 250);
    pager->setPage(0);
    EXPECT_EQ(takeHeard(), "pager/0 ");
    pager->setPage(1);
    pager->removePage(0);
    EXPECT_EQ(pager->getPage(), 0);
    EXPECT_TRUE(b->isShownFully());
    // Where an inspector says that the button is, there it is.
    rfb::Point at = b->getPosition();
    for (MuElement* up = b->getParent(); up != column; up = up->getParent())
        at = at + up->getPosition();
    takeHeard();
    window.click(at.x + 5, at.y + 5);
    EXPECT_EQ(takeHeard(), "b/1 ");
}

TEST_F(ControlsTest, ASliderCountsFromItsMinimum) {
    MuSlider* slider = MuSlider::create(column, "slider", -3, 3);
    layOut();
    slider->setValue(1);
    EXPECT_EQ(heard, "");
    slider->setFocus();
    window.key(rfb::key::Right);
    EXPECT_EQ(slider->getValue(), 2);
    window.key(rfb::key::Right);
    window.key(rfb::key::Right);
    EXPECT_EQ(slider->getValue(), 3);
    EXPECT_EQ(takeHeard(), "slider/0 slider/0 ");
    slider->setRange(-3, 0);
    EXPECT_EQ(slider->getValue(), 0);
}

TEST_F(ControlsTest, ASplitterIsDraggedByItsHandle) {
    MuSplitter* splitter = MuSplitter::create(column, "split", Orientation::Horizontal);
    MuButton* left = MuButton::create(splitter, "left", "L");
    MuButton::create(splitter, "right", "R");
    column->setChildLayout(splitter, MuLayout::Fixed, 60);
    layOut();
    EXPECT_EQ(splitter->getMinSizes()[0], left->getMinWidth(0));
    splitter->setSizes({100});
    layOut();
    window.move(102, 20);
    window.press();
    window.move(142, 20);
    window.release();
    EXPECT_EQ(takeHeard(), "split/0 ");
    EXPECT_EQ(left->getSize(), rfb::Point(140, 60));
    window.click(50, 20); // the children get what is theirs
    EXPECT_EQ(takeHeard(), "left/1 ");
    // The handle follows the pointer through the same place in it.
    window.move(142, 20);
    window.press();
    for (const int x : {152, 152, 162})
        window.move(x, 20);
    window.release();
    EXPECT_EQ(left->getSize().x, 160);
    takeHeard();
}

TEST_F(ControlsTest, ASplittersHandleIsAStopOfTabAndMovesByArrows) {
    MuSplitter* splitter = MuSplitter::create(column, "split", Orientation::Horizontal);
    MuButton* left = MuButton::create(splitter, "left", "L");
    MuButton* middle = MuButton::create(splitter, "middle", "M");
    MuButton* right = MuButton::create(splitter, "right", "R");
    column->setChildLayout(splitter, MuLayout::Fixed, 60);
    splitter->setSizes({100, 90});
    layOut();
    left->setFocus();
    window.key(rfb::key::Tab);
    EXPECT_FALSE(left->hasFocus() || middle->hasFocus());
    layOut();
    EXPECT_GT(window.countPixels({100, 0, 105, 60}, 0x000000), 5); // the mark of the focus
    struct Step {
        uint32_t key;
        int size;
    };
    for (const Step& step : {Step{rfb::key::Right, 108}, Step{rfb::key::Left, 100}, Step{rfb::key::Left, 92},
                             Step{rfb::key::Home, left->getMinWidth(0)}}) {
        window.key(step.key);
        EXPECT_EQ(left->getSize().x, step.size);
    }
    EXPECT_EQ(takeHeard(), "split/0 split/0 split/0 split/0 ");
    window.key(rfb::key::End);
    EXPECT_EQ(right->getSize().x, right->getMinWidth(0));
    window.key(rfb::key::Down); // not along its axis: on to the next stop
    EXPECT_TRUE(middle->hasFocus());
    window.key(rfb::key::Tab);
    middle->setShown(false); // with it goes the handle that has the focus
    splitter->doLayout();
    layOut();
    splitter->setLocked(true);
    right->setFocus();
    window.key(rfb::key::Tab);
    EXPECT_FALSE(splitter->hasFocus());
    takeHeard();
}

TEST_F(ControlsTest, AFormsFieldsBeginOnOneLine) {
    MuEdit* name = MuEdit::create(column, "name", "&Name:");
    MuLayout* group = MuLayout::create(column, "", Orientation::Vertical);
    MuChoice* where = MuChoice::create(group, "where", "Where it &stands:");
    MuEdit* bare = MuEdit::create(column, "bare", nullptr);
    const int widest = dynamic_cast<MuLabelled*>(where)->getLabelWidth();
    EXPECT_EQ(alignLabels(column), widest + 8);
    EXPECT_EQ(alignLabels(column), widest + 8); // again: no growth
    column->setSize({300, 200});
    layOut();
    // A press beside a field's left edge is one on its label, which leads to it; the edge is the same for both.
    for (MuElement* element : {static_cast<MuElement*>(name), static_cast<MuElement*>(where)}) {
        const rfb::Point at = element->getPosition() + (element == where ? group->getPosition() : rfb::Point());
        int edge = 0;
        const uint32_t ground = window.pixelAt(at.x, at.y);
        while (edge < 200 && window.pixelAt(at.x + edge, at.y + 3) == ground)
            ++edge;
        EXPECT_EQ(edge, widest + 8) << element->getName();
    }
    name->setLabel("A label that is wider than any other:");
    EXPECT_GT(alignLabels(column), widest + 8);
    EXPECT_EQ(dynamic_cast<MuLabelled*>(bare)->getLabelWidth(), 0);
}

TEST_F(ControlsTest, AScrollShowsWhatGetsTheFocus) {
    MuScroll* scroll = MuScroll::create(column, "scroll");
    MuLayout* inner = MuLayout::create(scroll, "inner", Orientation::Vertical);
    MuButton* last = nullptr;
    for (int i = 0; i < 20; ++i)
        last = MuButton::create(inner, plat::strFormat("b%d", i).c_str(), "Button");
    column->setChildLayout(scroll, MuLayout::Fixed, 100);
    layOut();
    EXPECT_GT(inner->getSize().y, 400);
    EXPECT_LT(inner->getSize().x, 300); // room for the bar
    EXPECT_LE(scroll->getMinHeight(300), 100);
    last->setFocus();
    layOut();
    const rfb::Point at = middleOf(scroll);
    window.click(at.x, 90);
    EXPECT_EQ(takeHeard(), "b19/1 ");
    // Less in it, and the bar goes.
    while (inner->getChildCount() > 1)
        inner->remove(inner->getChild(-1));
    scroll->doLayout();
    EXPECT_EQ(inner->getSize().x, 300);
}

TEST_F(ControlsTest, ArrowsChooseInARadioGroup) {
    auto* group = new MuCheck::Group;
    MuCheck* a = MuCheck::create(column, "a", "A", group);
    MuCheck* off = MuCheck::create(column, "off", "Off", group);
    MuCheck* c = MuCheck::create(column, "c", "C", group);
    off->setEnabled(false);
    a->setChecked(true);
    a->setFocus();
    layOut();
    window.key(rfb::key::Down);
    EXPECT_TRUE(c->isChecked() && c->hasFocus() && !a->isChecked());
    window.key(rfb::key::Right); // around
    EXPECT_TRUE(a->isChecked() && a->hasFocus());
    window.key(rfb::key::Up);
    EXPECT_TRUE(c->isChecked());
    EXPECT_EQ(takeHeard(), "c/0 a/0 c/0 ");
}

// Its observer deletes it: nothing of it may be touched on the way back.
TEST_F(ControlsTest, AnElementMayGoInItsOwnEvent) {
    namespace key = rfb::key;
    struct Box : MuSuperboxWvw {
        Box() : MuSuperboxWvw("e", "&Find", nullptr, 80) {}
    };
    const auto make = [&](int kind) -> MuElement* {
        switch (kind) {
        case 0:
            return MuButton::create(column, "e", "&Go");
        case 1:
            return MuCheck::create(column, "e", "&On");
        case 2: {
            auto* group = new MuCheck::Group;
            MuCheck* first = MuCheck::create(column, "first", "1", group);
            MuCheck* second = MuCheck::create(column, "e", "2", group);
            first->setFocus();
            return second;
        }
        case 3: {
            MuChoice* choice = MuChoice::create(column, "e", "&Which");
            for (int i = 0; i < 3; ++i)
                choice->addItem(i, plat::strFormat("%d", i).c_str());
            return choice;
        }
        case 4:
            return MuEdit::create(column, "e", "&Text");
        case 5: {
            MuList* list = MuList::create(column, "e", MuList::EnterActivates);
            list->addColumn(MuList::ColumnType::Text, nullptr);
            for (const char* row : {"a", "b"})
                list->addRow({plat::String(row)});
            list->setSelected(0);
            return list;
        }
        case 6: {
            MuPager* pager = MuPager::create(column, "e");
            for (const char* page : {"&One", "&Two"})
                pager->addPage(MuStatic::create(pager, page, page), page);
            return pager;
        }
        case 7:
            return MuSlider::create(column, "e", 0, 5);
        case 8: {
            MuSplitter* splitter = MuSplitter::create(column, "e", Orientation::Horizontal);
            for (const char* pane : {"l", "r"})
                MuStatic::create(splitter, pane, pane);
            splitter->setSizes({100});
            return splitter;
        }
        default: {
            auto* box = new Box;
            column->add(box);
            return box;
        }
        }
    };
    const struct {
        int kind;
        std::vector<uint32_t> keys; // with the focus on it; none: a click at the place, a drag by 20 from it
        rfb::Point press;
    } cases[] = {{0, {key::Return}, {}}, {0, {key::Space}, {}}, {0, {}, {5, 5}},
                 {1, {key::Space}, {}},  {1, {}, {40, 5}},      {2, {key::Down}, {}},
                 {3, {key::Down}, {}},   {3, {}, {250, 5}},     {3, {key::F4, key::Down, key::Return}, {}},
                 {4, {'x'}, {}},         {5, {key::Down}, {}},  {5, {}, {20, 5}},
                 {5, {key::Return}, {}}, {6, {key::Right}, {}}, {6, {}, {60, 8}},
                 {7, {key::Right}, {}},  {7, {}, {200, 10}},    {8, {key::Tab, key::Right}, {}},
                 {8, {}, {102, 3}},      {9, {'x'}, {}}};
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << each.kind << " " << each.keys.size());
        column->clear();
        takeHeard();
        MuElement* element = make(each.kind);
        layOut();
        if (each.kind != 2)
            element->setFocus();
        takeHeard();
        toDelete = element;
        for (const uint32_t keysym : each.keys) {
            if (wvw::Widget* popup = window.anyPopup())
                window.popupOf(popup)->key(keysym);
            else
                window.key(keysym);
        }
        if (each.keys.empty()) {
            const rfb::Point at = element->getPosition() + each.press;
            window.move(at.x, at.y);
            window.press();
            window.move(at.x + (each.kind == 8 ? 20 : 0), at.y);
            window.release();
        }
        EXPECT_EQ(toDelete, nullptr);
        EXPECT_EQ(takeHeard().substr(0, 2), "e/");
        clock.advance(1000); // clicks that wait for a second one, carets
        toDelete = nullptr;
    }
}

// What a driver of the program reads; the rest of each is alike for all.
TEST_F(ControlsTest, EachKindTellsItsTypeAndState) {
    MuButton* const image = MuButton::create(column, "image", "", MuButton::Type::Image);
    image->setImage("sdOkay");
    MuButton* const link = MuButton::create(column, "link", "More", MuButton::Type::Link);
    MuStatic* const text = MuStatic::create(column, "static", "Text", MuStatic::Align::Right);
    text->setBold(true);
    struct Box : MuSuperboxWvw {
        Box() : MuSuperboxWvw("superbox", "Find", nullptr, 100) {}
    };
    auto* const box = new Box;
    column->add(box);
    box->setText("wanted");
    const struct {
        MuElement* element;
        const char* type;
        const char* state;
    } cases[] = {
        {image, "button", "element Button\ntype Image\nimage sdOkay\nshown "},
        {link, "button", "element Button\ntype Link\nshown "},
        {MuCheck::create(column, "radio", "One", new MuCheck::Group), "check",
         "element Check\ntype Radio\nvalue 0\nindeterminate 0\nshown "},
        {MuFrame::create(column, "frame", MuFrame::Type::Sunken), "frame", "element Frame\ntype Sunken\nmargin 8,8\n"},
        {MuImage::create(column, "picture", nullptr, {7, 9}), "image",
         "element Image\nvalue <unknown>\nimSize 7,9\nshown "},
        {MuImage::create(column, "picture", "sdError"), "image", "element Image\nvalue sdError\nimSize 0,0\nshown "},
        {column, "layout", "element Layout\ntype Vertical\nshown "},
        {MuLine::create(column, "line", MuLine::Type::Colour, Orientation::Vertical), "line",
         "element Line\ntype color type vertical\nshown "},
        {MuLine::create(column, "line"), "line", "element Line\ntype etched type horizontal\nshown "},
        {MuScroll::create(column, "scroll"), "scroll", "element Scroll\nstyle 1\nshown "},
        {MuSplitter::create(column, "splitter", Orientation::Horizontal), "splitter", "element Splitter\n\nshown "},
        {text, "static", "element Static\ntype Right\nbold 1\nshown "},
        {box, "superbox", "element Superbox\nvalue wanted\npopup-dialogid \nshown "},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(c.element->getType(), c.type);
        EXPECT_EQ(std::string(c.element->getState().c_str()).substr(0, strlen(c.state)), c.state);
    }
    heard.clear();
    EXPECT_TRUE(box->handleCommand("settext", "other"));
    EXPECT_STREQ(box->getText(), "other");
    EXPECT_TRUE(box->handleCommand("pressenter", "third"));
    EXPECT_STREQ(box->getText(), "third");
    EXPECT_FALSE(box->handleCommand("click", "1"));
    EXPECT_EQ(takeHeard(), "superbox/0 ");
    box->setEnabled(false);
    EXPECT_FALSE(box->handleCommand("settext", "x"));
}

TEST_F(ControlsTest, AMenuBarHasItsStandardMenusInOrder) {
    loc::Localize::instance().init();
    auto* bar = new MuMenuBarWvw;
    column->add(bar);
    std::string chosen;
    struct Action : ui::Menu::ActionCallback {
        explicit Action(std::string* out) : target(out) {}
        void menuAction(ui::Menu::Item* item) override { *target += std::string(item->getText()) + " "; }
        std::string* target;
    } action(&chosen);
    const ui::Menu::Item* about = bar->addAbout(&action);
    EXPECT_EQ(about, bar->getMenu(ui::MenuBar::Help)->itemAt(0));
    bar->addMenu("E&xtra")->addItem("Special", nullptr, nullptr, &action);
    ui::Menu::Item* quit = bar->getMenu(ui::MenuBar::File)->addItem("&Quit", nullptr, nullptr, &action);
    bar->getMenu(ui::MenuBar::File)->addItem("&Open", nullptr, quit, &action);
    layOut();
    EXPECT_STREQ(bar->getItems().c_str(), "0:&File\n1:&Help\n2:E&xtra\n");
    EXPECT_STREQ(bar->findItem("0")->getText(), "&Open");
    EXPECT_STREQ(bar->findItem("3")->getText(), "Special");
    EXPECT_EQ(bar->findItem("Quit"), quit);
    EXPECT_EQ(bar->findItem("9"), nullptr);
    MuButton::create(column, "b", "B")->setFocus();
    window.hold(rfb::key::AltL);
    EXPECT_TRUE(bar->hotKey('f'));
    window.letGo(rfb::key::AltL);
    wvw::Widget* popup = window.anyPopup();
    ASSERT_TRUE(popup);
    window.popupOf(popup)->key('q');
    EXPECT_EQ(chosen, "&Quit ");
    EXPECT_FALSE(window.anyPopup());
    EXPECT_DEATH(MuMenuBarWvw(), "!inst_");
}

} // namespace
} // namespace mui
