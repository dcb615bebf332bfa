#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WEditAutocomplete.h"
#include "wvw/WLabelChoice.h"
#include "wvw/WRoot.h"

#include "hxutil/Font.h"
#include "rfb/keySymbols.h"

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

struct ChoiceTest : testing::Test {
    FakeClock clock;
    WCanvas root;
    WLabelChoice labelled{&root, "&Encryption"};
    WChoice& choice = labelled.getChoice();
    Box other{&root, "other", true};
    FakeParent window{&root, {300, 200}};

    void SetUp() override {
        choice.addItem(30, "Prefer &on");
        choice.addItem(10, "Always");
        choice.addItem(20, "prefer off");
        root.setChildRect(&labelled, Rect::xywh(10, 10, 250, labelled.getPreferredSize().y));
        root.setChildRect(&other, {0, 100, 10, 110});
        choice.takeFocus();
    }
    FakeParent& list() { return *window.popupOf(window.anyPopup()); }
    Point middle() const { return choice.getRootPosition({30, 8}); }
};

TEST_F(ChoiceTest, ItemsAreFoundByKeyAndByTextInKeyOrder) {
    EXPECT_EQ(choice.getSelected(), -1);
    choice.setSelected(30);
    EXPECT_STREQ(choice.getText(), "Prefer on");
    choice.setSelected(99);
    EXPECT_STREQ(choice.getText(), "");
    choice.setSelectedText("Always");
    EXPECT_EQ(choice.getSelected(), 10);
    choice.addItem(5, "Always"); // the first key with the text
    EXPECT_EQ(choice.getSelected(), 5);
    EXPECT_EQ(choice.next(/*forward=*/false), 30);
    EXPECT_EQ(choice.next(/*forward=*/true), 5);
    EXPECT_STREQ(choice.describeItem(3).c_str(), "30:Prefer on");
    choice.removeAll();
    EXPECT_EQ(choice.next(true), -1);
    EXPECT_EQ(choice.getSelected(), -1);
    EXPECT_TRUE(window.changes.empty()); // all of it was the program's doing
}

TEST_F(ChoiceTest, KeysStepFindAndDrop) {
    const struct {
        uint32_t key;
        int selected;
    } steps[] = {{key::Down, 10}, {key::Up, 10}, {key::Down, 20}, {key::End, 30}, {key::Down, 30},
                 {key::Home, 10}, {'P', 20},     {'p', 30},       {'p', 20},      {'x', 20}};
    for (const auto& step : steps) {
        window.key(step.key);
        EXPECT_EQ(choice.getSelected(), step.selected) << step.key;
    }
    EXPECT_EQ(window.changes.size(), 7u); // one for each step that changed it
    EXPECT_EQ(window.changes[0], &choice);

    window.key(key::Space);
    ASSERT_TRUE(choice.isDropped());
    EXPECT_TRUE(list().grabbed);
    EXPECT_EQ(list().position, choice.getRootPosition({0, choice.getHeight()}));
    list().key(key::Down);
    list().key(key::Return); // the next after the one that was shown
    EXPECT_EQ(choice.getSelected(), 30);
    EXPECT_FALSE(choice.isDropped());
    window.hold(key::AltL);
    window.key(key::Down);
    window.letGo(key::AltL);
    ASSERT_TRUE(choice.isDropped());
    list().key(key::Escape);
    EXPECT_FALSE(choice.isDropped());
    EXPECT_EQ(choice.getSelected(), 30);
    window.key(key::F4);
    window.key(key::Home); // before the list has the keyboard
    window.key(key::Return);
    EXPECT_EQ(choice.getSelected(), 10);
    EXPECT_FALSE(choice.isDropped());
    window.key(key::Tab);
    EXPECT_TRUE(other.hasFocus());
}

TEST_F(ChoiceTest, APressDropsTheListAndAHeldButtonChoosesWhereItIsLetGo) {
    window.move(middle().x, middle().y);
    window.press();
    ASSERT_TRUE(choice.isDropped());
    FakeParent& popup = list();
    popup.press(); // the button is held on the way in
    popup.move(20, 30);
    popup.release();
    EXPECT_FALSE(choice.isDropped());
    EXPECT_EQ(choice.getSelected(), 20);
    window.release(); // comes late
    EXPECT_FALSE(choice.isDropped());

    window.click(middle().x, middle().y);
    ASSERT_TRUE(choice.isDropped());
    window.showPopup(window.anyPopup(), /*show=*/false, /*grab=*/false, {}); // as a press elsewhere does
    EXPECT_FALSE(choice.isDropped());
    window.press(4); // the wheel is for what is around it
    EXPECT_EQ(choice.getSelected(), 20);
    choice.setEnabled(false);
    window.click(middle().x, middle().y);
    EXPECT_FALSE(choice.isDropped());
}

TEST_F(ChoiceTest, TheListStaysOnTheScreenAndGoesWithItsChoice) {
    window.screenPx = {1000, 60};
    window.key(key::F4);
    EXPECT_LE(list().position.y + list().root->getHeight(), 60);
    window.screenPx = {1000, 800};
    choice.removeAll();
    EXPECT_EQ(window.anyPopup(), nullptr);
    choice.addItem(1, "again");
    window.key(key::F4);
    root.removeChild(&labelled);
    EXPECT_EQ(window.anyPopup(), nullptr);
}

/// Throws the choice away as soon as it has changed.
struct ChoiceKiller : WInputHandler {
    bool valueChanged(Widget*) override {
        choice.reset();
        return true;
    }
    std::unique_ptr<WChoice> choice = std::make_unique<WChoice>();
};

TEST_F(ChoiceTest, ItMayDieOfItsOwnChange) {
    for (const bool byKey : {false, true}) {
        ChoiceKiller killer;
        killer.choice->addItem(1, "one");
        killer.choice->addItem(2, "two");
        root.addChildRect(killer.choice.get(), {100, 100, 200, 120});
        killer.choice->setHandler(&killer);
        killer.choice->takeFocus();
        window.key(key::F4);
        ASSERT_TRUE(killer.choice->isDropped());
        if (byKey) {
            list().key('T'); // no mnemonic: goes there
            list().key(key::Return);
        } else {
            list().click(10, 10);
        }
        EXPECT_EQ(killer.choice, nullptr);
        EXPECT_EQ(window.anyPopup(), nullptr);
    }
}

TEST_F(ChoiceTest, AnEditableOneTakesAnyTextAndStillDrops) {
    WChoice host(&root, /*editable=*/true);
    host.addItem(1, "alpha");
    host.addItem(2, "beta");
    root.setChildRect(&host, {10, 50, 150, 73});
    host.takeFocus();
    EXPECT_TRUE(host.getEdit().hasFocus());
    for (const char c : {'x', ' ', 'y'})
        window.key(static_cast<unsigned char>(c));
    EXPECT_STREQ(host.getText(), "x y");
    EXPECT_EQ(host.getSelected(), -1);
    EXPECT_EQ(window.changes, (std::vector<Widget*>{&host, &host, &host}));
    window.key(key::Down);
    EXPECT_EQ(host.getSelected(), 1);
    EXPECT_EQ(host.getEdit().getSelection(), 5); // so that typing replaces it
    window.click(30, 60);
    EXPECT_FALSE(host.isDropped()); // that was in the text
    window.click(145, 60);
    EXPECT_TRUE(host.isDropped());
}

TEST_F(ChoiceTest, LongTextsAreCutShortAndToldByTheTooltip) {
    choice.setSelected(30); // the widest
    choice.setSize(choice.getPreferredSize());
    EXPECT_STREQ(choice.getTooltip(), "");
    choice.addItem(40, "A text that is very much longer than the field is wide, in every font");
    choice.setSelected(40);
    EXPECT_STREQ(choice.getTooltip(), choice.getText());
    choice.setTooltip("own");
    EXPECT_STREQ(choice.getTooltip(), "own");
}

TEST_F(ChoiceTest, TheLabelLeadsToItsControl) {
    other.takeFocus();
    window.hold(key::AltL);
    EXPECT_TRUE(labelled.hotKey('E'));
    EXPECT_FALSE(labelled.hotKey('x'));
    window.letGo(key::AltL);
    EXPECT_TRUE(choice.hasFocus());
    EXPECT_FALSE(labelled.hotKey('e')); // without Alt
    WLabelEdit field(&root, "Po&rt");
    field.getEdit().setText("5900");
    root.setChildRect(&field, Rect::xywh(10, 60, 200, field.getPreferredSize().y));
    window.click(15, 60 + 10);
    EXPECT_TRUE(field.getEdit().hasFocus());
    EXPECT_STREQ(field.getEdit().getSelectedText().c_str(), "5900");
    field.setLabelWidth(90);
    EXPECT_EQ(field.getChildPosition(&field.getEdit()).x, 94);
}

struct AutocompleteTest : testing::Test {
    FakeClock clock;
    WCanvas root;
    WEditAutocomplete edit{&root};
    Box other{&root, "other", true};
    FakeParent window{&root, {300, 200}};

    void SetUp() override {
        root.setChildRect(&edit, {10, 10, 160, 33});
        edit.setCandidates({"harbour", "Härte & Co", "beach", "the harbour", "hare"});
        edit.takeFocus();
    }
    void type(const char* text) {
        for (const char* p = text; *p; ++p)
            window.key(static_cast<unsigned char>(*p));
    }
    std::vector<std::string> shown() const {
        std::vector<std::string> texts;
        for (const plat::String& text : edit.getShown())
            texts.push_back(text.c_str());
        return texts;
    }
};

TEST_F(AutocompleteTest, TheListFollowsTheTypedText) {
    type("HA");
    EXPECT_EQ(shown(), (std::vector<std::string>{"harbour", "hare", "the harbour"}));
    EXPECT_FALSE(window.popupOf(window.anyPopup())->grabbed); // typing goes on in the field
    const FakeParent* const popup = window.popupOf(window.anyPopup());
    window.key(key::Down);
    type("RE");
    EXPECT_EQ(shown(), (std::vector<std::string>{"hare"}));
    EXPECT_EQ(window.popupOf(window.anyPopup()), popup); // it has not flickered
    EXPECT_FALSE(window.key(key::Return));               // and nothing is chosen in it
    window.key(key::End);
    type("r");
    window.key(key::BackSpace);
    type("x");
    EXPECT_FALSE(edit.isListShown());
    edit.setText("");
    window.key(0xc4); // A with two dots, small or not
    EXPECT_EQ(shown(), (std::vector<std::string>{"Härte & Co"}));
    window.key(key::BackSpace);
    EXPECT_FALSE(edit.isListShown());
    window.key(key::Down); // asks for all
    EXPECT_EQ(shown().size(), 5u);
}

TEST_F(AutocompleteTest, AnEntryIsTakenByEnterTabOrAClick) {
    type("h");
    window.key(key::Down);
    window.key(key::Down);
    EXPECT_TRUE(window.key(key::Return));
    EXPECT_STREQ(edit.getText(), "Härte & Co");
    EXPECT_FALSE(edit.isListShown());
    EXPECT_FALSE(window.key(key::Return)); // this one is the dialog's

    edit.selectAll();
    type("be");
    EXPECT_FALSE(window.key(key::Return)); // nothing chosen: also the dialog's
    type("a");
    window.key(key::Down);
    window.key(key::Tab);
    EXPECT_STREQ(edit.getText(), "beach");
    EXPECT_TRUE(other.hasFocus());

    edit.takeFocus();
    edit.selectAll();
    type("the");
    window.popupOf(window.anyPopup())->click(10, 10);
    EXPECT_STREQ(edit.getText(), "the harbour");
    EXPECT_EQ(window.anyPopup(), nullptr);
}

TEST_F(AutocompleteTest, TheListGoesWithEscapeFocusSizeAndWindow) {
    const auto open = [this] {
        edit.takeFocus();
        edit.setText("");
        type("h");
        return edit.isListShown();
    };
    ASSERT_TRUE(open());
    EXPECT_TRUE(window.key(key::Escape));
    EXPECT_FALSE(edit.isListShown());
    EXPECT_FALSE(window.key(key::Escape)); // closes the dialog
    ASSERT_TRUE(open());
    other.takeFocus();
    EXPECT_FALSE(edit.isListShown());
    ASSERT_TRUE(open());
    edit.setSize({100, 23});
    EXPECT_FALSE(edit.isListShown());
    ASSERT_TRUE(open());
    root.removeChild(&edit);
    EXPECT_EQ(window.anyPopup(), nullptr);
}

} // namespace
} // namespace wvw
