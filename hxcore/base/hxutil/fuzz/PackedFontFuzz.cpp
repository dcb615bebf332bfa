// Compressed font files, from the gzip header on.
#include "hxutil/FontZefBm.h"
#include "plat/Exception.h"
#include "rdr/MemInStream.h"
#include "rdr/ZlibInStream.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        rdr::MemInStream packed(data, size);
        rdr::ZlibInStream unpacked(-1, rdr::ZlibInStream::Format::Gzip);
        unpacked.setUnderlying(&packed);
        const hxutil::FontZefBm font(unpacked);
        font.stringWidth("some text");
    } catch (const plat::Exception&) {
    }
    return 0;
}
