// Font files: whatever loads can be measured and drawn with, inside the buffer.
#include "hxutil/FontZefBm.h"
#include "plat/Exception.h"
#include "rdr/MemInStream.h"
#include "rfb/PixelBuffer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        rdr::MemInStream in(data, size);
        const hxutil::FontZefBm font(in);
        rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), 64, 32);
        const char* text = "Az\xc3\xa9\xd0\x96\xe6\xbc\xa2\xff~";
        font.drawString(pb, text, {3, 3}, 0xffffff);
        for (int code = 0; code < 128; ++code)
            font.drawGlyphScaled(pb, code, {code - 64, code - 100}, 1, 1 + code % 2);
        const int width = font.stringWidth(text);
        font.stringAt(width / 2, text);
        font.nearestBoundary(width / 3, text);
    } catch (const plat::Exception&) {
    }
    return 0;
}
