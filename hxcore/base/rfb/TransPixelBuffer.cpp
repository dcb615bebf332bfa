#include "rfb/TransPixelBuffer.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "rfb/PixelTranslator.h"

#include <algorithm>
#include <cstdio>

namespace rfb {

TransPixelBuffer::TransPixelBuffer(bool channelTables16_) : channelTables16(channelTables16_) {}

TransPixelBuffer::~TransPixelBuffer() = default;

void TransPixelBuffer::setSource(const PixelBuffer* source_) {
    source = source_;
    rebuild();
}

void TransPixelBuffer::setPF(const PixelFormat& pf) {
    ASSERT(pf.isValid());
    format = pf;
    rebuild();
}

void TransPixelBuffer::setColourMap(const ColourMap* map) {
    outMap = map;
    rebuild();
}

void TransPixelBuffer::rebuild() {
    translator.reset();
    rect = source ? source->getRect() : Rect();
    if (source)
        translator = PixelTranslator::make(source->getPf(), source->getColourMap(), format, outMap, channelTables16);
}

const uint8_t* TransPixelBuffer::getPixelsR(const Rect& r, int* stride) const {
    if (!source || !rect.encloses(r)) {
        char inner[64], outer[64];
        std::snprintf(inner, sizeof inner, "%d,%d to %d,%d", r.tl.x, r.tl.y, r.br.x, r.br.y);
        std::snprintf(outer, sizeof outer, "%d,%d to %d,%d", rect.tl.x, rect.tl.y, rect.br.x, rect.br.y);
        throw plat::ExceptionFmt("getPixelsR out of bounds: %s outside %s", inner, outer);
    }
    if (!translator)
        return source->getPixelsR(r, stride);
    if (!cache.getPf().equal(format))
        cache.setPF(format);
    if (cache.width() < r.width() || cache.height() < r.height())
        cache.setSize(std::max(cache.width(), r.width()), std::max(cache.height(), r.height()));
    const Rect place = Rect::at({}, r.size());
    uint8_t* pixels = cache.getPixelsRW(place, stride);
    getImage(pixels, r, *stride);
    return pixels;
}

void TransPixelBuffer::getImage(void* buffer, const Rect& r, int stride) const {
    ASSERT(rect.encloses(r));
    if (r.isEmpty())
        return;
    if (!translator) {
        source->getImage(buffer, r, stride);
        return;
    }
    int sourceStride;
    const uint8_t* pixels = source->getPixelsR(r, &sourceStride);
    translator->translate(pixels, sourceStride, static_cast<uint8_t*>(buffer), stride ? stride : r.width(), r.size());
}

} // namespace rfb
