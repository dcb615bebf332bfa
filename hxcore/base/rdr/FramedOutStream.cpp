#include "rdr/FramedOutStream.h"

#include "rdr/exceptions.h"

#include <algorithm>

namespace rdr {

FramedOutStream::FramedOutStream(OutStream* stream, size_t limit, size_t headerBytes)
    : underlying(stream), frameLimit(limit), headerSize(headerBytes) {}

void FramedOutStream::setUnderlying(OutStream* stream) {
    underlying = stream;
    inMsg = inFrame = false;
    ptr = end = frameStart = nullptr;
}

void FramedOutStream::startMsg() {
    if (inMsg)
        throw FrameException("FramedOutStream::startMsg: already in msg");
    inMsg = firstFrame = true;
    startFrame(1);
}

void FramedOutStream::endMsg() {
    if (!inFrame)
        throw FrameException("FramedOutStream::endMsg: not in frame");
    // A full frame never ends a message: an empty one follows it.
    if (payload() == frameLimit) {
        endFrame(/*last=*/false);
        startFrame(0);
    }
    endFrame(/*last=*/true);
    inMsg = false;
}

// Keeps room for the header in the buffer of the stream below, and shows what is behind it.
void FramedOutStream::startFrame(size_t minBytes) {
    underlying->check(headerSize + minBytes);
    frameStart = ptr = underlying->window() + headerSize;
    end = ptr + std::min(frameLimit, underlying->room() - headerSize);
    inFrame = true;
}

void FramedOutStream::endFrame(bool last) {
    if (!inFrame)
        throw FrameException("FramedOutStream::endFrame: not in frame");
    const size_t size = payload();
    if (size == 0 && !last)
        return;
    // The stream below must stand where the frame was started: nobody else writes to it meanwhile.
    if (underlying->room() < headerSize + size || underlying->window() + headerSize != frameStart)
        throw FrameException("FramedOutStream::endFrame: no space for header");
    writeFrameHeader(size, last, firstFrame);
    underlying->advance(size);
    offset += static_cast<uint32_t>(size);
    inFrame = firstFrame = false;
    ptr = end = frameStart = nullptr;
}

size_t FramedOutStream::overrun(size_t itemSize, size_t nItems) {
    endFrame(/*last=*/false);
    // Many bytes at once go on in frames as long as may be: each costs a trip to the stream below, and often to the
    // kernel.
    const size_t run = std::min(itemSize * nItems, frameLimit);
    startFrame(headerSize + run <= underlying->spaceAvailable() ? std::max(run, itemSize) : itemSize);
    if (itemSize > room())
        throw FrameException("FramedOutStream overrun: frame size exceeded");
    return std::min(nItems, room() / itemSize);
}

void FramedOutStream::flush() {
    if (inFrame)
        endFrame(/*last=*/false);
    underlying->flush();
    if (inMsg)
        startFrame(1);
}

uint32_t FramedOutStream::length() { return offset + static_cast<uint32_t>(payload()); }

size_t FramedOutStream::bytesInBuffer() { return underlying->bytesInBuffer() + payload(); }

void FramedOutStream::waitUntilFlushed() {
    flush();
    underlying->waitUntilFlushed();
    if (inMsg)
        startFrame(1);
}

size_t FramedOutStream::spaceAvailable() {
    const size_t below = underlying->spaceAvailable();
    return below - std::min(below, headerSize + payload());
}

} // namespace rdr
