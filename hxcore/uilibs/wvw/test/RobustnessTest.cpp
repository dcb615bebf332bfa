// Every widget at sizes, contents and ends of life that nobody planned.
#include "wvw/test/FakeParent.h"

#include "wvw/WCanvas.h"
#include "wvw/WDiscreteSlider.h"
#include "wvw/WEditAutocomplete.h"
#include "wvw/WLabelChoice.h"
#include "wvw/WMenuBar.h"
#include "wvw/WPanel.h"
#include "wvw/WRichText.h"
#include "wvw/WScrollView.h"
#include "wvw/WTabSheets.h"
#include "wvw/WTable.h"
#include "wvw/WTooltip.h"

#include "rfb/keySymbols.h"

#include <functional>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

const std::string longText = [] {
    std::string text;
    while (text.size() < 16384) // far beyond the coordinates of a region
        text += "words und Wörter, 漢字 & mehr <b> ";
    return text;
}();

/// As many rows as are asked for; each may change the table as soon as it is asked about.
struct Rows : WTable::Callback {
    plat::String getCellText(WTable* table, int row, int) override {
        ++asked;
        if (shrinkTo >= 0)
            table->setRowCount(shrinkTo);
        EXPECT_TRUE(shrinkTo >= 0 || row < table->getRowCount());
        return plat::strFormat("row %d", row);
    }
    void rowActivated(WTable*, int, int) override {
        if (opened)
            opened();
    }
    int asked = 0;
    int shrinkTo = -1;
    std::function<void()> opened;
};

using Maker = std::function<std::unique_ptr<Widget>(Rows&)>;

std::unique_ptr<WTable> makeTable(Rows& rows) {
    auto table = std::make_unique<WTable>(nullptr, &rows, /*showHeading=*/true);
    table->addColumn(1, WTable::Text, "A");
    table->addColumn(2, WTable::Text, longText.c_str(), 50);
    table->setRowCount(9);
    return table;
}

template <class Choice>
std::unique_ptr<Choice> withItems(std::unique_ptr<Choice> choice) {
    for (int i = 0; i < 5; ++i)
        choice->addItem(i, i == 3 ? longText.c_str() : plat::strFormat("Item %d", i).c_str());
    choice->setSelected(3);
    return choice;
}

const std::pair<const char*, Maker> makers[] = {
    {"label", [](Rows&) { return std::make_unique<WLabel>(nullptr, longText.c_str()); }},
    {"right label",
     [](Rows&) {
         auto label = std::make_unique<WLabel>(nullptr, longText.c_str(), /*hAlign=*/2);
         label->setSelectable(true);
         label->setWrap(false);
         return label;
     }},
    {"rich text",
     [](Rows&) {
         const std::string markup = "<a href=\"x\">" + std::string(8192, 'w') + " <b>and</b></a> <a href=\"y\">y</a>";
         return std::make_unique<WRichText>(nullptr, markup.c_str());
     }},
    {"button", [](Rows&) { return std::make_unique<WLabelButton>(nullptr, longText.c_str()); }},
    {"check", [](Rows&) { return std::make_unique<WLabelCheckBox>(nullptr, longText.c_str()); }},
    {"edit",
     [](Rows&) {
         auto edit = std::make_unique<WEdit>(nullptr, 1 << 20);
         edit->setText(longText.c_str());
         return edit;
     }},
    {"password",
     [](Rows&) {
         auto edit = std::make_unique<WEditAutocomplete>(nullptr, 1 << 20);
         edit->setText(longText.c_str());
         edit->setPassword(true);
         return edit;
     }},
    {"choice", [](Rows&) { return withItems(std::make_unique<WChoice>()); }},
    {"editable choice", [](Rows&) { return withItems(std::make_unique<WChoice>(nullptr, /*editable=*/true)); }},
    {"table", [](Rows& rows) { return makeTable(rows); }},
    {"scrollbar",
     [](Rows&) {
         auto bar = std::make_unique<WScrollbar>(nullptr, /*vertical=*/true);
         bar->setRange(1 << 30);
         bar->setPage(1 << 30);
         bar->setValue(-7);
         return bar;
     }},
    {"slider",
     [](Rows&) {
         auto slider = std::make_unique<WDiscreteSlider>();
         slider->setRange1(1 << 30);
         return slider;
     }},
    {"tabs",
     [](Rows&) {
         auto sheets = std::make_unique<WTabSheets>();
         for (const std::string& title : {std::string("&A"), longText.substr(0, 4096), std::string("&C")})
             sheets->addSheet(title.c_str(), nullptr);
         return sheets;
     }},
    {"panel", [](Rows&) { return std::make_unique<WPanel>(nullptr, longText.c_str()); }},
    {"image",
     [](Rows&) {
         auto image = std::make_unique<WImage>(nullptr, "infoframe_warning", Point(16, 16));
         image->setTiled(true);
         return image;
     }},
};

TEST(Robustness, EveryWidgetBearsEverySizeAndAnyInput) {
    FakeClock clock;
    for (const auto& [name, make] : makers) {
        SCOPED_TRACE(name);
        Rows rows;
        WCanvas root;
        FakeParent window(&root, {60, 40});
        const std::unique_ptr<Widget> widget = make(rows);
        root.addChild(widget.get());
        for (const Rect& rect : {Rect(0, 0, 0, 0), Rect(5, 5, 6, 6), Rect(5, 5, 8, 30), Rect(5, 5, 50, 9),
                                 Rect(-32000, -32000, 767, 767), Rect(-3, -3, 32764, 37), Rect(5, 5, 55, 35)}) {
            root.setChildRect(widget.get(), rect);
            widget->getPreferredHeight(rect.width());
            window.paintAll();
            widget->takeFocus();
            for (const uint32_t keysym : {key::Down, key::Right, key::End, key::PageDown, key::Home, key::Left, key::Up,
                                          key::PageUp, uint32_t{'w'}, key::BackSpace})
                window.key(keysym);
            for (const int button : {0, 1, 3, 4, 5, 6})
                window.click(20, 20, button);
            widget->setEnabled(!widget->isEnabled());
            window.paint();
            while (Widget* popup = window.anyPopup()) {
                window.popupOf(popup)->paintAll();
                window.showPopup(popup, /*show=*/false, /*grab=*/false, {});
            }
        }
        clock.advance(2000);
        root.removeChild(widget.get());
    }
}

TEST(Robustness, ATooltipAndAMenuShowWhatTheScreenHolds) {
    Box box;
    FakeParent window(&box);
    WTooltip tip;
    tip.setText(longText.c_str());
    tip.show({5, 5}, &box);
    ASSERT_TRUE(window.popupOf(&tip));
    EXPECT_EQ(window.popupOf(&tip)->position, Point(5, 0));
    EXPECT_EQ(tip.getWidth(), 320);
    tip.setText("");
    tip.show({5, 5}, &box);
    tip.hide();
    WMenuItem item(longText.c_str());
    WRootMenu menu;
    menu.add(&item);
    menu.show(&window, {900, 900});
    EXPECT_EQ(menu.getWidth(), window.screenPx.x);
    window.popupOf(&menu)->paintAll();
    menu.dismiss();
}

struct TableOfMany : testing::Test {
    FakeClock clock;
    WCanvas root;
    Rows rows;
    std::unique_ptr<WTable> table = makeTable(rows);
    FakeParent window{&root, {200, 150}};

    void SetUp() override {
        root.addChildRect(table.get(), {0, 0, 200, 150});
        table->setRowCount(100000);
        table->takeFocus();
    }
};

TEST_F(TableOfMany, KeysAskForNoMoreThanIsSeen) {
    window.paint();
    const int seen = rows.asked;
    EXPECT_LE(seen, 2 * 6);
    for (const uint32_t keysym : {key::End, key::PageUp, key::Home, key::PageDown}) {
        rows.asked = 0;
        window.key(keysym);
        window.paint();
        EXPECT_LE(rows.asked, seen);
    }
    table->select(99999);
    EXPECT_EQ(table->firstVisibleRow(), 100000 - table->visibleRows());
    window.key('r');
    EXPECT_EQ(table->getSelectedRow(), 0); // around the end
}

TEST_F(TableOfMany, RowsMayGoWhileTheyAreAskedFor) {
    rows.shrinkTo = 2;
    window.paintAll();
    EXPECT_EQ(table->getRowCount(), 2);
    window.paintAll();
    rows.shrinkTo = 0;
    window.key('x');
    window.key('r');
    window.paintAll();
    EXPECT_EQ(table->getSelectedRow(), -1);
    EXPECT_EQ(window.invalidArea(), Rect());
}

/// Throws a widget away at the first event of a kind.
struct Killer : WInputHandler, WTabSheets::Callback {
    bool activated(Widget*) override { return onActivated && kill(); }
    bool valueChanged(Widget*) override { return !onActivated && kill(); }
    void sheetChanged(WTabSheets*, int) override { kill(); }
    bool kill() {
        victim.reset();
        return true;
    }
    bool onActivated = false;
    std::unique_ptr<Widget> victim;
};

TEST(Robustness, AWidgetMayDieOfWhatItTells) {
    using Act = std::function<void(FakeParent&)>;
    const auto keyOf = [](uint32_t keysym) { return [=](FakeParent& window) { window.key(keysym); }; };
    const auto buttonAt = [](int x, int y, int button = 0) {
        return [=](FakeParent& window) { window.click(x, y, button); };
    };
    const auto dragged = [](const Point& from, const Point& to) {
        return [=](FakeParent& window) {
            window.move(from.x, from.y);
            window.press();
            window.move(to.x, to.y);
            window.move(to.x + 1, to.y + 1);
            window.release();
        };
    };
    const Act doubleClick = [](FakeParent& window) {
        window.click(20, 40);
        window.click(20, 40);
    };
    Rows rows;
    Killer killer;
    const Maker table = [](Rows& r) { return makeTable(r); };
    const Maker slider = [](Rows&) {
        auto made = std::make_unique<WDiscreteSlider>();
        made->setRange1(5);
        return made;
    };
    const Maker bar = [](Rows&) {
        auto made = std::make_unique<WScrollbar>(nullptr, /*vertical=*/true);
        made->setRange(100);
        return made;
    };
    const Maker check = [](Rows&) { return std::make_unique<WLabelCheckBoxHK>(nullptr, "&Check"); };
    const Maker tabs = [&](Rows&) {
        auto made = std::make_unique<WTabSheets>(nullptr, &killer);
        for (const char* title : {"&A", "&B"})
            made->addSheet(title, nullptr);
        return made;
    };
    const Maker edit = [](Rows&) { return std::make_unique<WEdit>(); };
    const Act controlTab = [](FakeParent& window) {
        window.hold(key::ControlL);
        window.key(key::Tab);
    };
    const struct {
        const char* what;
        const Maker& make;
        bool onActivated;
        Act act;
    } cases[] = {
        {"row by key", table, false, keyOf(key::Down)},
        {"row by letter", table, false, keyOf('r')},
        {"row by wheel", table, false, buttonAt(20, 40, 4)},
        {"row by press", table, false, buttonAt(20, 40)},
        {"click", table, true, buttonAt(20, 40)},
        {"double click", table, true, doubleClick},
        {"slider by key", slider, false, keyOf(key::End)},
        {"slider by press", slider, false, buttonAt(90, 45)},
        {"slider by drag", slider, false, dragged({5, 45}, {60, 45})},
        {"scrollbar", bar, false, buttonAt(8, 95)},
        {"scrollbar by drag", bar, false, dragged({8, 20}, {8, 60})},
        {"check changes", check, false, keyOf(key::Space)},
        {"check acts", check, true, buttonAt(40, 50)},
        {"check by its label", check, false, buttonAt(40, 50)},
        {"tab by key", tabs, false, keyOf(key::Right)},
        {"tab by press", tabs, false, buttonAt(60, 10)},
        {"tab from its page", tabs, false, controlTab},
        {"edit", edit, false, keyOf('x')},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FakeClock clock;
        WCanvas root;
        FakeParent window(&root, {100, 100});
        killer.onActivated = c.onActivated;
        killer.victim = c.make(rows);
        Widget* widget = killer.victim.get();
        root.addChildRect(widget, {0, 0, dynamic_cast<WScrollbar*>(widget) ? 16 : 100, 100});
        widget->setHandler(&killer);
        rows.opened = [&] { killer.kill(); };
        widget->takeFocus();
        c.act(window);
        EXPECT_EQ(killer.victim, nullptr);
        EXPECT_EQ(root.childCount(), 0u);
        window.paintAll();
        clock.advance(2000);
        EXPECT_FALSE(clock.timersLeft());
    }
}

} // namespace
} // namespace wvw
