#include "wvw/test/Golden.h"

#include "hxutil/metrics.h"
#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuInfoFrame.h"
#include "mui/MuLine.h"
#include "mui/MuPager.h"
#include "mui/MuSplitter.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "mui/wvw/MuLayoutWvw.h"
#include "mui/wvw/MuiWvw.h"

namespace mui {
namespace {

using hxutil::scaled;
using wvw::Look;
using wvw::Screen;

/// What elements paint themselves, and how compositions lay them out, on the same screens as the widgets.
class ElementGoldenTest : public testing::TestWithParam<Screen> {
protected:
    ElementGoldenTest() {
        Mui::setInstance(&toolkit);
        MuiWvw::fillWidgetFactories();
    }

    /// What `make` puts into a column, as wide as it wants or as it is told.
    template <class Make>
    void add(Make make, Look look = Look::Normal, int widthUnits = 0, const rfb::Point& pointer = {6, 8}) {
        MuLayoutWvw column(nullptr, Orientation::Vertical);
        column.ownStyle();
        MuElement* element = make(&column);
        element->setEnabled(look != Look::Disabled);
        const int width = widthUnits ? scaled(widthUnits) : column.getMinWidth(0);
        const rfb::Point size(width, column.getMinHeight(width));
        column.setSize(size);
        addInLook(picture, *MuCommonWvw::commonOf(&column, /*assertCommon=*/true)->getWidget(), size,
                  look == Look::Disabled ? Look::Normal : look, pointer);
    }
    template <class Make>
    void row(Make make, int widthUnits = 0, const rfb::Point& pointer = {6, 8}) {
        for (const Look look : wvw::allLooks)
            add(make, look, widthUnits, pointer);
        picture.endRow();
    }

    struct NoColours {
        NoColours() { plat::setSysColors(nullptr); } // a toolkit of another test leaves its own
    } noColours;
    wvw::FakeClock clock;
    wvw::ScreenSettings settings{GetParam()};
    MuiWvw toolkit;
    wvw::Picture picture{GetParam()};
};

TEST_P(ElementGoldenTest, Buttons) {
    const auto make = [](MuButton::Type type, unsigned flags, const char* image) {
        return [=](MuContainer* parent) {
            MuButton* button =
                MuButton::create(parent, "b", type == MuButton::Type::Image ? nullptr : "&Öffnen", type, flags);
            if (image)
                button->setImage(image, {scaled(32), scaled(32)});
            return button;
        };
    };
    row(make(MuButton::Type::Normal, 0, nullptr));
    row(make(MuButton::Type::Normal, MuButton::PopupArrow, "user"));
    row(make(MuButton::Type::Normal, MuButton::HoverBorder, nullptr));
    row(make(MuButton::Type::Link, 0, nullptr));
    row([](MuContainer* parent) {
        MuButton* button = MuButton::create(parent, "b", nullptr, MuButton::Type::Image);
        const rfb::Point size(scaled(48), scaled(48));
        button->setImage(MuButton::ImageNormal, "sdHamburger", size);
        button->setImage(MuButton::ImageHover, "sdHamburger_hover", size);
        return button;
    });
    picture.expectGolden("buttons");
}

TEST_P(ElementGoldenTest, Forms) {
    const auto form = [](MuContainer* parent) {
        MuLayout* column = MuLayout::create(parent, "", Orientation::Vertical);
        MuEdit::create(column, "name", "&Name:")->setText("Arbeitsplatz");
        MuChoice* choice = MuChoice::create(column, "idle", "Bei &Untätigkeit:");
        choice->addItem(0, "Trennen & sperren");
        choice->setSelected(0);
        MuEdit* locked = MuEdit::create(column, "locked", "Gesperrt:");
        locked->setText("vorgegeben");
        locked->setLocked(true);
        alignLabels(column);
        return column;
    };
    add(form, Look::Focused, 480);
    add(form, Look::Normal); // as narrow as it may be: nothing is cut
    add(
        [](MuContainer* parent) {
            MuFrame* frame = MuFrame::create(parent, "f", MuFrame::Type::Titled, "Danach");
            MuLayout* column = MuLayout::create(frame, "", Orientation::Vertical);
            auto* group = new MuCheck::Group;
            MuCheck::create(column, "a", "&Nichts tun", group)->setChecked(true);
            MuCheck::create(column, "b", "Den Bildschirm &sperren und auf den nächsten warten", group);
            return frame;
        },
        Look::Focused, 380);
    picture.expectGolden("forms");
}

TEST_P(ElementGoldenTest, Containers) {
    for (const MuFrame::Type type : {MuFrame::Type::Plain, MuFrame::Type::Line, MuFrame::Type::Sunken})
        add([=](MuContainer* parent) {
            MuFrame* frame = MuFrame::create(parent, "f", type);
            if (type != MuFrame::Type::Line)
                frame->setBgColour("contentBg");
            MuStatic::create(frame, "s", "Im Rahmen");
            return frame;
        });
    picture.endRow();
    for (const Look look : {Look::Normal, Look::Focused}) {
        add(
            [=](MuContainer* parent) {
                MuSplitter* splitter = MuSplitter::create(parent, "s", Orientation::Horizontal, look == Look::Focused);
                for (const char* text : {"Links", "Rechts"})
                    MuStatic::create(MuFrame::create(splitter, "", MuFrame::Type::Line), "t", text);
                splitter->setSizes({scaled(160)});
                return splitter;
            },
            look, 340);
    }
    picture.endRow();
    for (const MuLine::Type type : {MuLine::Type::Etched, MuLine::Type::Colour})
        add([=](MuContainer* parent) { return MuLine::create(parent, "l", type); }, Look::Normal, 160);
    add(
        [](MuContainer* parent) {
            return MuText::create(parent, "t", "Rechts, mit <a href=\"x\">Verweis</a> über zwei Zeilen",
                                  MuText::Align::Right);
        },
        Look::Focused, 240);
    picture.endRow();
    std::unique_ptr<MuInfoFrame> info;
    add(
        [&](MuContainer* parent) {
            info = std::make_unique<MuInfoFrame>(parent, "i", MuInfoFrame::Kind::Locked,
                                                 "Einige Einstellungen gibt Ihr Administrator vor.", "more", "Warum?");
            return info->getFrame();
        },
        Look::Normal, 460);
    picture.expectGolden("containers");
}

std::string screenName(const testing::TestParamInfo<Screen>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(All, ElementGoldenTest,
                         testing::Values(Screen{"1xlight", 4, 100, false}, Screen{"1xdark", 4, 100, true},
                                         Screen{"2xlight", 8, 200, false}, Screen{"2xdark", 8, 200, true}),
                         screenName);

} // namespace
} // namespace mui
