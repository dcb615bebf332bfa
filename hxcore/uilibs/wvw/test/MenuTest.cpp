#include "wvw/test/FakeParent.h"

#include "wvw/WMenuBar.h"

#include "rfb/keySymbols.h"

#include <algorithm>
#include <memory>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;

struct MenuTest : testing::Test, WRootMenu::Callback, WInputHandler {
    Box box;
    FakeParent window{&box};
    WMenuItem open{"&Open"};
    WMenuItem line{nullptr};
    WMenuItem off{"O&ff"};
    WMenuItem more{"&More"};
    WMenuItem quit{"&Quit"};
    WMenuItem inner{"I&nner"};
    WMenu submenu;
    WRootMenu menu{this};
    int hidden = 0;
    std::vector<Widget*> chosen;

    void SetUp() override {
        for (WMenuItem* item : {&open, &line, &off, &more, &quit})
            menu.add(item);
        submenu.add(&inner);
        more.setSubmenu(&submenu);
        off.setEnabled(false);
        menu.setHandler(this);
        inner.setHandler(this);
    }
    FakeParent& popup() { return *window.popupOf(&menu); }
    void show() { menu.show(&window, {10, 10}); }

    // WRootMenu::Callback, WInputHandler
    void menuHidden(WRootMenu*) override { ++hidden; }
    bool activated(Widget* origin) override {
        EXPECT_FALSE(menu.isShown()); // it goes before the choice acts
        chosen.push_back(origin);
        return true;
    }
};

TEST_F(MenuTest, ArrowsSkipWhatCannotBeChosenAndWrap) {
    show();
    EXPECT_TRUE(popup().grabbed);
    std::vector<WMenuItem*> seen;
    for (int i = 0; i < 4; ++i) {
        popup().key(key::Down);
        seen.push_back(menu.getSelected());
    }
    EXPECT_EQ(seen, (std::vector<WMenuItem*>{&open, &more, &quit, &open}));
    popup().key(key::Up);
    EXPECT_EQ(menu.getSelected(), &quit);
    popup().key(key::Return);
    EXPECT_EQ(chosen, (std::vector<Widget*>{&quit}));
    EXPECT_EQ(hidden, 1);
    EXPECT_EQ(window.popupOf(&menu), nullptr);

    open.setEnabled(false);
    show();
    popup().key(key::Home);
    EXPECT_EQ(menu.getSelected(), &more);
    popup().key(key::End);
    popup().key(key::Space);
    EXPECT_EQ(chosen, (std::vector<Widget*>{&quit, &quit}));
}

TEST_F(MenuTest, LettersChooseCapitalsIncludedButNotWhatIsOff) {
    show();
    EXPECT_FALSE(popup().key('f'));
    EXPECT_FALSE(popup().key('x'));
    EXPECT_TRUE(menu.isShown());
    popup().key('O');
    EXPECT_EQ(chosen, (std::vector<Widget*>{&open}));
}

TEST_F(MenuTest, KeysReachTheDeepestMenuThroughTheGrabOfTheFirst) {
    show();
    popup().key(key::Down);
    popup().key(key::Down);
    popup().key(key::Right);
    ASSERT_TRUE(window.popupOf(&submenu));
    EXPECT_TRUE(window.popupOf(&submenu)->grabbed); // else presses in it would be outside of the first
    EXPECT_EQ(submenu.getSelected(), &inner);
    EXPECT_GE(window.popupOf(&submenu)->position.x, 10 + menu.getWidth() - 4);
    popup().key(key::Left);
    EXPECT_FALSE(submenu.isShown());
    EXPECT_TRUE(menu.isShown());
    popup().key(key::Right);
    popup().key('n');
    EXPECT_EQ(chosen, (std::vector<Widget*>{&inner}));
    EXPECT_FALSE(submenu.isShown());
    EXPECT_EQ(hidden, 1);

    show();
    popup().key('m');
    ASSERT_TRUE(submenu.isShown());
    popup().key(key::Escape); // closes all
    EXPECT_EQ(window.anyPopup(), nullptr);
    EXPECT_EQ(chosen.size(), 1u);
}

TEST_F(MenuTest, ThePointerSelectsAndAClickChooses) {
    show();
    const Point at = menu.getChildPosition(&open) + Point(5, 5);
    popup().move(at.x, at.y);
    EXPECT_EQ(menu.getSelected(), &open);
    const Point dead = menu.getChildPosition(&off) + Point(5, 5);
    popup().click(dead.x, dead.y);
    EXPECT_TRUE(menu.isShown());
    const Point on = menu.getChildPosition(&more) + Point(5, 5);
    popup().move(on.x, on.y);
    EXPECT_TRUE(submenu.isShown());
    popup().move(at.x, at.y);
    EXPECT_FALSE(submenu.isShown());
    popup().click(at.x, at.y);
    EXPECT_EQ(chosen, (std::vector<Widget*>{&open}));
}

TEST_F(MenuTest, AWindowTakenAwayFromOutsideCountsAsHidden) {
    show();
    popup().key('m');
    window.showPopup(&menu, /*show=*/false, /*grab=*/false, {});
    EXPECT_EQ(window.anyPopup(), nullptr);
    EXPECT_EQ(hidden, 1);
    EXPECT_FALSE(menu.isShown());
    show();
    EXPECT_EQ(menu.getSelected(), nullptr);
    menu.dismiss();
    EXPECT_EQ(hidden, 2);
}

TEST_F(MenuTest, ItStaysOnTheScreenAndHiddenItemsTakeNoRoom) {
    const Point whole = menu.getPreferredSize();
    quit.setVisible(false);
    EXPECT_LT(menu.getPreferredSize().y, whole.y);
    quit.setVisible(true);
    menu.show(&window, {990, 795});
    EXPECT_EQ(popup().position, Point(1000 - whole.x, 800 - whole.y));
    menu.showRightAligned(&window, {500, 20});
    EXPECT_EQ(popup().position, Point(500 - whole.x, 20));
    popup().key('m'); // the submenu fits on the right
    EXPECT_EQ(window.popupOf(&submenu)->position.x, 500 - 4);
    menu.dismiss();
    menu.show(&window, {1000, 20});
    popup().key('m'); // and here only on the left
    EXPECT_EQ(window.popupOf(&submenu)->position.x, 1000 - whole.x - submenu.getWidth());
}

TEST_F(MenuTest, TooHighAMenuContinuesInColumns) {
    const Point whole = menu.getPreferredSize();
    menu.setMaxHeight(whole.y - 1);
    const Point split = menu.getPreferredSize();
    EXPECT_GT(split.x, whole.x);
    EXPECT_LT(split.y, whole.y);
    EXPECT_GT(menu.getChildPosition(&quit).x, menu.getChildPosition(&open).x);
    EXPECT_EQ(menu.getChildPosition(&quit).y, menu.getChildPosition(&open).y);
}

// Sixteen items in columns of four, on a screen that shows two of them; then none that fit below one another.
TEST_F(MenuTest, ArrowsGoFromColumnToColumnAlsoBesideTheScreen) {
    std::vector<std::unique_ptr<WMenuItem>> items;
    WRootMenu many;
    for (int i = 0; i < 16; ++i) {
        items.push_back(std::make_unique<WMenuItem>(plat::strFormat("%c item", 'a' + i).c_str()));
        many.add(items.back().get());
    }
    const Point size = items[0]->getPreferredSize();
    many.setMaxHeight(4 * size.y + 8);
    const auto at = [&] {
        const auto i =
            std::find_if(items.begin(), items.end(), [&](auto& item) { return item.get() == many.getSelected(); });
        return static_cast<int>(i - items.begin());
    };
    many.show(&window, {0, 0});
    FakeParent* shown = window.popupOf(&many);
    const struct {
        uint32_t key;
        int item;
    } steps[] = {{key::Home, 0}, {key::Right, 4},  {key::Down, 5}, {key::Right, 9},     {key::Left, 5},
                 {key::End, 15}, {key::Right, 15}, {'c', 2},       {key::PageDown, 15}, {key::PageUp, 0}};
    for (const auto& step : steps) {
        shown->key(step.key);
        EXPECT_EQ(at(), step.item) << step.key;
    }
    many.dismiss();

    window.screenPx = {2 * size.x + 12, 4 * size.y + 8};
    many.show(&window, {0, 0});
    shown = window.popupOf(&many);
    EXPECT_EQ(many.getSize(), window.screenPx);
    shown->key(key::End);
    EXPECT_EQ(many.getChildRect(items[15].get()).br.x, many.getWidth() - 4);
    shown->key(key::Home);
    EXPECT_EQ(many.getChildPosition(items[0].get()), Point(4, 4));
    shown->move(10, 10);
    shown->press(4);
    EXPECT_EQ(many.getChildPosition(items[4].get()), Point(4, 4));
    many.dismiss();
}

TEST_F(MenuTest, AnItemMayDieWhileItIsShown) {
    auto extra = std::make_unique<WMenuItem>("E&xtra");
    menu.add(extra.get(), &open);
    show();
    popup().key(key::Down);
    EXPECT_EQ(menu.getSelected(), extra.get());
    extra.reset();
    EXPECT_EQ(menu.getSelected(), nullptr);
    EXPECT_EQ(menu.itemCount(), 5u);
    popup().key(key::Down);
    EXPECT_EQ(menu.getSelected(), &open);
}

/// Deletes the menu with what was chosen in it.
class MenuKiller : public WInputHandler {
public:
    bool activated(Widget*) override {
        item.reset();
        menu.reset();
        return true;
    }
    std::unique_ptr<WMenuItem> item = std::make_unique<WMenuItem>("&Die");
    std::unique_ptr<WRootMenu> menu = std::make_unique<WRootMenu>();
};

TEST_F(MenuTest, AChoiceMayDeleteTheMenu) {
    for (const bool byKey : {true, false}) {
        MenuKiller killer;
        killer.menu->add(killer.item.get());
        killer.item->setHandler(&killer);
        killer.menu->show(&window, {10, 10});
        FakeParent* shown = window.popupOf(killer.menu.get());
        ASSERT_TRUE(shown);
        if (byKey) {
            shown->key('d');
        } else {
            const Point at = killer.menu->getChildPosition(killer.item.get()) + Point(5, 5);
            shown->click(at.x, at.y);
        }
        EXPECT_EQ(killer.menu, nullptr);
        EXPECT_EQ(window.anyPopup(), nullptr);
    }
}

// A button that opened the menu is let go somewhere: only a way through the menu makes that a choice.
TEST_F(MenuTest, AHeldButtonChoosesOnlyAfterAWayThroughTheMenu) {
    const Point at = menu.getPreferredSize() - Point(20, 10);
    show();
    popup().press(2);
    popup().move(at.x, at.y);
    popup().release(2);
    EXPECT_EQ(chosen, (std::vector<Widget*>{&quit}));
    show();
    FakeParent& shaky = popup();
    shaky.root->mouseEvent(at, 4);
    shaky.root->mouseEvent(at + Point(1, 1), 4);
    shaky.root->mouseEvent(at + Point(1, 1), 0);
    EXPECT_TRUE(menu.isShown());
    EXPECT_EQ(chosen.size(), 1u);
}

struct MenuBarTest : testing::Test {
    WLayout root;
    WMenuBar bar{&root};
    Box box{&root, "box", true};
    WMenuBar::Menu file{"&File"};
    WMenuBar::Menu off{"&Off"};
    WMenuBar::Menu help{"&Help"};
    WMenuItem open{"&Open"};
    WMenuItem about{"&About"};
    FakeParent window{&root, {300, 100}};

    void SetUp() override {
        for (WMenuBar::Menu* menu : {&file, &off, &help})
            bar.addMenu(menu);
        file.getMenu().add(&open);
        help.getMenu().add(&about);
        off.setEnabled(false);
        root.setChildRect(&bar, rfb::Rect::xywh(0, 0, 300, bar.getPreferredSize().y));
        box.takeFocus();
    }
    FakeParent& popup() { return *window.popupOf(window.anyPopup()); }
};

TEST_F(MenuBarTest, ClicksOpenAndThePointerGoesOn) {
    window.click(10, 5);
    EXPECT_EQ(bar.openMenu(), &file);
    EXPECT_EQ(popup().position, Point(0, file.getHeight()));
    const Point onHelp = help.getPosition() + Point(5, 5);
    window.move(onHelp.x, onHelp.y);
    EXPECT_EQ(bar.openMenu(), &help);
    popup().click(10, 10);
    EXPECT_EQ(window.activations, (std::vector<Widget*>{&about}));
    EXPECT_EQ(bar.openMenu(), nullptr);
    EXPECT_TRUE(box.hasFocus()); // the mouse moves no focus to the bar
    window.move(10, 5);
    EXPECT_EQ(bar.openMenu(), nullptr); // only while one is open
}

TEST_F(MenuBarTest, TheKeyboardComesGoesOnAndLeavesAgain) {
    EXPECT_FALSE(bar.hotKey('f'));
    window.key(key::Tab);
    EXPECT_TRUE(box.hasFocus()); // the bar is no stop on the way
    EXPECT_TRUE(bar.hotKey(key::F10));
    EXPECT_TRUE(file.hasFocus());
    window.key(key::Right); // past what is off
    EXPECT_TRUE(help.hasFocus());
    window.key(key::Escape);
    EXPECT_TRUE(box.hasFocus());
    EXPECT_FALSE(help.acceptsFocus());

    window.hold(key::AltL);
    EXPECT_TRUE(bar.hotKey('H'));
    EXPECT_FALSE(bar.hotKey('o'));
    window.letGo(key::AltL);
    EXPECT_EQ(bar.openMenu(), &help);
    EXPECT_EQ(help.getMenu().getSelected(), &about);
    popup().key(key::Right);
    EXPECT_EQ(bar.openMenu(), &file);
    popup().key(key::Left);
    EXPECT_EQ(bar.openMenu(), &help);
    popup().key('a');
    EXPECT_EQ(window.activations, (std::vector<Widget*>{&about}));
    EXPECT_TRUE(box.hasFocus());
}

} // namespace
} // namespace wvw
