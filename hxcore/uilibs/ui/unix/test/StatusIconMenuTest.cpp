#include "ui/unix/StatusIconMenu.h"

#include "registerBuiltInResources.h"
#include "ui/unix/DbusMenu.h"
#include "ui/unix/SessionBus.h"
#include "ui/unix/StatusIconImage.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace ui {
namespace {

constexpr uint32_t root = StatusIconMenu::rootId;

/// A mirror of the menu, kept by its notices alone.
class Mirror : public StatusIconMenu::Observer {
public:
    explicit Mirror(StatusIconMenu& menu_) : menu(menu_) { menu.addObserver(this); }
    ~Mirror() override { menu.removeObserver(this); }
    void itemAdded(const StatusIconMenu::Item& item) override {
        EXPECT_EQ(item.parent->children.back(), &item);
        EXPECT_TRUE(item.parent->id == root || texts.count(item.parent->id));
        texts[item.id] = item.text.c_str();
    }
    void itemToBeRemoved(const StatusIconMenu::Item& item) override {
        EXPECT_TRUE(item.children.empty());
        EXPECT_LT(item.place(), item.parent->children.size());
        EXPECT_EQ(texts.erase(item.id), 1U);
    }
    void itemChanged(const StatusIconMenu::Item& item) override {
        texts[item.id] = item.text.c_str();
        ++changes;
    }

    std::map<uint32_t, std::string> texts;
    int changes = 0;

private:
    StatusIconMenu& menu;
};

std::string describe(const std::vector<DbusMenu::Property>& properties) {
    std::string out;
    for (const auto& each : properties) {
        out += std::string(out.empty() ? "" : " ") + each.name + "=";
        if (const auto* on = std::get_if<bool>(&each.value))
            out += *on ? "true" : "false";
        else if (const auto* number = std::get_if<int>(&each.value))
            out += std::to_string(*number);
        else if (const auto* text = std::get_if<std::string>(&each.value))
            out += *text;
        else
            out += "bytes";
    }
    return out;
}

} // namespace

TEST(StatusIconMenu, RefusesWhatMakesNoSense) {
    StatusIconMenu menu;
    const Mirror mirror(menu);
    ASSERT_TRUE(menu.add(1, "one", root, 0));
    ASSERT_TRUE(menu.add(2, "", root, 0));
    ASSERT_TRUE(menu.add(0, "nought", 1, 0));
    EXPECT_FALSE(menu.add(1, "again", root, 0));
    EXPECT_FALSE(menu.add(root, "the root", root, 0));
    EXPECT_FALSE(menu.add(3, "three", 3, 0)) << "its own parent";
    EXPECT_FALSE(menu.add(3, "three", 77, 0)) << "no such parent";
    EXPECT_FALSE(menu.add(3, "three", 2, 0)) << "under a separator";
    EXPECT_FALSE(menu.setText(1, "")) << "a separator with an item under it";
    EXPECT_FALSE(menu.remove(root));
    EXPECT_FALSE(menu.remove(77));
    EXPECT_FALSE(menu.setEnabled(77, false));
    EXPECT_FALSE(menu.setText(root, "x"));
    EXPECT_EQ(menu.size(), 3U);
    EXPECT_EQ(mirror.texts, (std::map<uint32_t, std::string>{{0, "nought"}, {1, "one"}, {2, ""}}));
    EXPECT_EQ(mirror.changes, 0);
}

TEST(StatusIconMenu, TakesAWholeBranchAway) {
    StatusIconMenu menu;
    const Mirror mirror(menu);
    menu.add(1, "one", root, 0);
    menu.add(2, "two", 1, 0);
    menu.add(3, "three", 2, 0);
    menu.add(4, "four", root, 0);
    const int handle = menu.find(3)->handle;
    EXPECT_TRUE(menu.remove(1));
    EXPECT_EQ(mirror.texts, (std::map<uint32_t, std::string>{{4, "four"}}));
    EXPECT_EQ(menu.findHandle(handle), nullptr);
    EXPECT_TRUE(menu.add(3, "anew", root, 0));
    EXPECT_NE(menu.find(3)->handle, handle) << "a tray may still speak of the old one";
}

TEST(StatusIconMenu, IsBoundedInNumberAndDepth) {
    StatusIconMenu menu;
    uint32_t parent = root;
    for (uint32_t id = 1; id <= 100; ++id)
        if (menu.add(id, "deep", parent, 0))
            parent = id;
    EXPECT_EQ(menu.find(parent)->depth(), StatusIconMenu::maxDepth);
    for (uint32_t id = 1000; id < 101000; ++id)
        menu.add(id, "wide", root, 0);
    EXPECT_EQ(menu.size(), StatusIconMenu::maxItems);
    EXPECT_TRUE(menu.remove(1000));
    EXPECT_TRUE(menu.add(1000, "again", root, 0));
}

TEST(StatusIconMenu, TellsChangesOnly) {
    StatusIconMenu menu;
    const Mirror mirror(menu);
    menu.add(1, "one", root, 0);
    menu.setText(1, "one");
    menu.setEnabled(1, true);
    EXPECT_EQ(mirror.changes, 0);
    menu.setChecked(1, false);
    EXPECT_EQ(mirror.changes, 1) << "it can be checked now";
    menu.setChecked(1, false);
    menu.setEnabled(1, false);
    EXPECT_EQ(mirror.changes, 2);
}

TEST(DbusMenu, ItemsSayWhatDiffersFromTheDefaults) {
    const std::vector<uint8_t> shield{1};
    StatusIconMenu menu;
    menu.add(1, "&Open_1 && &more&", root, 0);
    menu.add(2, "", root, 0);
    menu.add(3, "Stop", root, 8);
    menu.add(4, "More", root, 0);
    menu.add(5, "Inner", 4, 0);
    menu.setEnabled(3, false);
    menu.setChecked(5, true);
    const auto of = [&](uint32_t id) { return describe(DbusMenu::propertiesOf(*menu.find(id), shield)); };
    EXPECT_EQ(of(root), "children-display=submenu");
    EXPECT_EQ(of(1), "label=_Open__1 & more");
    EXPECT_EQ(of(2), "type=separator");
    EXPECT_EQ(of(3), "label=Stop enabled=false icon-data=bytes");
    EXPECT_EQ(of(4), "children-display=submenu label=More");
    EXPECT_EQ(of(5), "label=Inner toggle-type=checkmark toggle-state=1");
}

// "unixexec:" would run a program, and "tcp:" would go to another machine, by the word of another process.
TEST(SessionBus, UsesPlainLocalSocketsOnly) {
    const struct {
        const char* addresses;
        const char* used;
    } cases[] = {
        {"unix:path=/run/user/1000/bus", "unix:path=/run/user/1000/bus"},
        {"unix:abstract=/tmp/dbus-x,guid=00;tcp:host=h,port=1", "unix:abstract=/tmp/dbus-x,guid=00"},
        {"tcp:host=localhost,port=1;unix:path=/x", ""},
        {"unixexec:path=/bin/sh", ""},
        {"unix:tmpdir=/tmp", ""},
        {"autolaunch:", ""},
        {"", ""},
    };
    for (const auto& each : cases)
        EXPECT_STREQ(SessionBus::localAddress(each.addresses).c_str(), each.used) << each.addresses;
}

TEST(SessionBus, FallsBackFromWhatItMayNotUse) {
    setenv("XDG_RUNTIME_DIR", "/nowhere", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unixexec:path=/bin/true", 1);
    EXPECT_STREQ(SessionBus::sessionAddress("unix:path=/b").c_str(), "unix:path=/b");
    EXPECT_STREQ(SessionBus::sessionAddress(nullptr).c_str(), "");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/a", 1);
    EXPECT_STREQ(SessionBus::sessionAddress("unix:path=/b").c_str(), "unix:path=/a");
}

TEST(StatusIconImage, BlendsTheOverlayAtTheBottomLeft) {
    registerBuiltInResources();
    const StatusIconImage plain = StatusIconImage::render("zefserver", "", 48);
    const StatusIconImage marked = StatusIconImage::render("zefserver", "Error", 48); // which exists as @2x alone
    ASSERT_EQ(plain.rgba.size(), 48U * 48 * 4);
    ASSERT_EQ(marked.rgba.size(), plain.rgba.size());
    int inside = 0;
    int outside = 0;
    for (size_t i = 0; i < plain.rgba.size(); ++i) {
        const size_t x = i / 4 % 48;
        const size_t y = i / 4 / 48;
        const bool differs = plain.rgba[i] != marked.rgba[i];
        (x < 24 && y >= 24 ? inside : outside) += differs ? 1 : 0;
    }
    EXPECT_GT(inside, 500);
    EXPECT_EQ(outside, 0);
    const std::vector<uint8_t> argb = marked.toArgb();
    const size_t pixel = (36 * 48 + 4) * 4; // beside the mark in the overlay
    EXPECT_EQ(argb[pixel], 255);
    EXPECT_EQ(argb[pixel + 1], marked.rgba[pixel]);
    EXPECT_GT(argb[pixel + 1], argb[pixel + 3]) << "an error is red";
}

TEST(StatusIconImage, AMissingImageIsNoPictureAMissingOverlayLeavesTheImage) {
    registerBuiltInResources();
    EXPECT_TRUE(StatusIconImage::render("", "Error", 48).isEmpty());
    EXPECT_TRUE(StatusIconImage::render("%s%n../../etc", "", 48).isEmpty());
    EXPECT_EQ(StatusIconImage::render("zefserver", "Nonsense", 48).rgba,
              StatusIconImage::render("zefserver", "", 48).rgba);
}

} // namespace ui
