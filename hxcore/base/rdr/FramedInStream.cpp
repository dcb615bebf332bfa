#include "rdr/FramedInStream.h"

#include "rdr/OutStream.h"
#include "rdr/exceptions.h"

#include <algorithm>

namespace rdr {

FramedInStream::FramedInStream(InStream* stream) { setUnderlying(stream); }

void FramedInStream::setUnderlying(InStream* stream) {
    underlying = stream;
    state = {};
    ptr = end = nullptr;
    if (!underlying)
        return;
    showWindow();
    checkpoint();
}

// Moves the stream below to where we are.
void FramedInStream::syncBelow() {
    const size_t taken = static_cast<size_t>(ptr - shown);
    underlying->consume(taken);
    state.frameSize -= taken;
    state.consumed += static_cast<uint32_t>(taken);
    shown = ptr;
    rewindable = underlying->isRewindable();
}

// Shows what is buffered below, up to the end of the frame.
void FramedInStream::showWindow() {
    shown = ptr = underlying->window();
    end = ptr + std::min(state.frameSize, underlying->buffered());
}

void FramedInStream::readHeader(bool first) {
    try {
        readFrameHeader(&state.frameSize, &state.lastFrame, first);
    } catch (const BlockException&) {
        if (rewindable)
            rewind(); // the stream below has gone back already, and our state must go with it
        throw;
    }
}

// That nothing has come is found out many times a second: it must not cost an exception.
bool FramedInStream::isMoreBelow() {
    size_t one = 1;
    return underlying->check(1, &one, /*wait=*/false) != nullptr;
}

bool FramedInStream::startMsg(bool wait) {
    if (state.inMsg)
        throw FrameException("FramedInStream::startMsg: already in msg");
    rewindable = underlying->isRewindable();
    if (!wait && !isMoreBelow()) {
        if (rewindable)
            rewind(); // as the stream below has
        return false;
    }
    try {
        readHeader(/*first=*/true);
    } catch (const BlockException&) {
        if (wait)
            throw;
        return false;
    }
    state.inMsg = true;
    showWindow();
    return true;
}

void FramedInStream::endMsg() {
    if (!state.inMsg)
        throw FrameException("FramedInStream::endMsg: not in msg");
    if (!atEnd())
        throw FrameException("FramedInStream::endMsg: data left in msg");
    state.inMsg = false;
}

// To a frame with payload, or to the end of the message; false there.
bool FramedInStream::nextFrame() {
    while (state.frameSize == 0 && !state.lastFrame)
        readHeader(/*first=*/false);
    return state.frameSize > 0;
}

bool FramedInStream::atEnd() {
    if (!state.inMsg)
        return true;
    syncBelow();
    const bool more = nextFrame();
    showWindow();
    return !more;
}

void FramedInStream::skipToEndOfMsg() {
    while (!atEnd()) {
        if (ptr == end)
            overrun(/*wait=*/true, 1);
        ptr = end;
        checkpoint(); // a piece is dropped once, however long the message
    }
}

void FramedInStream::copyToEndOfMsg(OutStream& out) {
    while (!atEnd()) {
        if (ptr == end)
            overrun(/*wait=*/true, 1);
        out.writeBytes(ptr, buffered());
        ptr = end;
        checkpoint();
    }
}

uint32_t FramedInStream::pos() { return state.consumed + static_cast<uint32_t>(ptr - shown); }

void FramedInStream::checkpoint() {
    if (!underlying)
        return;
    syncBelow();
    underlying->checkpoint();
    InStream::checkpoint();
    saved = state;
}

void FramedInStream::rewind() {
    underlying->rewind();
    state = saved;
    showWindow();
}

bool FramedInStream::fillBuffer(size_t n) {
    if (!state.inMsg)
        throw FrameException("FramedInStream: not in msg");
    syncBelow();
    // An item that straddles frames can't be had in one piece: what this frame holds of it comes first.
    if (ptr == end && state.frameSize == 0 && !state.lastFrame && !isMoreBelow())
        return false;
    if (ptr == end && !nextFrame())
        throw EndOfMsg();
    size_t one = 1;
    const size_t wanted = std::min(n, state.frameSize);
    if (wanted > underlying->buffered() && !underlying->check(wanted, &one, /*wait=*/false))
        return false;
    showWindow();
    return true;
}

} // namespace rdr
