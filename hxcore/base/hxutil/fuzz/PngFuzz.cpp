// PNG images: decoded, premultiplied and scaled, or refused.
#include "hxutil/PngFile.h"
#include "plat/Exception.h"
#include "rfb/PixelBuffer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        hxutil::PngFile png(data, size, /*premultiply=*/true);
        // Large ones are only slow here: the limit itself has a test.
        if (png.getSize().x > 256 || png.getSize().y > 256)
            return 0;
        rfb::ManagedPixelBuffer pb(png.getPf(), png.getSize().x + 2, png.getSize().y + 1);
        png.render(&pb, {1, 1});
    } catch (const plat::Exception&) {
    }
    return 0;
}
