#include "wvw/test/FakeParent.h"

#include "wvw/WBevelButton.h"
#include "wvw/WCanvas.h"
#include "wvw/WCheckBox.h"
#include "wvw/WLabelWidget.h"

#include "hxutil/MouseCallback.h"
#include "rfb/keySymbols.h"

#include <memory>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Rect;

struct ButtonTest : testing::Test {
    WCanvas root;
    WLabelButton first{&root, "Apply"};
    WLabelButton second{&root, "Close"};
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&first, {10, 10, 80, 34});
        root.setChildRect(&second, {90, 10, 160, 34});
        window.paint();
    }
    size_t presses() { return window.activations.size(); }
};

TEST_F(ButtonTest, OnlyAReleaseInsidePresses) {
    window.move(20, 20);
    window.press();
    EXPECT_TRUE(first.isPressed());
    EXPECT_EQ(presses(), 0u);
    window.move(20, 60);
    EXPECT_FALSE(first.isPressed());
    window.move(100, 20); // another button lights up no more than it acts
    EXPECT_FALSE(second.isPressed());
    window.release();
    EXPECT_EQ(presses(), 0u);

    window.move(20, 20);
    window.press();
    window.move(20, 60);
    window.move(21, 20);
    EXPECT_TRUE(first.isPressed());
    window.release();
    ASSERT_EQ(presses(), 1u);
    EXPECT_EQ(window.activations[0], &first);
    window.click(20, 20, /*button=*/2);
    EXPECT_EQ(presses(), 1u);
}

TEST_F(ButtonTest, EnterAndSpacePressWhatHasTheFocus) {
    window.key(key::Return);
    window.key(key::Tab);
    window.key(key::Space);
    window.key(key::KPEnter);
    EXPECT_EQ(window.activations, (std::vector<Widget*>{&first, &second, &second}));
    second.setEnabled(false); // the focus goes on to the first
    window.key(key::Return);
    EXPECT_EQ(window.activations.back(), &first);
}

TEST_F(ButtonTest, DisablingOrHidingLetsGo) {
    window.move(20, 20);
    window.press();
    first.setEnabled(false);
    EXPECT_EQ(first.faceState(), FaceState::Disabled);
    first.setEnabled(true);
    window.release();
    EXPECT_EQ(presses(), 0u);
    window.press();
    first.setVisible(false);
    window.release();
    EXPECT_EQ(presses(), 0u);
}

/// Deletes a widget when it is pressed, or its mouse is seen.
class Killer : public WInputHandler, public hxutil::MouseCallback {
public:
    bool activated(Widget*) override {
        ++calls;
        victim.reset();
        return false;
    }
    void mouseEvent(const hxutil::MouseEvent& event) override {
        if (event.type == hxutil::MouseEvent::Release)
            victim.reset();
    }
    std::unique_ptr<Widget> victim;
    int calls = 0;
};

TEST_F(ButtonTest, AButtonMayDieOfItsOwnPress) {
    FakeClock clock;
    for (int way = 0; way < 3; ++way) {
        Killer killer;
        auto* doomed = new WLabelButton(&root, "x");
        killer.victim.reset(doomed);
        root.setChildRect(doomed, {10, 50, 60, 80});
        doomed->setHandler(&killer);
        if (way == 0)
            doomed->setMouseCallback(&killer);
        if (way < 2) {
            window.click(20, 60);
        } else {
            doomed->takeFocus();
            window.key(key::Return);
        }
        EXPECT_EQ(killer.victim, nullptr);
        EXPECT_EQ(killer.calls, way == 0 ? 0 : 1);
    }
    EXPECT_EQ(presses(), 0u);
    EXPECT_FALSE(clock.timersLeft());
}

TEST_F(ButtonTest, ALayoutMayDieOfAPressInIt) {
    Killer killer;
    auto* doomed = new WLayout(&root);
    killer.victim.reset(doomed);
    root.setChildRect(doomed, {0, 40, 200, 100});
    WLabelButton inside(doomed, "x");
    inside.setSize({100, 40});
    inside.setHandler(&killer);
    window.click(20, 60);
    EXPECT_EQ(killer.calls, 1);
    EXPECT_FALSE(inside.isAttached());
    EXPECT_EQ(inside.getParentLayout(), nullptr);
}

TEST_F(ButtonTest, AnUndersizedButtonPaintsNothingOutside) {
    first.setSize({3, 2});
    second.setVisible(false);
    window.paintAll();
    EXPECT_EQ(window.countPixels({0, 0, 200, 100}, 0xd8d8d8), 200 * 100 - 3 * 2 + 4);
}

struct CheckTest : testing::Test {
    WCanvas root;
    WLabelCheckBoxHK check{&root, "&Allow"};
    WLabelCheckBox radio{&root, "Choice", "WCheck_dot"};
    FakeParent window{&root};

    void SetUp() override {
        root.setChildRect(&check, {10, 10, 110, 28});
        root.setChildRect(&radio, {10, 40, 110, 58});
        window.paint();
    }
};

TEST_F(CheckTest, BoxAndLabelBothTurnItOnAndOff) {
    window.click(15, 18);
    EXPECT_TRUE(check.getCheck().isOn());
    EXPECT_EQ(window.changes, (std::vector<Widget*>{&check.getCheck()}));
    window.click(40, 18); // the label
    EXPECT_FALSE(check.getCheck().isOn());
    window.move(40, 18);
    window.press();
    window.move(40, 90);
    window.release();
    EXPECT_FALSE(check.getCheck().isOn());
    window.key(key::Space);
    EXPECT_TRUE(check.getCheck().isOn());
}

TEST_F(CheckTest, ARadioMarkIsNeverTurnedOffByAPress) {
    window.click(15, 48);
    window.click(15, 48);
    EXPECT_TRUE(radio.getCheck().isOn());
    EXPECT_EQ(window.changes.size(), 1u);
}

TEST_F(CheckTest, MixedBecomesOnAndSettingTheSameSaysNothing) {
    check.getCheck().setState(WCheckBox::State::Indeterminate);
    check.getCheck().setState(WCheckBox::State::Indeterminate);
    EXPECT_EQ(window.changes.size(), 1u);
    window.click(15, 18);
    EXPECT_EQ(check.getCheck().getState(), WCheckBox::State::On);
}

TEST_F(CheckTest, ADisabledOneStaysAsItIs) {
    window.click(15, 18);
    check.setEnabled(false);
    window.click(15, 18);
    window.click(40, 18);
    EXPECT_TRUE(check.getCheck().isOn());
}

TEST_F(CheckTest, AltAndTheMarkedLetterPressIt) {
    EXPECT_FALSE(check.hotKey('a'));
    window.hold(key::AltL);
    EXPECT_TRUE(check.hotKey('A'));
    EXPECT_TRUE(check.getCheck().isOn());
    EXPECT_TRUE(check.getCheck().hasFocus());
    EXPECT_FALSE(check.hotKey('b'));
    check.setEnabled(false);
    EXPECT_FALSE(check.hotKey('a'));
}

TEST(Mnemonic, TheFirstMarkedCharacterCounts) {
    const struct {
        const char* marked;
        const char* plain;
        uint32_t keysym;
        int index;
    } cases[] = {
        {"&File", "File", 'f', 0}, {"Save &As", "Save As", 'a', 5},
        {"R&&D", "R&D", 0, -1},    {"a&&b &c", "a&b c", 'c', 4},
        {"&x &y", "x y", 'x', 0},  {"\xc3\xa4&\xc3\x96", "\xc3\xa4\xc3\x96", 0xf6, 2},
        {"end&", "end", 0, -1},    {"&", "", 0, -1},
        {"", "", 0, -1},           {nullptr, "", 0, -1},
        {"&&&a", "&a", 'a', 1},
    };
    for (const auto& c : cases) {
        uint32_t keysym = 1;
        int index = 1;
        EXPECT_STREQ(stripMnemonic(c.marked, keysym, index).c_str(), c.plain);
        EXPECT_EQ(keysym, c.keysym) << c.plain;
        EXPECT_EQ(index, c.index) << c.plain;
    }
}

} // namespace
} // namespace wvw
