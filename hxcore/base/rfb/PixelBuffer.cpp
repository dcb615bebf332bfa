#include "rfb/PixelBuffer.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace rfb {
namespace {

constexpr size_t maxBytes = size_t{1} << 30;
constexpr std::align_val_t cacheLine{64};

void requireInside(const Rect& r, const Rect& bounds, const char* function) {
    if (bounds.encloses(r))
        return;
    char inner[64], outer[64];
    std::snprintf(inner, sizeof inner, "%d,%d to %d,%d", r.tl.x, r.tl.y, r.br.x, r.br.y);
    std::snprintf(outer, sizeof outer, "%d,%d to %d,%d", bounds.tl.x, bounds.tl.y, bounds.br.x, bounds.br.y);
    throw plat::ExceptionFmt("%s out of bounds: %s outside %s", function, inner, outer);
}

size_t bytesFor(const PixelFormat& pf, const Rect& r) {
    return static_cast<size_t>(r.width()) * static_cast<size_t>(r.height()) * static_cast<size_t>(pf.bytesPerPixel());
}

} // namespace

void PixelBuffer::getImage(void* buffer, const Rect& r, int stride) const {
    ASSERT(rect.encloses(r));
    int sourceStride;
    const uint8_t* source = getPixelsR(r, &sourceStride);
    copyRect(buffer, source, r.size(), format.bytesPerPixel(), sourceStride, stride ? stride : r.width());
}

FullFramePixelBuffer::FullFramePixelBuffer(const PixelFormat& pf, const Rect& r, uint8_t* pixels, int strideInPixels,
                                           const ColourMap* map)
    : WritablePixelBuffer(pf, r), data(pixels), strideP(strideInPixels), colourMap(map) {}

FullFramePixelBuffer::FullFramePixelBuffer(FullFramePixelBuffer& whole, const Rect& part, Point newTl)
    : WritablePixelBuffer(whole.format, Rect()), data(whole.data), strideP(whole.strideP), colourMap(whole.colourMap) {
    const Rect cut = part.intersect(whole.rect);
    rect = cut.isEmpty() ? Rect(newTl, newTl) : cut.translate(newTl - part.tl);
    if (!cut.isEmpty()) {
        int stride;
        data = whole.getPixelsRW(cut, &stride);
    }
}

const uint8_t* FullFramePixelBuffer::getPixelsR(const Rect& r, int* stride) const {
    requireInside(r, rect, "getPixelsR");
    *stride = strideP;
    return data + ((r.tl.y - rect.tl.y) * static_cast<std::ptrdiff_t>(strideP) + (r.tl.x - rect.tl.x)) *
                      format.bytesPerPixel();
}

uint8_t* FullFramePixelBuffer::getPixelsRW(const Rect& r, int* stride) {
    requireInside(r, rect, "getPixelsRW");
    *stride = strideP;
    return data + ((r.tl.y - rect.tl.y) * static_cast<std::ptrdiff_t>(strideP) + (r.tl.x - rect.tl.x)) *
                      format.bytesPerPixel();
}

ManagedPixelBuffer::ManagedPixelBuffer(const PixelFormat& pf, int width, int height) {
    allocate(pf, Rect(0, 0, std::max(width, 0), std::max(height, 0)));
}

void ManagedPixelBuffer::setPF(const PixelFormat& pf) { allocate(pf, rect); }

void ManagedPixelBuffer::setSize(int width, int height) {
    allocate(format, Rect(0, 0, std::max(width, 0), std::max(height, 0)));
}

void ManagedPixelBuffer::Unaligner::operator()(uint8_t* bytes) const { ::operator delete[](bytes, cacheLine); }

size_t ManagedPixelBuffer::sizeBytes() const { return bytesFor(format, rect); }

void ManagedPixelBuffer::allocate(const PixelFormat& pf, const Rect& r) {
    ASSERT(pf.isValid());
    const size_t needed = bytesFor(pf, r);
    if (needed > maxBytes)
        throw plat::ExceptionFmt("No memory for %d x %d pixels", r.width(), r.height());
    if (needed > capacity_) {
        block.reset(new (cacheLine) uint8_t[needed]());
        capacity_ = needed;
    }
    format = pf;
    rect = r;
    data = block.get();
    strideP = r.width();
    ASSERT(capacity_ >= sizeBytes());
}

SubPixelBuffer::SubPixelBuffer(const PixelBuffer& source_, const Rect& part, Point newTl)
    : PixelBuffer(source_.getPf(), Rect()), source(source_), offset(part.tl - newTl) {
    const Rect cut = part.intersect(source.getRect());
    rect = cut.isEmpty() ? Rect(newTl, newTl) : cut.translate(-offset);
}

const uint8_t* SubPixelBuffer::getPixelsR(const Rect& r, int* stride) const {
    requireInside(r, rect, "getPixelsR");
    return source.getPixelsR(r.translate(offset), stride);
}

void SubPixelBuffer::getImage(void* buffer, const Rect& r, int stride) const {
    ASSERT(rect.encloses(r));
    source.getImage(buffer, r.translate(offset), stride);
}

} // namespace rfb
