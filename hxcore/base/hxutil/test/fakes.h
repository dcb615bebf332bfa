// Small fonts and images for tests, written by hand.
#pragma once

#include "hxutil/FontZefBm.h"
#include "plat/Configuration.h"
#include "rdr/MemInStream.h"
#include "rfb/PixelBuffer.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hxutil::test {

using Bytes = std::vector<uint8_t>;

inline void add16(Bytes& bytes, unsigned v) {
    bytes.push_back(static_cast<uint8_t>(v >> 8));
    bytes.push_back(static_cast<uint8_t>(v));
}

inline void add32(Bytes& bytes, unsigned v) {
    add16(bytes, v >> 16);
    add16(bytes, v & 0xffff);
}

/// A glyph of a font file.
struct GlyphSpec {
    int code;
    unsigned offset;
    unsigned advance;
    int left, top;
    unsigned width, height;
};

inline Bytes fontFile(unsigned ascent, unsigned descent, const std::vector<unsigned>& pages,
                      const std::vector<GlyphSpec>& glyphs, const Bytes& bitmap) {
    Bytes bytes{0x7c, 0xcf, 0x0c, 0x72};
    add16(bytes, ascent);
    add16(bytes, descent);
    add16(bytes, static_cast<unsigned>(pages.size()));
    for (const unsigned page : pages)
        add32(bytes, page);
    for (size_t page = 0; page <= pages.size(); ++page)
        for (int i = 0; i < 128; ++i) {
            const int code = static_cast<int>(page == 0 ? 0 : pages[page - 1]) + i;
            GlyphSpec found{code, 0, 0, 0, 0, 0, 0};
            for (const GlyphSpec& glyph : glyphs)
                if (glyph.code == code)
                    found = glyph;
            add32(bytes, found.offset);
            add16(bytes, found.advance);
            for (const int v : {found.left, found.top, static_cast<int>(found.width), static_cast<int>(found.height)})
                bytes.push_back(static_cast<uint8_t>(v));
        }
    bytes.insert(bytes.end(), bitmap.begin(), bitmap.end());
    return bytes;
}

/// Letters of 5 pixels, blanks of 2, "i" of 3, the ellipsis of 4, anything else 7; lines of 10.
inline std::unique_ptr<FontZefBm> plainFont() {
    std::vector<GlyphSpec> glyphs{{0, 0, 7, 0, 0, 7, 1}, {' ', 0, 2, 0, 0, 0, 0}, {0x2026, 0, 4, 0, 0, 0, 0}};
    for (int code = 'A'; code <= 'z'; ++code)
        glyphs.push_back({code, 0, code == 'i' ? 3U : 5U, 0, 8, 1, 1});
    const Bytes bytes = fontFile(8, 2, {0x2000}, glyphs, {0xfe});
    rdr::MemInStream in(bytes.data(), bytes.size());
    return std::make_unique<FontZefBm>(in);
}

/// The pixels of a buffer as text: '#' for what is not 0.
inline std::vector<std::string> shown(const rfb::PixelBuffer& pb) {
    const auto width = static_cast<size_t>(pb.width());
    std::vector<uint32_t> pixels(width * static_cast<size_t>(pb.height()));
    pb.getImage(pixels.data(), pb.getRect()); // of 32 bits
    std::vector<std::string> lines;
    for (size_t i = 0; i < pixels.size(); ++i) {
        if (i % width == 0)
            lines.emplace_back();
        lines.back() += pixels[i] ? '#' : '.';
    }
    return lines;
}

/// Sets a parameter for the length of a scope.
class WithParameter {
public:
    WithParameter(const char* name, const char* value) : parameter(plat::Configuration::global().get(name)) {
        parameter.setParam(value);
    }
    ~WithParameter() { parameter.unset(plat::PriorityPreference); }
    WithParameter(const WithParameter&) = delete;
    WithParameter& operator=(const WithParameter&) = delete;

private:
    plat::ConfigParameter& parameter;
};

} // namespace hxutil::test
