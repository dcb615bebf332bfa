#include "wvw/WCheckBox.h"

#include "wvw/WidgetWatch.h"

#include "hxutil/metrics.h"
#include "plat/String.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace wvw {
namespace {

using rfb::Point;
using rfb::Rect;

constexpr int boxUnits = 32;

/// Coverage of a square with round corners, `inset` inside one of `size` pixels; 255 is all of a pixel.
std::vector<uint8_t> roundMask(int size, int inset, int radius) {
    constexpr int fine = 4; // sub-pixels to a side
    const int low = inset * fine;
    const int high = (size - inset) * fine;
    const int r = radius * fine;
    const auto inside = [=](int x, int y) {
        if (x < low || y < low || x >= high || y >= high)
            return false;
        // Twice the distance from the centre of the nearest corner's circle, in sub-pixels, to the middle of this one.
        const int dx = 2 * std::max({low + r - x, x - (high - r) + 1, 0}) - 1;
        const int dy = 2 * std::max({low + r - y, y - (high - r) + 1, 0}) - 1;
        return dx < 0 || dy < 0 || dx * dx + dy * dy <= 4 * r * r;
    };
    std::vector<uint8_t> mask(static_cast<size_t>(size * size));
    for (int y = 0; y < size * fine; ++y) {
        for (int x = 0; x < size * fine; ++x) {
            if (inside(x, y))
                ++mask[static_cast<size_t>(y / fine * size + x / fine)];
        }
    }
    for (uint8_t& coverage : mask)
        coverage = static_cast<uint8_t>(coverage * 255 / (fine * fine));
    return mask;
}

WImage::Image stateImage(const char* prefix, const char* name) {
    return hxutil::NamedImagePixelBuffer::getThemed(plat::strFormat("%s-%s", prefix, name).c_str());
}

} // namespace

WCheckBox::WCheckBox(WLayout* layout, const char* imageName)
    : WButton(layout), kind(strcmp(imageName, "WCheck_dot") == 0     ? Kind::Dot
                            : strcmp(imageName, "WCheck_check") == 0 ? Kind::Check
                                                                     : Kind::Images),
      name(imageName) {
    loadImages();
}

void WCheckBox::loadImages() {
    if (kind != Kind::Images) {
        const int px = hxutil::scaled(boxUnits);
        images[1] = hxutil::NamedImagePixelBuffer::get(name.c_str(), {px, px});
        return;
    }
    images[0] = stateImage("off", name.c_str());
    images[1] = stateImage("on", name.c_str());
    images[2] = stateImage("ind", name.c_str());
}

void WCheckBox::styleChanged() {
    loadImages();
    WButton::styleChanged();
}

void WCheckBox::setState(State newState) {
    if (newState == state)
        return;
    state = newState;
    repaint();
    valueChanged(this);
}

void WCheckBox::setLit(bool on) {
    if (on == lit)
        return;
    lit = on;
    repaint();
}

void WCheckBox::setLabelled(bool on) {
    labelled = on;
    repaint();
}

void WCheckBox::pressedByUser() { setState(afterPress()); }

WCheckBox::State WCheckBox::afterPress() const { return isRadio() || state != State::On ? State::On : State::Off; }

Point WCheckBox::getPreferredSize() {
    return kind == Kind::Images ? images[0]->size() : Point(hxutil::scaled(boxUnits), hxutil::scaled(boxUnits));
}

void WCheckBox::paint(rfb::FullFramePixelBuffer& pb) {
    // While held it looks as it will be.
    const State shown = isPressed() ? afterPress() : state;
    if (kind == Kind::Images) {
        const WImage::Image& image = images[static_cast<int>(shown)];
        const Point room = getSize() - image->size();
        rfb::compose(pb, {room.x / 2, room.y / 2}, *image, image->getRect(), isEnabled() ? rfb::overOp : rfb::ghostOp);
    } else {
        paintBox(pb, shown);
    }
    if (hasFocus() && !labelled)
        drawFocus(pb, getRect(), /*dotted=*/true);
}

void WCheckBox::paintBox(rfb::FullFramePixelBuffer& pb, State shown) {
    const int px = std::min(getWidth(), getHeight());
    if (px < 4)
        return;
    const Point corner((getWidth() - px) / 2, (getHeight() - px) / 2);
    const Rect box = Rect::at(corner, {px, px});
    const int edge = std::max(1, px / 16);
    const int radius = kind == Kind::Dot ? (px - 2) / 2 : std::max(1, px * 3 / 16);
    rfb::alphaMask(pb, box, roundMask(px, 1, radius).data(), px, edgeColour(shown));
    rfb::alphaMask(pb, box, roundMask(px, 1 + edge, std::max(1, radius - edge)).data(), px, wellColour(shown));
    if (shown == State::Indeterminate) {
        fill(pb, Rect::xywh(corner.x + px / 4, corner.y + px / 2 - px / 16, px / 2, px / 8), colours::white);
    } else if (shown == State::On && images[1]) {
        const Point room = Point(px, px) - images[1]->size();
        rfb::compose(pb, corner + Point(room.x / 2, room.y / 2), *images[1], images[1]->getRect(), rfb::overOp);
    }
}

rfb::Colour WCheckBox::edgeColour(State shown) const {
    const WStyle& look = getStyle();
    if (!isEnabled())
        return shown == State::Off ? look.bevelDark : look.disabled;
    const bool accent = shown != State::Off || isHovered() || lit;
    return accent ? themeColour("customBigBtnBg", look.selectionBg) : look.bevelDark;
}

rfb::Colour WCheckBox::wellColour(State shown) const {
    const WStyle& look = getStyle();
    if (shown == State::Off)
        return isEnabled() ? look.contentBg : look.canvas;
    return isEnabled() ? themeColour("customBigBtnBg", look.selectionBg) : look.disabled;
}

} // namespace wvw
