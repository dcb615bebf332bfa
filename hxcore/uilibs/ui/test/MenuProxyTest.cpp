#include "ui/MenuProxy.h"

#include "ui/MenuGrouper.h"
#include "ui/test/FakeMenu.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

class Chosen : public Menu::ActionCallback {
public:
    void menuAction(Menu::Item* item) override {
        if (removeFrom)
            removeFrom->removeItem(item);
        else
            texts += item->getText();
    }
    std::string texts;
    MenuProxy* removeFrom = nullptr;
};

TEST(MenuProxy, ItemsStandAheadOfWhatTheMenuHad) {
    FakeMenu early, late;
    MenuProxy proxy;
    Menu::Item* hide = early.addItem("Hide", nullptr, nullptr, nullptr, 0);
    proxy.attach(&early, hide);
    Menu::Item* c = proxy.addItem("c");
    proxy.addItem("a", nullptr, c);
    late.addItem("Open", nullptr, nullptr, nullptr, 0);
    proxy.attach(&late);
    proxy.addItem("b", nullptr, c, nullptr, Menu::NeedsElevation);

    EXPECT_EQ(shape(early), "a b c Hide");
    EXPECT_EQ(shape(late), "Open a b c");
    EXPECT_EQ(late.itemAt(2)->getFlags(), 8U);
    proxy.removeItem(c);
    proxy.detach(&early);
    EXPECT_EQ(shape(early), "Hide");
    EXPECT_EQ(shape(late), "Open a b");
}

TEST(MenuProxy, PassesStateOnAlsoToMenusThatComeLater) {
    FakeMenu menu, later;
    MenuProxy proxy;
    proxy.attach(&menu);
    Menu::Item* item = proxy.addItem("x");
    item->setText("y");
    item->setChecked(true);
    item->setEnabled(false);
    proxy.attach(&later);
    EXPECT_EQ(shape(menu), "y*!");
    EXPECT_EQ(shape(later), "y*!");
}

// Nothing of a hidden item is left in a menu, and its place and state come back with it.
TEST(MenuProxy, HiddenItemsAreAbsentAndKeepTheirPlace) {
    FakeMenu menu, later;
    MenuProxy proxy;
    proxy.attach(&menu);
    proxy.addItem("a");
    Menu::Item* b = proxy.addItem("b");
    proxy.addItem("c");
    proxy.setShown(b, false);
    b->setEnabled(false);
    EXPECT_EQ(shape(menu), "a c");
    EXPECT_EQ(shape(proxy), "a c");
    proxy.attach(&later);
    EXPECT_EQ(shape(later), "a c");
    proxy.setShown(b, true);
    EXPECT_EQ(shape(menu), "a b! c");
    EXPECT_EQ(shape(later), "a b! c");
}

TEST(MenuProxy, AChoiceInAnyMenuReachesOurItem) {
    FakeMenu first, second;
    MenuProxy proxy;
    Chosen chosen;
    proxy.attach(&first);
    proxy.attach(&second);
    Menu::Item* item = proxy.addItem("stop", nullptr, nullptr, &chosen);
    EXPECT_TRUE(first.itemAt(0)->invoke());
    EXPECT_TRUE(second.itemAt(0)->invoke());
    EXPECT_TRUE(item->invoke());
    item->setEnabled(false);
    EXPECT_FALSE(second.itemAt(0)->invoke());
    EXPECT_EQ(chosen.texts, "stopstopstop");

    item->setEnabled(true);
    chosen.removeFrom = &proxy; // the item goes while its own callback runs
    EXPECT_TRUE(first.itemAt(0)->invoke());
    EXPECT_EQ(shape(first) + shape(second), "");
}

// In every order of filling: items 1, 2 and 4 of their sections, with one separator between two neighbours.
TEST(MenuGrouper, SeparatesSectionsWhateverTheOrder) {
    constexpr int orders[][3] = {{1, 2, 4}, {1, 4, 2}, {2, 1, 4}, {2, 4, 1}, {4, 1, 2}, {4, 2, 1}};
    for (const auto& order : orders) {
        FakeMenu menu;
        MenuProxy proxy;
        proxy.attach(&menu);
        {
            MenuGrouper grouper(&proxy);
            for (const int section : order)
                grouper.addItem(section, std::to_string(section).c_str());
            EXPECT_EQ(shape(menu), "1 - 2 - 4") << order[0] << order[1] << order[2];
            grouper.addItem(2, "2b");
            EXPECT_EQ(shape(menu), "1 - 2 2b - 4");
        }
        EXPECT_EQ(shape(menu), "");
    }
}

TEST(MenuGrouper, SeparatorsFollowWhatIsShown) {
    FakeMenu menu;
    MenuProxy proxy;
    proxy.attach(&menu);
    MenuGrouper grouper(&proxy);
    Menu::Item* one = grouper.addItem(1, "1");
    Menu::Item* two = grouper.addItem(2, "2");
    Menu::Item* four = grouper.addItem(4, "4");
    grouper.setShown(two, false);
    EXPECT_EQ(shape(menu), "1 - 4");
    grouper.setShown(one, false);
    EXPECT_EQ(shape(menu), "4");
    grouper.setShown(two, true);
    EXPECT_EQ(shape(menu), "2 - 4");
    grouper.removeItem(four);
    EXPECT_EQ(shape(menu), "2");
    grouper.setShown(one, true);
    grouper.removeItem(two);
    EXPECT_EQ(shape(menu), "1");
    grouper.addItem(0, "0");
    EXPECT_EQ(shape(menu), "0 - 1");
}

} // namespace
} // namespace ui
