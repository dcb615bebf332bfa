#include "ui/gtkwrap/Pixbuf.h"

#include "plat/Exception.h"

#include <cstring>

namespace gtkwrap {
namespace {
const Fn<c::Object*(int, c::Bool, int, int, int)> pixbufNew{Library::GdkPixbuf, "gdk_pixbuf_new"};
const Fn<uint8_t*(c::Object*)> pixbufGetPixels{Library::GdkPixbuf, "gdk_pixbuf_get_pixels"};
const Fn<int(c::Object*)> pixbufGetRowstride{Library::GdkPixbuf, "gdk_pixbuf_get_rowstride"};
} // namespace

bool Pixbuf::available() { return allAvailable(pixbufNew, pixbufGetPixels, pixbufGetRowstride); }

Pixbuf::Pixbuf(const uint8_t* rgba, int width, int height)
    : object(pixbufNew(/*colorspace=*/0, /*has_alpha=*/1, /*bits_per_sample=*/8, width, height)) {
    if (!object.get())
        throw plat::Exception("no memory for an image");
    uint8_t* pixels = pixbufGetPixels(object.get());
    const int stride = pixbufGetRowstride(object.get());
    const size_t rowBytes = static_cast<size_t>(width) * 4;
    for (int y = 0; y < height; ++y)
        memcpy(pixels + static_cast<ptrdiff_t>(y) * stride, rgba + static_cast<size_t>(y) * rowBytes, rowBytes);
}

} // namespace gtkwrap
