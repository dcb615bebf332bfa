#include "rfb/renderOps.h"

#include "rfb/PixelBuffer.h"
#include "rfb/pixelAccess.h"
#include "rfb/pixelRows.h"

#include <cstring>

namespace rfb {
namespace {

int luminance(const Colour& c) { return (19661 * c.r + 38666 * c.g + 7209 * c.b) >> 16; }

bool isRgb888(const PixelFormat& pf) {
    return pf.bpp == 32 && pf.trueColour && !pf.bigEndian && pf.redMax == 255 && pf.greenMax == 255 &&
           pf.blueMax == 255 && pf.redShift == 16 && pf.greenShift == 8 && pf.blueShift == 0;
}

/// 0xaarrggbb, or 0x00rrggbb without alpha.
bool isArgbOrRgb(const PixelFormat& pf) {
    return isRgb888(pf) && (pf.alphaMax == 0 || (pf.alphaMax == 255 && pf.alphaShift == 24));
}

bool sameLayout(const PixelFormat& dst, const PixelFormat& src) {
    return dst.bpp == 32 && src.bpp == 32 && dst.trueColour && src.trueColour && dst.equal(src);
}

uint32_t channel(uint32_t pixel, int shift) { return pixel >> shift & 255; }

/// d = (s * c + d * (255 - s.a * c / 255) + 127) / 255, each channel.
Colour throughMask(const Colour& s, const Colour& d, int c) {
    const int keep = 255 - (s.a == 255 ? c : div255(s.a * c));
    const auto mix = [&](int from, int onto) { return (from * c + onto * keep + 127) / 255; };
    return {mix(s.r, d.r), mix(s.g, d.g), mix(s.b, d.b), mix(s.a, d.a)};
}

void maskRowRgb888(uint8_t* dst, const uint8_t* mask, int width, const Colour& colour, uint32_t solid) {
    for (int x = 0; x < width; ++x, dst += 4) {
        const int c = mask[x];
        if (c == 0)
            continue;
        if (c == 255 && colour.a == 255) {
            storePixel<4>(dst, solid);
            continue;
        }
        const uint32_t d = loadPixel<4>(dst);
        const Colour under(static_cast<int>(channel(d, 16)), static_cast<int>(channel(d, 8)),
                           static_cast<int>(channel(d, 0)));
        const Colour m = throughMask(colour, under, c);
        storePixel<4>(dst,
                      static_cast<uint32_t>(m.r) << 16 | static_cast<uint32_t>(m.g) << 8 | static_cast<uint32_t>(m.b));
    }
}

} // namespace

void copyOp(Colour& d, const Colour& s) { d = s; }

void overOp(Colour& d, const Colour& s) {
    const int keep = 255 - s.a;
    d = Colour(s.r + div255(d.r * keep), s.g + div255(d.g * keep), s.b + div255(d.b * keep), s.a + div255(d.a * keep));
}

void ghostOp(Colour& d, const Colour& s) {
    const int keep = 255 - div255(s.a * 127);
    d = Colour(div255(s.r * 127 + d.r * keep), div255(s.g * 127 + d.g * keep), div255(s.b * 127 + d.b * keep),
               div255(s.a * 127 + d.a * keep));
}

void greyOp(Colour& d, const Colour& s) {
    const int grey = luminance(s);
    d = Colour(grey, grey, grey, s.a);
}

void greyOverOp(Colour& d, const Colour& s) {
    Colour grey;
    greyOp(grey, s);
    overOp(d, grey);
}

void premultiplyOp(Colour& d, const Colour& s) {
    d = Colour(div255(s.r * s.a), div255(s.g * s.a), div255(s.b * s.a), s.a);
}

void unpremultiplyOp(Colour& d, const Colour& s) {
    const auto divide = [&](int v) { return s.a == 0 ? 0 : (v * 255 + s.a / 2) / s.a; };
    d = Colour(divide(s.r), divide(s.g), divide(s.b), s.a);
}

void compose(WritablePixelBuffer& dst, Point position, const PixelBuffer& src, const Rect& rect, ComposeOp op) {
    const Point delta = position - rect.tl;
    const Rect r = rect.intersect(src.getRect()).translate(delta).intersect(dst.getRect());
    if (r.isEmpty())
        return;
    const PixelFormat& dstPf = dst.getPf();
    const PixelFormat& srcPf = src.getPf();
    int srcStride, dstStride;
    const uint8_t* from = src.getPixelsR(r.translate(-delta), &srcStride);
    uint8_t* to = dst.getPixelsRW(r, &dstStride);
    const int srcBytes = srcPf.bytesPerPixel();
    const int dstBytes = dstPf.bytesPerPixel();
    const bool over = op == overOp && isArgbOrRgb(srcPf) && isArgbOrRgb(dstPf);
    const bool copy = op == copyOp && sameLayout(dstPf, srcPf);
    const PixelRows& rows = pixelRows();
    const bool premultiply = op == premultiplyOp && dstPf.equal(pfARGB8888()) && srcPf.equal(pfARGB8888());
    for (int y = 0; y < r.height(); ++y) {
        if (copy) {
            std::memmove(to, from, static_cast<size_t>(r.width()) * 4);
        } else if (premultiply) {
            rows.premultiply(to, from, r.width());
        } else if (over) {
            rows.over(to, from, r.width(), srcPf.alphaMax ? 0 : 0xff000000, dstPf.alphaMax ? 0xffffffff : 0x00ffffff);
        } else {
            for (int x = 0; x < r.width(); ++x) {
                const Colour s = colourFromPixel(srcPf, loadPixel(from + x * srcBytes, srcBytes), src.getColourMap());
                Colour d = colourFromPixel(dstPf, loadPixel(to + x * dstBytes, dstBytes), dst.getColourMap());
                op(d, s);
                storePixel(to + x * dstBytes, pixelFromColour(dstPf, d, dst.getColourMap()), dstBytes);
            }
        }
        from += static_cast<std::ptrdiff_t>(srcStride) * srcBytes;
        to += static_cast<std::ptrdiff_t>(dstStride) * dstBytes;
    }
    dst.commit(r);
}

void alphaMask(WritablePixelBuffer& pb, const Rect& rect, const uint8_t* mask, int strideBytes, const Colour& colour) {
    const Rect r = rect.intersect(pb.getRect());
    if (r.isEmpty())
        return;
    int stride;
    uint8_t* row = pb.getPixelsRW(r, &stride);
    const PixelFormat& pf = pb.getPf();
    const int bytes = pf.bytesPerPixel();
    const bool fast = pf.equal(pfRGB888());
    const uint32_t solid = pixelFromColour(pf, colour, pb.getColourMap());
    mask += static_cast<std::ptrdiff_t>(r.tl.y - rect.tl.y) * strideBytes + (r.tl.x - rect.tl.x);
    for (int y = r.tl.y; y < r.br.y; ++y) {
        if (fast) {
            maskRowRgb888(row, mask, r.width(), colour, solid);
        } else {
            for (int x = 0; x < r.width(); ++x) {
                uint8_t* p = row + x * bytes;
                const Colour d = colourFromPixel(pf, loadPixel(p, bytes), pb.getColourMap());
                storePixel(p, pixelFromColour(pf, throughMask(colour, d, mask[x]), pb.getColourMap()), bytes);
            }
        }
        row += static_cast<std::ptrdiff_t>(stride) * bytes;
        mask += strideBytes;
    }
    pb.commit(r);
}

} // namespace rfb
