#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WRichText.h"

#include "hxutil/Font.h"
#include "rfb/keySymbols.h"

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

constexpr uint32_t linkBlue = 0x3838c8;
constexpr uint32_t hotRed = 0xc80000;

class LinkRecorder : public plat::Markup::LinkCallback {
public:
    void linkClicked(const char* href) override {
        clicked.push_back(href);
        if (victim)
            victim->setText("gone");
        if (doomed)
            delete std::exchange(doomed, nullptr);
    }
    std::vector<std::string> clicked;
    WRichText* victim = nullptr;
    WRichText* doomed = nullptr;
};

struct RichTextTest : testing::Test {
    WCanvas root;
    Box before{&root, "before", true};
    WRichText text{&root, "x <a href=\"one\">first</a> y <a href=\"two\">sec<b>ond</b></a> z"};
    Box after{&root, "after", true};
    LinkRecorder links;
    FakeParent window{&root, {300, 100}};
    const hxutil::Font& font = *defaultStyle().font;

    void SetUp() override {
        root.setChildRect(&text, {0, 0, 300, 20});
        text.setLinkCallback(&links);
        window.paintAll();
    }
    int xOf(const char* prefix) const { return 4 + font.stringWidth(prefix); }
};

TEST_F(RichTextTest, RunsOfOneTargetAreOneLink) {
    EXPECT_EQ(text.linkCount(), 2);
    EXPECT_STREQ(text.linkTarget(0), "one");
    EXPECT_STREQ(text.linkTarget(1), "two");
    EXPECT_STREQ(text.linkTarget(2), "");
    EXPECT_GT(window.countPixels({0, 0, 300, 20}, linkBlue), 50);
}

TEST_F(RichTextTest, TabGoesFromLinkToLinkAndThenOn) {
    EXPECT_TRUE(before.hasFocus());
    window.key(key::Tab);
    EXPECT_EQ(text.focusedLink(), 0);
    window.key(key::Tab);
    EXPECT_EQ(text.focusedLink(), 1);
    window.key(key::Return);
    EXPECT_EQ(links.clicked, std::vector<std::string>{"two"});
    window.key(key::Tab);
    EXPECT_TRUE(after.hasFocus());
    EXPECT_EQ(text.focusedLink(), -1);
    window.key(key::Up); // backward it begins with the last one
    EXPECT_EQ(text.focusedLink(), 1);
    window.key(key::Up);
    EXPECT_EQ(text.focusedLink(), 0);
    window.key(key::Up);
    EXPECT_TRUE(before.hasFocus());
}

TEST_F(RichTextTest, TheFocusedLinkShowsAndIsScrolledTo) {
    window.key(key::Tab);
    window.key(key::Tab);
    window.paint();
    const int start = xOf("x first y ");
    EXPECT_GT(window.countPixels({start - 1, 0, 300, 20}, hotRed), 30);
    EXPECT_EQ(window.countPixels({0, 0, start - 2, 20}, hotRed), 0);
    EXPECT_GT(window.countPixels({start - 2, 0, 300, 20}, 0xffffff), 5); // the dots
    EXPECT_GE(window.madeVisible.tl.x, start - 1);
    window.focused = false;
    text.focusChanged(/*backward=*/false, &text);
    window.paint();
    EXPECT_EQ(window.countPixels({0, 0, 300, 20}, hotRed), 0);
}

TEST_F(RichTextTest, HoverLightsEveryRunOfTheLink) {
    window.move(xOf("x first y s"), 10);
    window.paint();
    const int split = xOf("x first y sec");
    EXPECT_GT(window.countPixels({0, 0, split, 20}, hotRed), 10);
    EXPECT_GT(window.countPixels({split, 0, 300, 20}, hotRed), 10);
    EXPECT_EQ(window.countPixels({0, 0, xOf("x first"), 20}, hotRed), 0);
    window.leave();
    window.paint();
    EXPECT_EQ(window.countPixels({0, 0, 300, 20}, hotRed), 0);
}

TEST_F(RichTextTest, AClickFollowsTheLinkItBeganOn) {
    window.click(xOf("x f"), 10);
    EXPECT_EQ(links.clicked, std::vector<std::string>{"one"});
    EXPECT_EQ(text.focusedLink(), 0);
    window.move(xOf("x f"), 10);
    window.press();
    window.move(xOf("x first y s"), 10);
    window.release();
    EXPECT_EQ(links.clicked.size(), 1u);
    window.click(2, 10); // beside every link: no focus either
    before.takeFocus();
    window.click(xOf("x first "), 10);
    EXPECT_TRUE(before.hasFocus());
    EXPECT_EQ(links.clicked.size(), 1u);
    text.setEnabled(false);
    window.click(xOf("x f"), 10);
    EXPECT_EQ(links.clicked.size(), 1u);
    window.paint();
    EXPECT_EQ(window.countPixels({0, 0, 300, 20}, linkBlue), 0);
}

TEST_F(RichTextTest, WhatFollowsALinkMayReplaceTheTextOrTheWidget) {
    links.victim = &text;
    window.click(xOf("x f"), 10);
    EXPECT_EQ(text.linkCount(), 0);
    links.victim = nullptr;

    auto* doomed = new WRichText(&root, "<a href=\"three\">three</a>");
    root.setChildRect(doomed, {0, 40, 300, 60});
    doomed->setLinkCallback(&links);
    links.doomed = doomed;
    window.click(6, 50);
    doomed = new WRichText(&root, "<a href=\"four\">four</a>");
    doomed->setLinkCallback(&links);
    links.doomed = doomed;
    doomed->takeFocus();
    window.key(key::Return);
    EXPECT_EQ(links.clicked, (std::vector<std::string>{"one", "three", "four"}));
}

TEST_F(RichTextTest, MarkupNamesColoursAndSizes) {
    text.setText("<span style=\"color:#66a7e8\">a</span><span style=\"color:statusGreen\">b</span>"
                 "<a href=\"x\" style=\"color:#123456\">c</a>");
    window.paint();
    EXPECT_GT(window.countPixels({0, 0, 300, 20}, 0x66a7e8), 5);
    EXPECT_GT(window.countPixels({0, 0, 300, 20}, 0x048c00), 5);
    EXPECT_GT(window.countPixels({0, 0, 300, 20}, 0x123456), 5);
    text.setText("<span style=\"font-size:240\">tall</span>");
    EXPECT_GT(text.getPreferredSize().y, font.height);
}

TEST_F(RichTextTest, ItWrapsAndItsHeightFollowsTheWidth) {
    text.setText("one two three <a href=\"u\">four five</a>");
    const Point natural = text.getPreferredSize();
    EXPECT_EQ(natural, Point(font.stringWidth("one two three four five") + 8, font.height));
    EXPECT_EQ(text.getPreferredHeight(natural.x), font.height);
    EXPECT_EQ(text.getPreferredHeight(natural.x - 1), 2 * font.height);
    root.setChildRect(&text, {0, 0, font.stringWidth("one two three four") + 8, 2 * font.height});
    EXPECT_EQ(text.linkCount(), 1); // though it is on two lines
    window.click(6, font.height + 5);
    EXPECT_EQ(links.clicked, std::vector<std::string>{"u"});
}

TEST_F(RichTextTest, LinesAreAlignedOneByOne) {
    text.setText("<div style=\"text-align:right\">H</div><div style=\"text-align:center\">H</div>");
    root.setChildRect(&text, {0, 0, 300, 2 * font.height});
    window.paint();
    const int h = font.stringWidth("H");
    EXPECT_GT(window.countPixels({296 - h, 0, 296, font.height}, 0), 5);
    EXPECT_GT(window.countPixels({150 - h, font.height, 150 + h, 2 * font.height}, 0), 5);
    EXPECT_EQ(window.countPixels({0, 0, 290 - h, font.height}, 0), 0);
}

TEST_F(RichTextTest, SelectedTextIsCopiedWithoutMarkup) {
    text.setText("a &amp; b <b>c</b>");
    text.setSelectable(true);
    window.move(xOf("a "), 10);
    window.press();
    window.move(290, 10);
    window.release();
    window.hold(key::ControlL);
    window.key('c');
    EXPECT_STREQ(window.clipboard.c_str(), "& b c");
}

TEST_F(RichTextTest, BadMarkupShowsItsError) {
    text.setText("a & b");
    EXPECT_GT(text.getPreferredSize().x, font.stringWidth("XML error"));
    text.setSelectable(true);
    text.setSelection(0, 9);
    EXPECT_STREQ(text.getSelectedText().c_str(), "XML error");
}

TEST_F(RichTextTest, TheHandAppearsOverALinkAndOnlyTheLinkIsRepainted) {
    window.move(xOf("x ") + 3, 8);
    EXPECT_EQ(window.shape, CursorShape::Hand);
    const Rect link(xOf("x "), 2, xOf("x first"), 2 + font.height);
    EXPECT_EQ(window.invalidArea(), link.expandBy(2).intersect({0, 0, 300, 20}));
    window.move(xOf("x first ") + 1, 8);
    EXPECT_EQ(window.shape, CursorShape::Default);
}

// A line of runs is one line of text: directions are found across them, and a link reads on where it stands.
TEST_F(RichTextTest, LinesFromRightToLeftStandAcrossRuns) {
    const auto letters = [&](const char* hebrew) { return font.stringWidth(hebrew); };
    text.setText("\u05d0\u05d1 <a href=\"one\">\u05d2\u05d3</a> ab");
    window.paintAll();
    // From the left: "ab", a blank, the link, a blank, the first word.
    const int link = 4 + font.stringWidth("ab ");
    const int linkEnd = link + letters("\u05d2\u05d3");
    EXPECT_EQ(window.countPixels({0, 0, link, 20}, linkBlue), 0);
    EXPECT_GT(window.countPixels({link, 0, linkEnd, 20}, linkBlue), 10);
    EXPECT_EQ(window.countPixels({linkEnd, 0, 300, 20}, linkBlue), 0);
    window.click(link + 2, 8);
    EXPECT_EQ(links.clicked, std::vector<std::string>{"one"});

    text.setSelectable(true);
    window.press();
    window.move(299, 8); // the start of the text
    window.release();
    EXPECT_EQ(text.getSelectedText().view().substr(0, 5), "\u05d0\u05d1 ");

    // A value keeps to itself, and a paragraph of several lines begins at the right.
    text.setText("a \u2068\u05d0\u2069 <b>1</b>.");
    EXPECT_EQ(text.getPreferredSize().x, 8 + font.stringWidth("a \u05d0 1."));
    text.setText("\u05d0\u05d1\u05d2 \u05d0\u05d1\u05d2 \u05d0\u05d1\u05d2");
    root.setChildRect(&text, {0, 0, letters("\u05d0\u05d1\u05d2") + 20, 60});
    window.paintAll();
    const int right = text.getWidth() - 4;
    EXPECT_GT(window.countPixels({right - 4, 1, right, 16}, 0), 0);
    EXPECT_EQ(window.countPixels({1, 1, 14, 59}, 0), 0);
}

} // namespace
} // namespace wvw
