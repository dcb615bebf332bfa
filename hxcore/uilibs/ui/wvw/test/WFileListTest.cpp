#include "ui/wvw/WFileList.h"

#include "hxutil/Font.h"
#include "rfb/keySymbols.h"
#include "wvw/WCanvas.h"
#include "wvw/test/FakeParent.h"

#include <algorithm>

namespace ui {
namespace {
namespace key = rfb::key;

/// "n0" and so on.
struct Names : WFileList::ItemGetter, WFileList::Callback {
    int itemCount() override { return count; }
    plat::String itemText(int index) override {
        return index == longAt ? plat::String(std::string(400, 'w')) : plat::strFormat("%c%d", 'a' + index, index);
    }
    void itemChosen(WFileList*, int index) override { chosen.push_back(index); }

    int count = 10;
    int longAt = -1;
    std::vector<int> chosen;
};

struct FileListTest : testing::Test {
    void fill(int count, bool vertical = false) {
        names.count = count;
        list = std::make_unique<WFileList>(&root, &names, &names, vertical);
        rowHeight = wvw::defaultStyle().font->height + 4;
        // Three names and the scrollbar below them.
        root.setChildRect(list.get(), rfb::Rect::xywh(0, 0, 200, 4 + 3 * rowHeight + wvw::WScrollbar::thickness));
        list->refill();
        list->takeFocus();
        window.paintAll();
    }
    int after(std::initializer_list<uint32_t> keys) {
        for (const uint32_t keysym : keys)
            window.key(keysym);
        return list->cursor();
    }

    wvw::FakeClock clock;
    wvw::WCanvas root;
    Names names;
    std::unique_ptr<WFileList> list;
    wvw::FakeParent window{&root, {200, 120}};
    int rowHeight = 0;
};

TEST_F(FileListTest, KeysMoveDownAndAcrossColumns) {
    fill(26);
    EXPECT_EQ(list->cursor(), 0);
    EXPECT_EQ(after({key::Down}), 1);
    EXPECT_EQ(after({key::Right}), 4); // three in a column
    EXPECT_EQ(after({key::Right, key::Up, key::Left}), 3);
    EXPECT_EQ(after({key::End}), 25);
    EXPECT_EQ(after({key::Down, key::Right, key::PageDown}), 25);
    EXPECT_LT(after({key::PageUp}), 25);
    EXPECT_EQ(after({key::Home, key::Up, key::PageUp}), 0);
    EXPECT_EQ(after({'k'}), 10);
    EXPECT_EQ(after({'K', 'c'}), 2);
    EXPECT_TRUE(names.chosen.empty());
    after({key::Return, key::Down, key::Space});
    EXPECT_EQ(names.chosen, (std::vector<int>{2, 3}));
}

TEST_F(FileListTest, AClickChoosesTheNameUnderThePointer) {
    fill(26);
    window.click(10, 2 + rowHeight + 3);
    EXPECT_EQ(names.chosen, std::vector<int>{1});
    window.move(10, 2 + 3);
    window.press();
    window.move(300, 300);
    window.release(); // let go outside
    EXPECT_EQ(names.chosen.size(), 1U);
    after({key::End});
    window.click(10, 2 + 3); // the columns have scrolled
    EXPECT_EQ(names.chosen.size(), 2U);
    EXPECT_GT(names.chosen.back(), 2);
    names.count = 2;
    list->refill();
    window.click(150, 2 + 2 * rowHeight + 3); // where nothing is
    EXPECT_EQ(names.chosen.size(), 2U);
}

TEST_F(FileListTest, TheWheelAndTheBarScrollByOneColumn) {
    fill(26);
    window.click(10, 2 + 3, /*button=*/4);
    window.click(10, 2 + 3);
    EXPECT_EQ(names.chosen, std::vector<int>{3});
    window.click(10, 2 + 3, /*button=*/3);
    window.click(10, 2 + 3);
    EXPECT_EQ(names.chosen, (std::vector<int>{3, 0}));
    window.click(200 - 2 - 6, 2 + 3 * rowHeight + 6); // the arrow at the end of the bar
    window.click(10, 2 + 3);
    EXPECT_EQ(names.chosen.back(), 3);
}

TEST_F(FileListTest, VerticallyTheNamesFlowAcrossTheRows) {
    fill(26, /*vertical=*/true);
    EXPECT_EQ(after({key::Right}), 1);
    const int across = after({key::Down}) - 1;
    EXPECT_GT(across, 1);
    EXPECT_EQ(after({key::Left, key::Up}), 0);
    EXPECT_EQ(after({key::End}), 25);
    window.click(10, 2 + 3);
    EXPECT_EQ(names.chosen.back() % across, 0); // the start of a row that came into view
    EXPECT_GT(names.chosen.back(), 0);
}

TEST_F(FileListTest, EmptyAndOverlongListsAreNoTrouble) {
    fill(0);
    EXPECT_EQ(after({key::Down, key::End, key::Return, 'a'}), -1);
    EXPECT_TRUE(names.chosen.empty());
    names.longAt = 1;
    fill(26);
    EXPECT_EQ(after({key::Right}), 3); // a column is no wider than the list
    list->setEnabled(false);
    window.paintAll();
    EXPECT_FALSE(window.key(key::Return) && !names.chosen.empty());
    root.setChildRect(list.get(), rfb::Rect::xywh(0, 0, 3, 3));
    window.paintAll();
}

} // namespace
} // namespace ui
