#include "wvw/test/FakeParent.h"

#include "rfb/keySymbols.h"

#include <memory>

namespace wvw {
namespace {

namespace key = rfb::key;

/// a, then a nested layout with b and c, then d; all take focus.
struct NestedTree {
    WLayout root;
    Box a{&root, "a", true};
    WLayout inner{&root};
    Box b{&inner, "b", true};
    Box c{&inner, "c", true};
    Box d{&root, "d", true};

    Widget* focused() { return root.findFocus(); }
};

struct FocusTest : testing::Test {
    NestedTree tree;
    FakeParent window{&tree.root};

    void backTab() {
        window.hold(key::ShiftL);
        window.key(key::Tab);
        window.letGo(key::ShiftL);
    }
};

TEST_F(FocusTest, TabTravelsThroughNestedLayoutsAndWrapsAtTheTop) {
    const std::vector<Widget*> round = {&tree.a, &tree.b, &tree.c, &tree.d, &tree.a};
    for (Widget* expected : round) {
        EXPECT_EQ(tree.focused(), expected);
        window.key(key::Tab);
    }
    // The last Tab led to b; backward the last widget of a nested layout comes first.
    const std::vector<Widget*> back = {&tree.b, &tree.a, &tree.d, &tree.c, &tree.b};
    for (Widget* expected : back) {
        EXPECT_EQ(tree.focused(), expected);
        backTab();
    }
}

TEST_F(FocusTest, ArrowsTravelToo) {
    window.key(key::Down);
    EXPECT_EQ(tree.focused(), &tree.b);
    window.key(key::Up);
    EXPECT_EQ(tree.focused(), &tree.a);
}

TEST_F(FocusTest, TheOldWidgetHearsFirstAndEachHearsOnce) {
    std::string order;
    for (Box* box : {&tree.a, &tree.b, &tree.c, &tree.d}) {
        box->takeLog();
        box->sharedLog = &order;
    }
    tree.c.takeFocus();
    EXPECT_EQ(order, "a:blur c:focus");
    order.clear();
    backTab();
    EXPECT_EQ(order, "c:blur-back b:focus-back");
}

TEST_F(FocusTest, WhatIsHiddenOrDisabledPassesTheFocusOn) {
    tree.b.takeFocus();
    tree.b.setVisible(false);
    EXPECT_EQ(tree.focused(), &tree.c);
    EXPECT_FALSE(tree.b.takeFocus());
    tree.inner.setEnabled(false); // c in it had the focus
    EXPECT_EQ(tree.focused(), &tree.d);
    tree.d.setEnabled(false);
    EXPECT_EQ(tree.focused(), &tree.a);
    tree.a.setVisible(false); // nobody is left
    EXPECT_EQ(tree.focused(), &tree.root);
    tree.d.setEnabled(true);
    window.key(key::Tab); // and a key finds who came back
    EXPECT_EQ(tree.focused(), &tree.d);
}

TEST_F(FocusTest, AWindowWithoutFocusKeepsItsPlace) {
    tree.c.takeFocus();
    window.focused = false;
    EXPECT_FALSE(tree.c.hasFocus());
    window.focused = true;
    EXPECT_TRUE(tree.c.hasFocus());
    EXPECT_EQ(window.key(key::Escape), false);
    EXPECT_EQ(window.unusedKeys.back(), key::Escape);
}

TEST_F(FocusTest, AFocusChosenBeforeTheWindowMapsHolds) {
    NestedTree fresh;
    fresh.root.setFocusChild(&fresh.inner);
    fresh.inner.setFocusChild(&fresh.c);
    fresh.c.takeLog();
    FakeParent other(&fresh.root);
    EXPECT_TRUE(fresh.c.hasFocus());
    EXPECT_EQ(fresh.c.takeLog(), "focus");
    EXPECT_EQ(fresh.b.takeLog(), "");
}

TEST_F(FocusTest, TheFocusLeavesAWidgetThatDies) {
    auto* extra = new Box(&tree.root, "extra", true);
    extra->takeFocus();
    EXPECT_EQ(tree.focused(), extra);
    delete extra;
    EXPECT_EQ(tree.focused(), &tree.root);
    window.key(key::Tab);
    EXPECT_EQ(tree.focused(), &tree.a);
}

TEST_F(FocusTest, CopyAndPasteRingTheBellWhereNobodyKnowsThem) {
    window.hold(key::ControlL);
    EXPECT_TRUE(window.key('c'));
    EXPECT_EQ(window.bells, 1);
    EXPECT_TRUE(window.key('V'));
    EXPECT_EQ(window.bells, 2);
    window.letGo(key::ControlL);
    EXPECT_FALSE(window.key('c'));
    EXPECT_EQ(window.bells, 2);
}

/// Deletes a widget when a key arrives.
class KeyKiller : public WInputHandler {
public:
    explicit KeyKiller(Widget* victim_) : victim(victim_) {}
    bool keyEvent(uint32_t, bool, Widget*) override {
        victim.reset();
        return false;
    }
    std::unique_ptr<Widget> victim;
};

TEST_F(FocusTest, AWidgetMayDieInItsKeyEvent) {
    auto* extra = new Box(&tree.root, "extra", true);
    KeyKiller killer(extra);
    extra->setHandler(&killer);
    extra->takeFocus();
    EXPECT_TRUE(window.key(key::Tab)); // and the Tab is not used for travel
    EXPECT_EQ(killer.victim, nullptr);
    EXPECT_TRUE(window.unusedKeys.empty());
}

} // namespace
} // namespace wvw
