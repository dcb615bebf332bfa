// Paints widgets in all their states into a picture, for a look at them: wvw_gallery <file.png> <ppmm> <dark 0|1>
#include "wvw/WBevelButton.h"
#include "wvw/WCanvas.h"
#include "wvw/WEdit.h"
#include "wvw/WLabelWidget.h"
#include "wvw/WMenu.h"
#include "wvw/WPanel.h"
#include "wvw/WRichText.h"
#include "wvw/WRoot.h"
#include "wvw/WTable.h"
#include "wvw/WTooltip.h"
#include "wvw/WViewport.h"

#include "hxutil/Font.h"
#include "hxutil/metrics.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/SysColors.h"
#include "registerBuiltInResources.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using namespace wvw; // NOLINT: a program of one file
using rfb::Point;
using rfb::Rect;

enum class Look { Normal, Hover, Pressed, Focused, Disabled };
constexpr Look looks[] = {Look::Normal, Look::Hover, Look::Pressed, Look::Focused, Look::Disabled};
constexpr const char* lookNames[] = {"normal", "hover", "pressed", "focused", "disabled"};

/// A window of one widget, somewhere in the picture.
class Cell : public WParent, public WInputHandler, public WMouseInputHandler, public WRoot {
public:
    void invalidate(Widget*, const rfb::Region&) override {}
    void bell() override {}
    bool setFocus(Widget*) override { return true; }
    bool isFocused(const Widget*) const override { return focused; }
    bool focusNext() override { return false; }
    bool focusPrev() override { return false; }
    bool isKeyDown(uint32_t) const override { return false; }
    plat::String getCutText() override { return {}; }
    void setCutText(const char*) override {}
    WRoot* getRoot(Point* origin) override {
        if (origin)
            *origin = {0, 0};
        return this;
    }
    void ensureVisible(Widget*, const Rect&) override {}
    void startDrag(std::unique_ptr<hxutil::DragDropData>, const rfb::PixelBuffer*) override {}
    Point screenSize() override { return {2000, 2000}; }
    void showPopup(Widget*, bool, bool, const Point&) override {}

    bool focused = false;
};

class Gallery {
public:
    Gallery(int columns, int rows) : pixels(rfb::pfRGB888(), hxutil::scaled(30 + columns * 296), hxutil::scaled(rows)) {
        WCanvas canvas;
        canvas.setSize(pixels.size());
        canvas.paint(pixels);
    }

    /// Shows `widget` at a place, with the pointer at `pointer`.
    void show(Widget& widget, const Point& at, const Point& size, Look look, const Point& pointer) {
        Cell cell;
        cell.focused = look == Look::Focused;
        widget.setEnabled(look != Look::Disabled);
        widget.setSize(size);
        widget.attach(&cell, &cell, &cell);
        if (cell.focused)
            widget.focusChanged(/*backward=*/false, &widget);
        if (look == Look::Hover || look == Look::Pressed)
            widget.mouseEvent(pointer, 0);
        if (look == Look::Pressed)
            widget.mouseEvent(pointer, 1);
        const Rect place = Rect::at(at, size).intersect(pixels.getRect());
        rfb::FullFramePixelBuffer view(pixels, place, {0, 0});
        widget.paint(view);
        widget.detach();
    }

    /// One row: what `make` makes, in each state.
    template <class Make>
    void row(int gapUnits, Make make) {
        int height = 0;
        for (size_t i = 0; i < std::size(looks); ++i) {
            const auto widget = make();
            Point size = widget->getPreferredSize();
            if (wide)
                size.x = hxutil::scaled(256);
            const Point at(hxutil::scaled(32) + static_cast<int>(i) * hxutil::scaled(296), y);
            show(*widget, at, size, looks[i], pointerFor(size));
            height = std::max(height, size.y);
        }
        y += height + hxutil::scaled(gapUnits);
    }

    void save(const char* path) const {
        std::vector<unsigned char> rgb;
        for (int row = 0; row < pixels.height(); ++row) {
            std::vector<uint32_t> line(static_cast<size_t>(pixels.width()));
            pixels.getImage(line.data(), Rect::xywh(0, row, pixels.width(), 1));
            for (uint32_t p : line) {
                for (int shift : {16, 8, 0})
                    rgb.push_back(static_cast<unsigned char>(p >> shift & 255));
            }
        }
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = static_cast<png_uint_32>(pixels.width());
        image.height = static_cast<png_uint_32>(pixels.height());
        image.format = PNG_FORMAT_RGB;
        if (!png_image_write_to_file(&image, path, 0, rgb.data(), 0, nullptr))
            fprintf(stderr, "%s: %s\n", path, image.message);
    }

    int y = hxutil::scaled(20);
    bool wide = false;
    Point pointerInside{4, 6};

private:
    Point pointerFor(const Point& size) const {
        return {std::min(pointerInside.x, size.x - 1), std::min(pointerInside.y, size.y - 1)};
    }

    rfb::ManagedPixelBuffer pixels;
};

std::unique_ptr<Widget> makeCheck(const char* image, WCheckBox::State state, const char* text) {
    auto check = std::make_unique<WLabelCheckBox>(nullptr, text, image);
    check->setGap(hxutil::scaled(8));
    check->getCheck().setState(state);
    return check;
}

void controls(Gallery& g) {
    int column = 0;
    g.row(16, [&] {
        auto label = std::make_unique<WLabel>(nullptr, lookNames[column++]);
        const WStyle bold = defaultStyle().style(120, 700);
        label->setStyle(&bold);
        label->setMargin(0);
        return label;
    });
    g.row(16, [] { return std::make_unique<WLabelButton>(nullptr, "      Apply      "); });
    g.row(16, [] {
        return std::make_unique<WIconButton>(nullptr, "sdOkay", Point(hxutil::scaled(32), hxutil::scaled(32)));
    });
    using State = WCheckBox::State;
    g.row(8, [] { return makeCheck("WCheck_check", State::On, "&Allow"); });
    g.row(8, [] { return makeCheck("WCheck_check", State::Off, "Allow"); });
    g.row(8, [] { return makeCheck("WCheck_check", State::Indeterminate, "Mixed"); });
    g.row(8, [] { return makeCheck("WCheck_dot", State::On, "Choice"); });
    g.row(16, [] { return makeCheck("WCheck_dot", State::Off, "Choice"); });
    g.wide = true;
    g.row(16, [] {
        auto edit = std::make_unique<WEdit>();
        edit->setText("harbour.example");
        return edit;
    });
    g.row(16, [] {
        auto edit = std::make_unique<WEdit>();
        edit->setText("harbour.example");
        edit->setSelection(4, 9);
        return edit;
    });
    g.row(16, [] {
        auto edit = std::make_unique<WEdit>();
        edit->setPlaceholder("host:port");
        return edit;
    });
    const char* colour = plat::isDarkMode() ? " style=\"color:#66a7e8\"" : "";
    g.row(16, [=] {
        auto text = std::make_unique<WRichText>(
            nullptr, plat::strFormat("<a%s href=\"x\">Plain link</a> and <b>bold</b>", colour).c_str());
        return text;
    });
    g.pointerInside = {100000, 100000};
    g.row(16, [] { return std::make_unique<WScrollbar>(nullptr, /*vertical=*/false); });
}

void groups(Gallery& g) {
    const int x = hxutil::scaled(32);
    WPanel panel(nullptr, "Group");
    WLabel inside(&panel.getContent(), "A label in a panel that wraps when it has to.");
    inside.setSize({hxutil::scaled(300), inside.getPreferredHeight(hxutil::scaled(300))});
    g.show(panel, {x, g.y}, panel.getPreferredSize(), Look::Normal, {});

    WViewport view;
    struct Filler : WBgLayout, WViewportChild {
        void scrollTo(const Point&) override {}
    } filler;
    view.setChild(&filler, &filler);
    view.setContentSize({hxutil::scaled(600), hxutil::scaled(600)});
    g.show(view, {x + hxutil::scaled(400), g.y}, {hxutil::scaled(300), hxutil::scaled(240)}, Look::Normal, {});

    WRootMenu menu;
    WMenuItem open("&Options...");
    WMenuItem line(nullptr);
    WMenuItem off("Add &client...");
    WMenuItem more("&More");
    WMenuItem stop("Stop &server");
    WMenu sub;
    more.setSubmenu(&sub);
    off.setEnabled(false);
    open.setChecked(true);
    stop.setElevated(true);
    for (WMenuItem* item : {&open, &off, &more, &line, &stop})
        menu.add(item);
    const Point size = menu.getPreferredSize();
    menu.selectItem(&more);
    g.show(menu, {x + hxutil::scaled(760), g.y}, size, Look::Normal, {});

    WTooltip tip(hxutil::scaled(360));
    tip.setText("A tooltip whose text wraps within its limit.");
    g.show(tip, {x + hxutil::scaled(1080), g.y}, tip.getPreferredSize(), Look::Normal, {});

    struct Cells : WTable::Callback {
        plat::String getCellText(WTable*, int row, int column) override {
            static const char* const names[][2] = {
                {"maria", "192.168.4.30"}, {"joao", "10.0.0.7"}, {"a very long name", "::1"}};
            return names[row % 3][column];
        }
    } cells;
    WTable table(nullptr, &cells, /*showHeading=*/true);
    table.addColumn(0, WTable::Text, "User");
    table.addColumn(1, WTable::Text, "Address");
    table.setRowCount(5);
    table.setSize({hxutil::scaled(560), hxutil::scaled(230)});
    table.select(1);
    for (const Look look : {Look::Focused, Look::Disabled}) {
        const Point at(x + (look == Look::Disabled ? hxutil::scaled(600) : 0), g.y + hxutil::scaled(270));
        g.show(table, at, table.getSize(), look, {});
    }

    WLabel selected(nullptr, "Selected text");
    selected.setSelectable(true);
    selected.setSelection(0, 8);
    g.show(selected, {x + hxutil::scaled(1080), g.y + hxutil::scaled(120)}, selected.getPreferredSize(), Look::Normal,
           {});
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        fprintf(stderr, "usage: wvw_gallery <file.png> <ppmm> <dark 0|1>\n");
        return 1;
    }
    try {
        registerBuiltInResources();
        plat::SysColorsGeneric colours;
        plat::setSysColors(&colours);
        plat::TimerManager timers;
        plat::Configuration::global().set("ppmm", argv[2]);
        plat::Configuration::global().set("_DarkMode", argv[3]);
        Gallery gallery(5, 1150);
        controls(gallery);
        groups(gallery);
        gallery.save(argv[1]);
        plat::setSysColors(nullptr);
    } catch (const plat::Exception& e) {
        fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
