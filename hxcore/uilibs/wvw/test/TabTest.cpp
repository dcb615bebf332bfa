#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WTabSheets.h"

#include "rfb/keySymbols.h"

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

struct TabTest : testing::Test, WTabSheets::Callback {
    FakeClock clock;
    WCanvas root;
    Box first{nullptr, "first", true};
    Box second{nullptr, "second", true};
    Box third{nullptr, "third"};
    WTabSheets sheets{&root, this};
    Box after{&root, "after", true};
    FakeParent window{&root, {400, 200}};
    std::vector<int> told;

    void SetUp() override {
        sheets.addSheet("&First", &first);
        sheets.addSheet("&Second", &second);
        sheets.addSheet("&Third", &third);
        root.setChildRect(&sheets, {0, 0, 400, 200});
    }
    Point onTab(int index) const { return sheets.getTab(index)->getRootPosition({10, 10}); }

    // WTabSheets::Callback
    void sheetChanged(WTabSheets*, int index) override { told.push_back(index); }
};

TEST_F(TabTest, OnePageIsShownInsideItsMargin) {
    EXPECT_EQ(sheets.current(), 0);
    sheets.setSheet(1);
    EXPECT_TRUE(told.empty()); // only the user's doing is told
    window.paintAll();
    EXPECT_EQ(first.paints, 0);
    EXPECT_EQ(second.paints, 1);
    EXPECT_EQ(second.getSize(), sheets.sheetRect().size() - Point(20, 20));
    EXPECT_EQ(second.getRootPosition(), sheets.sheetRect().tl + Point(10, 10));
    // A tab that is not current stands a pixel lower.
    EXPECT_EQ(sheets.getTab(0)->getRootPosition().y, sheets.getTab(1)->getRootPosition().y + 1);
    // The frame is closed under it, and open under the current one.
    const int line = sheets.sheetRect().tl.y;
    EXPECT_EQ(window.pixelAt(onTab(0).x, line), 0xa5a5a5u);
    EXPECT_EQ(window.pixelAt(onTab(1).x, line), 0xeeeeeeu);
}

TEST_F(TabTest, ClicksAndKeysChangeThePageAndTellIt) {
    window.click(onTab(2).x, onTab(2).y);
    EXPECT_EQ(sheets.current(), 2);
    EXPECT_TRUE(sheets.getTab(2)->hasFocus());
    window.key(key::Left);
    window.key(key::Home);
    window.key(key::Left); // stays at the end
    window.key(key::End);
    EXPECT_EQ(told, (std::vector<int>{2, 1, 0, 2}));
    EXPECT_TRUE(sheets.getTab(2)->hasFocus());
    window.hold(key::ControlL);
    window.key(key::PageDown); // around
    window.letGo(key::ControlL);
    EXPECT_EQ(sheets.current(), 0);
    first.takeFocus();
    window.hold(key::ControlL);
    window.key(key::Tab); // from inside the page too
    EXPECT_EQ(sheets.current(), 1);
    window.hold(key::ShiftL);
    window.key(key::Tab);
    window.key(key::Tab);
    window.letGo(key::ShiftL);
    window.letGo(key::ControlL);
    EXPECT_EQ(sheets.current(), 2);
    window.hold(key::AltL);
    EXPECT_TRUE(sheets.hotKey('s'));
    EXPECT_FALSE(sheets.hotKey('x'));
    window.letGo(key::AltL);
    EXPECT_EQ(sheets.current(), 1);
}

TEST_F(TabTest, TabLeadsFromTheCurrentTabIntoItsPageAndOut) {
    sheets.chooseSheet(1, /*focusTab=*/true);
    window.key(key::Tab);
    EXPECT_TRUE(second.hasFocus());
    window.key(key::Tab);
    EXPECT_TRUE(after.hasFocus());
    window.hold(key::ShiftL);
    window.key(key::Tab);
    window.key(key::Tab);
    window.letGo(key::ShiftL);
    EXPECT_TRUE(sheets.getTab(1)->hasFocus());
    // The focus of a page that goes is not lost.
    second.takeFocus();
    sheets.setSheet(2);
    EXPECT_TRUE(sheets.getTab(2)->hasFocus());
}

TEST_F(TabTest, RemovedPagesLeaveTheOthersInPlace) {
    sheets.setSheet(1);
    sheets.removeSheet(0);
    EXPECT_EQ(sheets.current(), 0);
    EXPECT_TRUE(sheets.getSheet(0)->isVisible());
    EXPECT_EQ(sheets.getSheet(0)->getChild(), &second);
    sheets.removeSheet(0);
    EXPECT_EQ(sheets.getSheet(0)->getChild(), &third);
    EXPECT_TRUE(sheets.getSheet(0)->isVisible());
    sheets.removeSheet(0);
    EXPECT_EQ(sheets.current(), -1);
    window.paintAll();
    EXPECT_EQ(first.getParentLayout(), nullptr);
}

TEST_F(TabTest, TabsThatDoNotFitScrollAndKeepTheCurrentOneInView) {
    sheets.setSheet(2);
    root.setChildRect(&sheets, {0, 0, 170, 100});
    EXPECT_FALSE(sheets.getTab(0)->isVisible());
    EXPECT_TRUE(sheets.getTab(2)->isVisible());
    window.move(onTab(2).x, onTab(2).y);
    for (int i = 0; i < 3; ++i) {
        window.press(3);
        window.release(3);
    }
    EXPECT_TRUE(sheets.getTab(0)->isVisible());
    EXPECT_EQ(sheets.current(), 2);
    root.setChildRect(&sheets, {0, 0, 400, 100});
    EXPECT_TRUE(sheets.getTab(0)->isVisible());
}

TEST(TabDeath, IndexesAreChecked) {
    WTabSheets sheets;
    EXPECT_DEATH(sheets.setSheet(-1), "index >= 0");
    EXPECT_DEATH(sheets.setSheet(0), "index < \\(int\\)sheets.size\\(\\)");
    EXPECT_DEATH(sheets.getTab(0), "index < \\(int\\)tabs.size\\(\\)");
}

} // namespace
} // namespace wvw
