#include "rdr/InStream.h"

#include "plat/Assert.h"
#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/utf8.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace rdr {
namespace {
constexpr size_t defaultMaxLine = 262144;
constexpr int uniformTries = 9;

void repair(std::string& text) {
    if (plat::utf8::isValid(text.data(), text.data() + text.size()) && text.find('\0') == std::string::npos)
        return;
    text = plat::repairUtf8(text.data(), static_cast<int>(text.size())).c_str();
}

// A NUL ends it.
plat::String textOf(std::string_view bytes, bool repairUtf8) {
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    if (text.empty())
        return "";
    return repairUtf8 ? plat::repairUtf8(text.data(), static_cast<int>(text.size())) : plat::String(text);
}

// A text that lies in the window in one piece.
plat::String takeText(InStream& in, size_t len, bool repairUtf8) {
    const std::string_view bytes(reinterpret_cast<const char*>(in.window()), len);
    in.consume(len);
    return textOf(bytes, repairUtf8);
}
} // namespace

void InStream::checkpoint() {
    checkpointPtr = ptr;
    checkpointPos = pos();
}

void InStream::rewind() {
    if (!rewindable)
        throw plat::Exception("Attempt to rewind a non-rewindable stream");
    ptr = checkpointPtr;
}

void InStream::setPos(uint32_t newPos) {
    const auto ahead = static_cast<int32_t>(newPos - checkpointPos); // positions wrap
    if (ahead < 0)
        throw plat::Exception("Can't reposition before checkpoint");
    rewind();
    skip(static_cast<size_t>(ahead));
}

bool InStream::overrun(bool wait, size_t n) {
    // A blocking stream never runs work again: nothing older is needed, and the buffer may be compacted.
    if (!rewindable)
        checkpoint();
    bool filled = false;
    try {
        filled = fillBuffer(n);
    } catch (const BlockException&) {
    }
    if (filled) {
        if (ptr == end)
            throw plat::Exception("InStream overrun: buffer size exceeded");
        return true;
    }
    if (rewindable)
        rewind();
    if (!wait)
        return false;
    throw BlockException();
}

const uint8_t* InStream::check(size_t itemSize, size_t* nItems, bool wait) {
    ASSERT(*nItems > 0);
    if (buffered() < itemSize && !overrun(wait, itemSize))
        return nullptr;
    *nItems = std::min(*nItems, buffered() / itemSize);
    return ptr;
}

void InStream::readBytes(void* buf, size_t len) {
    auto* to = static_cast<uint8_t*>(buf);
    while (len > 0) {
        if (ptr == end)
            overrun(/*wait=*/true, 1);
        const size_t piece = std::min(len, buffered());
        std::memcpy(to, ptr, piece);
        ptr += piece;
        to += piece;
        len -= piece;
    }
}

void InStream::skip(size_t len) {
    while (len > 0) {
        if (ptr == end)
            overrun(/*wait=*/true, 1);
        const size_t piece = std::min(len, buffered());
        ptr += piece;
        len -= piece;
    }
}

std::string InStream::readText(size_t len, bool repairUtf8) {
    std::string text;
    while (text.size() < len) {
        if (ptr == end)
            overrun(/*wait=*/true, 1);
        const size_t piece = std::min(len - text.size(), buffered());
        text.append(reinterpret_cast<const char*>(ptr), piece);
        ptr += piece;
    }
    if (repairUtf8)
        repair(text);
    return text;
}

std::string InStream::readStdString8(bool repairUtf8) { return readText(readU8(), repairUtf8); }

std::string InStream::readStdString32(size_t maxLen, bool repairUtf8) {
    const uint32_t len = readU32();
    if (len > maxLen)
        throw StringTooLongException();
    return readText(len, repairUtf8);
}

plat::String InStream::readString8(bool repairUtf8) {
    const size_t len = readU8();
    return len <= buffered() ? takeText(*this, len, repairUtf8)
                             : textOf(readText(len, /*repairUtf8=*/false), repairUtf8);
}

plat::String InStream::readString32(size_t maxLen, bool repairUtf8) {
    const size_t len = readU32();
    if (len > maxLen)
        throw StringTooLongException();
    return len <= buffered() ? takeText(*this, len, repairUtf8)
                             : textOf(readText(len, /*repairUtf8=*/false), repairUtf8);
}

void InStream::readLine(std::string& out, size_t maxLen, bool repairUtf8) {
    const size_t limit = maxLen ? maxLen : defaultMaxLine;
    out.clear();
    bool any = false;
    try {
        for (;;) {
            const uint8_t c = readU8();
            any = true;
            if (c == '\n')
                break;
            if (c == '\r')
                continue;
            if (out.size() == limit)
                throw StringTooLongException();
            out.push_back(static_cast<char>(c));
        }
    } catch (const EndOfStream&) {
        if (!any)
            throw;
    } catch (const EndOfMsg&) {
        if (!any)
            throw;
    }
    if (repairUtf8)
        repair(out);
}

void InStream::readLine(plat::DString& out, size_t maxLen, bool repairUtf8) {
    std::string line;
    readLine(line, maxLen, /*repairUtf8=*/false);
    out.clear();
    out.append(line.c_str());
    if (repairUtf8)
        out.repairUtf8();
}

uint32_t InStream::readUniform(uint32_t bound) {
    uint32_t value = readU32();
    if (bound == 0)
        return value;
    // The lowest values are one too many for an even share.
    const uint32_t excess = (0U - bound) % bound;
    for (int tries = 1; value < excess && tries < uniformTries; ++tries)
        value = readU32();
    return value % bound;
}

} // namespace rdr
