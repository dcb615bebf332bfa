#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WTable.h"

#include "hxutil/Font.h"
#include "rfb/keySymbols.h"

#include <set>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;

/// Rows of two columns; some may be refused, and all that is asked is noted.
class Rows : public WTable::Callback {
public:
    plat::String getCellText(WTable*, int row, int column) override {
        asked.insert(row);
        return plat::strFormat("%d.%d", row, column);
    }
    bool isRowSelectable(WTable*, int row) override { return !refused.count(row); }
    void rowActivated(WTable*, int row, int column) override { opened.push_back({row, column}); }

    std::set<int> asked;
    std::set<int> refused;
    std::vector<std::pair<int, int>> opened;
};

struct TableTest : testing::Test {
    FakeClock clock;
    WCanvas root;
    Rows rows;
    WTable table{&root, &rows, /*showHeading=*/true};
    FakeParent window{&root, {200, 200}};
    int rowHeight = 0;

    void SetUp() override {
        table.addColumn(7, WTable::Text, "First");
        table.addColumn(8, WTable::Text, "Second", 60);
        rowHeight = defaultStyle().font->height + 8;
        root.setChildRect(&table, rfb::Rect::xywh(0, 0, 200, 4 + 5 * rowHeight)); // the heading and four rows
        table.setRowCount(10);
    }
    Point inRow(int shown, int x = 10) const { return {x, 2 + rowHeight * (1 + shown) + 5}; }
    void click(const Point& at) { window.click(at.x, at.y); }
};

TEST_F(TableTest, OnlyVisibleRowsAreAskedFor) {
    window.paintAll();
    EXPECT_EQ(rows.asked, (std::set<int>{0, 1, 2, 3}));
    rows.asked.clear();
    table.ensureRowVisible(8);
    window.paint();
    EXPECT_EQ(rows.asked, (std::set<int>{5, 6, 7, 8}));
}

TEST_F(TableTest, TheStretchColumnTakesWhatTheOthersAndTheBarLeave) {
    int row = 0;
    int column = 0;
    EXPECT_TRUE(table.hitTest({200 - 2 - 16 - 60 - 1, 2 + rowHeight}, row, column));
    EXPECT_EQ(column, 7);
    EXPECT_TRUE(table.hitTest({200 - 2 - 16 - 60, 2 + rowHeight}, row, column));
    EXPECT_EQ(column, 8);
    EXPECT_EQ(row, 0);
    EXPECT_FALSE(table.hitTest({200 - 2 - 16, 2 + rowHeight}, row, column)); // the bar
    EXPECT_FALSE(table.hitTest({10, 1 + rowHeight}, row, column));           // the heading
    EXPECT_FALSE(table.hitTest({1, 50}, row, column));                       // the border
    table.setRowCount(2);                                                    // no bar now
    EXPECT_TRUE(table.hitTest({197, 2 + rowHeight * 4}, row, column));
    EXPECT_EQ(row, -1);
    EXPECT_EQ(column, 8);
}

TEST_F(TableTest, KeysStepOverRefusedRowsAndStopAtTheEnds) {
    rows.refused = {0, 2, 9};
    table.takeFocus();
    std::vector<int> seen;
    for (int i = 0; i < 9; ++i) {
        window.key(key::Down);
        seen.push_back(table.getSelectedRow());
    }
    EXPECT_EQ(seen, (std::vector<int>{1, 3, 4, 5, 6, 7, 8, 8, 8}));
    EXPECT_EQ(table.firstVisibleRow(), 6); // a step past the end shows what can't be selected
    for (int i = 0; i < 9; ++i)
        window.key(key::Up);
    EXPECT_EQ(table.getSelectedRow(), 1);
    EXPECT_EQ(table.firstVisibleRow(), 0); // as one past the top does
    EXPECT_TRUE(table.hasFocus());
}

TEST_F(TableTest, AnEmptyTableHasNoBarAndNothingToSelect) {
    table.select(3);
    window.changes.clear();
    int row = 0;
    int column = 0;
    const Point besideRows = inRow(1, 190);
    EXPECT_FALSE(table.hitTest(besideRows, row, column)); // the bar
    table.setRowCount(0);
    EXPECT_TRUE(table.hitTest(besideRows, row, column));
    EXPECT_EQ(row, -1);
    EXPECT_EQ(table.getSelectedRow(), -1);
    EXPECT_EQ(window.changes, std::vector<Widget*>{&table});
    table.takeFocus();
    window.key(key::Up);
    window.key(key::Down);
    EXPECT_EQ(table.getSelectedRow(), -1);
    table.setEmptyText("Nothing here.");
    window.paintAll();
    EXPECT_GT(window.countPixels({2, 2 + rowHeight, 198, 100}, 0x808080), 20);
}

TEST_F(TableTest, PressesSelectAndKeepTheSelectionWhereAsked) {
    rows.refused = {2};
    click(inRow(1));
    EXPECT_EQ(table.getSelectedRow(), 1);
    EXPECT_EQ(table.getSelectedColumn(), 7);
    click(inRow(2));
    EXPECT_EQ(table.getSelectedRow(), -1);

    WTable keeper(&root, &rows, /*showHeading=*/false, /*keepSelection=*/true);
    keeper.addColumn(1, WTable::Text, nullptr);
    root.setChildRect(&keeper, {0, 0, 200, 150});
    keeper.setRowCount(3);
    keeper.select(1);
    window.click(10, 2 + 2 * rowHeight + 5); // refused
    window.click(10, 140);                   // below the rows
    EXPECT_EQ(keeper.getSelectedRow(), 1);
}

TEST_F(TableTest, TwoClicksOnOneCellOpenItAndOnTwoDoNot) {
    click(inRow(1));
    click(inRow(2));
    click(inRow(1));
    EXPECT_TRUE(rows.opened.empty());
    clock.advance(499);
    click(inRow(1, 12));
    EXPECT_EQ(rows.opened, (std::vector<std::pair<int, int>>{{1, 7}}));
    click(inRow(1)); // a third click begins anew
    EXPECT_EQ(rows.opened.size(), 1u);
    clock.advance(500);
    click(inRow(1));
    EXPECT_EQ(rows.opened.size(), 1u);
    EXPECT_EQ(window.activations.size(), 5u);
    clock.advance(500);
    EXPECT_FALSE(clock.timersLeft());
}

TEST_F(TableTest, PagesEndsAndLettersJump) {
    rows.refused = {0, 9};
    table.takeFocus();
    const struct {
        uint32_t key;
        int row;
    } steps[] = {{key::End, 8},    {key::Home, 1},   {key::PageDown, 4}, {key::PageDown, 7}, {key::PageDown, 8},
                 {key::PageUp, 5}, {key::PageUp, 2}, {key::PageUp, 1},   {'4', 4},           {'.', 4}};
    for (const auto& step : steps) {
        window.key(step.key);
        EXPECT_EQ(table.getSelectedRow(), step.row) << step.key;
    }
    window.key('9');
    EXPECT_EQ(table.getSelectedRow(), 4); // no row begins with "4.9"
    clock.advance(1001);
    window.key('2'); // a pause begins anew
    EXPECT_EQ(table.getSelectedRow(), 2);
    window.key('2'); // the only one
    EXPECT_EQ(table.getSelectedRow(), 2);
    EXPECT_FALSE(window.key(key::Return));
    table.setActivateByEnter(true);
    EXPECT_TRUE(window.key(key::Return));
    EXPECT_EQ(rows.opened.size(), 1u);
}

// What a change costs is counted in the rows that are asked for and in the area that is painted.
TEST_F(TableTest, AChangeRepaintsNoMoreThanItsRows) {
    table.setRowCount(500);
    table.select(1);
    window.paintAll();
    rows.asked.clear();
    table.select(2);
    EXPECT_EQ(window.invalidArea(), rfb::Rect(2, 2 + 2 * rowHeight, 200 - 2 - 16, 2 + 4 * rowHeight));
    window.paint();
    EXPECT_EQ(rows.asked, (std::set<int>{1, 2}));
    rows.asked.clear();
    table.invalidate(rfb::Region(rfb::Rect::xywh(20, 2 + rowHeight + 3, 5, 5))); // as if it was exposed
    window.paint();
    EXPECT_EQ(rows.asked, std::set<int>{0});
    rows.asked.clear();
    table.setRowCount(250); // as a filter does with each key
    window.paint();
    EXPECT_EQ(rows.asked, (std::set<int>{0, 1, 2, 3}));
    EXPECT_EQ(window.changes.size(), 2u);
    Box other(&root, "other", true);
    table.takeFocus();
    window.paint();
    other.takeFocus();
    EXPECT_EQ(window.invalidArea(), rfb::Rect::xywh(2, 2 + 3 * rowHeight, 200 - 4 - 16, rowHeight));
}

TEST_F(TableTest, TextThatIsCutShortIsToldByTheTooltip) {
    window.move(inRow(0).x, inRow(0).y);
    EXPECT_STREQ(table.getTooltip(), "");
    table.removeColumn(7);
    table.addColumn(123456789, WTable::Text, "narrow", 20);
    const Point at = inRow(2, 70);
    window.move(at.x, at.y);
    EXPECT_STREQ(table.getTooltip(), "2.123456789");
}

TEST_F(TableTest, TheWheelStepsThroughTheRows) {
    table.select(4);
    window.move(10, 40);
    window.press(4);
    window.release(4);
    EXPECT_EQ(table.getSelectedRow(), 5);
    window.press(3);
    window.release(3);
    window.press(3);
    EXPECT_EQ(table.getSelectedRow(), 3);
    window.release(3);
    table.select(9);
    struct : WMouseInputHandler {
        bool mouseDown(int button, Widget*) override {
            last = button;
            return true;
        }
        int last = -1;
    } outside;
    root.setMouseHandler(&outside);
    window.press(4); // at its end it is for what is around the table
    EXPECT_EQ(outside.last, 4);
    window.release(4);
    window.hold(key::ShiftL);
    window.press(3); // and sideways as well
    EXPECT_EQ(outside.last, 3);
    EXPECT_EQ(table.getSelectedRow(), 9);
    root.setMouseHandler(nullptr);
    window.release(3);
    window.letGo(key::ShiftL);
    // What is locked can be read, and stays as it is.
    table.setEnabled(false);
    const int first = table.firstVisibleRow();
    window.press(3);
    window.release(3);
    EXPECT_EQ(table.firstVisibleRow(), first - 1);
    EXPECT_EQ(table.getSelectedRow(), 9);
    window.click(10, 40);
    EXPECT_EQ(table.getSelectedRow(), 9);
}

} // namespace
} // namespace wvw
