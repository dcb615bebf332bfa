#include "mui/wvw/MuiWvw.h"

#include "hxutil/NamedImagePixelBuffer.h"
#include "hxutil/metrics.h"
#include "mui/MuElement.h"
#include "mui/muFactories.h"
#include "mui/wvw/MuButtonWvw.h"
#include "mui/wvw/MuCheckWvw.h"
#include "mui/wvw/MuChoiceWvw.h"
#include "mui/wvw/MuEditWvw.h"
#include "mui/wvw/MuFrameWvw.h"
#include "mui/wvw/MuImageWvw.h"
#include "mui/wvw/MuLayoutWvw.h"
#include "mui/wvw/MuLineWvw.h"
#include "mui/wvw/MuListWvw.h"
#include "mui/wvw/MuPagerWvw.h"
#include "mui/wvw/MuScrollWvw.h"
#include "mui/wvw/MuSliderWvw.h"
#include "mui/wvw/MuSplitterWvw.h"
#include "mui/wvw/MuStaticWvw.h"
#include "mui/wvw/MuTextWvw.h"
#include "plat/Assert.h"
#include "plat/SysColors.h"

#include <cstdlib>

namespace mui {
namespace {
plat::SysColorsGeneric genericColours;

void takeTheme() {
    if (!plat::getSysColors())
        plat::setSysColors(&genericColours);
    wvw::resetDefaultStyle();
}

int checkIndentUnits() {
    const int ppmm = hxutil::ppmm();
    const int width = hxutil::NamedImagePixelBuffer::getQuiet("WCheck_check")->width();
    return (width * 8 + ppmm / 2) / ppmm + 8;
}
} // namespace

MuiWvw::MuiWvw() {
    takeTheme();
    baseStyle = wvw::defaultStyle();
    const int units[MetricCount] = {16, checkIndentUnits(), 16, 16, 48, 136, 32, 40};
    setMetrics(units);
}

MuiWvw* MuiWvw::instance() { return plat::checkedCast<MuiWvw>(Mui::instance(), "the toolkit object"); }

wvw::WStyle MuiWvw::getStyle() const {
    wvw::WStyle style = baseStyle;
    if (isLayoutDebugged())
        style.canvas = {rand() & 255, rand() & 255, rand() & 255};
    return style;
}

wvw::WStyle MuiWvw::getStyle(const MuStyle& style) const {
    const wvw::WStyle base = getStyle();
    wvw::WStyle result = base.style(style.size, style.weight, style.textColour.get(), style.bgColour.get());
    if (!style.bgColour.isNull() && !isLayoutDebugged())
        result.canvas = result.contentBg;
    return result;
}

void MuiWvw::refreshTheme() {
    takeTheme();
    baseStyle = wvw::defaultStyle();
    ++generation;
    for (const auto& [serial, dialog] : getDialogs())
        dialog->styleChanged();
}

void MuiWvw::fillWidgetFactories() {
    muButtonFactory = makeButton;
    muCheckFactory = makeCheck;
    muChoiceFactory = makeChoice;
    muEditFactory = makeEdit;
    muFrameFactory = makeFrame;
    muImageFactory = makeImage;
    muLayoutFactory = makeLayout;
    muLineFactory = makeLine;
    muListFactory = makeList;
    muPagerFactory = makePager;
    muScrollFactory = makeScroll;
    muSliderFactory = makeSlider;
    muSplitterFactory = makeSplitter;
    muStaticFactory = makeStatic;
    muTextFactory = makeText;
}

MuButton* MuiWvw::makeButton(const char* name, const char* label, int type, unsigned flags) {
    return new MuButtonWvw(name, label, static_cast<MuButton::Type>(type), flags);
}

MuCheck* MuiWvw::makeCheck(const char* name, const char* label, void* group) {
    return new MuCheckWvw(name, label, static_cast<MuCheck::Group*>(group));
}

MuChoice* MuiWvw::makeChoice(const char* name, const char* label, bool editable) {
    return new MuChoiceWvw(name, label, editable);
}

MuEdit* MuiWvw::makeEdit(const char* name, const char* label, int type) {
    return new MuEditWvw(name, label, static_cast<MuEdit::Type>(type));
}

MuFrame* MuiWvw::makeFrame(const char* name, int type, const char* title) {
    return new MuFrameWvw(name, static_cast<MuFrame::Type>(type), title);
}

MuImage* MuiWvw::makeImage(const char* name, const char* imageName, const rfb::Point& size) {
    return new MuImageWvw(name, imageName, size);
}

MuLayout* MuiWvw::makeLayout(const char* name, int orientation) {
    return new MuLayoutWvw(name, static_cast<Orientation>(orientation));
}

MuLine* MuiWvw::makeLine(const char* name, int type, int orientation) {
    return new MuLineWvw(name, static_cast<MuLine::Type>(type), static_cast<Orientation>(orientation));
}

MuList* MuiWvw::makeList(const char* name, unsigned flags) { return new MuListWvw(name, flags); }

MuPager* MuiWvw::makePager(const char* name, int type) {
    return new MuPagerWvw(name, static_cast<MuPager::Type>(type));
}

MuScroll* MuiWvw::makeScroll(const char* name, unsigned style) { return new MuScrollWvw(name, style); }

MuSlider* MuiWvw::makeSlider(const char* name, int orientation, int min, int max) {
    return new MuSliderWvw(name, static_cast<Orientation>(orientation), min, max);
}

MuSplitter* MuiWvw::makeSplitter(const char* name, int orientation, bool thin, int mode) {
    return new MuSplitterWvw(name, static_cast<Orientation>(orientation), thin, static_cast<MuSplitter::Mode>(mode));
}

MuStatic* MuiWvw::makeStatic(const char* name, const char* text, int align) {
    return new MuStaticWvw(name, text, static_cast<MuStatic::Align>(align));
}

MuText* MuiWvw::makeText(const char* name, const char* markup, int align) {
    return new MuTextWvw(name, markup, static_cast<MuText::Align>(align));
}

} // namespace mui
