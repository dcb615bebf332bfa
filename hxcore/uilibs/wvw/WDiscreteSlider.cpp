#include "wvw/WDiscreteSlider.h"

#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <cstdint>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

// Pixels.
constexpr int thumbWidth = 11;
constexpr int longestThumb = 20;
constexpr int trackThickness = 6;
constexpr int tickGap = 2;
constexpr int tickLength = 6;
constexpr int preferredLength = 10;
constexpr int preferredAcross = 26;

} // namespace

WDiscreteSlider::WDiscreteSlider(WLayout* layout, bool vertical_) : WSlider(layout, vertical_) {}

Rect WDiscreteSlider::onAxis(int from, int to, int acrossFrom, int acrossTo) const {
    return isVertical() ? Rect(acrossFrom, from, acrossTo, to) : Rect(from, acrossFrom, to, acrossTo);
}

int WDiscreteSlider::length() const { return isVertical() ? getHeight() : getWidth(); }

int WDiscreteSlider::thumbLength() const {
    const int room = isVertical() ? getWidth() : getHeight();
    return std::clamp(room - tickGap - tickLength, 0, longestThumb);
}

int WDiscreteSlider::across() const {
    const int room = isVertical() ? getWidth() : getHeight();
    return std::max(0, (room - thumbLength() - tickGap - tickLength) / 2);
}

int WDiscreteSlider::tickAt(int position) const {
    const int64_t room = std::max(0, length() - thumbWidth);
    const int last = std::max(1, getRange1());
    return thumbWidth / 2 + static_cast<int>((room * position + last / 2) / last);
}

Rect WDiscreteSlider::thumbRect() const {
    const int from = tickAt(getValue1()) - thumbWidth / 2;
    return onAxis(from, from + thumbWidth, across(), across() + thumbLength());
}

Point WDiscreteSlider::getPreferredSize() {
    return isVertical() ? Point(preferredAcross, preferredLength) : Point(preferredLength, preferredAcross);
}

bool WDiscreteSlider::ownKey(uint32_t keysym) {
    if (!isEnabled())
        return false;
    const auto to = [this](int position) {
        change(isVertical() ? Point(0, position) : Point(position, 0));
        return true;
    };
    switch (keysym) {
    case key::Left:
    case key::Right:
        return !isVertical() && to(getValue1() + (keysym == key::Right ? 1 : -1));
    case key::Up:
    case key::Down:
        return isVertical() && to(getValue1() + (keysym == key::Down ? 1 : -1));
    case key::PageUp:
    case key::PageDown:
        return to(getValue1() + (keysym == key::PageDown ? 1 : -1) * getStep1());
    case key::Home:
        return to(0);
    case key::End:
        return to(getRange1());
    default:
        return false;
    }
}

bool WDiscreteSlider::focusChanged(bool backward, Widget* origin) {
    if (origin == this)
        repaint();
    return WSlider::focusChanged(backward, origin);
}

void WDiscreteSlider::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const int middle = across() + thumbLength() / 2;
    const Rect track = onAxis(thumbWidth / 2 - 2, length() - thumbWidth / 2 + 2, middle - trackThickness / 2,
                              middle + trackThickness / 2);
    fill(pb, track.expandBy(-1), isEnabled() ? look.contentBg : look.canvas);
    drawBevel(pb, track, /*sunken=*/true, /*thin=*/true);
    const int tickFrom = across() + thumbLength() + tickGap;
    // Marks that would run into one another are left out.
    const bool dense = static_cast<int64_t>(getRange1()) * 2 > length();
    for (int i = 0; i <= getRange1(); i += dense ? std::max(1, getRange1()) : 1)
        fill(pb, onAxis(tickAt(i), tickAt(i) + 1, tickFrom, tickFrom + tickLength),
             isEnabled() ? look.text : look.disabled);
    const Rect thumb = thumbRect();
    const FaceState state = !isEnabled()   ? FaceState::Disabled
                            : isDragging() ? FaceState::Pressed
                            : isHovered()  ? FaceState::Hover
                                           : FaceState::Normal;
    const bool flat = isDragging() || !isEnabled();
    drawFace(pb, thumb.expandBy(flat ? -1 : -2), state);
    drawBevel(pb, thumb, /*sunken=*/false, flat);
    if (hasFocus())
        drawFocus(pb, getRect(), /*dotted=*/true);
}

} // namespace wvw
