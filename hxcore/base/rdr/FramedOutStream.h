// Writing messages that are cut into frames.
#pragma once

#include "rdr/OutStream.h"

namespace rdr {

/// Cuts a message into frames on the stream below, built in place in its buffer.
///
/// Room for the header is kept before the payload and filled in when the frame closes. A flush makes a frame boundary.
class FramedOutStream : public OutStream {
public:
    FramedOutStream(OutStream* underlying, size_t frameLimit, size_t headerSize); ///< borrowed, may be null at first

    /// Forgets any open message and writes to another stream, or to none.
    void setUnderlying(OutStream* stream);
    OutStream* getUnderlying() const { return underlying; }

    void startMsg(); ///< throws FrameException if a message is open
    void endMsg();   ///< closes the last frame; doesn't flush the stream below
    bool isInMsg() const { return inMsg; }

    // OutStream
    uint32_t length() override; ///< payload bytes, over all messages
    void flush() override;
    size_t bytesInBuffer() override;
    void waitUntilFlushed() override;
    size_t spaceAvailable() override;

protected:
    /// Writes the header at the window of the stream below: exactly `headerSize` bytes.
    virtual void writeFrameHeader(size_t size, bool last, bool first) = 0;
    size_t overrun(size_t itemSize, size_t nItems) override;

    void startFrame(size_t minBytes);
    void endFrame(bool last);

    OutStream* underlying;

private:
    size_t payload() const { return static_cast<size_t>(ptr - frameStart); }

    size_t frameLimit;
    size_t headerSize;
    bool inMsg = false;
    bool inFrame = false;
    bool firstFrame = false;
    uint32_t offset = 0;           // payload bytes of the closed frames
    uint8_t* frameStart = nullptr; // the payload of the open frame
};

} // namespace rdr
