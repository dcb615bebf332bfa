#include "hxutil/getFont.h"

#include "hxutil/FontPieces.h"
#include "hxutil/FontZefBm.h"
#include "hxutil/metrics.h"
#include "plat/Exception.h"
#include "plat/builtInResource.h"
#include "rdr/MemInStream.h"
#include "rdr/ZlibInStream.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

namespace hxutil {
namespace {

/// The fonts from a size on, in units times ppmm. Two stand beyond the ordinary table, for enlarged text only.
struct Row {
    int64_t from;
    bool enlargedOnly;
    const char* regular;
    const char* bold;
};

constexpr Row rows[] = {
    {2880, true, "helv42", "helvB42"}, {1536, true, "helv30", "helvB30"},       {960, false, "helv21", "helvB21"},
    {484, false, "helv16", "helvB16"}, {INT64_MIN, false, "helv15", "helvB15"},
};

} // namespace

std::unique_ptr<FontZefBm> unpackFont(const char* name) {
    char file[64];
    std::snprintf(file, sizeof file, "%s.gz", name);
    const plat::BuiltInResource resource = plat::findBuiltInResource(file);
    if (resource.size == 0)
        throw plat::ExceptionFmt("No built-in resource '%s'", file);
    rdr::MemInStream packed(resource.data, resource.size);
    rdr::ZlibInStream unpacked(-1, rdr::ZlibInStream::Format::Gzip);
    unpacked.setUnderlying(&packed);
    return std::make_unique<FontZefBm>(unpacked);
}

const Font* loadFont(const char* name) {
    static std::map<std::string, std::unique_ptr<FontZefBm>> fonts;
    std::unique_ptr<FontZefBm>& font = fonts[name];
    if (!font) {
        font = unpackFont(name);
        font->setFallback(std::make_unique<FontPieces>(font->height, font->ascent));
    }
    return font.get();
}

const Font* getFont(int size, int weight) {
    const int factor = textSizeFactor();
    const int64_t s = static_cast<int64_t>(size) * ppmm() * factor / 100;
    const bool bold = weight >= 550;
    for (const Row& row : rows) {
        if (s < row.from || (row.enlargedOnly && factor <= 100))
            continue;
        // One that is missing leaves the choice to the next smaller one.
        try {
            return loadFont(bold ? row.bold : row.regular);
        } catch (const plat::Exception&) {
            continue;
        }
    }
    return loadFont("helv15");
}

} // namespace hxutil
