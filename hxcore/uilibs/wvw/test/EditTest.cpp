#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WEdit.h"
#include "wvw/WMenu.h"

#include "hxutil/Font.h"
#include "plat/Configuration.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/TempDir.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <functional>

#include <unistd.h>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Rect;

struct EditTest : testing::Test {
    FakeClock clock;
    WCanvas root;
    WEdit edit{&root, 32};
    FakeParent window{&root};
    const hxutil::Font& font = *defaultStyle().font;

    void SetUp() override {
        root.setChildRect(&edit, {0, 0, 112, font.height + 8});
        edit.takeFocus();
    }
    void type(const char* text) {
        for (const char* p = text; *p; ++p)
            window.key(static_cast<unsigned char>(*p));
    }
    void withHeld(uint32_t modifier, std::initializer_list<uint32_t> keys) {
        window.hold(modifier);
        for (uint32_t one : keys)
            window.key(one);
        window.letGo(modifier);
    }
    int xOf(const char* prefix) const { return 6 + font.stringWidth(prefix); }
};

TEST_F(EditTest, TheLimitCountsBytesAndCutsNoCharacter) {
    edit.setMaxLength(3);
    edit.setText("a\xc3\xa4\xe2\x82\xac");
    EXPECT_STREQ(edit.getText(), "a\xc3\xa4");
    edit.setText("\xe2\x82\xac");
    EXPECT_STREQ(edit.getText(), "\xe2\x82\xac");
    edit.setMaxLength(2);
    EXPECT_STREQ(edit.getText(), "");
    EXPECT_EQ(edit.getCursor(), 0);
}

TEST_F(EditTest, TypingGoesToTheCursorAndSaysSo) {
    type("ac");
    window.key(key::Left);
    type("b");
    EXPECT_STREQ(edit.getText(), "abc");
    EXPECT_EQ(edit.getCursor(), 2);
    window.key(0x010020ac); // the euro sign as a Unicode keysym
    window.key(key::Home);
    window.key(0xe4);
    EXPECT_STREQ(edit.getText(), "\xc3\xa4"
                                 "ab\xe2\x82\xac"
                                 "c");
    EXPECT_EQ(window.changes.size(), 5u);
    EXPECT_TRUE(window.unusedKeys.empty());
    window.key(key::Return); // for the dialog
    EXPECT_EQ(window.unusedKeys, std::vector<uint32_t>{key::Return});
}

TEST_F(EditTest, SelectionsToTheLeftHaveNegativeLengthAndGoAllTheSame) {
    edit.setText("hello");
    withHeld(key::ShiftL, {key::Left, key::Left});
    EXPECT_EQ(edit.getCursor(), 5);
    EXPECT_EQ(edit.getSelection(), -2);
    EXPECT_STREQ(edit.getSelectedText().c_str(), "lo");
    window.key(key::Delete);
    EXPECT_STREQ(edit.getText(), "hel");
    EXPECT_EQ(edit.getCursor(), 3);

    window.key(key::Home);
    withHeld(key::ShiftR, {key::End});
    type("x");
    EXPECT_STREQ(edit.getText(), "x");
}

TEST_F(EditTest, ErasingTakesWholeCharactersAndStopsAtTheEnds) {
    edit.setText("a\xe2\x82\xac"
                 "b");
    window.key(key::Delete);
    EXPECT_STREQ(edit.getText(), "a\xe2\x82\xac"
                                 "b");
    window.key(key::Left);
    window.key(key::BackSpace);
    EXPECT_STREQ(edit.getText(), "ab");
    window.key(key::Home);
    window.key(key::BackSpace);
    EXPECT_STREQ(edit.getText(), "ab");
    window.key(key::Delete);
    EXPECT_STREQ(edit.getText(), "b");
}

TEST_F(EditTest, ControlMovesByWords) {
    edit.setText("one  tw\xc3\xb6-three");
    const auto cursorAfter = [this](uint32_t keysym) {
        withHeld(key::ControlL, {keysym});
        return edit.getCursor();
    };
    EXPECT_EQ(cursorAfter(key::Left), 10);
    EXPECT_EQ(cursorAfter(key::Left), 5);
    EXPECT_EQ(cursorAfter(key::Left), 0);
    EXPECT_EQ(cursorAfter(key::Right), 3);
    EXPECT_EQ(cursorAfter(key::Right), 9);
    EXPECT_EQ(cursorAfter(key::Right), 15);
}

/// Refuses one character, and keeps what it was asked.
class Picky : public WEdit::Filter {
public:
    bool accept(WEdit*, const char* newText, uint32_t character) override {
        seen = newText;
        return character != 'x';
    }
    std::string seen;
};

TEST_F(EditTest, AFilterSeesTheCutTextAndARefusalChangesNothing) {
    Picky filter;
    edit.setFilter(&filter);
    edit.setMaxLength(3);
    type("abcd");
    EXPECT_EQ(filter.seen, "abc");
    edit.setSelection(0, 2);
    window.changes.clear();
    type("x");
    EXPECT_STREQ(edit.getText(), "abc");
    EXPECT_EQ(edit.getSelection(), 2);
    EXPECT_EQ(window.bells, 1);
    EXPECT_TRUE(window.changes.empty());
}

TEST(NumberFilter, OnlyWholeNumbersFromZeroUp) {
    WEditUnsignedNumberFilter filter;
    for (const char* good : {"", "0", "65535", "007"})
        EXPECT_TRUE(filter.accept(nullptr, good, 0)) << good;
    for (const char* bad : {"-1", "1x", "x", "1.5", "99999999999"})
        EXPECT_FALSE(filter.accept(nullptr, bad, 0)) << bad;
}

TEST_F(EditTest, PasteDropsControlsAndRefusesBadText) {
    edit.setText("[]");
    window.key(key::Left);
    window.clipboard = "a\tb\r\nc\x7f";
    withHeld(key::ControlL, {'v'});
    EXPECT_STREQ(edit.getText(), "[abc]");
    window.clipboard = "bad \xff";
    withHeld(key::ControlL, {'v'});
    EXPECT_STREQ(edit.getText(), "[abc]");
    withHeld(key::ControlL, {'a', 'c'});
    EXPECT_STREQ(window.clipboard.c_str(), "[abc]");
}

TEST_F(EditTest, APasswordIsDrawnMeasuredAndGuardedAsStars) {
    edit.setText("iiii");
    edit.setPassword(true);
    EXPECT_EQ(edit.getPreferredSize().x, 4 * font.charWidth('*') + 12);
    window.click(6 + 2 * font.charWidth('*') + 1, 10);
    EXPECT_EQ(edit.getCursor(), 2);
    withHeld(key::ControlL, {'a', 'c'});
    EXPECT_TRUE(window.clipboard.isEmpty());
    EXPECT_EQ(window.bells, 1);
    withHeld(key::ControlL, {key::Left});
    EXPECT_EQ(edit.getCursor(), 0); // words do not show
}

TEST_F(EditTest, ThePointerPlacesAndDragsAndASecondPressTakesAll) {
    edit.setText("abcdef");
    window.move(xOf("ab") + font.charWidth('c') / 2 - 1, 10);
    window.press();
    EXPECT_EQ(edit.getCursor(), 2);
    window.move(xOf("abcd"), 10);
    window.move(-50, 10);
    EXPECT_EQ(edit.getSelection(), -2);
    window.release();
    window.move(90, 10);
    EXPECT_EQ(edit.getSelection(), -2);

    clock.advance(1000);
    window.click(xOf("ab"), 10);
    clock.advance(499);
    window.click(xOf("ab"), 10);
    EXPECT_EQ(edit.getSelection(), 6);
    clock.advance(1);
    window.click(xOf("ab"), 10);
    EXPECT_EQ(edit.getSelection(), 0);
    clock.advance(500);
    EXPECT_FALSE(clock.timersLeft());
}

TEST_F(EditTest, LongTextScrollsToTheCursorAndNoFurther) {
    edit.setMaxLength(1000);
    edit.setText(std::string(60, 'w').c_str());
    window.paintAll();
    const Rect inner(2, 2, 110, font.height + 6);
    const auto caretX = [&] {
        for (int x = 2; x < 110; ++x) {
            if (window.countPixels(Rect::xywh(x, 4, 1, font.height), 0) == font.height)
                return x;
        }
        return -1;
    };
    EXPECT_GT(caretX(), 100); // at the right end
    window.key(key::Home);
    window.paint();
    EXPECT_EQ(caretX(), 6);
    EXPECT_EQ(window.countPixels({112, 0, 200, 100}, 0), 0); // nothing beyond the frame
}

TEST_F(EditTest, ADragThatRestsOutsideGoesOnToTheEnd) {
    edit.setMaxLength(1000);
    edit.setText(std::string(60, 'w').c_str(), /*cursorToEnd=*/false);
    window.move(xOf("w"), 10);
    window.press();
    window.move(115, 10);
    const int atOnce = edit.getSelection();
    EXPECT_LT(atOnce, 20);
    clock.advance(50);
    EXPECT_GT(edit.getSelection(), atOnce);
    for (int i = 0; i < 60; ++i)
        clock.advance(50);
    EXPECT_EQ(edit.getSelection(), 59);
    window.move(-3, 10);
    for (int i = 0; i < 60; ++i)
        clock.advance(50);
    EXPECT_EQ(edit.getSelection(), -1);
    window.move(-30, 10);
    window.release();
    clock.advance(500);
    EXPECT_FALSE(clock.timersLeft());
}

TEST_F(EditTest, TabSelectsAllAndTheStateShows) {
    Box other(&root, "other", true);
    edit.setText("abc");
    EXPECT_EQ(edit.getSelection(), 0);
    window.key(key::Tab);
    EXPECT_FALSE(edit.hasFocus());
    window.key(key::Tab);
    EXPECT_EQ(edit.getSelection(), 3);
    window.paintAll();
    EXPECT_GT(window.countPixels({0, 0, 112, 30}, 0x3838c8), 50);
    EXPECT_GT(window.countPixels({0, 0, 112, 30}, 0x1976d2), 200); // the inner frame
    edit.setEnabled(false);
    type("x");
    EXPECT_STREQ(edit.getText(), "abc");
    window.paint();
    EXPECT_EQ(window.countPixels({0, 0, 112, 30}, 0x1976d2), 0);
    EXPECT_EQ(window.pixelAt(100, 10), 0xd8d8d8u);
}

TEST_F(EditTest, APlaceholderStandsInForNoText) {
    edit.setPlaceholder("hint");
    window.paintAll();
    EXPECT_GT(window.countPixels({2, 2, 110, 20}, 0x808080), 10);
    type("x");
    window.paint();
    EXPECT_EQ(window.countPixels({2, 2, 110, 20}, 0x808080), 0);
}

TEST_F(EditTest, MultiKeyWithoutATableLetsKeysPass) {
    EXPECT_TRUE(window.key(key::MultiKey));
    type("a");
    EXPECT_STREQ(edit.getText(), "a");
    EXPECT_TRUE(window.key(0xfe51)); // a dead accent waits for its letter
    type("e");
    EXPECT_STREQ(edit.getText(), "ae");
}

/// A file as keyboards of old came with: pairs of a spacing and a dead key, triples of what two of them combine to.
void composeByFile() {
    const plat::TempDir dir;
    plat::writeTextFile(dir / "keys", "# grave\n60 fe50\n0xe0 fe50 61\n\nc0 fe50 41 # A\nnonsense\n1 2 3 4\n");
    plat::Configuration::global().set("DeadKeyFile", (dir / "keys").c_str());
    const plat::CapturedLog log;
    rfb::DeadKeyUtil keys;
    using Keys = std::vector<uint32_t>;
    const auto typed = [&keys](const Keys& pressed) {
        Keys all;
        for (const uint32_t key : pressed)
            for (const uint32_t one : keys.compose(key, /*down=*/true))
                all.push_back(one);
        return all;
    };
    EXPECT_EQ(typed({0xfe50, 'a'}), Keys{0xe0});
    EXPECT_EQ(typed({0xfe50, key::ShiftL, 'A'}), (Keys{key::ShiftL, 0xc0}));
    EXPECT_EQ(typed({key::MultiKey, '`', 'a'}), Keys{0xe0});
    EXPECT_EQ(typed({'`', 'a'}), (Keys{'`', 'a'}));                // not armed
    EXPECT_EQ(typed({key::MultiKey, '`', 'x'}), (Keys{'`', 'x'})); // nothing that they combine to
    EXPECT_EQ(typed({key::MultiKey, 'y', '`', 'a'}), (Keys{'y', '`', 'a'}));
    for (const char* line :
         {"spacing 0x60 dead 0xfe50", "comb 0xe0 dead 0xfe50 base 0x61", "Got 1 dead keys", "Got 2 comps"})
        EXPECT_TRUE(std::ranges::any_of(log.lines, [line](const std::string& l) { return l.ends_with(line); })) << line;
    _exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(DeadKeyDeath, AFileSaysWhatTheyCombineTo) { // it is read once in a process
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(composeByFile(), testing::ExitedWithCode(0), "");
}

TEST_F(EditTest, TheMenuPastes) {
    window.clipboard = "pasted";
    window.click(20, 10, /*button=*/2);
    auto* menu = dynamic_cast<WMenu*>(window.anyPopup());
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->itemCount(), 3u);
    window.popupOf(menu)->key(key::Down);
    window.popupOf(menu)->key(key::Down);
    window.popupOf(menu)->key(key::Return);
    EXPECT_STREQ(edit.getText(), "pasted");
    window.click(20, 10, /*button=*/2);
    EXPECT_TRUE(window.anyPopup());
    root.removeChild(&edit); // it holds the pointer, and goes with its field
    EXPECT_FALSE(window.anyPopup());
}

TEST_F(EditTest, UndoTakesBackWholeStepsAndRedoBringsThemAgain) {
    edit.setText("start");
    type(" abc");
    window.key(key::Left);
    type("x");
    withHeld(key::ControlL, {key::BackSpace});
    EXPECT_STREQ(edit.getText(), "start c");
    std::vector<std::string> seen;
    for (int i = 0; i < 4; ++i) {
        withHeld(key::ControlL, {'z'});
        seen.push_back(edit.getText());
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"start abxc", "start abc", "start", "start"}));
    EXPECT_EQ(window.bells, 1); // the last one found nothing
    withHeld(key::ControlL, {'y', 'y'});
    EXPECT_STREQ(edit.getText(), "start abxc");
    EXPECT_EQ(edit.getCursor(), 9);
    type("!");
    withHeld(key::ControlL, {'y'}); // another way was taken
    EXPECT_STREQ(edit.getText(), "start abx!c");
    edit.setPassword(true);
    withHeld(key::ControlL, {'z'}); // nothing is kept of a password
    EXPECT_STREQ(edit.getText(), "start abx!c");
}

TEST_F(EditTest, TheOlderClipboardKeysAndTheMiddleButtonWorkToo) {
    edit.setText("hello");
    withHeld(key::ShiftL, {key::Left, key::Left});
    withHeld(key::ControlL, {key::Insert});
    EXPECT_STREQ(window.clipboard.c_str(), "lo");
    withHeld(key::ShiftL, {key::Delete});
    EXPECT_STREQ(edit.getText(), "hel");
    withHeld(key::ShiftL, {key::Insert, key::Insert});
    EXPECT_STREQ(edit.getText(), "hellolo");
    withHeld(key::ControlL, {'a', 'x'});
    EXPECT_STREQ(edit.getText(), "");
    EXPECT_STREQ(window.clipboard.c_str(), "hellolo");
    withHeld(key::ControlL, {'x'});
    EXPECT_EQ(window.bells, 1);

    edit.setText("ab");
    window.primary = "12\n3";
    window.click(xOf("a"), 10, 1);
    EXPECT_STREQ(edit.getText(), "a123b");
    edit.setEnabled(false);
    window.click(xOf("a"), 10, 1);
    EXPECT_STREQ(edit.getText(), "a123b");
}

TEST_F(EditTest, WhatTheUserSelectsIsForTheMiddleButton) {
    edit.setText("hello world");
    edit.setSelection(0, 3); // by the program
    EXPECT_STREQ(window.primary.c_str(), "");
    window.key(key::End);
    EXPECT_STREQ(window.primary.c_str(), "");
    withHeld(key::ShiftL, {key::Left, key::Left});
    EXPECT_STREQ(window.primary.c_str(), "ld");
    window.key(key::Left); // nothing is selected any more: the old one stays
    EXPECT_STREQ(window.primary.c_str(), "ld");
    withHeld(key::ControlL, {'a'});
    EXPECT_STREQ(window.primary.c_str(), "hello world");
    window.move(xOf("he"), 10);
    window.press();
    window.move(xOf("hello"), 10);
    EXPECT_STREQ(window.primary.c_str(), "hello world");
    window.release();
    EXPECT_STREQ(window.primary.c_str(), "llo");
    edit.setPassword(true);
    withHeld(key::ControlL, {'a'});
    EXPECT_STREQ(window.primary.c_str(), "llo");
}

TEST_F(EditTest, TheInputMethodIsToldWhereTheTextGoes) {
    edit.setText("ab");
    window.key(key::Home);
    EXPECT_EQ(window.textCursor, Rect::xywh(6, 4, 1, font.height));
    type("x");
    EXPECT_EQ(window.textCursor.tl.x, xOf("x"));
    Box other(&root, "other", true);
    other.takeFocus();
    EXPECT_TRUE(window.textCursor.isEmpty());
    edit.takeFocus();
    EXPECT_FALSE(window.textIsSecret);
    edit.setPassword(true);
    EXPECT_TRUE(window.textIsSecret);
}

// Arrow keys follow the screen, Home and End the text, the pointer what it points at.
TEST_F(EditTest, TextFromRightToLeftIsEditedWhereItStands) {
    edit.setText("\u05d0\u05d1\u05d2"); // starts at the right
    const int right = 112 - 6;
    const auto caret = [&] { return window.textCursor.tl.x; };
    EXPECT_EQ(caret(), right - font.stringWidth(edit.getText())) << "behind the last letter";
    window.key(key::Right);
    EXPECT_EQ(edit.getCursor(), 4);
    window.key(key::Home);
    EXPECT_EQ(caret(), right);
    window.key(key::Right);
    EXPECT_EQ(edit.getCursor(), 0) << "the edge";
    window.click(right - font.charWidth(0x5d0) - 1, 10);
    EXPECT_EQ(edit.getCursor(), 2);
    withHeld(key::ControlL, {key::Left});
    EXPECT_EQ(edit.getCursor(), 6) << "words lie to the left";
    withHeld(key::ShiftL, {key::Right});
    EXPECT_STREQ(edit.getSelectedText().c_str(), "\u05d2");
    type("x");
    EXPECT_STREQ(edit.getText(), "\u05d0\u05d1x");
    EXPECT_EQ(caret(), right - font.stringWidth(edit.getText())) << "the paragraph's end";

    // Latin first: the Hebrew word in the middle is passed from its left to its right.
    edit.setText("a\u05d0\u05d1c");
    window.key(key::Home);
    int last = caret();
    for (const int next : {1, 3, 5, 6}) {
        window.key(key::Right);
        EXPECT_EQ(edit.getCursor(), next);
        EXPECT_GT(caret(), last);
        last = caret();
    }
}

TEST_F(EditTest, MarksGoWithTheirBase) {
    edit.setText("aq\u0303\u0316b");
    window.key(key::Left);
    window.key(key::Left);
    EXPECT_EQ(edit.getCursor(), 1);
    window.key(key::Right);
    window.key(key::BackSpace);
    EXPECT_STREQ(edit.getText(), "aq\u0303b") << "a mark comes off alone";
    window.key(key::Left);
    EXPECT_EQ(edit.getCursor(), 1);
    window.key(key::Delete);
    EXPECT_STREQ(edit.getText(), "ab") << "a base takes its marks along";
    edit.setText("\U0001f468\u200d\U0001f469");
    window.key(key::BackSpace);
    EXPECT_STREQ(edit.getText(), "") << "one picture";
    edit.setPassword(true);
    edit.setText("e\u0301\u05d0");
    window.key(key::Left);
    EXPECT_EQ(edit.getCursor(), 3) << "stars from left to right, one for each";
}

// A key costs the pixels that it changes, and what stays as it was is what a whole repaint would give.
TEST_F(EditTest, TypingRepaintsWhatChanges) {
    edit.setText("abcdefgh");
    window.paintAll();
    type("x");
    EXPECT_LE(window.invalidArea().width(), font.stringWidth("hx") + 16);
    EXPECT_GE(window.invalidArea().br.x, xOf("abcdefghx"));

    const std::vector<std::function<void()>> steps = {
        [&] { type("xyz"); },
        [&] { window.key(key::Left); },
        [&] { type("i"); },
        [&] { window.key(key::BackSpace); },
        [&] {
            withHeld(key::ShiftL, {key::Left, key::Left});
        },
        [&] { withHeld(key::ShiftL, {key::Right}); },
        [&] { type("W"); },
        [&] { window.key(key::Home); },
        [&] { withHeld(key::ControlL, {'a'}); },
        [&] { type("\xc4"); },
        [&] { type(" grows beyond the end"); },
        [&] { window.key(key::Home); },
        [&] { type("m"); },
        [&] { edit.setText("e\xcc\x81\xcc\x82 x"); },
        [&] { window.key(key::BackSpace); },
        [&] { edit.setText("a \xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d b"); },
        [&] { type("q"); },
        [&] { edit.setPassword(true); },
        [&] { type("secret"); },
        [&] { edit.setPassword(false); },
        [&] { edit.setPlaceholder("nothing here"); },
        [&] { edit.setText(""); },
        [&] { type("a"); },
        [&] { edit.setAlign(2, 1); },
        [&] { type("b"); },
    };
    window.paintAll();
    for (size_t i = 0; i < steps.size(); ++i) {
        steps[i]();
        window.paint();
        const std::vector<uint32_t> seen = window.getRgb();
        window.paintAll();
        ASSERT_EQ(seen, window.getRgb()) << "after step " << i;
    }
}

} // namespace
} // namespace wvw
