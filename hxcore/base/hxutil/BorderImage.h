// Nine-slice images.
#pragma once

#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

namespace hxutil {

/// Widths of an image's border, in its own pixels.
struct BorderInsets {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

/// An image whose corners keep their size wherever it is drawn.
class BorderImage : public rfb::ManagedPixelBuffer {
public:
    BorderImage(const rfb::PixelFormat& pf, int width, int height, const BorderInsets& insets_)
        : rfb::ManagedPixelBuffer(pf, width, height), insets(insets_) {}

    BorderInsets insets;
};

/// Draws `source` over `rect`: corners as they are, edges stretched along their length, the middle both ways. Nothing
/// is drawn outside `rect`, nor if the source has no middle or an inset is negative.
void drawBorderImage(const BorderInsets& insets, const rfb::PixelBuffer& source, rfb::WritablePixelBuffer& target,
                     const rfb::Rect& rect, rfb::ComposeOp op);

} // namespace hxutil
