#include "ui/unix/StatusIconImage.h"

#include "hxutil/NamedImageLoader.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/String.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <cstddef>

namespace ui {
namespace {
plat::LogSrc log("StatusIconImage");

constexpr rfb::PixelFormat argb{32, 32, 255, 255, 255, 16, 8, 0, 255, 24};

// Draws an image at a size and place; false if there is none. Not kept, so that a link that names a million images
// costs no memory.
bool draw(rfb::WritablePixelBuffer& target, const char* name, int sizePx, rfb::Point position) {
    try {
        hxutil::NamedImageLoader loader(name, {sizePx, sizePx});
        rfb::ManagedPixelBuffer image(loader.getPf(), sizePx, sizePx);
        loader.render(&image, {});
        rfb::compose(target, position, image, image.getRect(), rfb::overOp);
        return true;
    } catch (const plat::Exception& failure) {
        log.error("%s", failure.what());
        return false;
    }
}

StatusIconImage fromBuffer(rfb::ManagedPixelBuffer& buffer, int sizePx) {
    rfb::compose(buffer, {}, buffer, buffer.getRect(), rfb::unpremultiplyOp);
    int stride = 0;
    const uint8_t* row = buffer.getPixelsR(buffer.getRect(), &stride);
    StatusIconImage image;
    image.sizePx = sizePx;
    image.rgba.reserve(static_cast<size_t>(sizePx) * static_cast<size_t>(sizePx) * 4);
    for (int y = 0; y < sizePx; ++y, row += static_cast<ptrdiff_t>(stride) * 4)
        for (int x = 0; x < sizePx; ++x) {
            const uint8_t* p = row + static_cast<ptrdiff_t>(x) * 4; // blue first in memory
            image.rgba.insert(image.rgba.end(), {p[2], p[1], p[0], p[3]});
        }
    return image;
}
} // namespace

std::vector<uint8_t> StatusIconImage::toArgb() const {
    std::vector<uint8_t> out;
    out.reserve(rgba.size());
    for (size_t i = 0; i + 3 < rgba.size(); i += 4)
        out.insert(out.end(), {rgba[i + 3], rgba[i], rgba[i + 1], rgba[i + 2]});
    return out;
}

StatusIconImage StatusIconImage::render(const char* imageName, const char* overlay, int sizePx) {
    rfb::ManagedPixelBuffer buffer(argb, sizePx, sizePx);
    if (!imageName || !*imageName || !draw(buffer, imageName, sizePx, {}))
        return {};
    const int half = sizePx / 2;
    if (overlay && *overlay)
        draw(buffer, plat::strFormat("status%s", overlay).c_str(), half, {0, sizePx - half});
    return fromBuffer(buffer, sizePx);
}

StatusIconImage StatusIconImage::load(const char* imageName, int sizePx) { return render(imageName, "", sizePx); }

} // namespace ui
