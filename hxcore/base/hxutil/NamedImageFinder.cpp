#include "hxutil/NamedImageFinder.h"

#include "hxutil/metrics.h"

#include <cstdio>

namespace hxutil {
namespace {

constexpr int nameSize = 128;

/// A natural size at the current ppmm; plain images are drawn for ppmm 4, @2x ones for 8.
rfb::Point atCurrentPpmm(rfb::Point natural, int pixelsPerUnit) {
    const int p = ppmm() * pixelsPerUnit;
    return {(p * natural.x + 4) / 8, (p * natural.y + 4) / 8};
}

template <class Failure>
[[noreturn]] void fail(const char* format, const char* name) {
    char text[256];
    std::snprintf(text, sizeof text, format, name);
    throw Failure(text);
}

} // namespace

bool NamedImageFinder::findNatural(const char* name, rfb::Point* size) {
    char doubled[nameSize];
    std::snprintf(doubled, sizeof doubled, "%s@2x", name);
    const bool plain = tryName(name);
    if (plain) {
        *size = atCurrentPpmm(foundSize(), 2);
        if (ppmm() == 4)
            return true;
    }
    if (tryName(doubled)) {
        const rfb::Point wanted = atCurrentPpmm(foundSize(), 1);
        if (plain && wanted != *size)
            fail<NamedImageBadSize>("Badly sized image '%s': @2x/@1x images differ", name);
        *size = wanted;
        return ppmm() == 8;
    }
    if (!plain)
        fail<NamedImageNotFound>("Bad image name '%s'", name);
    return false;
}

void NamedImageFinder::find(const char* name, rfb::Point* size) {
    if (*size == rfb::Point() && findNatural(name, size))
        return;
    char other[nameSize];
    std::snprintf(other, sizeof other, "%s%dx%d", name, size->x, size->y);
    if (tryName(other)) {
        if (foundSize() != *size)
            fail<NamedImageBadSize>("Badly sized image '%s'", other);
        return;
    }
    if (tryName(name) && size->x <= foundSize().x)
        return;
    std::snprintf(other, sizeof other, "%s@2x", name);
    tryName(other);
    if (!hasImage())
        fail<NamedImageNotFound>("Bad image name '%s'", name);
}

} // namespace hxutil
