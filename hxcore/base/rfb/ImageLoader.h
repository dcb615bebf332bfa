// Something that draws one image.
#pragma once

#include "rfb/PixelFormat.h"
#include "rfb/Rect.h"

namespace rfb {

class WritablePixelBuffer;

/// An image of known size and format that is decoded when it is rendered.
class ImageLoader {
public:
    virtual ~ImageLoader() = default;

    virtual Point getSize() const = 0; ///< in pixels
    virtual const PixelFormat& getPf() const = 0;

    /// Writes the whole image with its top left at `position`; the buffer has the loader's format and holds it all.
    virtual void render(WritablePixelBuffer* pb, Point position) = 0;
};

} // namespace rfb
