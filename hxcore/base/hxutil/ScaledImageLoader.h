// An image loader at another size.
#pragma once

#include "plat/NonCopyable.h"
#include "rfb/ImageLoader.h"

namespace hxutil {

/// Renders the image of another loader, scaled.
class ScaledImageLoader : public rfb::ImageLoader, private plat::NonCopyable {
public:
    ScaledImageLoader(rfb::ImageLoader* loader, rfb::Point size); ///< loader is borrowed; no size of 0

    // rfb::ImageLoader
    rfb::Point getSize() const override { return size; }
    const rfb::PixelFormat& getPf() const override { return il->getPf(); }
    void render(rfb::WritablePixelBuffer* pb, rfb::Point position) override;

private:
    rfb::ImageLoader* il;
    rfb::Point size;
};

} // namespace hxutil
