// The choice among the forms of a named image.
#pragma once

#include "plat/Exception.h"
#include "rfb/Rect.h"

namespace hxutil {

class NamedImageNotFound : public plat::Exception {
public:
    using plat::Exception::Exception;
};

class NamedImageBadSize : public plat::Exception {
public:
    using plat::Exception::Exception;
};

/// Finds the best form of an image for the current ppmm: "name", "name@2x", or "name48x48" for an exact size.
class NamedImageFinder {
public:
    virtual ~NamedImageFinder() = default;

    /// True if there is such a file; it then is the one found until another is.
    virtual bool tryName(const char* name) = 0;
    virtual rfb::Point foundSize() const = 0; ///< natural size in pixels of the one found
    virtual bool hasImage() const = 0;        ///< whether any has been found

    /// A `size` of 0x0 is set to the natural size at the current ppmm. Throws NamedImageNotFound, NamedImageBadSize.
    void find(const char* name, rfb::Point* size);

private:
    bool findNatural(const char* name, rfb::Point* size); // true: the one found fits exactly
};

} // namespace hxutil
