#include "rdr/InStreamV4.h"
#include "rdr/OutStreamV4.h"

namespace rdr {
namespace {
constexpr unsigned endOfMsgBit = 0x8000;
} // namespace

void InStreamV4::readFrameHeader(size_t* size, bool* endOfMsg, bool) {
    const unsigned header = underlying->readU16();
    *endOfMsg = (header & endOfMsgBit) != 0;
    *size = header & ~endOfMsgBit;
}

void OutStreamV4::writeFrameHeader(size_t size, bool last, bool) {
    underlying->writeU16(static_cast<uint16_t>(size | (last ? endOfMsgBit : 0)));
}

} // namespace rdr
