#include "mui/wvw/MuSplitterWvw.h"

#include "rfb/PixelBuffer.h"

namespace mui {
namespace {
constexpr int gripDots = 5;
constexpr int gripStep = 4; // pixels from dot to dot
} // namespace

MuSplitterWvw::MuSplitterWvw(const char* name, Orientation orientation_, bool thin_, Mode mode_)
    : MuSplitter(name, orientation_, thin_, mode_), widget(nullptr, this), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
}

MuSplitterWvw::~MuSplitterWvw() {
    widget.setHandler(nullptr);
    clear();
    common = nullptr;
}

void MuSplitterWvw::adopt(MuElement* element) {
    if (const MuCommonWvw* child = MuCommonWvw::commonOf(element, /*assertCommon=*/false))
        widget.addChild(child->getWidget());
    MuSplitter::adopt(element);
}

void MuSplitterWvw::setSize(const rfb::Point& size) {
    settingSize = true; // one pass is enough
    MuElement::setSize(size);
    settingSize = false;
    doLayout();
}

void MuSplitterWvw::doLayout() {
    MuSplitter::doLayout();
    std::vector<int> handles = getHandlePositions();
    if (handles == lastHandles)
        return;
    lastHandles = std::move(handles);
    widget.repaint();
}

void MuSplitterWvw::beginDrag() { hover(getDraggedHandle()); }

void MuSplitterWvw::endDrag() { widget.repaint(); }

void MuSplitterWvw::hover(int over) {
    const bool across = getOrientation() == Orientation::Horizontal;
    widget.setCursor(over < 0 ? wvw::CursorShape::Default
                     : across ? wvw::CursorShape::ResizeAcross
                              : wvw::CursorShape::ResizeAlong);
}

bool MuSplitterWvw::sizeChanged(wvw::Widget* origin) {
    if (origin == &widget && !settingSize)
        doLayout();
    return false;
}

void MuSplitterWvw::paintCustom(wvw::WCustom*, rfb::FullFramePixelBuffer& pb) {
    for (const int start : getHandlePositions()) {
        const int end = start + handleSize();
        paintHandle(pb, getOrientation() == Orientation::Horizontal ? rfb::Rect(start, 0, end, widget.getHeight())
                                                                    : rfb::Rect(0, start, widget.getWidth(), end));
    }
}

void MuSplitterWvw::paintHandle(rfb::FullFramePixelBuffer& pb, const rfb::Rect& area) {
    const wvw::WStyle& look = widget.getStyle();
    const rfb::Colour ink = wvw::themeColour("disabledText", look.disabled);
    widget.fill(pb, area, wvw::themeColour("contentBg", look.contentBg));
    const rfb::Point middle((area.tl.x + area.br.x - 1) / 2, (area.tl.y + area.br.y - 1) / 2);
    const bool upright = getOrientation() == Orientation::Horizontal;
    for (int i = -(gripDots / 2); i <= gripDots / 2; ++i) {
        const rfb::Point dot = upright ? middle + rfb::Point(0, i * gripStep) : middle + rfb::Point(i * gripStep, 0);
        widget.fill(pb, rfb::Rect::xywh(dot.x, dot.y, upright ? 1 : 2, upright ? 2 : 1).intersect(area), ink);
    }
}

} // namespace mui
