#include "hxutil/NamedImageLoader.h"

#include "hxutil/PngFile.h"
#include "hxutil/ScaledImageLoader.h"
#include "plat/builtInResource.h"

#include <cstdio>

namespace hxutil {

NamedImageLoader::NamedImageLoader(const char* name, rfb::Point size_) : size(size_) { find(name, &size); }

NamedImageLoader::~NamedImageLoader() = default;

const rfb::PixelFormat& NamedImageLoader::getPf() const { return png->getPf(); }

void NamedImageLoader::render(rfb::WritablePixelBuffer* pb, rfb::Point position) {
    if (size == png->getSize())
        png->render(pb, position);
    else
        ScaledImageLoader(png.get(), size).render(pb, position);
}

bool NamedImageLoader::tryName(const char* name) {
    char file[160];
    std::snprintf(file, sizeof file, "%s.png", name);
    const plat::BuiltInResource resource = plat::findBuiltInResource(file);
    if (resource.size == 0)
        return false;
    png = std::make_unique<PngFile>(resource.data, resource.size, /*premultiply=*/true, file);
    return true;
}

rfb::Point NamedImageLoader::foundSize() const { return png ? png->getSize() : rfb::Point(); }

} // namespace hxutil
