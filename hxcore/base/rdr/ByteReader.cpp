#include "rdr/ByteReader.h"

#include "plat/Exception.h"
#include "plat/utf8.h"
#include "rdr/InStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstring>

namespace rdr {

void ByteReader::init(InStream& in, size_t fieldLen, uint8_t* target, bool copy) {
    if (stream) {
        if (fieldLen != len)
            throw plat::Exception("ByteReader::init: bad len");
        return;
    }
    in.checkpoint();
    stream = &in;
    len = fieldLen;
    buffer = target;
    ownsBuffer = !target;
    alwaysCopy = copy;
}

void ByteReader::reset() {
    if (ownsBuffer)
        delete[] buffer;
    stream = nullptr;
    buffer = nullptr;
    capacity = pos = len = 0;
    ownsBuffer = alwaysCopy = isText = false;
}

void ByteReader::reserve(size_t needed) {
    if (!ownsBuffer || needed <= capacity)
        return;
    const size_t grown = std::min(len + 1, std::max(needed, capacity * 2));
    auto* const fresh = new uint8_t[grown];
    std::copy_n(buffer, pos, fresh);
    delete[] buffer;
    buffer = fresh;
    capacity = grown;
}

// False if nothing is there for now.
bool ByteReader::readPiece(bool wait, bool keep) {
    size_t one = 1;
    if (stream->buffered() == 0 && !stream->check(1, &one, wait))
        return false;
    const size_t piece = std::min(len - pos, stream->buffered());
    if (keep) {
        reserve(pos + piece);
        std::memcpy(buffer + pos, stream->window(), piece);
    }
    stream->consume(piece);
    pos += piece;
    stream->checkpoint();
    return true;
}

ByteReader::Bytes ByteReader::read(bool wait) {
    size_t one = 1;
    if (pos == 0 && len > 0 && !alwaysCopy) {
        if (stream->buffered() == 0 && !stream->check(1, &one, wait))
            return {};
        if (stream->buffered() >= len) {
            // Not checkpointed: a run that ends in a block finds the field at the same place again.
            stream->consume(len);
            return {stream->window() - len, len};
        }
    }
    while (pos < len)
        if (!readPiece(wait, /*keep=*/true))
            return {};
    reserve(pos + 1); // never null, and room for a NUL
    return {buffer, len};
}

bool ByteReader::skip(bool wait) {
    while (pos < len)
        if (!readPiece(wait, /*keep=*/false))
            return false;
    return true;
}

ByteReader::Bytes ByteReader::readString32(InStream& in, size_t maxLen, bool wait) {
    if (!stream) {
        uint32_t announced = 0;
        try {
            announced = in.readU32();
        } catch (const BlockException&) {
            if (wait)
                throw;
            return {};
        }
        if (announced > maxLen)
            throw StringTooLongException();
        init(in, announced, nullptr, /*alwaysCopy=*/true);
    }
    if (!isText) {
        if (!read(wait))
            return {};
        finishString();
    }
    return {buffer, len};
}

void ByteReader::finishString() {
    const char* const text = reinterpret_cast<const char*>(buffer);
    buffer[len] = 0;
    isText = true;
    if (plat::utf8::isValid(text, text + len) && std::memchr(text, 0, len) == nullptr)
        return;
    const plat::String repaired = plat::repairUtf8(text, static_cast<int>(len));
    pos = len = static_cast<size_t>(repaired.len());
    delete[] buffer;
    capacity = len + 1;
    buffer = new uint8_t[capacity];
    std::memcpy(buffer, repaired.c_str(), capacity);
}

} // namespace rdr
