// Reading messages that are cut into frames.
#pragma once

#include "rdr/InStream.h"

namespace rdr {

class OutStream;

/// Shows one message at a time of a stream of frames.
///
/// The window never passes the current frame. A checkpoint also checkpoints the stream below, and a rewind brings back
/// the frame's state with it, so that work which spans frames can be run again. Throws EndOfMsg past the last byte of
/// the message.
class FramedInStream : public InStream {
public:
    explicit FramedInStream(InStream* underlying = nullptr); ///< borrowed

    /// Forgets any open message and reads from another stream.
    void setUnderlying(InStream* stream);
    InStream* getUnderlying() const { return underlying; }

    /// Reads the first header of a message. False without `wait` if it hasn't arrived.
    bool startMsg(bool wait = true);
    /// Closes the message; throws FrameException if bytes of it are left.
    void endMsg();
    void skipToEndOfMsg();               ///< drops what is left; may throw BlockException and be called again
    void copyToEndOfMsg(OutStream& out); ///< gives what is left to `out`, piece by piece; checkpoints after each
    bool isInMsg() const { return state.inMsg; } ///< between startMsg and endMsg

    // InStream
    uint32_t pos() override;
    void checkpoint() override;
    void rewind() override;
    bool atEnd() override; ///< reads further headers if it must, so it may throw BlockException

protected:
    /// Reads one header from the stream below: the frame's size and whether it ends the message. `first` is true for
    /// the first frame of a message.
    virtual void readFrameHeader(size_t* size, bool* endOfMsg, bool first) = 0;
    bool fillBuffer(size_t n) override;

    InStream* underlying = nullptr;

private:
    struct FrameState {
        bool inMsg = false;
        bool lastFrame = false;
        size_t frameSize = 0;  // bytes left in this frame, from where the stream below stands
        uint32_t consumed = 0; // payload bytes up to there, over all messages
    };

    void syncBelow();
    void showWindow();
    void readHeader(bool first);
    bool isMoreBelow();
    bool nextFrame();

    FrameState state;
    FrameState saved;               // as of the checkpoint
    const uint8_t* shown = nullptr; // where the stream below stands
};

} // namespace rdr
