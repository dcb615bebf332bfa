#include "wvw/WDiscreteSlider.h"

#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"
#include "rfb/keySymbols.h"

#include <algorithm>
#include <cstdint>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

constexpr int thumbWidthUnits = 22;
constexpr int longestThumbUnits = 40;
constexpr int trackUnits = 12;
constexpr int tickGapUnits = 4;
constexpr int tickLengthUnits = 12;
constexpr int tickWidthUnits = 2;
constexpr int preferredLengthUnits = 20;
constexpr int preferredAcrossUnits = 52;
constexpr int focusRoomUnits = 2; // on either side across

int px(int units) { return std::max(1, hxutil::scaled(units)); }

} // namespace

WDiscreteSlider::WDiscreteSlider(WLayout* layout, bool vertical_) : WSlider(layout, vertical_) {}

Rect WDiscreteSlider::onAxis(int from, int to, int acrossFrom, int acrossTo) const {
    return isVertical() ? Rect(acrossFrom, from, acrossTo, to) : Rect(from, acrossFrom, to, acrossTo);
}

int WDiscreteSlider::length() const { return isVertical() ? getHeight() : getWidth(); }

int WDiscreteSlider::thumbLength() const {
    const int room = isVertical() ? getWidth() : getHeight();
    return std::clamp(room - px(tickGapUnits) - px(tickLengthUnits) - 2 * px(focusRoomUnits), 0, px(longestThumbUnits));
}

int WDiscreteSlider::across() const {
    const int room = isVertical() ? getWidth() : getHeight();
    return std::max(0, (room - thumbLength() - px(tickGapUnits) - px(tickLengthUnits)) / 2);
}

int WDiscreteSlider::thumbAt(int position) const {
    const int64_t room = std::max(0, length() - px(thumbWidthUnits));
    const int last = std::max(1, getRange1());
    return static_cast<int>((room * position + last / 2) / last);
}

Rect WDiscreteSlider::thumbRect() const {
    const int from = thumbAt(getValue1());
    return onAxis(from, from + px(thumbWidthUnits), across(), across() + thumbLength());
}

Point WDiscreteSlider::getPreferredSize() {
    const Point flat(px(preferredLengthUnits), px(preferredAcrossUnits));
    return isVertical() ? Point(flat.y, flat.x) : flat;
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
    const int track = px(trackUnits);
    const int overhang = px(thumbWidthUnits) / 2 - 2;
    const Rect groove = onAxis(overhang, length() - overhang, middle - track / 2, middle - track / 2 + track);
    fill(pb, groove.expandBy(-1), isEnabled() ? look.contentBg : look.canvas);
    drawBevel(pb, groove, /*sunken=*/true, /*thin=*/true);
    const int tickFrom = across() + thumbLength() + px(tickGapUnits);
    const int tickWidth = px(tickWidthUnits);
    const int inThumb = (px(thumbWidthUnits) - tickWidth) / 2;
    // Marks that would run into one another are left out.
    const bool dense = static_cast<int64_t>(getRange1()) * 2 * tickWidth > length();
    for (int64_t i = 0; i <= getRange1(); i += dense ? std::max(1, getRange1()) : 1) {
        const int from = thumbAt(static_cast<int>(i)) + inThumb;
        fill(pb, onAxis(from, from + tickWidth, tickFrom, tickFrom + px(tickLengthUnits)),
             isEnabled() ? look.text : look.disabled);
    }
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
