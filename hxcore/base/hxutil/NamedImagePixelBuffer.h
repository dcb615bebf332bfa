// Named images, decoded, scaled and kept.
#pragma once

#include "plat/SharedPtr.h"
#include "rfb/PixelBuffer.h"

namespace hxutil {

/// The pixels of a built-in image at one size, premultiplied. Kept for the life of the process: draw it with
/// rfb::compose and rfb::overOp. A missing or bad image is logged and empty, so it paints nothing.
class NamedImagePixelBuffer : public rfb::ManagedPixelBuffer {
public:
    using Ptr = plat::SharedPtr<NamedImagePixelBuffer>;

    /// Never null. `size` is in pixels; 0x0 means natural, at the current ppmm.
    static Ptr get(const char* name, rfb::Point size = {});
    static Ptr getThemed(const char* name, rfb::Point size = {}); ///< in dark mode "name_darkbg" if there is one
    static Ptr getQuiet(const char* name, rfb::Point size = {});  ///< a missing image is not logged

    bool isEmpty() const { return getRect().isEmpty(); }

private:
    NamedImagePixelBuffer(const char* name, rfb::Point size, bool quiet);
    static Ptr find(const char* name, rfb::Point size, bool quiet);
    bool matches(rfb::Point size) const;
    void load(const char* name, bool quiet);

    rfb::Point asked;
    int askedPpmm; // decides the natural size
};

} // namespace hxutil
