#include "rfb/renderOps.h"

#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/pixelAccess.h"
#include "rfb/pixelRows.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace rfb {
namespace {

template <int bytes>
void fillRow(uint8_t* row, int width, uint32_t pixel) {
    if constexpr (bytes == 1) {
        std::memset(row, static_cast<int>(pixel & 255), static_cast<size_t>(width));
    } else if constexpr (bytes == 4) {
        pixelRows().fill(row, width, pixel);
    } else {
        for (uint8_t* end = row + width * bytes; row != end; row += bytes)
            storePixel<bytes>(row, pixel);
    }
}

/// Calls fn(x) for each 1 among `width` bits of a mask row that begins at bit `first`, most significant first.
template <class Fn>
void forEachBit(const uint8_t* bits, int first, int width, Fn&& fn) {
    bits += first / 8;
    for (int x = -(first % 8); x < width; x += 8) {
        unsigned byte = *bits++;
        if (x < 0)
            byte &= 0xffU >> -x;
        if (width - x < 8)
            byte &= 0xffU << (8 - (width - x));
        for (; byte; byte &= byte - 1)
            fn(x + 7 - __builtin_ctz(byte));
    }
}

void copyPixels(uint8_t* dst, const uint8_t* src, int width, int height, int bytes, std::ptrdiff_t dstStep,
                std::ptrdiff_t srcStep) {
    const size_t length = static_cast<size_t>(width) * static_cast<size_t>(bytes);
    for (int y = 0; y < height; ++y, dst += dstStep, src += srcStep)
        std::memmove(dst, src, length);
}

/// Plots the eight points of a step of a circle, each quadrant around its own centre.
struct CornerPlotter {
    WritablePixelBuffer& pb;
    Rect centres; // br inclusive
    uint32_t pixel;

    void plot(int x, int y) const {
        corner(x, y);
        corner(y, x);
    }
    void corner(int x, int y) const {
        setPixel(pb, {centres.tl.x - x, centres.tl.y - y}, pixel);
        setPixel(pb, {centres.br.x + x, centres.tl.y - y}, pixel);
        setPixel(pb, {centres.tl.x - x, centres.br.y + y}, pixel);
        setPixel(pb, {centres.br.x + x, centres.br.y + y}, pixel);
    }
};

void drawCorners(const CornerPlotter& plotter, int radius) {
    int d = 1 - radius;
    for (int x = 0, y = radius; x <= y; ++x) {
        plotter.plot(x, y);
        if (d < 0) {
            d += 2 * x + 3;
        } else {
            d += 2 * (x - y) + 5;
            --y;
        }
    }
}

} // namespace

void fillRect(WritablePixelBuffer& pb, const Rect& rect, uint32_t pixel) {
    const Rect r = rect.intersect(pb.getRect());
    if (r.isEmpty())
        return;
    int stride;
    uint8_t* row = pb.getPixelsRW(r, &stride);
    withPixelSize(pb.getPf().bytesPerPixel(), [&]<int bytes>() {
        for (int y = r.tl.y; y < r.br.y; ++y, row += static_cast<std::ptrdiff_t>(stride) * bytes)
            fillRow<bytes>(row, r.width(), pixel);
    });
    pb.commit(r);
}

void frameRect(WritablePixelBuffer& pb, const Rect& rect, uint32_t pixel, int width) {
    if (rect.isEmpty() || width <= 0)
        return;
    const int w = std::min(width, rect.width());
    const int h = std::min(width, rect.height());
    fillRect(pb, Rect(rect.tl.x, rect.tl.y, rect.br.x, rect.tl.y + h), pixel);
    fillRect(pb, Rect(rect.tl.x, rect.tl.y, rect.tl.x + w, rect.br.y), pixel);
    fillRect(pb, Rect(rect.tl.x, rect.br.y - h, rect.br.x, rect.br.y), pixel);
    fillRect(pb, Rect(rect.br.x - w, rect.tl.y, rect.br.x, rect.br.y), pixel);
}

void drawLine(WritablePixelBuffer& pb, Point from, Point to, uint32_t pixel) {
    const int dx = std::abs(to.x - from.x);
    const int dy = std::abs(to.y - from.y);
    const int stepX = to.x < from.x ? -1 : 1;
    const int stepY = to.y < from.y ? -1 : 1;
    if (dy == 0 || dx == 0) { // straight: a bar, without the pixel at `to`
        if (dx)
            fillRect(pb, Rect::xywh(stepX > 0 ? from.x : to.x + 1, from.y, dx, 1), pixel);
        else
            fillRect(pb, Rect::xywh(from.x, stepY > 0 ? from.y : to.y + 1, 1, dy), pixel);
        return;
    }
    const bool alongX = dx >= dy;
    const int major = alongX ? dx : dy;
    const int minor = alongX ? dy : dx;
    int error = 2 * minor - major;
    for (int i = 0; i < major; ++i) {
        setPixel(pb, from, pixel);
        const bool diagonal = error > 0;
        error += diagonal ? 2 * (minor - major) : 2 * minor;
        if (alongX || diagonal)
            from.x += stepX;
        if (!alongX || diagonal)
            from.y += stepY;
    }
}

void drawRoundFrame(WritablePixelBuffer& pb, const Rect& rect, int radius, uint32_t pixel) {
    if (rect.isEmpty())
        return;
    const int r = std::max(0, std::min({rect.height() / 2, rect.width() / 2, radius}));
    const Rect last(rect.tl.x, rect.tl.y, rect.br.x - 1, rect.br.y - 1);
    fillRect(pb, Rect(last.tl.x + r, last.tl.y, rect.br.x - r, last.tl.y + 1), pixel);
    fillRect(pb, Rect(last.tl.x + r, last.br.y, rect.br.x - r, rect.br.y), pixel);
    fillRect(pb, Rect(last.tl.x, last.tl.y + r, last.tl.x + 1, rect.br.y - r), pixel);
    fillRect(pb, Rect(last.br.x, last.tl.y + r, rect.br.x, rect.br.y - r), pixel);
    if (r == 1) {
        drawLine(pb, {last.tl.x, last.tl.y + 1}, {last.tl.x + 1, last.tl.y}, pixel);
        drawLine(pb, {last.br.x, last.tl.y + 1}, {last.br.x - 1, last.tl.y}, pixel);
        drawLine(pb, {last.tl.x, last.br.y - 1}, {last.tl.x + 1, last.br.y}, pixel);
        drawLine(pb, {last.br.x, last.br.y - 1}, {last.br.x - 1, last.br.y}, pixel);
    } else if (r > 1) {
        drawCorners({pb, Rect(last.tl.x + r, last.tl.y + r, last.br.x - r, last.br.y - r), pixel}, r);
    }
}

void setPixel(WritablePixelBuffer& pb, Point point, uint32_t pixel) {
    if (!pb.getRect().contains(point))
        return;
    int stride;
    const Rect r = Rect::xywh(point.x, point.y, 1, 1);
    storePixel(pb.getPixelsRW(r, &stride), pixel, pb.getPf().bytesPerPixel());
    pb.commit(r);
}

void gradientFill(WritablePixelBuffer& pb, const Rect& rect, const Colour& top, const Colour& bottom) {
    const Rect r = rect.intersect(pb.getRect());
    const int n = rect.height() - 1;
    for (int y = r.tl.y; y < r.br.y; ++y) {
        const int step = y - rect.tl.y;
        const auto blend = [&](int a, int b) { return n == 0 ? a : a + (b - a) * step / n; };
        const Colour colour(blend(top.r, bottom.r), blend(top.g, bottom.g), blend(top.b, bottom.b),
                            blend(top.a, bottom.a));
        fillRect(pb, Rect(r.tl.x, y, r.br.x, y + 1), pixelFromColour(pb.getPf(), colour, pb.getColourMap()));
    }
}

void copyRect(void* dst, const void* src, Point size, int bytesPerPixel, int srcStride, int dstStride) {
    const size_t rowBytes = static_cast<size_t>(std::max(size.x, 0)) * static_cast<size_t>(bytesPerPixel);
    auto* to = static_cast<uint8_t*>(dst);
    auto* from = static_cast<const uint8_t*>(src);
    if (rowBytes == 0)
        return;
    if (srcStride == size.x && dstStride == size.x && size.y > 0) {
        std::memcpy(to, from, rowBytes * static_cast<size_t>(size.y));
        return;
    }
    for (int y = 0; y < size.y; ++y) {
        std::memcpy(to, from, rowBytes);
        to += static_cast<std::ptrdiff_t>(dstStride) * bytesPerPixel;
        from += static_cast<std::ptrdiff_t>(srcStride) * bytesPerPixel;
    }
}

void scrollRect(WritablePixelBuffer& pb, const Rect& rect, Point delta) {
    const Rect to = rect.intersect(pb.getRect()).translate(delta).intersect(pb.getRect());
    if (to.isEmpty() || delta == Point())
        return;
    const Rect both = to.unionBoundary(to.translate(-delta));
    int stride;
    uint8_t* base = pb.getPixelsRW(both, &stride);
    const int bytes = pb.getPf().bytesPerPixel();
    const std::ptrdiff_t step = static_cast<std::ptrdiff_t>(stride) * bytes;
    const auto place = [&](Point p) { return base + (p.y - both.tl.y) * step + (p.x - both.tl.x) * bytes; };
    if (delta.y > 0) // the lowest rows first, before they are overwritten
        copyPixels(place({to.tl.x, to.br.y - 1}), place(Point(to.tl.x, to.br.y - 1) - delta), to.width(), to.height(),
                   bytes, -step, -step);
    else
        copyPixels(place(to.tl), place(to.tl - delta), to.width(), to.height(), bytes, step, step);
    pb.commit(to);
}

void copyRegion(WritablePixelBuffer& pb, const Region& region, Point delta) {
    const Rect rect = pb.getRect();
    ASSERT(Rect(RgnRect(rect)) == rect);
    std::vector<Rect> rects;
    region.get_rects(&rects, /*leftToRight=*/delta.x <= 0, /*topToBottom=*/delta.y <= 0);
    for (const Rect& r : rects)
        scrollRect(pb, r, delta);
}

void transformRect(const void* src, void* dst, Point size, int bpp, int srcStride, int dstStride,
                   Orientation orientation) {
    const bool mirror = orientation == Orientation::Rotate || orientation == Orientation::Both;
    const bool flip = orientation == Orientation::Rotate || orientation == Orientation::FlipVertical;
    withPixelSize(bpp / 8, [&]<int bytes>() {
        for (int y = 0; y < size.y; ++y) {
            const auto* from = static_cast<const uint8_t*>(src) +
                               static_cast<std::ptrdiff_t>(flip ? size.y - 1 - y : y) * srcStride * bytes;
            auto* to = static_cast<uint8_t*>(dst) + static_cast<std::ptrdiff_t>(y) * dstStride * bytes;
            if (!mirror) {
                std::memcpy(to, from, static_cast<size_t>(size.x) * bytes);
                continue;
            }
            for (int x = 0; x < size.x; ++x)
                storePixel<bytes>(to + x * bytes, loadPixel<bytes>(from + (size.x - 1 - x) * bytes));
        }
    });
}

void monoBlit(WritablePixelBuffer& pb, const Rect& rect, uint32_t pixel, const uint8_t* bits, int strideBytes,
              int firstBit) {
    const Rect r = rect.intersect(pb.getRect());
    if (r.isEmpty())
        return;
    int stride;
    uint8_t* row = pb.getPixelsRW(r, &stride);
    const uint8_t* mask = bits + static_cast<std::ptrdiff_t>(r.tl.y - rect.tl.y) * strideBytes;
    const int first = firstBit + r.tl.x - rect.tl.x;
    const int columns = (r.width() + 7) / 8;
    withPixelSize(pb.getPf().bytesPerPixel(), [&]<int bytes>() {
        if (bytes == 4 && first % 8 == 0 && r.tl.x + columns * 8 <= pb.getRect().br.x) { // whole eights are ours
            for (int i = 0; i < columns; ++i) {
                const int last = std::min(8, r.width() - i * 8);
                pixelRows().mono(row + i * 32, static_cast<std::ptrdiff_t>(stride) * bytes, mask + first / 8 + i,
                                 strideBytes, r.height(), static_cast<uint8_t>(0xff00 >> last), pixel);
            }
            return;
        }
        for (int y = r.tl.y; y < r.br.y; ++y) {
            forEachBit(mask, first, r.width(), [&](int x) { storePixel<bytes>(row + x * bytes, pixel); });
            row += static_cast<std::ptrdiff_t>(stride) * bytes;
            mask += strideBytes;
        }
    });
    pb.commit(r);
}

void maskedCopy(WritablePixelBuffer& pb, const Rect& rect, const void* src, const uint8_t* mask, int srcStride,
                int maskStrideBytes, int firstBit) {
    const Rect r = rect.intersect(pb.getRect());
    if (r.isEmpty())
        return;
    const Point skip = r.tl - rect.tl;
    int stride;
    uint8_t* row = pb.getPixelsRW(r, &stride);
    mask += static_cast<std::ptrdiff_t>(skip.y) * maskStrideBytes;
    withPixelSize(pb.getPf().bytesPerPixel(), [&]<int bytes>() {
        const auto* from =
            static_cast<const uint8_t*>(src) + (static_cast<std::ptrdiff_t>(skip.y) * srcStride + skip.x) * bytes;
        for (int y = r.tl.y; y < r.br.y; ++y) {
            forEachBit(mask, firstBit + skip.x, r.width(),
                       [&](int x) { storePixel<bytes>(row + x * bytes, loadPixel<bytes>(from + x * bytes)); });
            row += static_cast<std::ptrdiff_t>(stride) * bytes;
            from += static_cast<std::ptrdiff_t>(srcStride) * bytes;
            mask += maskStrideBytes;
        }
    });
    pb.commit(r);
}

} // namespace rfb
