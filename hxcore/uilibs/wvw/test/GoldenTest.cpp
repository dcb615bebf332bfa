#include "wvw/test/Golden.h"

#include "wvw/WBevelButton.h"
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

#include "hxutil/metrics.h"
#include "rfb/keySymbols.h"

namespace wvw {
namespace {

namespace key = rfb::key;
using hxutil::scaled;
using rfb::Point;
using rfb::Rect;

/// Every widget in its states, on an ordinary screen and one of twice the density, light and dark.
class GoldenTest : public testing::TestWithParam<Screen> {
protected:
    /// One row: what `make` makes, in each state.
    template <class Make>
    void row(Make make, int widthUnits = 0, const Point& pointer = {6, 8}) {
        for (const Look look : allLooks) {
            const auto widget = make();
            Point size = widget->getPreferredSize();
            if (widthUnits)
                size.x = scaled(widthUnits);
            addInLook(picture, *widget, size, look, pointer);
        }
        picture.endRow();
    }
    template <class W>
    void alone(W& widget, const Point& size, Look look = Look::Normal) {
        addInLook(picture, widget, size, look, {6, 8});
    }

    FakeClock clock;
    ScreenSettings settings{GetParam()};
    Picture picture{GetParam()};
};

std::unique_ptr<Widget> makeCheck(const char* image, WCheckBox::State state, const char* text) {
    auto check = std::make_unique<WLabelCheckBox>(nullptr, text, image);
    check->setGap(scaled(8));
    check->getCheck().setState(state);
    return check;
}

TEST_P(GoldenTest, Scripts) {
    for (const char* text : {"\u05e9\u05b8\u05c1\u05dc\u05d5\u05b9\u05dd (2) abc",
                             "a \u0627\u0644\u0633\u0644\u0627\u0645, \u0645\u062d\u0645\u062f.",
                             "\u0e01\u0e34\u0e48\u0e19\u0e38 Vie\u0323\u0302t q\u0303 \u0301"}) {
        WLabel label(nullptr, text);
        label.setSelectable(true);
        label.setSelection(0, 4);
        WEdit edit;
        edit.setText(text);
        alone(label, label.getPreferredSize());
        alone(edit, {scaled(200), label.getPreferredSize().y + 8}, Look::Focused);
        picture.endRow();
    }
    WRichText rich(nullptr,
                   "\u05d0\u05d1 <b>\u05d2\u05d3</b> (RFB 3) <a href=\"x\">\u05d4\u05d5</a> \u05d6\u05d7 \u05d8 12.");
    alone(rich, {scaled(180), rich.getPreferredHeight(scaled(180))});
    picture.endRow();
    picture.expectGolden("scripts");
}

TEST_P(GoldenTest, Buttons) {
    row([] { return std::make_unique<WLabelButton>(nullptr, "   Apply   "); });
    row([] { return std::make_unique<WIconButton>(nullptr, "sdOkay", Point(scaled(32), scaled(32))); });
    row([] { return std::make_unique<WArrowButton>(nullptr, WArrow::Direction::Down, Point(16, 16)); });
    picture.expectGolden("buttons");
}

TEST_P(GoldenTest, Checks) {
    using State = WCheckBox::State;
    row([] { return makeCheck("WCheck_check", State::On, "&Allow"); });
    row([] { return makeCheck("WCheck_check", State::Off, "Allow"); });
    row([] { return makeCheck("WCheck_check", State::Indeterminate, "Mixed"); });
    row([] { return makeCheck("WCheck_dot", State::On, "Choice"); });
    row([] { return makeCheck("WCheck_dot", State::Off, "Choice"); });
    const auto wrapped = makeCheck("WCheck_check", State::On, "Copy and paste text in either direction");
    alone(*wrapped, {scaled(300), wrapped->getPreferredHeight(scaled(300))}, Look::Focused);
    picture.expectGolden("checks");
}

TEST_P(GoldenTest, Edits) {
    const auto make = [](const char* text, int from, int to) {
        auto edit = std::make_unique<WEdit>();
        edit->setText(text);
        edit->setSelection(from, to);
        return edit;
    };
    row([&] { return make("harbour.example", 15, 15); }, 220);
    row([&] { return make("harbour.example", 9, 4); }, 220);
    row([&] { return make("Ärger mit Übergröße, 漢字 und mehr", 40, 40); }, 220);
    row(
        [&] {
            auto edit = make("", 0, 0);
            edit->setPlaceholder("host:port");
            return edit;
        },
        220);
    row(
        [&] {
            auto edit = make("secret", 6, 6);
            edit->setPassword(true);
            return edit;
        },
        220);
    row(
        [] {
            auto edit = std::make_unique<WLabelEdit>(nullptr, "&Port");
            edit->setGap(scaled(16));
            edit->getEdit().setText("5900");
            return edit;
        },
        220, {160, 8});
    picture.expectGolden("edits");
}

TEST_P(GoldenTest, Choices) {
    const auto make = [](const char* text, bool editable) {
        auto choice = std::make_unique<WChoice>(nullptr, editable);
        choice->addItem(1, "Prefer on");
        choice->addItem(2, "Prefer off, if the other side agrees");
        choice->setSelectedText(text);
        return choice;
    };
    row([&] { return make("Prefer on", false); }, 210);
    row([&] { return make("Prefer off, if the other side agrees", false); }, 210);
    row([&] { return make("10.0.0.7", true); }, 210, {190, 8});
    const auto dropped = make("Prefer on", false);
    WCanvas canvas;
    const Point size(scaled(210), dropped->getPreferredSize().y);
    canvas.addChildRect(dropped.get(), Rect::at({4, 4}, size));
    FakeParent window(&canvas, size + Point(8, 8));
    window.key(key::F4);
    window.paintAll();
    picture.add(window);
    ASSERT_TRUE(window.anyPopup());
    FakeParent& popup = *window.popupOf(window.anyPopup());
    popup.paintAll();
    picture.add(popup);
    picture.expectGolden("choices");
    canvas.removeChild(dropped.get());
}

TEST_P(GoldenTest, Texts) {
    const char* blue = GetParam().dark ? " style=\"color:#66a7e8\"" : "";
    row([&] {
        return std::make_unique<WRichText>(nullptr, plat::strFormat("<a%s href=\"x\">A link</a>", blue).c_str());
    });
    row([] { return std::make_unique<WLabel>(nullptr, "Plain text"); });
    WLabel selected(nullptr, "Text that wraps and of which a part is selected, over two lines");
    selected.setSelectable(true);
    selected.setSelection(10, 30);
    alone(selected, {scaled(300), selected.getPreferredHeight(scaled(300))});
    WLabel right(nullptr, "Right, and underlined\nof two lines", /*hAlign=*/2);
    right.setUnderline(true);
    alone(right, {scaled(300), right.getPreferredSize().y});
    picture.endRow();
    WRichText rich(nullptr, "<div style=\"text-align:center\">Centred <b>bold</b></div><div>A <font color=\"red\">red"
                            "</font> word in a text that is <u>underlined</u> and wraps.<ul><li>one</li>"
                            "<li>two</li></ul></div>");
    alone(rich, {scaled(420), rich.getPreferredHeight(scaled(420))});
    WRichText broken(nullptr, "<b>broken");
    alone(broken, {scaled(420), broken.getPreferredHeight(scaled(420))});
    picture.endRow();
    WTooltip tip(scaled(360));
    tip.setText("A tooltip whose text wraps & stays <within> its limit.");
    alone(tip, tip.getPreferredSize());
    picture.expectGolden("texts");
}

struct Cells : WTable::Callback {
    plat::String getCellText(WTable*, int row, int column) override {
        static const char* const names[][2] = {
            {"maria", "192.168.4.30"}, {"joão", "10.0.0.7"}, {"a very long name that is cut", "fe80::1"}};
        return names[row % 3][column];
    }
    WImage::Image getCellImage(WTable*, int, int) override {
        return hxutil::NamedImagePixelBuffer::getThemed("user", {scaled(32), scaled(32)});
    }
    void getCellStyle(WTable*, int row, int, WStyle& style) override {
        if (row == 2)
            style.text = style.disabled;
    }
};

TEST_P(GoldenTest, Tables) {
    Cells cells;
    const auto make = [&](bool heading, int rows, int selected) {
        auto table = std::make_unique<WTable>(nullptr, &cells, heading);
        table->addColumn(2, WTable::Image, nullptr, -1, {scaled(32), scaled(32)});
        table->addColumn(0, WTable::Text, "User");
        table->addColumn(1, WTable::Text, "Address", scaled(190), {}, rows == 2 ? 2 : 0);
        table->setEmptyText("Nobody is connected.");
        table->setSize({scaled(500), scaled(240)});
        table->setRowCount(rows);
        table->select(selected);
        return table;
    };
    for (const Look look : {Look::Normal, Look::Focused, Look::Disabled}) {
        const auto table = make(true, 9, 1);
        alone(*table, table->getSize(), look);
    }
    picture.endRow();
    alone(*make(false, 2, -1), {scaled(500), scaled(150)}, Look::Focused);
    alone(*make(true, 0, -1), {scaled(500), scaled(150)});
    picture.expectGolden("tables");
}

TEST_P(GoldenTest, Tabs) {
    const auto make = [] {
        auto sheets = std::make_unique<WTabSheets>();
        for (const char* title : {"&Connections", "Messages", "Diagnostics"})
            sheets->addSheet(title, nullptr);
        sheets->setSheet(1);
        return sheets;
    };
    for (const Look look : {Look::Normal, Look::Focused, Look::Disabled}) {
        const auto sheets = make();
        addInLook(picture, *sheets, {scaled(600), scaled(130)}, look, {});
    }
    picture.endRow();
    const auto hovered = make();
    addInLook(picture, *hovered, {scaled(600), scaled(130)}, Look::Hover, {scaled(60), 6});
    const auto narrow = make();
    alone(*narrow, {scaled(340), scaled(130)});
    picture.expectGolden("tabs");
}

TEST_P(GoldenTest, Menus) {
    WMenuBar bar;
    WMenuBar::Menu file("&File");
    WMenuBar::Menu edit("&Edit");
    WMenuBar::Menu help("&Help");
    for (WMenuBar::Menu* menu : {&file, &edit, &help})
        bar.addMenu(menu);
    help.setEnabled(false);
    WMenuItem open("&Options...");
    WMenuItem off("Add &client...");
    WMenuItem more("&More");
    WMenuItem line(nullptr);
    WMenuItem stop("Stop &server");
    WMenu sub;
    WMenuItem inner("&Inner item");
    sub.add(&inner);
    more.setSubmenu(&sub);
    off.setEnabled(false);
    open.setChecked(true);
    stop.setElevated(true);
    for (WMenuItem* item : {&open, &off, &more, &line, &stop})
        edit.getMenu().add(item);

    FakeParent window(&bar, {scaled(500), bar.getPreferredSize().y});
    bar.hotKey(key::F10);
    window.paintAll();
    picture.add(window);
    edit.open(/*byKey=*/true);
    window.paintAll();
    picture.add(window);
    picture.endRow();
    FakeParent& popup = *window.popupOf(&edit.getMenu());
    popup.key(key::Down);
    popup.key(key::Right);
    popup.paintAll();
    picture.add(popup);
    FakeParent& submenu = *window.popupOf(&sub);
    submenu.paintAll();
    picture.add(submenu);
    bar.closeMenus();
    edit.getMenu().setMaxHeight(edit.getMenu().getHeight() - 8);
    edit.getMenu().setSize(edit.getMenu().getPreferredSize());
    alone(edit.getMenu(), edit.getMenu().getSize());
    picture.expectGolden("menus");
}

TEST_P(GoldenTest, Sliders) {
    for (const bool vertical : {false, true}) {
        for (const Look look : allLooks) {
            WDiscreteSlider slider(nullptr, vertical);
            slider.setRange1(4);
            slider.setValue1(2);
            const Point flat(scaled(180), slider.getPreferredHeight(0));
            const Point across(slider.getPreferredWidth(0), scaled(180));
            const Point pointer(scaled(90), scaled(16));
            addInLook(picture, slider, vertical ? across : flat, look,
                      vertical ? Point(pointer.y, pointer.x) : pointer);
        }
        picture.endRow();
        for (const Look look : {Look::Normal, Look::Hover, Look::Disabled}) {
            WScrollbar bar(nullptr, vertical);
            bar.setRange(100);
            bar.setPage(60);
            bar.setValue(30);
            const Point size = vertical ? Point(16, 100) : Point(100, 16);
            addInLook(picture, bar, size, look, vertical ? Point(8, 50) : Point(50, 8));
        }
        picture.endRow();
    }
    picture.expectGolden("sliders");
}

TEST_P(GoldenTest, Groups) {
    for (const Look look : {Look::Normal, Look::Disabled}) {
        WPanel panel(nullptr, "Group");
        WLabel inside(&panel.getContent(), "A label in a panel that wraps.");
        inside.setEnabled(look != Look::Disabled);
        inside.setSize({scaled(240), inside.getPreferredHeight(scaled(240))});
        addInLook(picture, panel, panel.getPreferredSize(), look, {});
    }
    picture.endRow();
    WLabel text(nullptr, "Text that is far too long and too wide for the view, so that both scrollbars are shown and "
                         "the keyboard can scroll it.");
    text.setVAlign(0);
    struct View : WScrollView {
        Point contentSizeFor(int) override { return {scaled(700), scaled(400)}; }
    } view;
    view.setContent(&text);
    addInLook(picture, view, {scaled(300), scaled(160)}, Look::Focused, {});
    WImage tiled(nullptr, "infoframe_warning", Point(scaled(32), scaled(32)));
    tiled.setTiled(true);
    addInLook(picture, tiled, {scaled(112), scaled(80)}, Look::Normal, {});
    WImage aligned(nullptr, "infoframe_warning", Point(scaled(32), scaled(32)));
    aligned.setAlign(2, 2);
    addInLook(picture, aligned, {scaled(112), scaled(80)}, Look::Disabled, {});
    picture.expectGolden("groups");
}

std::string screenName(const testing::TestParamInfo<Screen>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(All, GoldenTest,
                         testing::Values(Screen{"1xlight", 4, 100, false}, Screen{"1xdark", 4, 100, true},
                                         Screen{"2xlight", 8, 200, false}, Screen{"2xdark", 8, 200, true}),
                         screenName);

} // namespace
} // namespace wvw
