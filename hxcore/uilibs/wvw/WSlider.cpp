#include "wvw/WSlider.h"

#include "wvw/WidgetWatch.h"

#include "rfb/PixelBuffer.h"

#include <algorithm>
#include <cstdint>

namespace wvw {

using rfb::Point;
using rfb::Rect;

namespace {

constexpr int minThumb = 8;

Point clamped(const Point& p, const Point& limit) { return {std::clamp(p.x, 0, limit.x), std::clamp(p.y, 0, limit.y)}; }

/// a * b / c, rounded half away from zero; c is above 0.
int scaleDiv(int64_t a, int64_t b, int64_t c) {
    const int64_t product = a * b;
    return static_cast<int>((product >= 0 ? product + c / 2 : product - c / 2) / c);
}

} // namespace

WSlider2D::WSlider2D(WLayout* layout) : Widget(layout) {}

int WSlider2D::thumbLength(int length, int range, int step) {
    const int64_t whole = static_cast<int64_t>(range) + step;
    const int natural = whole > 0 ? scaleDiv(step, length, whole) : length;
    return std::min(std::max(natural, minThumb), std::max(length, 0));
}

void WSlider2D::setRange(const Point& newRange) {
    const Point wanted(std::max(0, newRange.x), std::max(0, newRange.y));
    if (wanted == range)
        return;
    range = wanted;
    value = clamped(value, range);
    repaint();
}

void WSlider2D::setStep(const Point& newStep) {
    const Point wanted(std::max(1, newStep.x), std::max(1, newStep.y));
    if (wanted == step)
        return;
    step = wanted;
    repaint();
}

bool WSlider2D::setValue(const Point& newValue) {
    const Point wanted = clamped(newValue, range);
    if (wanted == value)
        return false;
    value = wanted;
    repaint();
    return true;
}

void WSlider2D::setMinThumb(int px) {
    minThumbPx = px;
    repaint();
}

Rect WSlider2D::thumbRect() const {
    const auto axis = [this](int length, int axisRange, int axisStep, int axisValue, int& start, int& end) {
        const int thumb = std::min(std::max(thumbLength(length, axisRange, axisStep), minThumbPx), length);
        start = axisRange > 0 ? scaleDiv(axisValue, length - thumb, axisRange) : 0;
        end = start + thumb;
    };
    Rect r;
    axis(getWidth(), range.x, step.x, value.x, r.tl.x, r.br.x);
    axis(getHeight(), range.y, step.y, value.y, r.tl.y, r.br.y);
    return r;
}

bool WSlider2D::change(const Point& newValue) { return setValue(newValue) && valueChanged(this); }

void WSlider2D::detach() {
    dragging = false;
    hovered = false;
    Widget::detach();
}

void WSlider2D::setEnabled(bool on) {
    if (!on)
        dragging = hovered = false;
    Widget::setEnabled(on);
}

bool WSlider2D::mouseMove(const Point& position, Widget* origin) {
    if (origin == this) {
        setHovered(thumbRect().contains(position));
        if (dragging)
            return dragTo(position - grip);
    }
    return Widget::mouseMove(position, origin);
}

bool WSlider2D::dragTo(const Point& corner) {
    const Rect thumb = thumbRect();
    const Point room = getSize() - thumb.size();
    change({room.x > 0 ? scaleDiv(corner.x, range.x, room.x) : value.x,
            room.y > 0 ? scaleDiv(corner.y, range.y, room.y) : value.y});
    return true;
}

bool WSlider2D::mouseDown(int button, Widget* origin) {
    const WidgetWatch self(this);
    const bool used = Widget::mouseDown(button, origin);
    if (!self.alive() || origin != this || button != 0 || !isEnabled())
        return used;
    const Rect thumb = thumbRect();
    if (thumb.contains(mousePos)) {
        dragging = true;
        grip = mousePos - thumb.tl;
        repaint();
        return used;
    }
    const auto towards = [](int at, int low, int high) { return at < low ? -1 : at >= high ? 1 : 0; };
    change(value + Point(towards(mousePos.x, thumb.tl.x, thumb.br.x) * step.x,
                         towards(mousePos.y, thumb.tl.y, thumb.br.y) * step.y));
    return true;
}

bool WSlider2D::mouseUp(int button, Widget* origin) {
    if (origin == this && button == 0 && dragging) {
        dragging = false;
        repaint();
    }
    return Widget::mouseUp(button, origin);
}

bool WSlider2D::mouseExit(Widget* origin) {
    if (origin == this)
        setHovered(false);
    return Widget::mouseExit(origin);
}

void WSlider2D::setHovered(bool on) {
    if (on == hovered)
        return;
    hovered = on;
    repaint();
}

void WSlider2D::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    fill(pb, getRect(), themeColour("inactiveBg", look.canvas));
    const Rect thumb = thumbRect();
    const FaceState state = !isEnabled()          ? FaceState::Disabled
                            : hovered || dragging ? FaceState::Hover
                                                  : FaceState::Normal;
    drawFace(pb, thumb.expandBy(-1), state);
    drawBevel(pb, thumb, /*sunken=*/false, /*thin=*/true);
}

WSlider::WSlider(WLayout* layout, bool vertical_) : WSlider2D(layout), vertical(vertical_) {}

Point WSlider::along(int amount) const { return vertical ? Point(0, amount) : Point(amount, 0); }

void WSlider::setRange1(int newRange) { setRange(along(newRange)); }

void WSlider::setStep1(int newStep) { setStep(along(newStep)); }

bool WSlider::setValue1(int newValue) { return setValue(along(newValue)); }

int WSlider::getRange1() const { return vertical ? getRange().y : getRange().x; }

int WSlider::getStep1() const { return vertical ? getStep().y : getStep().x; }

int WSlider::getValue1() const { return vertical ? getValue().y : getValue().x; }

void WSlider::paint(rfb::FullFramePixelBuffer& pb) {
    WSlider2D::paint(pb);
    // One line against the content, and three grip lines across the thumb where there is room.
    const WStyle& look = getStyle();
    const Rect edge = vertical ? Rect(0, 0, 1, getHeight()) : Rect(0, 0, getWidth(), 1);
    const Rect thumb = thumbRect();
    const Rect before(edge.tl, vertical ? Point(1, thumb.tl.y) : Point(thumb.tl.x, 1));
    const Rect after(vertical ? Point(0, thumb.br.y) : Point(thumb.br.x, 0), edge.br);
    for (const Rect& part : {before, after})
        fill(pb, part, themeColour("inactiveBd", look.bevelShadow));
    if ((vertical ? thumb.height() : thumb.width()) < 16)
        return;
    const Point middle(thumb.tl.x + thumb.width() / 2, thumb.tl.y + thumb.height() / 2);
    for (int i = -3; i <= 3; i += 3) {
        const Rect line =
            vertical ? Rect::xywh(middle.x - 3, middle.y + i, 6, 1) : Rect::xywh(middle.x + i, middle.y - 3, 1, 6);
        fill(pb, line, look.bevelDark);
    }
}

} // namespace wvw
