#include "mui/wvw/MuSplitterWvw.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int gripDots = 7;
constexpr int gripStepUnits = 8; // from dot to dot
constexpr int gripUnits = 4;
} // namespace

/// What keys and pointer find between two panes. The splitter paints it, and hears of the pointer as everything above
/// does; here is only the mark of the focus.
class MuSplitterWvw::Handle : public wvw::Widget {
public:
    Handle(MuSplitterWvw* target, int gapIndex) : owner(target), gap(gapIndex) {}

    // wvw::Widget
    void paint(rfb::FullFramePixelBuffer& pb) override {
        if (hasFocus())
            drawFocus(pb, getRect(), /*dotted=*/true);
    }
    void mouseEvent(const rfb::Point& position, int mask) override {
        // It moves along with the pointer, so that the same place in it may be another one in the splitter.
        mousePos = {-1, -1};
        wvw::Widget::mouseEvent(position, mask);
    }
    bool acceptsFocus() override { return isEnabled() && isVisible(); }
    bool focusChanged(bool backward, Widget* origin) override {
        repaint();
        return wvw::Widget::focusChanged(backward, origin);
    }

private:
    bool ownKey(uint32_t keysym) override { return owner->handleKey(gap, keysym); }
    bool pressTakesFocus() override { return false; } // who drags goes on with what had it

    MuSplitterWvw* owner;
    int gap;
};

MuSplitterWvw::MuSplitterWvw(const char* name, Orientation orientation_, bool thin_, Mode mode_)
    : MuSplitter(name, orientation_, thin_, mode_), widget(nullptr, this), commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setHandler(this);
}

MuSplitterWvw::~MuSplitterWvw() {
    widget.setHandler(nullptr);
    handles.clear();
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
    placeHandles(places());
    std::vector<int> positions = getHandlePositions();
    if (positions == lastHandles)
        return;
    lastHandles = std::move(positions);
    widget.repaint();
}

/// In the order of the panes, so that Tab comes by.
void MuSplitterWvw::placeHandles(const std::vector<Placed>& placed) {
    std::vector<size_t> indices;
    for (const Placed& place : placed)
        indices.push_back(place.index);
    if (indices != handleIndices) {
        handleIndices = indices;
        handles.clear();
        for (size_t gap = 0; gap + 1 < placed.size(); ++gap) {
            handles.push_back(std::make_unique<Handle>(this, static_cast<int>(gap)));
            MuElement* behind = getChild(static_cast<int>(placed[gap + 1].index));
            const MuCommonWvw* common_ = MuCommonWvw::commonOf(behind, /*assertCommon=*/false);
            widget.addChild(handles.back().get(), common_ ? common_->getWidget() : nullptr);
        }
    }
    for (size_t gap = 0; gap < handles.size(); ++gap)
        widget.setChildRect(handles[gap].get(), handleRect(placed[gap].start + placed[gap].extent));
}

rfb::Rect MuSplitterWvw::handleRect(int start) const {
    const int end = start + handleSize();
    return getOrientation() == Orientation::Horizontal ? rfb::Rect(start, 0, end, widget.getHeight())
                                                       : rfb::Rect(0, start, widget.getWidth(), end);
}

void MuSplitterWvw::beginDrag() { hover(getDraggedHandle()); }

void MuSplitterWvw::endDrag() { widget.repaint(); }

void MuSplitterWvw::hover(int over) {
    const bool across = getOrientation() == Orientation::Horizontal;
    for (const auto& each : handles)
        each->setCursor(over < 0 ? wvw::CursorShape::Default
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
        const rfb::Rect area = handleRect(start);
        if (area.overlaps(pb.getRect()))
            paintHandle(pb, area);
    }
}

void MuSplitterWvw::paintHandle(rfb::FullFramePixelBuffer& pb, const rfb::Rect& area) {
    const wvw::WStyle& look = widget.getStyle();
    const rfb::Colour ink = wvw::themeColour("disabledText", look.disabled);
    const rfb::Colour light = wvw::themeColour("contentBg", look.contentBg);
    const rfb::Point middle((area.tl.x + area.br.x - 1) / 2, (area.tl.y + area.br.y - 1) / 2);
    const bool upright = getOrientation() == Orientation::Horizontal;
    const int side = std::max(2, hxutil::scaled(gripUnits));
    const int lift = side / 2;
    const int step = std::max(4, hxutil::scaled(gripStepUnits));
    for (int i = -(gripDots / 2); i <= gripDots / 2; ++i) {
        const rfb::Point dot = upright ? middle + rfb::Point(0, i * step) : middle + rfb::Point(i * step, 0);
        widget.fill(pb, rfb::Rect::xywh(dot.x, dot.y, side, side).intersect(area), light);
        widget.fill(pb, rfb::Rect::xywh(dot.x - lift, dot.y - lift, side, side).intersect(area), ink);
    }
}

} // namespace mui
