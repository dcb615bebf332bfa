#include "wvw/WCanvas.h"

#include "rfb/PixelBuffer.h"

namespace wvw {

void WCanvas::paint(rfb::FullFramePixelBuffer& pb) {
    fill(pb, getRect(), getStyle().canvas);
    paintChildren(pb);
}

} // namespace wvw
