#include "hxutil/BorderImage.h"

#include "hxutil/Scaler.h"

namespace hxutil {
namespace {

/// Composes `from` of the source over `to` of the target, stretched if their sizes differ, as far as it lies in `clip`.
/// Only what is visible is scaled.
void drawPiece(const rfb::PixelBuffer& source, const rfb::Rect& from, rfb::WritablePixelBuffer& target,
               const rfb::Rect& to, const rfb::Rect& clip, rfb::ComposeOp op) {
    const rfb::Rect visible = to.intersect(clip);
    if (visible.isEmpty() || from.isEmpty())
        return;
    if (from.size() == to.size()) {
        rfb::compose(target, visible.tl, source, visible.translate(from.tl - to.tl), op);
        return;
    }
    const rfb::SubPixelBuffer piece(source, from, {});
    Scaler scaler;
    scaler.setSource(&piece);
    scaler.setPf(source.getPf(), source.getColourMap());
    scaler.setDstSize(to.size());
    rfb::ManagedPixelBuffer stretched(source.getPf(), visible.width(), visible.height());
    stretched.setColourMap(source.getColourMap());
    int stride;
    uint8_t* pixels = stretched.getPixelsRW(stretched.getRect(), &stride);
    scaler.getImage(pixels, visible.translate(-to.tl), stride);
    rfb::compose(target, visible.tl, stretched, stretched.getRect(), op);
}

/// Whether two borders lie within a length and leave a middle.
bool leavesMiddle(int near, int far, int length) { return near >= 0 && far >= 0 && near < length - far; }

} // namespace

void drawBorderImage(const BorderInsets& insets, const rfb::PixelBuffer& source, rfb::WritablePixelBuffer& target,
                     const rfb::Rect& rect, rfb::ComposeOp op) {
    const rfb::Rect& s = source.getRect();
    if (!leavesMiddle(insets.left, insets.right, s.width()) || !leavesMiddle(insets.top, insets.bottom, s.height()))
        return;
    const rfb::Rect clip = rect.intersect(target.getRect()); // corners may be larger than the rectangle
    const int fromX[] = {s.tl.x, s.tl.x + insets.left, s.br.x - insets.right, s.br.x};
    const int fromY[] = {s.tl.y, s.tl.y + insets.top, s.br.y - insets.bottom, s.br.y};
    const int toX[] = {rect.tl.x, rect.tl.x + insets.left, rect.br.x - insets.right, rect.br.x};
    const int toY[] = {rect.tl.y, rect.tl.y + insets.top, rect.br.y - insets.bottom, rect.br.y};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            drawPiece(source, {fromX[column], fromY[row], fromX[column + 1], fromY[row + 1]}, target,
                      {toX[column], toY[row], toX[column + 1], toY[row + 1]}, clip, op);
}

} // namespace hxutil
