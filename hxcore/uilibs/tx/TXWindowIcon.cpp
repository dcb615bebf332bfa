#include "tx/TXWindowIcon.h"

#include "hxutil/NamedImageLoader.h"
#include "plat/LogSrc.h"
#include "rfb/Colour.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <cstring>

namespace tx {
namespace {

plat::LogSrc log("TXWindowIcon");
constexpr size_t capacity = 2564; // two images of 16x16 and 48x48 with their sizes
constexpr int sizes[] = {16, 48};
static_assert(16 * 16 + 48 * 48 + 4 == capacity);

std::vector<long>& icon() {
    static std::vector<long> pixels;
    return pixels;
}

long iconPixel(const rfb::PixelFormat& pf, uint32_t pixel) {
    const rfb::Colour premultiplied = rfb::colourFromPixel(pf, pixel);
    rfb::Colour c = premultiplied;
    if (pf.alphaMax != 0)
        rfb::unpremultiplyOp(c, premultiplied); // the hint wants plain colours
    const unsigned value = static_cast<unsigned>(c.a) << 24 | static_cast<unsigned>(c.r) << 16 |
                           static_cast<unsigned>(c.g) << 8 | static_cast<unsigned>(c.b);
    return static_cast<long>(value);
}

void appendImage(std::vector<long>& out, const char* name, int size) {
    hxutil::NamedImageLoader loader(name, {size, size});
    rfb::ManagedPixelBuffer image(loader.getPf(), size, size);
    loader.render(&image, {0, 0});
    out.push_back(size);
    out.push_back(size);
    int stride = 0;
    const uint8_t* pixels = image.getPixelsR(image.getRect(), &stride);
    const int bytes = image.getPf().bytesPerPixel();
    for (int y = 0; y < size; y++) {
        for (int x = 0; x < size; x++) {
            uint32_t pixel = 0;
            std::memcpy(&pixel, pixels + (static_cast<ptrdiff_t>(y) * stride + x) * bytes, static_cast<size_t>(bytes));
            out.push_back(iconPixel(image.getPf(), pixel));
        }
    }
}

} // namespace

bool setWindowIcon(const char* imageName) {
    std::vector<long> pixels;
    pixels.reserve(capacity);
    try {
        for (const int size : sizes)
            appendImage(pixels, imageName, size);
    } catch (const plat::Exception& e) {
        log.info("no window icon: %s", e.what());
        pixels.clear();
    }
    icon() = std::move(pixels);
    return !icon().empty();
}

const std::vector<long>& getWindowIcon() { return icon(); }

} // namespace tx
