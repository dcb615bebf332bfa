#include "wvw/WCanvas.h"

#include "rfb/PixelBuffer.h"

namespace wvw {

void WCanvas::paint(rfb::FullFramePixelBuffer& pb) {
    paintBackground(pb, getStyle().canvas);
    paintChildren(pb);
}

} // namespace wvw
