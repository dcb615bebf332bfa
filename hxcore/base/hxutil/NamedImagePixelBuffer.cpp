#include "hxutil/NamedImagePixelBuffer.h"

#include "hxutil/NamedImageLoader.h"
#include "hxutil/metrics.h"
#include "plat/LogSrc.h"
#include "plat/SysColors.h"

#include <cstdio>
#include <map>
#include <string>

namespace hxutil {
namespace {
plat::LogSrc log("NamedImage");
} // namespace

NamedImagePixelBuffer::NamedImagePixelBuffer(const char* name, rfb::Point size, bool quiet)
    : asked(size), askedPpmm(ppmm()) {
    const bool natural = size == rfb::Point();
    if (natural || (size.x > 0 && size.y > 0))
        load(name, quiet);
}

void NamedImagePixelBuffer::load(const char* name, bool quiet) {
    try {
        NamedImageLoader loader(name, asked);
        setPF(loader.getPf());
        setSize(loader.getSize().x, loader.getSize().y);
        loader.render(this, {});
        return;
    } catch (const NamedImageBadSize& e) {
        log.error("%s", e.what());
    } catch (const plat::Exception& e) {
        if (!quiet)
            log.error("%s", e.what());
    }
    setSize(0, 0);
}

bool NamedImagePixelBuffer::matches(rfb::Point wanted) const {
    if (wanted == rfb::Point())
        return asked == wanted && askedPpmm == ppmm();
    return asked == wanted || size() == wanted;
}

NamedImagePixelBuffer::Ptr NamedImagePixelBuffer::find(const char* name, rfb::Point size, bool quiet) {
    static std::multimap<std::string, Ptr> images;
    if (!name)
        name = "";
    const auto [first, last] = images.equal_range(name);
    for (auto i = first; i != last; ++i)
        if (i->second->matches(size))
            return i->second;
    return images.emplace(name, Ptr(new NamedImagePixelBuffer(name, size, quiet)))->second;
}

NamedImagePixelBuffer::Ptr NamedImagePixelBuffer::get(const char* name, rfb::Point size) {
    return find(name, size, /*quiet=*/false);
}

NamedImagePixelBuffer::Ptr NamedImagePixelBuffer::getQuiet(const char* name, rfb::Point size) {
    return find(name, size, /*quiet=*/true);
}

NamedImagePixelBuffer::Ptr NamedImagePixelBuffer::getThemed(const char* name, rfb::Point size) {
    if (plat::isDarkMode()) {
        char dark[128];
        std::snprintf(dark, sizeof dark, "%s_darkbg", name ? name : "");
        const Ptr themed = getQuiet(dark, size);
        if (!themed->isEmpty())
            return themed;
    }
    return get(name, size);
}

} // namespace hxutil
