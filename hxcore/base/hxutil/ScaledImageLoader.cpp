#include "hxutil/ScaledImageLoader.h"

#include "hxutil/Scaler.h"
#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"

namespace hxutil {

ScaledImageLoader::ScaledImageLoader(rfb::ImageLoader* loader, rfb::Point size_) : il(loader), size(size_) {}

void ScaledImageLoader::render(rfb::WritablePixelBuffer* pb, rfb::Point position) {
    ASSERT(pb->getPf().equal(il->getPf()));
    const rfb::Point natural = il->getSize();
    rfb::ManagedPixelBuffer whole(il->getPf(), natural.x, natural.y);
    il->render(&whole, {});
    Scaler scaler;
    scaler.setSource(&whole);
    scaler.setDstSize(size);
    const rfb::Rect r = rfb::Rect::at(position, size);
    int stride;
    uint8_t* pixels = pb->getPixelsRW(r, &stride);
    scaler.getImage(pixels, rfb::Rect::at({}, size), stride);
    pb->commit(r);
}

} // namespace hxutil
