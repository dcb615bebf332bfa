#include "wvw/WArrow.h"

#include "rfb/PixelBuffer.h"

#include <algorithm>

namespace wvw {

using rfb::Point;
using rfb::Rect;

WArrow::WArrow(WLayout* layout, Direction towards, const Point& preferred)
    : Widget(layout), direction(towards), preferredSize(preferred) {}

void WArrow::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    draw(*this, pb, getRect(), direction, isEnabled() ? look.text : look.disabled);
}

void WArrow::draw(const Widget& widget, rfb::FullFramePixelBuffer& pb, const Rect& rect, Direction towards,
                  const rfb::Colour& colour) {
    // Rows of 1, 3, 5 ... pixels: twice as wide as it is deep, so that both edges run at 45 degrees.
    const bool upright = towards == Direction::Up || towards == Direction::Down;
    const int across = upright ? rect.width() : rect.height();
    const int along = upright ? rect.height() : rect.width();
    const int depth = std::max(1, std::min((across + 1) / 2, along));
    const int start = (along - depth) / 2;
    const int middle = (across - 1) / 2;
    const bool growing = towards == Direction::Up || towards == Direction::Left;
    for (int i = 0; i < depth; ++i) {
        const int half = growing ? i : depth - 1 - i;
        const Rect line(middle - half, start + i, middle + half + 1, start + i + 1);
        const Rect turned(line.tl.y, line.tl.x, line.br.y, line.br.x);
        widget.fill(pb, (upright ? line : turned).translate(rect.tl), colour);
    }
}

} // namespace wvw
