#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WLabel.h"
#include "wvw/WLabelWithMnemonic.h"
#include "wvw/WMenu.h"
#include "wvw/WTooltip.h"

#include "hxutil/Font.h"
#include "rfb/keySymbols.h"

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

struct LabelTest : testing::Test {
    WCanvas root;
    WLabel label{&root, "one two"};
    FakeParent window{&root};
    const hxutil::Font& font = *defaultStyle().font;

    int widthOf(const char* text) const { return font.stringWidth(text); }
    Rect ink() const {
        Rect all;
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 200; ++x) {
                if (window.pixelAt(x, y) == 0)
                    all = all.unionBoundary(Rect::xywh(x, y, 1, 1));
            }
        }
        return all;
    }
};

TEST_F(LabelTest, PreferredSizeIsTheWidestLineAndTheMargins) {
    label.setText("wide line\nx");
    EXPECT_EQ(label.getPreferredSize(), Point(widthOf("wide line") + 8, 2 * font.height));
    label.setMargin(0);
    EXPECT_EQ(label.getPreferredSize(), Point(widthOf("wide line"), 2 * font.height));
    label.setText("");
    EXPECT_EQ(label.getPreferredSize().y, font.height);
}

TEST_F(LabelTest, ItWrapsAtBlanksAndBreaksOnlyWhatIsTooLong) {
    const int forOne = widthOf("one two") + 7;
    EXPECT_EQ(label.getPreferredHeight(forOne), 2 * font.height);
    EXPECT_EQ(label.getPreferredHeight(forOne + 1), font.height);
    label.setText("wwwwwwwwww");
    EXPECT_EQ(label.getPreferredHeight(widthOf("wwwww") + 8), 2 * font.height);
    label.setWrap(false);
    EXPECT_EQ(label.getPreferredHeight(1), font.height);
}

TEST_F(LabelTest, ATransparentLabelLeavesTheGroundAlone) {
    label.setText("");
    root.setChildRect(&label, {0, 0, 50, 50});
    WStyle own = defaultStyle();
    own.canvas = {200, 0, 0};
    label.setStyle(&own);
    window.paintAll();
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0xc80000), 50 * 50);
    label.setTransparent(true);
    window.paint();
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0xc80000), 0);
}

TEST_F(LabelTest, DraggingSelectsAndControlCCopies) {
    label.setSelectable(true);
    root.setChildRect(&label, {0, 0, 200, 20});
    window.move(4 + widthOf("on"), 10);
    window.press();
    window.move(4 + widthOf("one tw"), 10);
    window.release();
    window.move(0, 90);
    EXPECT_STREQ(label.getSelectedText().c_str(), "e tw");
    EXPECT_STREQ(window.primary.c_str(), "e tw");
    window.hold(key::ControlL);
    window.key('c');
    EXPECT_STREQ(window.clipboard.c_str(), "e tw");
    window.key('a');
    window.key('c');
    EXPECT_STREQ(window.clipboard.c_str(), "one two");
    EXPECT_EQ(window.bells, 0);
    window.letGo(key::ControlL);
    window.paint();
    EXPECT_GT(window.countPixels({0, 0, 200, 20}, 0x3838c8), 50);

    window.click(4, 10); // a click without a drag selects nothing
    EXPECT_STREQ(label.getSelectedText().c_str(), "");
    window.hold(key::ControlL);
    window.key('c');
    EXPECT_EQ(window.bells, 1);
}

TEST_F(LabelTest, ASelectionToTheLeftAndAcrossLinesKeepsWholeCharacters) {
    label.setText("\xc3\xa4\xc3\xb6\nxyz");
    label.setSelectable(true);
    root.setChildRect(&label, {0, 0, 200, 2 * font.height});
    window.move(4 + widthOf("xy"), font.height + 5);
    window.press();
    window.move(4 + widthOf("\xc3\xa4") + 1, 5);
    window.release();
    EXPECT_STREQ(label.getSelectedText().c_str(), "\xc3\xb6\nxy");
    label.setText("other"); // a new text has no old selection
    EXPECT_STREQ(label.getSelectedText().c_str(), "");
}

TEST_F(LabelTest, ALabelThatIsNotSelectableTakesNoFocus) {
    root.setChildRect(&label, {0, 0, 200, 20});
    window.move(5, 5);
    window.press();
    window.move(60, 5);
    window.release();
    EXPECT_FALSE(label.hasFocus());
    EXPECT_STREQ(label.getSelectedText().c_str(), "");
}

TEST_F(LabelTest, TheRightButtonOffersToCopyAndToSelectAll) {
    label.setSelectable(true);
    root.setChildRect(&label, {0, 0, 200, 20});
    Widget* shown = nullptr;
    const auto openMenu = [&] {
        window.click(10, 10, /*button=*/2);
        shown = window.anyPopup();
        return dynamic_cast<WMenu*>(shown);
    };
    WMenu* menu = openMenu();
    ASSERT_TRUE(menu);
    ASSERT_EQ(menu->itemCount(), 2u);
    window.popupOf(menu)->key(key::Escape);
    window.key(key::Menu);
    EXPECT_EQ(window.anyPopup(), nullptr); // the label has no focus yet
    label.takeFocus();
    window.key(key::Menu);
    EXPECT_EQ(window.anyPopup(), menu);
    window.popupOf(menu)->key(key::Escape);
    menu = openMenu();
    ASSERT_TRUE(menu);
    window.popupOf(menu)->key(key::Up); // the last one: select all
    window.popupOf(menu)->key(key::Return);
    EXPECT_EQ(window.anyPopup(), nullptr);
    EXPECT_STREQ(label.getSelectedText().c_str(), "one two");
    EXPECT_TRUE(label.hasFocus());
    menu = openMenu();
    ASSERT_TRUE(menu);
    window.popupOf(menu)->key(key::Down);
    window.popupOf(menu)->key(key::Return);
    EXPECT_STREQ(window.clipboard.c_str(), "one two");
    ASSERT_TRUE(openMenu());
    root.removeChild(&label);
    EXPECT_EQ(window.anyPopup(), nullptr);
}

TEST_F(LabelTest, AMnemonicIsUnderlined) {
    WLabelWithMnemonic marked(&root, "ab&c");
    root.setChildRect(&marked, {0, 40, 100, 40 + font.height});
    window.paintAll();
    const Rect line = Rect::xywh(0, 40 + font.height - 2, 100, 1);
    EXPECT_EQ(window.countPixels(line, 0), widthOf("c"));
    EXPECT_EQ(window.countPixels({4 + widthOf("ab"), line.tl.y, 4 + widthOf("abc"), line.br.y}, 0), widthOf("c"));
    marked.setText("ab and then so much more than fits &c");
    marked.setWrap(false);
    marked.setHAlign(1);
    window.paint();
    EXPECT_EQ(window.countPixels(line, 0), 0); // what is cut off has no line
    marked.setText("&ab and then so much more than fits");
    window.paint();
    EXPECT_EQ(window.countPixels({4, line.tl.y, 4 + widthOf("a"), line.br.y}, 0), widthOf("a"));
    marked.setShowMnemonic(false);
    window.paint();
    EXPECT_EQ(window.countPixels(line, 0), 0);
}

// A line alone keeps to the left edge that the form gives it; a paragraph of several lines begins at the right.
TEST_F(LabelTest, ParagraphsFromRightToLeftBeginAtTheRight) {
    const auto inkOf = [&](const char* text) {
        label.setText(text);
        root.setChildRect(&label, {0, 0, 100, 60});
        window.paintAll();
        return ink();
    };
    EXPECT_LT(inkOf("\u05e9\u05dc\u05d5\u05dd").tl.x, 8);
    const char* long_ = "\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd \u05e9\u05dc\u05d5\u05dd "
                        "\u05e2\u05d5\u05dc\u05dd abc";
    const Rect several = inkOf(long_);
    EXPECT_GT(several.height(), font.height);
    EXPECT_GT(several.br.x, 100 - 8);
    label.setSelectable(true);
    label.setSelection(0, 2);
    window.paintAll();
    EXPECT_GT(window.countPixels({100 - 4 - font.charWidth(0x5e9), 0, 96, 30}, 0x3838c8), 20) << "the first letter";
    window.click(95, 25);
    window.hold(key::ShiftL);
    window.click(95, 25 + font.height);
    EXPECT_EQ(label.getSelectedText().view().substr(0, 8), std::string_view(long_).substr(0, 8));
}

TEST_F(LabelTest, ATooltipStaysOnTheScreen) {
    WTooltip tip(100);
    tip.setText("a <b> & \"c\"");
    tip.show({50, 60}, &label);
    ASSERT_TRUE(window.popupOf(&tip));
    EXPECT_EQ(window.popupOf(&tip)->position, Point(50, 60));
    EXPECT_EQ(tip.getWidth(), widthOf("a <b> & \"c\"") + 8 + 4);
    EXPECT_FALSE(window.popupOf(&tip)->grabbed);

    tip.setText("several words that are wider than a hundred pixels");
    tip.show({50, 60}, &label);
    EXPECT_EQ(tip.getWidth(), 100);
    EXPECT_GT(tip.getHeight(), 3 * font.height);
    window.screenPx = {120, 70};
    window.position = {110, 200};
    tip.show({50, 60}, &label);
    EXPECT_EQ(window.popupOf(&tip)->position, Point(110 - 100 - 2, 200 - tip.getHeight() - 2));
    tip.hide();
    EXPECT_EQ(window.anyPopup(), nullptr);
}

} // namespace
} // namespace wvw
