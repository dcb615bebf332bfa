// The failures of streams.
#pragma once

#include "plat/Exception.h"

namespace rdr {

/// The peer closed the stream, the file ended, or a ring was told that nothing more comes.
class EndOfStream : public plat::Exception {
public:
    explicit EndOfStream(const char* text_ = "End of IO stream", const char* type_ = "EndOfStream")
        : plat::Exception(text_, type_) {}
};

/// Compressed data reached its own end; the stream below may hold more.
class ZlibEndOfStream : public EndOfStream {
public:
    ZlibEndOfStream() : EndOfStream("End of zlib stream", "ZlibEndOfStream") {}
};

/// A reader wants more than its message holds.
class EndOfMsg : public plat::Exception {
public:
    EndOfMsg() : plat::Exception("End of message", "EndOfMsg") {}
};

/// A non-blocking stream has too few bytes and is back at its checkpoint. Run the unit of work again when more have
/// come; not a failure.
class BlockException : public plat::Exception {
public:
    BlockException() : plat::Exception("Reading from InStream would block") {}
};

/// Frames were opened or closed out of order.
class FrameException : public plat::Exception {
public:
    explicit FrameException(const char* text_) : plat::Exception(text_, "FrameException") {}
};

/// An announced length is beyond the reader's limit.
class StringTooLongException : public plat::Exception {
public:
    StringTooLongException() : plat::Exception("String exceeds maximum length", "StringTooLongException") {}
};

/// A stream of limited size has no room left.
class OutStreamFull : public plat::Exception {
public:
    OutStreamFull() : plat::Exception("OutStream full", "OutStreamFull") {}
};

} // namespace rdr
