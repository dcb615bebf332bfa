// Loading of named images from the built-in PNG files.
#pragma once

#include "hxutil/NamedImageFinder.h"
#include "plat/NonCopyable.h"
#include "rfb/ImageLoader.h"

#include <memory>

namespace hxutil {

class PngFile;

/// A named image at a size, premultiplied. Only the file that is used is decoded, by render.
class NamedImageLoader : public rfb::ImageLoader, public NamedImageFinder, private plat::NonCopyable {
public:
    /// A size of 0x0 is the natural one. Throws as NamedImageFinder::find, and PngException.
    NamedImageLoader(const char* name, rfb::Point size);
    ~NamedImageLoader() override;

    // rfb::ImageLoader
    rfb::Point getSize() const override { return size; }
    const rfb::PixelFormat& getPf() const override;
    void render(rfb::WritablePixelBuffer* pb, rfb::Point position) override;

    // NamedImageFinder
    bool tryName(const char* name) override;
    rfb::Point foundSize() const override;
    bool hasImage() const override { return png != nullptr; }

private:
    std::unique_ptr<PngFile> png;
    rfb::Point size;
};

} // namespace hxutil
