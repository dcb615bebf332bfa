#include "rdr/ZlibInStream.h"

#include "plat/Exception.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <zlib.h>

namespace rdr {
namespace {
constexpr size_t defaultBufSize = 16800;

// RFC 1952 2.3.1
constexpr uint8_t gzipMagic[] = {0x1f, 0x8b, 8}; // and the method: deflate
enum GzipFlags : uint8_t { HeaderCrc = 2, Extra = 4, Name = 8, Comment = 16, Reserved = 0xe0 };

void skipText(InStream& in) {
    while (in.readU8() != 0) {
    }
}

uint32_t littleEndian(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | static_cast<uint32_t>(bytes[3]) << 24;
}
} // namespace

ZlibInStream::ZlibInStream(int size, Format dataFormat)
    : bufSize(size < 0 ? defaultBufSize : static_cast<size_t>(size)), format(dataFormat),
      zs(std::make_unique<z_stream_s>()), start(std::make_unique<uint8_t[]>(bufSize)) {
    ptr = end = checkpointPtr = start.get();
    rewindable = false;
    // The gzip header is read here, so that what follows is raw.
    if (inflateInit2(zs.get(), format == Format::Zlib ? MAX_WBITS : -MAX_WBITS) != Z_OK)
        throw plat::Exception("ZlibInStream: inflateInit failed");
}

ZlibInStream::~ZlibInStream() { inflateEnd(zs.get()); }

void ZlibInStream::setRewindable(bool on) {
    if (on && !rewindable)
        checkpoint();
    rewindable = on;
}

void ZlibInStream::reset() {
    inflateReset(zs.get());
    stage = Stage::Start;
    crc = inflated = 0;
    wasFull = false;
    failure = 0;
    offset = pos();
    ptr = end = checkpointPtr = start.get();
    checkpointPos = offset;
}

uint32_t ZlibInStream::pos() { return offset + static_cast<uint32_t>(ptr - start.get()); }

void ZlibInStream::compact() {
    const size_t shift = static_cast<size_t>(checkpointPtr - start.get());
    std::memmove(start.get(), checkpointPtr, static_cast<size_t>(end - checkpointPtr));
    offset += static_cast<uint32_t>(shift);
    ptr -= shift;
    end -= shift;
    checkpointPtr = start.get();
}

bool ZlibInStream::fillBuffer(size_t n) {
    if (!underlying)
        throw plat::Exception("ZlibInStream overrun: no underlying stream");
    compact();
    const size_t wanted = std::min(n, static_cast<size_t>(start.get() + bufSize - ptr));
    while (buffered() < wanted)
        if (!step())
            return false;
    return true;
}

bool ZlibInStream::step() {
    if (stage == Stage::Start) {
        underlying->checkpoint(); // a header that comes in pieces is read again from here
        stage = format == Format::Gzip ? Stage::Header : Stage::Data;
    }
    if (stage == Stage::Ended)
        throw ZlibEndOfStream();
    try {
        if (stage == Stage::Header)
            readGzipHeader();
        else if (stage == Stage::Trailer)
            readGzipTrailer();
        else
            return inflateSome();
    } catch (const BlockException&) {
        return false;
    }
    underlying->checkpoint();
    return true;
}

void ZlibInStream::readGzipHeader() {
    uint8_t header[10]; // magic, method, flags, time, extra flags, system
    underlying->readBytes(header, sizeof header);
    const uint8_t flags = header[3];
    if (std::memcmp(header, gzipMagic, sizeof gzipMagic) != 0 || flags & Reserved)
        throw plat::Exception("Bad gzip header");
    if (flags & Extra) {
        const unsigned low = underlying->readU8();
        underlying->skip(low | static_cast<unsigned>(underlying->readU8()) << 8);
    }
    if (flags & Name)
        skipText(*underlying);
    if (flags & Comment)
        skipText(*underlying);
    if (flags & HeaderCrc)
        underlying->skip(2);
    stage = Stage::Data;
}

bool ZlibInStream::inflateSome() {
    if (failure)
        throw plat::ExceptionFmt("ZlibInStream: inflate failed with error %d", failure);
    if (underlying->buffered() == 0 && !wasFull) {
        size_t one = 1;
        if (!underlying->check(1, &one, /*wait=*/false))
            return false;
    }
    uint8_t* const to = start.get() + (end - start.get());
    const size_t room = static_cast<size_t>(start.get() + bufSize - to);
    const size_t input = std::min<size_t>(underlying->buffered(), UINT_MAX);
    zs->next_in = const_cast<uint8_t*>(underlying->window()); // zlib doesn't write there
    zs->avail_in = static_cast<uInt>(input);
    zs->next_out = to;
    zs->avail_out = static_cast<uInt>(room);
    const int result = inflate(zs.get(), Z_SYNC_FLUSH);
    underlying->consume(input - zs->avail_in);
    underlying->checkpoint();
    const size_t count = room - zs->avail_out;
    wasFull = zs->avail_out == 0;
    crc = static_cast<uint32_t>(crc32(crc, to, static_cast<uInt>(count)));
    inflated += static_cast<uint32_t>(count);
    end += count;
    // What came before the damage is given out first. A buffer error means no progress: fine where it only had to look
    // whether output was left.
    const bool looked = result == Z_BUF_ERROR && input == 0;
    if (result != Z_OK && result != Z_STREAM_END && !looked)
        failure = result;
    if (result == Z_STREAM_END)
        stage = format == Format::Gzip ? Stage::Trailer : Stage::Ended;
    return true;
}

void ZlibInStream::readGzipTrailer() {
    uint8_t trailer[8];
    underlying->readBytes(trailer, sizeof trailer);
    if (littleEndian(trailer) != crc || littleEndian(trailer + 4) != inflated)
        throw plat::ExceptionFmt("ZlibInStream: inflate failed with error %d", Z_DATA_ERROR);
    stage = Stage::Ended;
}

} // namespace rdr
