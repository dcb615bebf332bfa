#include "hxutil/BorderImage.h"

#include "hxutil/Scaler.h"

namespace hxutil {
namespace {

/// Composes `from` of the source over `to` of the target, stretched if their sizes differ. Only what is visible is
/// scaled.
void drawPiece(const rfb::PixelBuffer& source, const rfb::Rect& from, rfb::WritablePixelBuffer& target,
               const rfb::Rect& to, rfb::ComposeOp op) {
    const rfb::Rect visible = to.intersect(target.getRect());
    if (visible.isEmpty() || from.isEmpty())
        return;
    if (from.size() == to.size()) {
        rfb::compose(target, to.tl, source, from, op);
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

} // namespace

void drawBorderImage(const BorderInsets& insets, const rfb::PixelBuffer& source, rfb::WritablePixelBuffer& target,
                     const rfb::Rect& rect, rfb::ComposeOp op) {
    const rfb::Rect& s = source.getRect();
    if (insets.left + insets.right >= s.width() || insets.top + insets.bottom >= s.height())
        return;
    const int fromX[] = {s.tl.x, s.tl.x + insets.left, s.br.x - insets.right, s.br.x};
    const int fromY[] = {s.tl.y, s.tl.y + insets.top, s.br.y - insets.bottom, s.br.y};
    const int toX[] = {rect.tl.x, rect.tl.x + insets.left, rect.br.x - insets.right, rect.br.x};
    const int toY[] = {rect.tl.y, rect.tl.y + insets.top, rect.br.y - insets.bottom, rect.br.y};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            drawPiece(source, {fromX[column], fromY[row], fromX[column + 1], fromY[row + 1]}, target,
                      {toX[column], toY[row], toX[column + 1], toY[row + 1]}, op);
}

} // namespace hxutil
