#include "hxutil/ScaledPixelBuffer.h"

#include "plat/Assert.h"
#include "rfb/Region.h"

#include <vector>

namespace hxutil {

void ScaledPixelBuffer::setSize(rfb::Point size) {
    rect = rfb::Rect::at({}, size);
    configured();
}

void ScaledPixelBuffer::setSource(const rfb::PixelBuffer* pb, bool configure) {
    source = pb;
    scaler.setSource(pb, configure);
    if (pb && configure) {
        format = pb->getPf();
        outMap = pb->getColourMap();
    }
    configured();
}

void ScaledPixelBuffer::setPF(const rfb::PixelFormat& pf, const rfb::ColourMap* map) {
    format = pf;
    outMap = map;
    scaler.setPf(pf, map);
    configured();
}

void ScaledPixelBuffer::configured() {
    scaler.setDstSize(rect.size());
    stale = true;
}

bool ScaledPixelBuffer::isDirect() const {
    return source && source->size() == rect.size() && source->getPf().equal(format) &&
           (format.trueColour || source->getColourMap() == outMap);
}

void ScaledPixelBuffer::draw(const rfb::Rect& r) const {
    if (r.isEmpty())
        return;
    int stride;
    uint8_t* pixels = cache.getPixelsRW(r, &stride);
    scaler.getImage(pixels, r, stride);
}

rfb::Rect ScaledPixelBuffer::targetRect(const rfb::Rect& sourceRect) const {
    if (!source || sourceRect.isEmpty())
        return {};
    const rfb::Rect r = sourceRect.intersect(source->getRect()).translate(-source->getRect().tl);
    const rfb::Point src = source->size();
    const rfb::Point dst = rect.size();
    if (r.isEmpty() || rect.isEmpty())
        return {};
    const auto first = [](int v, int from, int to) { return static_cast<int>(int64_t{v} * to / from); };
    const auto last = [](int v, int from, int to) { return static_cast<int>((int64_t{v} * to + from - 1) / from); };
    return {first(r.tl.x, src.x, dst.x), first(r.tl.y, src.y, dst.y), last(r.br.x, src.x, dst.x),
            last(r.br.y, src.y, dst.y)};
}

void ScaledPixelBuffer::update(const rfb::Region& region) {
    if (stale || isDirect())
        return; // all is drawn when it is next read
    std::vector<rfb::Rect> rects;
    region.get_rects(&rects);
    for (const rfb::Rect& r : rects)
        draw(targetRect(r));
}

const uint8_t* ScaledPixelBuffer::getPixelsR(const rfb::Rect& r, int* stride) const {
    if (isDirect())
        return source->getPixelsR(r.translate(source->getRect().tl), stride);
    if (stale) {
        cache.setPF(format);
        cache.setSize(rect.width(), rect.height());
        draw(rect);
        stale = false;
    }
    return cache.getPixelsR(r, stride);
}

const rfb::ColourMap* ScaledPixelBuffer::getColourMap() const { return outMap; }

} // namespace hxutil
