#include "tx/edid.h"

#include "plat/DString.h"

#include <algorithm>
#include <iterator>

namespace tx {
namespace {
constexpr size_t blockBytes = 128;
constexpr uint8_t header[] = {0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
constexpr size_t manufacturerAt = 8; // three letters of five bits, from 1 for A, big-endian
constexpr size_t productAt = 10;     // little-endian
constexpr size_t descriptorsAt = 54;
constexpr size_t descriptorBytes = 18;
constexpr size_t descriptorCount = 4;
constexpr uint8_t nameTag = 0xfc;
constexpr size_t textAt = 5; // of a descriptor; up to 13 bytes, ended by a line feed if shorter

plat::String nameIn(std::span<const uint8_t> descriptor) {
    plat::DString name;
    for (const uint8_t byte : descriptor.subspan(textAt)) {
        if (byte == '\n' || byte == 0)
            break;
        if (byte >= 32 && byte < 127) // it is code page 437 beyond
            name.appendChars(byte, 1);
    }
    return name.take();
}

plat::String makerAndProduct(std::span<const uint8_t> edid) {
    const unsigned packed = edid[manufacturerAt] * 256U + edid[manufacturerAt + 1];
    const unsigned product = edid[productAt + 1] * 256U + edid[productAt];
    plat::DString text;
    for (const unsigned shift : {10U, 5U, 0U}) {
        const unsigned letter = packed >> shift & 31U;
        text.appendChars(letter >= 1 && letter <= 26 ? 'A' + letter - 1 : '?', 1);
    }
    return text.format(" %04X", product).take();
}
} // namespace

plat::String edidMonitorName(std::span<const uint8_t> edid) {
    if (edid.size() < blockBytes || !std::equal(std::begin(header), std::end(header), edid.begin()))
        return {};
    for (size_t i = 0; i < descriptorCount; ++i) {
        const auto descriptor = edid.subspan(descriptorsAt + i * descriptorBytes, descriptorBytes);
        // A descriptor that is no timing begins with three zeros.
        if (descriptor[0] != 0 || descriptor[1] != 0 || descriptor[2] != 0 || descriptor[3] != nameTag)
            continue;
        plat::String name = nameIn(descriptor);
        if (!name.isEmpty())
            return name;
    }
    return makerAndProduct(edid);
}

} // namespace tx
