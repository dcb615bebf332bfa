#include "wvw/WScrollbar.h"

#include "rfb/PixelBuffer.h"

#include <algorithm>

namespace wvw {

using rfb::Point;
using rfb::Rect;

namespace {
constexpr unsigned firstRepeatMs = 300;
constexpr unsigned leastRepeatMs = 100;
} // namespace

WScrollbar::WScrollbar(WLayout* layout, bool vertical_, int arrowStep_)
    : WLayout(layout, /*routeMouse=*/true, /*propagateEnable=*/true), vertical(vertical_), arrowStep(arrowStep_),
      back(nullptr, vertical_ ? WArrow::Direction::Up : WArrow::Direction::Left),
      forth(nullptr, vertical_ ? WArrow::Direction::Down : WArrow::Direction::Right), slider(nullptr, vertical_),
      repeatTimer(this) {
    slider.setMinThumb(thickness);
    addChild(&back);
    addChild(&forth);
    addChild(&slider);
}

void WScrollbar::setRange(int newRange) { slider.setRange1(newRange); }

void WScrollbar::setPage(int newPage) { slider.setStep1(newPage); }

bool WScrollbar::setValue(int newValue) { return slider.setValue1(newValue); }

void WScrollbar::stepBy(int amount) {
    if (setValue(getValue() + amount))
        valueChanged(this);
}

Point WScrollbar::getPreferredSize() {
    return vertical ? Point(thickness, 3 * thickness) : Point(3 * thickness, thickness);
}

bool WScrollbar::sizeChanged(Widget* origin) {
    if (origin == this) {
        const int across = vertical ? getWidth() : getHeight();
        const int length = vertical ? getHeight() : getWidth();
        const int button = std::min(across, length / 2);
        const auto part = [&](int from, int to) {
            return vertical ? Rect(0, from, across, to) : Rect(from, 0, to, across);
        };
        setChildRect(&back, part(0, button));
        setChildRect(&slider, part(button, length - button));
        setChildRect(&forth, part(length - button, length));
    }
    return WLayout::sizeChanged(origin);
}

bool WScrollbar::valueChanged(Widget* origin) { return WLayout::valueChanged(origin == &slider ? this : origin); }

bool WScrollbar::activated(Widget* origin) {
    // The press has already moved it.
    return origin == &back || origin == &forth || WLayout::activated(origin);
}

bool WScrollbar::mouseDown(int button, Widget* origin) {
    const bool isArrow = origin == &back || origin == &forth;
    if (!isArrow || button != 0 || !isEnabled())
        return WLayout::mouseDown(button, origin);
    direction = origin == &back ? -1 : 1;
    intervalMs = firstRepeatMs;
    repeatTimer.start(intervalMs);
    stepBy(direction * arrowStep);
    return true;
}

bool WScrollbar::mouseUp(int button, Widget* origin) {
    if (button == 0)
        stopRepeat();
    return WLayout::mouseUp(button, origin);
}

void WScrollbar::stopRepeat() {
    direction = 0;
    repeatTimer.cancel();
}

bool WScrollbar::timerExpired(plat::Timer* timer) {
    if (timer != &repeatTimer)
        return WLayout::timerExpired(timer);
    const int end = direction < 0 ? 0 : getRange();
    if (!direction || getValue() == end)
        return false; // nothing more to do until the next press
    intervalMs = std::max(leastRepeatMs, intervalMs * 4 / 5);
    repeatTimer.start(intervalMs);
    // A button that the pointer has left waits for it to come back.
    if ((direction < 0 ? back : forth).isPressed())
        stepBy(direction * arrowStep);
    return false;
}

void WScrollbar::setEnabled(bool on) {
    if (!on)
        stopRepeat();
    WLayout::setEnabled(on);
}

void WScrollbar::setVisible(bool on) {
    if (!on)
        stopRepeat();
    WLayout::setVisible(on);
}

void WScrollbar::detach() {
    stopRepeat();
    WLayout::detach();
}

} // namespace wvw
