// Compressed data in each format, whole and in single bytes: both must give the same.
#include "plat/Exception.h"
#include "rdr/CircularInStream.h"
#include "rdr/MemInStream.h"
#include "rdr/ZlibInStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

constexpr size_t most = 1 << 12; // of inflated bytes
constexpr size_t mostInput = 512;
constexpr size_t headerBytes = 48;

// The inflated bytes, and how it ended.
std::string inflateWhole(rdr::ZlibInStream& in) {
    std::string out;
    try {
        while (out.size() < most)
            out += static_cast<char>(in.readU8());
    } catch (const plat::Exception& e) {
        out += e.what();
    }
    return out;
}

// The source is filled in small pieces, byte by byte at first, where a header may be; a read that it can't serve throws
// and is run again.
std::string inflateBytewise(const uint8_t* data, size_t size, rdr::ZlibInStream& in) {
    rdr::CircularInStream ring(mostInput + 1); // a large one would be fresh memory each time, most of the cost
    in.setRewindable(true);
    in.setUnderlying(&ring);
    std::string out;
    for (size_t sent = 0; out.size() < most;) {
        try {
            out += static_cast<char>(in.readU8());
            in.checkpoint();
        } catch (const rdr::BlockException&) {
            const size_t piece = sent < headerBytes ? 1 : std::min<size_t>(size - sent, 13);
            if (sent < size)
                ring.write(data + sent, piece);
            else
                ring.setEndOfData(true);
            sent += piece;
        } catch (const plat::Exception& e) {
            out += e.what();
            break;
        }
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > mostInput)
        return 0;
    const auto format = static_cast<rdr::ZlibInStream::Format>(data[0] % 3);
    rdr::MemInStream below(data + 1, size - 1);
    rdr::ZlibInStream whole(-1, format);
    whole.setUnderlying(&below);
    rdr::ZlibInStream bytewise(64, format);
    std::string a = inflateWhole(whole);
    std::string b = inflateBytewise(data + 1, size - 1, bytewise);
    // The two sources name their end differently.
    for (std::string* text : {&a, &b})
        for (const char* const end : {"End of in-memory input stream", "Data buffer exhausted"})
            if (text->ends_with(end))
                text->resize(text->size() - std::string(end).size());
    if (a != b)
        std::abort();
    return 0;
}
