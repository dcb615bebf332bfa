#include "wvw/WBevelButton.h"

#include "rfb/PixelBuffer.h"

namespace wvw {
namespace {
constexpr int inset = 3;
} // namespace

using rfb::Point;
using rfb::Rect;

void WBevelButton::setChild(Widget* newChild) {
    if (child)
        removeChild(child);
    child = newChild;
    if (!child)
        return;
    addChild(child);
    child->setEnabled(isEnabled());
    placeChild();
}

void WBevelButton::removeChild(Widget* gone) {
    if (gone == child)
        child = nullptr;
    WButton::removeChild(gone);
}

void WBevelButton::placeChild() {
    if (!child)
        return;
    const Rect room = childRect();
    setChildRect(child, isPressed() ? room.translate({1, 1}) : room);
}

rfb::Rect WBevelButton::childRect() const {
    const Rect room = getRect().expandBy(-inset);
    return room.isEmpty() ? Rect(inset, inset, inset, inset) : room;
}

void WBevelButton::stateChanged() { placeChild(); }

bool WBevelButton::sizeChanged(Widget* origin) {
    if (origin == this)
        placeChild();
    return WButton::sizeChanged(origin);
}

Point WBevelButton::getPreferredSize() {
    return (child ? child->getPreferredSize() : Point()) + Point(2 * inset, 2 * inset);
}

int WBevelButton::getPreferredHeight(int width) {
    return (child ? child->getPreferredHeight(width - 2 * inset) : 0) + 2 * inset;
}

void WBevelButton::paint(rfb::FullFramePixelBuffer& pb) {
    const FaceState state = faceState();
    const bool thin = state == FaceState::Pressed || state == FaceState::Disabled;
    drawFace(pb, getRect().expandBy(thin ? -1 : -2), state);
    paintChildren(pb);
    drawBevel(pb, getRect(), /*sunken=*/false, thin);
    if (hasFocus())
        drawFocus(pb, getRect().expandBy(-inset), /*dotted=*/true);
}

WLabelButton::WLabelButton(WLayout* layout, const char* text)
    : WBevelButton(layout), label(nullptr, text, /*hAlign=*/1) {
    label.setTransparent(true);
    label.setWrap(false);
    setChild(&label);
}

void WLabelButton::setText(const char* text) { label.setText(text); }

WIconButton::WIconButton(WLayout* layout, const char* imageName, const Point& imageSize)
    : WBevelButton(layout), icon(nullptr, imageName, imageSize) {
    setChild(&icon);
}

WArrowButton::WArrowButton(WLayout* layout, WArrow::Direction towards, const Point& preferred)
    : WBevelButton(layout), arrow(nullptr, towards), preferredSize(preferred) {
    setChild(&arrow);
    setFocusable(false);
}

void WArrowButton::paint(rfb::FullFramePixelBuffer& pb) {
    drawFace(pb, getRect().expandBy(-1), faceState());
    paintChildren(pb);
    drawBevel(pb, getRect(), /*sunken=*/false, /*thin=*/true);
}

} // namespace wvw
