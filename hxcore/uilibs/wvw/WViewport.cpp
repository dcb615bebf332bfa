#include "wvw/WViewport.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"

#include <algorithm>

namespace wvw {
namespace {
constexpr int barPx = WScrollbar::thickness;
constexpr int wheelUnits = 96;
constexpr int arrowPx = 16;
} // namespace

using rfb::Point;
using rfb::Rect;

WViewport::WViewport(WLayout* layout)
    : WLayout(layout), vBar(nullptr, /*vertical=*/true, arrowPx), hBar(nullptr, /*vertical=*/false, arrowPx) {
    vBar.setVisible(false);
    hBar.setVisible(false);
    addChild(&vBar);
    addChild(&hBar);
}

void WViewport::setChild(Widget* widget, WViewportChild* scrolled) {
    if (childWidget)
        removeChild(childWidget);
    childWidget = widget;
    child = scrolled;
    if (childWidget)
        addChild(childWidget, &vBar);
    layoutScrollbars();
}

void WViewport::removeChild(Widget* gone) {
    if (gone == childWidget) {
        childWidget = nullptr;
        child = nullptr;
    }
    WLayout::removeChild(gone);
}

void WViewport::setContentSize(const Point& newContentSize) {
    if (newContentSize == contentSize)
        return;
    contentSize = newContentSize;
    layoutScrollbars();
}

Point WViewport::getVisibleSize() const {
    return {std::max(0, getWidth() - (vBar.isVisible() ? barPx : 0)),
            std::max(0, getHeight() - (hBar.isVisible() ? barPx : 0))};
}

Point WViewport::getScroll() const { return {hBar.getValue(), vBar.getValue()}; }

void WViewport::layoutScrollbars() {
    bool vShown = false;
    bool hShown = false;
    if (contentSize.y > getHeight()) {
        vShown = true;
        hShown = contentSize.x > getWidth() - barPx;
    } else if (contentSize.x > getWidth()) {
        hShown = true;
        vShown = contentSize.y > getHeight() - barPx;
    }
    vBar.setVisible(vShown);
    hBar.setVisible(hShown);
    const Point shown = getVisibleSize();
    vBar.setRange(std::max(0, contentSize.y - shown.y));
    setChildRect(&vBar, Rect::xywh(getWidth() - barPx, 0, barPx, getHeight()));
    hBar.setRange(std::max(0, contentSize.x - shown.x));
    setChildRect(&hBar, Rect::xywh(0, getHeight() - barPx, shown.x, barPx));
    vBar.setPage(shown.y);
    hBar.setPage(shown.x);
    if (childWidget)
        setChildRect(childWidget, {{0, 0}, shown});
    tellChild();
}

void WViewport::tellChild() {
    if (child)
        child->scrollTo(getScroll());
}

void WViewport::moveTo(const Point& value) {
    const bool vMoved = vBar.isVisible() && vBar.setValue(value.y);
    const bool hMoved = hBar.isVisible() && hBar.setValue(value.x);
    if (vMoved || hMoved)
        tellChild();
}

void WViewport::scrollToPoint(const Point& point) { moveTo(point); }

void WViewport::scrollToRect(const Rect& rect) {
    const auto axis = [](int value, int from, int to, int extent) {
        if (from < value || to - from > extent)
            return from;
        return to > value + extent ? to - extent : value;
    };
    const Point shown = getVisibleSize();
    const Point scroll = getScroll();
    moveTo({axis(scroll.x, rect.tl.x, rect.br.x, shown.x), axis(scroll.y, rect.tl.y, rect.br.y, shown.y)});
}

bool WViewport::sizeChanged(Widget* origin) {
    if (origin == this)
        layoutScrollbars();
    return WLayout::sizeChanged(origin);
}

bool WViewport::valueChanged(Widget* origin) {
    if (origin != &vBar && origin != &hBar)
        return WLayout::valueChanged(origin);
    tellChild();
    return true;
}

bool WViewport::mouseDown(int button, Widget* origin) {
    if (button < 3 || button > 6)
        return WLayout::mouseDown(button, origin);
    const bool sideways = button > 4 || shiftDown() || !vBar.isVisible();
    WScrollbar& bar = sideways ? hBar : vBar;
    const int before = bar.getValue();
    const int wheelPx = hxutil::scaled(wheelUnits);
    if (bar.isVisible())
        bar.stepBy(button % 2 ? -wheelPx : wheelPx);
    // At its end, the wheel is for what is around us.
    return bar.getValue() != before || WLayout::mouseDown(button, origin);
}

} // namespace wvw
