#include "mui/MuAutoHider.h"
#include "mui/MuiInspector.h"
#include "mui/test/FakeElements.h"
#include "plat/Timer.h"
#include "plat/test/FakeClock.h"
#include "rfb/keySymbols.h"

#include <gtest/gtest.h>

namespace mui {
namespace {

TEST(NumericFilter, TakesWhatCanBecomeANumberWithinTheLimits) {
    const struct {
        int min;
        int max;
        const char* text;
        bool taken;
    } cases[] = {
        {0, 65535, "", true},
        {0, 65535, "0", true},
        {0, 65535, "65535", true},
        {0, 65535, "65536", false},
        {0, 65535, "-", false},
        {0, 65535, "-1", false},
        {0, 65535, "00", false},
        {0, 65535, "01", false},
        {0, 65535, " 1", false},
        {0, 65535, "1 ", false},
        {0, 65535, "1x", false},
        {0, 65535, "+", false},
        {-5, 5, "-", true},
        {-5, 5, "-0", false},
        {-5, 5, "-05", false},
        {-5, 5, "-5", true},
        {-5, 5, "-6", false},
        {INT_MIN, INT_MAX, "-2147483648", true},
        {INT_MIN, INT_MAX, "2147483648", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MuEdit::NumericFilter(c.min, c.max).accept(nullptr, c.text, 0), c.taken) << c.text << " in " << c.min;
}

TEST(MuChoiceTest, TheFirstOfTwoEqualTextsAndWhatIsNotThere) {
    FakeToolkit toolkit;
    Fake<TestChoice> choice("c", nullptr, false);
    EXPECT_EQ(choice.getSelected(), -1);
    choice.addItem(5, "Same");
    choice.addItem(2, "Same");
    choice.setSelected(5);
    EXPECT_EQ(choice.getSelected(), 2);
    choice.setSelected(9);
    EXPECT_EQ(choice.getSelected(), -1);
    EXPECT_STREQ(choice.getText(), "");
    choice.setText("else");
    EXPECT_STREQ(choice.getText(), "");
    Fake<TestChoice> editable("e", nullptr, true);
    editable.setText("else");
    EXPECT_STREQ(editable.getText(), "else");
    EXPECT_TRUE(editable.getItems().isNull());
}

TEST(MuListTest, TheSelectionMovesWithItsRow) {
    FakeToolkit toolkit;
    FakeList list("l");
    list.addColumn(MuList::ColumnType::Text, nullptr);
    for (const char* text : {"a", "b", "c"})
        list.addRow({text});
    list.setSelected(1);
    list.insertRow(0, {"z"});
    EXPECT_EQ(list.getSelected(), 2);
    list.removeRow(0);
    EXPECT_EQ(list.getSelected(), 1);
    list.removeRow(1);
    EXPECT_EQ(list.getSelected(), -1);
    list.setRowKey(1, 42);
    EXPECT_EQ(list.findRowKey(42), 1);
    EXPECT_EQ(list.findRowKey(43), -1);
    list.setSelected(7);
    EXPECT_EQ(list.getSelected(), -1);
    list.setSelected(1);
    list.setRowSelectable(1, false);
    EXPECT_EQ(list.getSelected(), -1);
    EXPECT_DEATH(list.setCell(2, 0, "x"), "isValidRow\\(row\\)");
    EXPECT_DEATH(list.setCell(0, 1, "x"), "col >= 0 && col < \\(int\\)cols.size\\(\\)");
}

TEST(MuPagerTest, TheCurrentPageIsTheOneThatIsShown) {
    FakeToolkit toolkit;
    std::string heard;
    Listener listener(&heard, "o");
    Fake<TestPager> pager("p");
    pager.addObserver(&listener, true);
    FakeElement* pages[3];
    for (FakeElement*& page : pages)
        pager.addPage(page = new FakeElement("page"), "Title");
    const auto shown = [&] {
        std::string marks;
        for (int i = 0; i < pager.getChildCount(); ++i)
            marks += pager.getChild(i)->isShown() ? '1' : '0';
        return marks;
    };
    EXPECT_EQ(shown(), "100");
    pager.setPage(2);
    EXPECT_EQ(shown(), "001");
    pager.setPage(2);
    EXPECT_EQ(heard, "o:p/0 "); // once
    pager.removePage(0);
    EXPECT_EQ(pager.getPage(), 1);
    EXPECT_EQ(shown(), "01");
    pager.setPage(0);
    pager.removePage(0); // the current one, at 0
    EXPECT_EQ(pager.getPage(), 0);
    EXPECT_EQ(shown(), "1");
    EXPECT_DEATH(pager.setPage(1), "isValid\\(i\\)");
}

class SplitterTest : public testing::Test, protected MuObserver {
protected:
    SplitterTest() {
        for (FakeElement*& child : children) {
            splitter.add(child = new FakeElement("child"));
            child->fake.minSize = {10, 10};
        }
        splitter.addObserver(this, true);
        splitter.setSize({200, 50});
    }
    void muEvent(MuElement*, int type) override { heard += std::to_string(type); }
    void mouse(hxutil::MouseEvent::Type type, int x) { splitter.mouseEvent({type, x, 5, nullptr}); }

    FakeToolkit toolkit;
    Fake<TestSplitter> splitter{"s"};
    FakeElement* children[3] = {};
    std::string heard;
};

TEST_F(SplitterTest, TheLastShownChildTakesTheRest) {
    splitter.setSizes({50, 60});
    EXPECT_EQ(splitter.getHandlePositions(), (std::vector<int>{50, 115}));
    EXPECT_EQ(children[2]->getSize(), rfb::Point(80, 50));
    EXPECT_EQ(children[1]->getPosition(), rfb::Point(55, 0));
    children[2]->setShown(false);
    splitter.doLayout();
    EXPECT_EQ(children[1]->getSize(), rfb::Point(145, 50));
    children[1]->setShown(false);
    splitter.doLayout();
    EXPECT_TRUE(splitter.getHandlePositions().empty());
    EXPECT_EQ(children[0]->getSize(), rfb::Point(200, 50));
    EXPECT_DEATH(splitter.setChildSize(2, 5), "index < \\(int\\)children.size\\(\\) -1");
    EXPECT_DEATH(splitter.setChildSize(-1, 5), "index >= 0");
}

TEST_F(SplitterTest, TooLittleRoomIsTakenFromTheLaterOnesAndGivenBack) {
    splitter.setSizes({100, 60});
    splitter.setSize({150, 50}); // 30 for the last, 10 for the handles
    EXPECT_EQ(children[1]->getSize().x, 30);
    EXPECT_EQ(children[0]->getSize().x, 80);
    splitter.setSize({300, 50});
    EXPECT_EQ(children[0]->getSize().x, 100);
    EXPECT_EQ(splitter.getMinWidth(0), 3 * 30 + 2 * 5);
}

TEST_F(SplitterTest, ADragStopsAtTheMinimumOnBothSides) {
    splitter.setSizes({50, 50});
    mouse(hxutil::MouseEvent::Press, 49); // beside the handle
    mouse(hxutil::MouseEvent::Moved, 90);
    mouse(hxutil::MouseEvent::Release, 90);
    EXPECT_EQ(heard, "");
    mouse(hxutil::MouseEvent::Press, 52);
    EXPECT_EQ(splitter.getDraggedHandle(), 0);
    mouse(hxutil::MouseEvent::Moved, 62);
    EXPECT_EQ(splitter.getSizes()[0], 60);
    mouse(hxutil::MouseEvent::Moved, -100);
    EXPECT_EQ(splitter.getSizes()[0], 30);
    mouse(hxutil::MouseEvent::Moved, 1000);
    EXPECT_EQ(splitter.getSizes()[0], 200 - 10 - 50 - 30);
    EXPECT_EQ(heard, "000");
    mouse(hxutil::MouseEvent::Release, 1000);
    mouse(hxutil::MouseEvent::Moved, 60);
    EXPECT_EQ(heard, "000");
    splitter.remove(children[0]);
    EXPECT_EQ(heard, "0000");
}

class SuperboxTest : public testing::Test, protected MuSuperbox::Callback {
protected:
    SuperboxTest() {
        auto* column = MuLayout::create(&dialog, "col", Orientation::Vertical);
        column->add(box = new FakeSuperbox("find", this));
        box->setPosition({20, 30});
        box->setSize({120, 25});
        dialog.setPosition({100, 200});
    }
    bool onKey(MuSuperbox*, uint32_t key) override {
        keys += std::to_string(key) + " ";
        return key == 'x';
    }

    FakeToolkit toolkit;
    FakeDialog dialog{"dlg"};
    FakeSuperbox* box;
    std::string keys;
};

TEST_F(SuperboxTest, ThePopupHangsUnderTheFieldAndHasItsName) {
    EXPECT_NE(std::string(box->getState().c_str()).find("popup-dialogid \n"), std::string::npos);
    box->showPopup(true);
    MuDialog* popup = box->getPopup();
    EXPECT_STREQ(popup->getName(), "dlg_col_find_popup");
    EXPECT_EQ(popup->getFlags(), MuDialog::Popup);
    EXPECT_EQ(popup->getMargin(), 0);
    EXPECT_EQ(popup->getPosition(), rfb::Point(120, 255));
    EXPECT_EQ(popup->getSize(), rfb::Point(120, 50));
    EXPECT_NE(std::string(box->getState().c_str()).find("popup-dialogid 1\n"), std::string::npos);
    box->setShown(false);
    EXPECT_FALSE(popup->isShown());
    static_cast<MuContainer*>(dialog.findElement("col"))->remove(box);
    EXPECT_EQ(toolkit.getDialogs().size(), 1U); // it took its popup along
}

TEST_F(SuperboxTest, KeysAskTheCallbackFirst) {
    const struct {
        uint32_t key;
        bool popupBefore;
        bool used;
        bool popupAfter;
    } cases[] = {
        {'x', true, true, true},
        {'y', true, false, true},
        {rfb::key::Return, true, false, false},
        {rfb::key::Tab, true, false, false},
        {rfb::key::Escape, true, true, false},
        {rfb::key::Escape, false, false, false}, // the dialog's
    };
    for (const auto& c : cases) {
        box->showPopup(c.popupBefore);
        EXPECT_EQ(box->handleKey(c.key), c.used) << c.key;
        EXPECT_EQ(box->isPopupShown(), c.popupAfter) << c.key;
    }
    EXPECT_EQ(keys, "120 121 65293 65289 65307 65307 ");
    keys.clear();
    box->showPopup(true);
    EXPECT_TRUE(box->handleCommand("pressenter", "text"));
    EXPECT_STREQ(box->getText(), "text");
    EXPECT_EQ(keys, "65293 ");
    EXPECT_FALSE(box->isPopupShown());
}

TEST(AutoHider, HidesAfterTheDelayWithoutThePointer) {
    struct Pointer : ui::AutoHider {
        bool isPointerInside() override { return inside; }
        using AutoHider::pointerEntered;
        using AutoHider::pointerLeft;
        bool inside = false;
    };
    struct Hider : MuAutoHiderDlgBase {
        using MuAutoHiderDlgBase::MuAutoHiderDlgBase;
        Hider(MuDialog* target, std::unique_ptr<ui::AutoHider> watch) : MuAutoHiderDlgBase(target, std::move(watch)) {}
    };
    const plat::FakeClock clock;
    plat::TimerManager timers;
    FakeToolkit toolkit;
    FakeDialog dialog("d");
    auto owned = std::make_unique<Pointer>();
    Pointer& pointer = *owned;
    Hider hider(&dialog, std::move(owned));
    const auto pass = [&](int ms) {
        plat::FakeClock::advanceMs(ms);
        timers.processTimers();
    };
    dialog.setShown(true);
    pass(100000);
    EXPECT_TRUE(dialog.isShown()); // not enabled
    hider.setDelay(500);
    hider.setEnabled(true);
    pass(499);
    pointer.pointerEntered();
    pass(1000);
    EXPECT_TRUE(dialog.isShown());
    pointer.pointerLeft();
    pass(499);
    EXPECT_TRUE(dialog.isShown());
    pass(2);
    EXPECT_FALSE(dialog.isShown());
}

TEST(MuiInspectorTest, ShowsAnElementForAMoment) {
    const plat::FakeClock clock;
    plat::TimerManager timers;
    FakeToolkit toolkit;
    FakeDialog dialog("dlg");
    MuButton* button = MuButton::create(MuLayout::create(&dialog, "row", Orientation::Horizontal), "go", "Go");
    MuiInspector inspector;
    const auto text = [&](const char* name) {
        auto* element = inspector.getDialog()->findElement(plat::strFormat("main.%s", name).c_str());
        return std::string(dynamic_cast<MuText&>(*element).getText());
    };
    EXPECT_STREQ(inspector.getDialog()->getName(), "MuiInspector");
    EXPECT_TRUE(inspector.getDialog()->isShown());
    EXPECT_EQ(text("muitype"), "&lt;type goes here&gt;");
    inspector.show(button);
    EXPECT_EQ(text("muiid"), "dlg.row.go");
    EXPECT_EQ(text("muitype"), "button");
    EXPECT_EQ(MuiInspector::getElementId(&dialog), plat::String("dlg"));
    for (int round = 0; round < 2; ++round) { // the timer goes on
        inspector.show(button);
        plat::FakeClock::advanceMs(200);
        timers.processTimers();
        EXPECT_EQ(text("muiid") + text("muitype") + text("muistate"), "");
    }
    EXPECT_DEATH(MuiInspector(), "!inspector");
}

} // namespace
} // namespace mui
