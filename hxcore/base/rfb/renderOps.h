// Drawing in software, into pixel buffers. Everything is clipped to the buffer.
#pragma once

#include "rfb/Colour.h"
#include "rfb/Rect.h"

#include <cstdint>

namespace rfb {

class PixelBuffer;
class Region;
class WritablePixelBuffer;

// Pixels are values of the buffer's own format, from pixelFromColour. Strides of pixels count pixels, strides of masks
// count bytes.

void fillRect(WritablePixelBuffer& pb, const Rect& rect, uint32_t pixel);
void frameRect(WritablePixelBuffer& pb, const Rect& rect, uint32_t pixel, int width = 1); ///< bars inside rect
void drawLine(WritablePixelBuffer& pb, Point from, Point to, uint32_t pixel);             ///< `to` is not drawn
void drawRoundFrame(WritablePixelBuffer& pb, const Rect& rect, int radius, uint32_t pixel);
void setPixel(WritablePixelBuffer& pb, Point point, uint32_t pixel);
void gradientFill(WritablePixelBuffer& pb, const Rect& rect, const Colour& top, const Colour& bottom); ///< vertical

/// Copies rows; the blocks do not overlap.
void copyRect(void* dst, const void* src, Point size, int bytesPerPixel, int srcStride, int dstStride);

/// Moves the pixels of a region by `delta` within the buffer; what came from or goes outside is left alone.
void copyRegion(WritablePixelBuffer& pb, const Region& region, Point delta);
void scrollRect(WritablePixelBuffer& pb, const Rect& rect, Point delta); ///< the same for one rectangle

enum class Orientation { None, Rotate, FlipVertical, Both }; // Rotate is by 180 degrees, so Both mirrors left and right
void transformRect(const void* src, void* dst, Point size, int bpp, int srcStride, int dstStride,
                   Orientation orientation);

/// Sets `pixel` where the mask has a 1. `bits` belong to rect.tl; `firstBit` of the first byte is the first column,
/// most significant bit first.
void monoBlit(WritablePixelBuffer& pb, const Rect& rect, uint32_t pixel, const uint8_t* bits, int strideBytes,
              int firstBit = 0);

/// Copies pixels of the buffer's format where the mask has a 1.
void maskedCopy(WritablePixelBuffer& pb, const Rect& rect, const void* src, const uint8_t* mask, int srcStride,
                int maskStrideBytes, int firstBit = 0);

/// Blends `colour` in through a mask of one byte a pixel. The colour is premultiplied if its alpha is below 255.
void alphaMask(WritablePixelBuffer& pb, const Rect& rect, const uint8_t* mask, int strideBytes, const Colour& colour);

/// Combines a source colour into a destination colour.
using ComposeOp = void (*)(Colour& d, const Colour& s);
void copyOp(Colour& d, const Colour& s);
void overOp(Colour& d, const Colour& s);     ///< premultiplied source over destination
void ghostOp(Colour& d, const Colour& s);    ///< half intensity: the look of what is disabled
void greyOp(Colour& d, const Colour& s);     ///< luminance
void greyOverOp(Colour& d, const Colour& s); ///< luminance, over
void premultiplyOp(Colour& d, const Colour& s);
void unpremultiplyOp(Colour& d, const Colour& s);

/// Combines `rect` of `src` into `dst`, its top left coming to lie at `position`. Both may be the same buffer if the
/// pixels stay in place.
void compose(WritablePixelBuffer& dst, Point position, const PixelBuffer& src, const Rect& rect, ComposeOp op);

} // namespace rfb
