#include "hxutil/Scaler.h"

#include "hxutil/scaleRows.h"
#include "plat/Assert.h"
#include "plat/Exception.h"
#include "rfb/Colour.h"
#include "rfb/ColourMap.h"
#include "rfb/pixelAccess.h"

#include <algorithm>

namespace hxutil {

/// One call of an inner loop.
struct Scaler::Job {
    const uint8_t* src; // the pixel at sourceRect.tl
    int srcStride;      // in pixels, as dstStride
    rfb::Rect sourceRect;
    uint8_t* dst;
    int dstStride;
    rfb::Rect rect; // of the target
    Coords coords;
    int (*rowSums)[4]; // one for each column of rect, all zero before and after
    const rfb::PixelFormat* from;
    const rfb::PixelFormat* to;
    const rfb::ColourMap* fromMap;
    const rfb::ColourMap* toMap;
};

struct Scaler::Loops {
    // Kinds of format: how many channels are summed, how a pixel is taken apart and put together again.

    struct Rgb222 {
        static constexpr int channels = 3, srcBytes = 1, dstBytes = 1;
        static void unpack(const Job&, uint32_t p, int* c) { c[0] = p >> 4 & 3, c[1] = p >> 2 & 3, c[2] = p & 3; }
        static uint32_t pack(const Job&, const int* c) { return static_cast<uint32_t>(c[0] << 4 | c[1] << 2 | c[2]); }
    };

    struct Rgb565 {
        static constexpr int channels = 3, srcBytes = 2, dstBytes = 2;
        static void unpack(const Job&, uint32_t p, int* c) { c[0] = p >> 11 & 31, c[1] = p >> 5 & 63, c[2] = p & 31; }
        static uint32_t pack(const Job&, const int* c) { return static_cast<uint32_t>(c[0] << 11 | c[1] << 5 | c[2]); }
    };

    /// Four channels of a byte each, wherever they lie, through the loops of scaleRows. Bits outside `mask` are 0.
    template <uint32_t mask>
    struct FourBytes {
        static constexpr int srcBytes = 4, dstBytes = 4;
        static constexpr uint32_t ink = mask;
    };

    template <int srcSize, int dstSize>
    struct Generic {
        static constexpr int channels = 4, srcBytes = srcSize, dstBytes = dstSize;
        static void unpack(const Job& job, uint32_t p, int* c) {
            const rfb::Colour colour = rfb::colourFromPixel(*job.from, p, job.fromMap);
            c[0] = colour.r, c[1] = colour.g, c[2] = colour.b, c[3] = colour.a;
        }
        static uint32_t pack(const Job& job, const int* c) {
            return rfb::pixelFromColour(*job.to, rfb::Colour(c[0], c[1], c[2], c[3]), job.toMap);
        }
    };

    /// Adds what one source row gives to each target pixel, `weight` being the part of the row that counts.
    template <class Kind>
    static void addRow(const Job& job, const uint8_t* row, int weight) {
        const int stepX = job.coords.srcSz.x;
        const int srcPixel = job.coords.dstSz.x; // the length of a source pixel
        const int64_t start = static_cast<int64_t>(job.rect.tl.x) * stepX;
        int x = static_cast<int>(start / srcPixel);
        int left = static_cast<int>((x + int64_t{1}) * srcPixel - start); // of source pixel x
        const uint8_t* p = row + static_cast<std::ptrdiff_t>(x - job.sourceRect.tl.x) * Kind::srcBytes;
        if constexpr (requires { Kind::ink; })
            addScaleRow({p, left, srcPixel, stepX, job.rect.width(), weight}, job.rowSums);
        else
            addPixels<Kind>(job, p, left, weight);
    }

    template <class Kind>
    static void addPixels(const Job& job, const uint8_t* p, int left, int weight) {
        const int stepX = job.coords.srcSz.x;
        const int srcPixel = job.coords.dstSz.x;
        const int recipX = 0x800000 / stepX;
        for (int i = 0; i < job.rect.width(); ++i) {
            int sum[4] = {};
            for (int need = stepX; need > 0;) {
                const int part = std::min(need, left);
                int c[4];
                Kind::unpack(job, rfb::loadPixel<Kind::srcBytes>(p), c);
                for (int k = 0; k < Kind::channels; ++k)
                    sum[k] += c[k] * part;
                need -= part;
                left -= part;
                if (left == 0) {
                    left = srcPixel;
                    p += Kind::srcBytes;
                }
            }
            for (int k = 0; k < Kind::channels; ++k)
                job.rowSums[i][k] += (((sum[k] + stepX / 2) * recipX) >> 23) * weight;
        }
    }

    template <class Kind>
    static void writeRow(const Job& job, uint8_t* out) {
        const int stepY = job.coords.srcSz.y;
        if constexpr (requires { Kind::ink; })
            writeScaleRow(out, stepY, job.rect.width(), Kind::ink, job.rowSums);
        else
            writePixels<Kind>(job, out, stepY);
    }

    template <class Kind>
    static void writePixels(const Job& job, uint8_t* out, int stepY) {
        const int recipY = 0x800000 / stepY;
        for (int i = 0; i < job.rect.width(); ++i, out += Kind::dstBytes) {
            int c[4];
            for (int k = 0; k < Kind::channels; ++k)
                c[k] = ((job.rowSums[i][k] + stepY / 2) * recipY) >> 23;
            rfb::storePixel<Kind::dstBytes>(out, Kind::pack(job, c));
            std::fill_n(job.rowSums[i], 4, 0);
        }
    }

    template <class Kind>
    static void scale(const Job& job) {
        const int stepY = job.coords.srcSz.y;
        const int srcPixel = job.coords.dstSz.y;
        for (int y = job.rect.tl.y; y < job.rect.br.y; ++y) {
            const int64_t start = static_cast<int64_t>(y) * stepY;
            int row = static_cast<int>(start / srcPixel);
            int left = static_cast<int>((row + int64_t{1}) * srcPixel - start);
            for (int need = stepY; need > 0; ++row, left = srcPixel) {
                const int part = std::min(need, left);
                addRow<Kind>(job,
                             job.src + static_cast<std::ptrdiff_t>(row - job.sourceRect.tl.y) * job.srcStride *
                                           Kind::srcBytes,
                             part);
                need -= part;
            }
            writeRow<Kind>(job,
                           job.dst + static_cast<std::ptrdiff_t>(y - job.rect.tl.y) * job.dstStride * Kind::dstBytes);
        }
    }

    static constexpr ScaleFn generic[4][4] = {
        {scale<Generic<1, 1>>, scale<Generic<1, 2>>, scale<Generic<1, 3>>, scale<Generic<1, 4>>},
        {scale<Generic<2, 1>>, scale<Generic<2, 2>>, scale<Generic<2, 3>>, scale<Generic<2, 4>>},
        {scale<Generic<3, 1>>, scale<Generic<3, 2>>, scale<Generic<3, 3>>, scale<Generic<3, 4>>},
        {scale<Generic<4, 1>>, scale<Generic<4, 2>>, scale<Generic<4, 3>>, scale<Generic<4, 4>>},
    };
};

void Scaler::setSource(const rfb::PixelBuffer* source_, bool configure) {
    source = source_;
    coords_.srcSz = source ? source->size() : rfb::Point();
    if (source && configure) {
        outPf = source->getPf();
        outMap = source->getColourMap();
    }
    select();
}

void Scaler::setDstSize(rfb::Point size) {
    coords_.dstSz = size;
    select();
}

void Scaler::setPf(const rfb::PixelFormat& pf, const rfb::ColourMap* map) {
    outPf = pf;
    outMap = map;
    select();
}

Scaler::ScaleFn Scaler::findFn(const rfb::PixelFormat& from, const rfb::PixelFormat& to) {
    if (!from.isValid() || !to.isValid())
        return nullptr;
    const bool alpha = from.trueColour && from.alphaMax;
    if (alpha != (to.trueColour && to.alphaMax) || (alpha && to.bpp != 32))
        return nullptr;
    if (from.trueColour && from.isNativeEndian() && from.equal(to)) {
        if (from.equal(rfb::pfRGB222()))
            return Loops::scale<Loops::Rgb222>;
        if (from.equal(rfb::pfRGB565()))
            return Loops::scale<Loops::Rgb565>;
        if (from.equal(rfb::pfRGB888()))
            return Loops::scale<Loops::FourBytes<0x00ffffff>>;
        if (from.equal(rfb::pfARGB8888()) || from.equal(rfb::pfABGR8888()))
            return Loops::scale<Loops::FourBytes<0xffffffff>>;
    }
    const int srcIdx = from.bytesPerPixel() - 1;
    const int dstIdx = to.bytesPerPixel() - 1;
    ASSERT(srcIdx >= 0 && srcIdx <= 3 && dstIdx >= 0 && dstIdx <= 3);
    return Loops::generic[srcIdx][dstIdx];
}

bool Scaler::canScale(const rfb::PixelFormat& from, const rfb::PixelFormat& to) { return findFn(from, to) != nullptr; }

void Scaler::select() {
    scaleFn = source ? findFn(source->getPf(), outPf) : nullptr;
    plainCopy = source && coords_.srcSz == coords_.dstSz && source->getPf().equal(outPf) &&
                (outPf.trueColour || outMap == source->getColourMap());
}

rfb::Rect Scaler::sourceRect(const rfb::Rect& r) const {
    const auto first = [](int target, int src, int dst) { return static_cast<int>(int64_t{target} * src / dst); };
    const auto last = [](int target, int src, int dst) {
        return static_cast<int>((int64_t{target} * src + dst - 1) / dst);
    };
    return {first(r.tl.x, coords_.srcSz.x, coords_.dstSz.x), first(r.tl.y, coords_.srcSz.y, coords_.dstSz.y),
            last(r.br.x, coords_.srcSz.x, coords_.dstSz.x), last(r.br.y, coords_.srcSz.y, coords_.dstSz.y)};
}

void Scaler::getImage(void* buffer, const rfb::Rect& r, int stride) const {
    if (r.isEmpty())
        return;
    if (!source)
        throw plat::Exception("Scaler error: no source");
    ASSERT(coords_.srcSz.x > 0 && coords_.srcSz.y > 0 && coords_.dstSz.x > 0 && coords_.dstSz.y > 0);
    ASSERT(rfb::Rect::at({}, coords_.dstSz).encloses(r));
    const rfb::Point origin = source->getRect().tl;
    if (plainCopy) {
        source->getImage(buffer, r.translate(origin), stride);
        return;
    }
    if (!scaleFn) {
        char from[rfb::PixelFormat::printSize], to[rfb::PixelFormat::printSize];
        throw plat::ExceptionFmt("Scaler error: %s to %s", source->getPf().print(from), outPf.print(to));
    }
    Job job;
    job.sourceRect = sourceRect(r);
    job.src = source->getPixelsR(job.sourceRect.translate(origin), &job.srcStride);
    job.dst = static_cast<uint8_t*>(buffer);
    job.dstStride = stride ? stride : r.width();
    job.rect = r;
    job.coords = coords_;
    if (rowSums.size() < static_cast<size_t>(r.width()))
        rowSums.resize(static_cast<size_t>(r.width()));
    job.rowSums = reinterpret_cast<int(*)[4]>(rowSums.data());
    job.from = &source->getPf();
    job.to = &outPf;
    job.fromMap = source->getColourMap();
    job.toMap = outMap;
    scaleFn(job);
}

} // namespace hxutil
