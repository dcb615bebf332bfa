// The paint helpers that widgets share.
#include "wvw/Widget.h"

#include "hxutil/TextLine.h"
#include "hxutil/metrics.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <algorithm>

namespace wvw {
namespace {

using rfb::Point;
using rfb::Rect;

constexpr int dotUnits = 2;

/// Dots and gaps of one length along the frame, in two colours by turns, clockwise from the upper left corner.
class DotPen {
public:
    DotPen(rfb::FullFramePixelBuffer& target, uint32_t first, uint32_t second) : pb(target), pixels{first, second} {}

    void along(Point from, Point step, int count) {
        for (int i = 0; i < count; ++i, ++phase, from = from + step) {
            const int dot = phase / length;
            if (dot % 2 == 0)
                rfb::setPixel(pb, from, pixels[dot / 2 % 2]);
        }
    }

private:
    rfb::FullFramePixelBuffer& pb;
    uint32_t pixels[2];
    int length = std::max(1, hxutil::scaled(dotUnits));
    int phase = 0;
};

void frameWithoutCorners(rfb::FullFramePixelBuffer& pb, const Rect& r, uint32_t pixel) {
    rfb::fillRect(pb, {r.tl.x + 1, r.tl.y, r.br.x - 1, r.tl.y + 1}, pixel);
    rfb::fillRect(pb, {r.tl.x + 1, r.br.y - 1, r.br.x - 1, r.br.y}, pixel);
    rfb::fillRect(pb, {r.tl.x, r.tl.y + 1, r.tl.x + 1, r.br.y - 1}, pixel);
    rfb::fillRect(pb, {r.br.x - 1, r.tl.y + 1, r.br.x, r.br.y - 1}, pixel);
}

} // namespace

uint32_t Widget::pixel(const rfb::PixelBuffer& pb, const rfb::Colour& colour) const {
    return rfb::pixelFromColour(pb.getPf(), colour, pb.getColourMap());
}

void Widget::fill(rfb::FullFramePixelBuffer& pb, const Rect& rect, const rfb::Colour& colour) const {
    rfb::fillRect(pb, rect, pixel(pb, colour));
}

void Widget::drawSelected(rfb::FullFramePixelBuffer& pb, const hxutil::TextLine& line, const Point& origin, size_t from,
                          size_t to) const {
    line.drawPart(pb, origin, pixel(pb, getStyle().selectionText), pixel(pb, getStyle().selectionBg), from, to);
}

void Widget::drawFocus(rfb::FullFramePixelBuffer& pb, const Rect& rect, bool dotted) const {
    if (rect.isEmpty())
        return;
    const uint32_t focus = pixel(pb, getStyle().focus);
    if (!dotted) {
        rfb::frameRect(pb, rect, focus);
        return;
    }
    const Point last = rect.br - Point(1, 1);
    DotPen pen(pb, focus, pixel(pb, colours::white));
    pen.along(rect.tl, {1, 0}, rect.width());
    if (rect.height() == 1)
        return;
    pen.along({last.x, rect.tl.y + 1}, {0, 1}, rect.height() - 1);
    if (rect.width() == 1)
        return;
    pen.along({last.x - 1, last.y}, {-1, 0}, rect.width() - 1);
    pen.along({rect.tl.x, last.y - 1}, {0, -1}, rect.height() - 2);
}

void Widget::drawBevel(rfb::FullFramePixelBuffer& pb, const Rect& rect, bool sunken, bool thin) const {
    if (rect.isEmpty())
        return;
    const WStyle& look = getStyle();
    const uint32_t dark = pixel(pb, look.bevelDark);
    const uint32_t light = pixel(pb, look.bevelLight);
    frameWithoutCorners(pb, rect, sunken && !thin ? light : dark);
    const Rect inner = rect.expandBy(-1);
    if (!thin && !inner.isEmpty())
        rfb::frameRect(pb, inner, sunken ? dark : light);
}

void Widget::drawFace(rfb::FullFramePixelBuffer& pb, const Rect& rect, FaceState state) const {
    const FaceColours face = getStyle().face(state);
    rfb::gradientFill(pb, rect, face.top, face.bottom);
}

} // namespace wvw
