// Writers that own a growing send buffer.
#pragma once

#include "plat/NonCopyable.h"
#include "rdr/OutStream.h"

namespace rdr {

/// Keeps what can't be sent yet in a buffer that doubles up to a limit.
///
/// The window is at most 16384 bytes, so that a long write tries to send as it goes.
class BufferedOutStream : public OutStream, private plat::NonCopyable {
public:
    static constexpr size_t windowBytes = 16384;

    /// A negative size means 16384 bytes, 0 no buffer: any write then throws OutStreamFull. The buffer may grow to the
    /// larger of its size and the parameter MaxOutBufferSize.
    explicit BufferedOutStream(int bufSize = -1);
    ~BufferedOutStream() override;

    void setDump(bool on) { dump = on; } ///< hexdumps what is sent to the log
    bool doesThrowErrors() const { return throwErrors; }

    // OutStream
    uint32_t length() override;
    void flush() override; ///< until nothing is left, or nothing goes
    size_t bytesInBuffer() override { return static_cast<size_t>(ptr - sentUpTo); }
    size_t spaceAvailable() override { return maxSize - bytesInBuffer(); }
    void setThrowErrors(bool on) override { throwErrors = on; }

protected:
    /// Sends up to `len` bytes and returns the count, 0 if nothing goes for now. With `needWrite` it waits until
    /// something goes.
    virtual size_t writeData(const void* buf, size_t len, bool needWrite) = 0;
    size_t overrun(size_t itemSize, size_t nItems) override;

    void send(bool wait); // until all is sent or nothing goes; moves the window's start

    bool flushWaits = true;

private:
    bool sendOnce(bool wait);
    void grow();
    void compact();
    void setWindow(size_t itemSize);

    size_t bufSize;
    size_t maxSize;
    uint32_t offset = 0; // bytes sent and dropped from the buffer
    uint8_t* start;      // owned, null if bufSize is 0
    uint8_t* sentUpTo;
    bool throwErrors = true;
    bool dump = false;
};

/// A buffered writer whose writes always wait.
class BufferedNBOutStream : public BufferedOutStream {
public:
    using BufferedOutStream::BufferedOutStream;
};

/// A buffered writer that can put writes off.
class BufferedLazyOutStream : public BufferedOutStream {
public:
    using BufferedOutStream::BufferedOutStream;

    virtual void setNonBlocking(bool on); ///< then tries to flush
};

} // namespace rdr
