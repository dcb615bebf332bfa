#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WCheckBox.h"
#include "wvw/WChoice.h"
#include "wvw/WDiscreteSlider.h"
#include "wvw/WLabelChoice.h"
#include "wvw/WLabelWidget.h"
#include "wvw/WMenu.h"
#include "wvw/WRichText.h"
#include "wvw/WTabSheets.h"
#include "wvw/WTable.h"
#include "wvw/WTooltip.h"

#include "hxutil/Font.h"
#include "plat/test/CapturedLog.h"
#include "rfb/keySymbols.h"

#include <climits>

namespace wvw {
namespace {

using rfb::Point;
using rfb::Rect;

struct PaintTest : testing::Test {
    WCanvas root;
    WLayout inner{&root};
    Box box{&inner};
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&inner, {20, 10, 80, 60});
        inner.setChildRect(&box, {5, 5, 25, 15});
        window.paintAll();
        box.takeLog();
    }
};

TEST_F(PaintTest, AChildPaintsInItsOwnCoordinatesAndNotBeyondItsRect) {
    EXPECT_EQ(window.pixelAt(25, 15), 0x0a141eu);
    EXPECT_EQ(window.pixelAt(44, 24), 0x0a141eu);
    EXPECT_EQ(window.pixelAt(24, 15), 0xd8d8d8u);
    EXPECT_EQ(window.pixelAt(45, 24), 0xd8d8d8u);
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0x0a141e), 20 * 10);
    EXPECT_EQ(box.painted, Rect(0, 0, 20, 10));
}

TEST_F(PaintTest, OnlyWhatIsInvalidIsPainted) {
    box.colour = {200, 0, 0};
    box.invalidate(rfb::Region(Rect(2, 2, 4, 5)));
    EXPECT_EQ(window.invalidArea(), Rect(27, 17, 29, 20));
    window.paint();
    EXPECT_EQ(box.painted, Rect(2, 2, 4, 5));
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0xc80000), 2 * 3);

    box.paints = 0;
    root.invalidate(rfb::Region(Rect(100, 50, 120, 60))); // beside it
    window.paint();
    EXPECT_EQ(box.paints, 0);
}

TEST_F(PaintTest, AChildThatReachesOutsideIsCutOff) {
    inner.setChildRect(&box, {-5, -5, 200, 200});
    window.paint();
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0x0a141e), 60 * 50);
    EXPECT_EQ(box.painted.tl, Point(5, 5));
}

TEST_F(PaintTest, MovingInvalidatesTheOldAndTheNewPlace) {
    inner.moveChild(&box, {5, 5});
    EXPECT_TRUE(window.invalidArea().isEmpty());
    inner.moveChild(&box, {30, 35});
    EXPECT_EQ(window.invalidArea(), Rect(25, 15, 70, 55));
    window.paint();
    EXPECT_EQ(window.pixelAt(25, 15), 0xd8d8d8u);
    EXPECT_EQ(window.pixelAt(50, 45), 0x0a141eu);
}

TEST_F(PaintTest, ANewSizeInvalidatesTheLargerOfBothOnce) {
    box.setSize({20, 10});
    EXPECT_TRUE(window.invalidArea().isEmpty());
    EXPECT_EQ(box.takeLog(), "");
    box.setSize({10, 30});
    EXPECT_EQ(window.invalidArea(), Rect(25, 15, 45, 45));
    EXPECT_EQ(box.takeLog(), "size");
}

TEST_F(PaintTest, HidingAndRemovingPaintWhatWasBelow) {
    box.setVisible(false);
    EXPECT_EQ(window.invalidArea(), Rect(25, 15, 45, 25));
    window.paint();
    EXPECT_EQ(window.pixelAt(30, 20), 0xd8d8d8u);
    box.repaint();
    EXPECT_TRUE(window.invalidArea().isEmpty()); // what is hidden stays silent

    box.setVisible(true);
    window.paint();
    EXPECT_EQ(window.pixelAt(30, 20), 0x0a141eu);
    inner.removeChild(&box);
    window.paint();
    EXPECT_EQ(window.pixelAt(30, 20), 0xd8d8d8u);
    EXPECT_FALSE(box.isAttached());
}

TEST_F(PaintTest, LaterChildrenLieOnTop) {
    Box below;
    below.colour = {0, 0, 200};
    inner.addChildRect(&below, {0, 0, 60, 50}, &box);
    window.paint();
    EXPECT_EQ(window.pixelAt(30, 20), 0x0a141eu);
    EXPECT_EQ(window.pixelAt(21, 11), 0x0000c8u);
    window.move(30, 20); // and the topmost gets the mouse
    EXPECT_EQ(box.takeLog(), "move5,5");
}

// Backgrounds lie three deep in most windows: what a child covers for certain is filled once.
TEST_F(PaintTest, WhatAChildCoversIsNotFilledBehindIt) {
    struct Hole : Widget {
        void paint(rfb::FullFramePixelBuffer&) override {}
        rfb::Rect opaqueWithin(const Rect& part) const override { return part.intersect({10, 10, 110, 70}); }
    } hole;
    root.addChildRect(&hole, {30, 20, 150, 100});
    window.paintAll();
    root.setStyle(&defaultStyle()); // so that both paint the same
    const uint32_t before = window.pixelAt(60, 50);
    WStyle other = defaultStyle();
    other.canvas = {1, 2, 3};
    root.setStyle(&other);
    window.paintAll();
    EXPECT_EQ(window.pixelAt(60, 50), before) << "left alone";
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0x010203), 200 * 100 - 100 * 60 - 20 * 10);
    hole.setVisible(false);
    window.paint();
    EXPECT_EQ(window.pixelAt(60, 50), 0x010203u);
    root.setStyle(nullptr);
    root.removeChild(&hole);
}

TEST_F(PaintTest, HugeSizesAreClampedToWhatRegionsHold) {
    box.setSize({INT_MAX / 2, 10});
    EXPECT_EQ(window.invalidArea(), Rect(25, 15, 32767, 25));
}

TEST_F(PaintTest, PreferredSizeCountsHiddenChildrenButNotEmptyOnes) {
    Box empty(&inner);
    inner.moveChild(&empty, {500, 500});
    box.setVisible(false);
    inner.setPadding({3, 4});
    EXPECT_EQ(inner.getPreferredSize(), Point(28, 19));
}

TEST_F(PaintTest, AStyleReachesDownToTheNextOwnOne) {
    WStyle red = defaultStyle();
    red.canvas = {200, 0, 0};
    WCanvas child(&inner);
    child.setSize({2, 2});
    root.setStyle(&red);
    EXPECT_EQ(child.getStyle().canvas, red.canvas);
    WStyle own = defaultStyle();
    inner.setStyle(&own);
    EXPECT_EQ(child.getStyle().canvas, own.canvas);
    inner.setStyle(nullptr);
    window.paint();
    EXPECT_EQ(window.pixelAt(20, 10), 0xc80000u);
}

// What dialogs are laid out by; the children are 30 by 20.
TEST(PreferredSizeTest, IsThatOfTheContentAndTheEdgesOfItsKind) {
    Box child;
    WBevelButton empty;
    WBevelButton button;
    button.setChild(&child);
    Box inSheet;
    WSheet sheet;
    sheet.setChild(&inSheet);
    WTabSheets sheets;
    sheets.addSheet("Title", nullptr);
    WTab* const tab = sheets.getTab(0);
    WEdit edit;
    edit.setText("Some text");
    WTooltip tip;
    tip.setText("Help");
    WLabel help(nullptr, "Help");
    WMenuItem separator("");
    WMenuItem item("&Item");
    const Point label = WLabel(nullptr, "Item").getPreferredSize();
    const hxutil::Font& font = *defaultStyle().font;
    const struct {
        Widget& widget;
        Point size;
    } cases[] = {
        {empty, {6, 6}},
        {button, {36, 26}},
        {sheet, {50, 40}},
        {edit, {font.stringWidth("Some text") + 12, font.height + 8}},
        {tip, help.getPreferredSize() + Point(4, 4)},
        {separator, {2, 5}},
        {item, label + Point(3, 2)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.widget.getPreferredSize(), c.size) << &c - cases;
    EXPECT_EQ(tab->getPreferredSize(), tab->getLabel().getPreferredSize() + Point(6, 10));
    EXPECT_EQ(WArrowButton(nullptr, WArrow::Direction::Up).getPreferredSize(), Point(8, 8));
    EXPECT_EQ(WDiscreteSlider().getPreferredSize(), Point(10, 26));
    EXPECT_EQ(WDiscreteSlider(nullptr, /*vertical=*/true).getPreferredSize(), Point(26, 10));
    EXPECT_EQ(WCheckBox(nullptr, "WCheck_check").getPreferredSize(), Point(16, 16));

    const plat::CapturedLog log;
    WLabelEdit labelled(nullptr, "Label");
    labelled.setVAlign(7);
    EXPECT_TRUE(log.has("0 WLabelWidget: Unexpected vertical alignment: 7"));
}

struct Cells : WTable::Callback {
    plat::String getCellText(WTable*, int row, int) override { return plat::strFormat("%d", row); }
};

// One control of each kind below another: what the pointer or the focus does to one leaves the rest alone.
TEST(RepaintTest, HoverFocusAndTypingRepaintTheirControlOnly) {
    FakeClock clock;
    Cells cells;
    WCanvas root;
    WLabelButton button(&root, "Button");
    WLabelCheckBox check(&root, "Check");
    WRichText link(&root, "A <a href=\"x\">link</a>");
    WChoice choice(&root);
    WEdit edit(&root);
    WDiscreteSlider slider(&root);
    WTable table(&root, &cells, /*showHeading=*/true);
    WTabSheets sheets(&root);
    FakeParent window(&root, {300, 600});
    choice.addItem(1, "Item");
    table.addColumn(1, WTable::Text, "Number");
    table.setRowCount(500);
    table.select(0);
    sheets.addSheet("First", nullptr);
    sheets.addSheet("Second", nullptr);
    Widget* const all[] = {&button, &check, &link, &choice, &edit, &slider, &table, &sheets};
    int top = 0;
    for (Widget* widget : all) {
        root.setChildRect(widget, Rect::xywh(10, top, 280, 30 * (1 + (widget == &table || widget == &sheets))));
        top += 70;
    }
    window.move(299, 599);
    button.takeFocus();
    window.paintAll();
    Rect before = root.getChildRect(&button);
    for (Widget* widget : all) {
        const Rect own = root.getChildRect(widget);
        window.move(own.tl.x + 30, own.tl.y + 8);
        EXPECT_EQ(window.invalidArea().intersect(own), window.invalidArea()) << "hover at " << own.tl.y;
        window.move(299, 599);
        EXPECT_EQ(window.invalidArea().intersect(own), window.invalidArea()) << "exit at " << own.tl.y;
        window.clearInvalid();
        if (widget != &button)
            window.key(rfb::key::Tab);
        EXPECT_TRUE(widget->hasFocus());
        const Rect touched = before.unionBoundary(own);
        EXPECT_EQ(window.invalidArea().intersect(touched), window.invalidArea()) << "focus at " << own.tl.y;
        window.clearInvalid();
        before = own;
    }
    edit.takeFocus();
    window.clearInvalid();
    window.key('x');
    EXPECT_EQ(window.invalidArea().intersect(root.getChildRect(&edit)), window.invalidArea());
}

TEST(LayoutDeath, AddingTwiceOrNamingStrangersIsAProgrammingError) {
    WLayout layout;
    Box box(&layout);
    Box stranger;
    EXPECT_DEATH(layout.moveChild(&stranger, {1, 1}), "i != ws.end\\(\\)");
    EXPECT_DEATH(layout.addChild(&box), "parentLayout");
    EXPECT_DEATH(stranger.getPosition(), "parentLayout");
}

} // namespace
} // namespace wvw
