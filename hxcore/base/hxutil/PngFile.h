// Decoding of PNG images in memory.
#pragma once

#include "plat/Exception.h"
#include "plat/NonCopyable.h"
#include "rfb/ImageLoader.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace hxutil {

/// "name: what libpng says"
class PngException : public plat::Exception {
public:
    using plat::Exception::Exception;
};

/// A PNG image in memory that is borrowed. The constructor reads its header, render all of it.
///
/// Images without alpha give 32-bit RGB, others 32-bit ARGB, premultiplied if asked. Palettes become either; grey is
/// refused. At most 4096 x 4096 pixels. Throws PngException for what is no image.
class PngFile : public rfb::ImageLoader, private plat::NonCopyable {
public:
    PngFile(const void* data, size_t lenBytes, bool premultiply, const char* name = "<unknown>");
    ~PngFile() override;

    // rfb::ImageLoader
    rfb::Point getSize() const override { return size; }
    const rfb::PixelFormat& getPf() const override { return pf; }
    void render(rfb::WritablePixelBuffer* pb, rfb::Point position) override; ///< once

private:
    struct Reader;

    std::unique_ptr<Reader> reader;
    rfb::Point size;
    rfb::PixelFormat pf;
    bool premultiply;
};

} // namespace hxutil
