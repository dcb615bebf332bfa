// A connection on a file descriptor.
#pragma once

#include "io/FdHandler.h"
#include "io/Io.h"
#include "io/Lifeline.h"
#include "plat/Timer.h"
#include "rdr/FdOutStream.h"

#include <memory>

namespace plat {
class Exception;
}
namespace rdr {
class FdInStream;
} // namespace rdr

namespace io {

class FdManager;

/// An Io on a stream socket, pipe or terminal, driven by the loop of the thread that sets its handler.
///
/// It deletes itself from the loop some time after shutdown; at once where no loop ever knew it, and with the loop.
/// While there is a handler, writing to a peer that has gone throws nothing: the end shows in the loop.
class FdIo : public Io, public FdHandler, private plat::Timer::Callback, private rdr::FdOutStream::Callback {
public:
    /// `connecting`: a non-blocking connect is under way, and ioWritable tells its success. Buffer sizes are in bytes,
    /// negative for the usual ones. With `fd_` -1 the Io waits for attachFd.
    explicit FdIo(int fd_, bool ownFd_ = true, bool connecting = false, int inBufSize = -1, int outBufSize = -1,
                  bool makeNonBlocking = true);
    ~FdIo() override;

    void attachFd(int newFd, bool nowConnecting = false); ///< once, where none was given at first
    void setName(const char* newName) { name = newName; }
    void shutdownWrite();     ///< no more will be written: tells the peer once all is sent
    int getSockError() const; ///< takes SO_ERROR; throws plat::SystemException "getsockopt"

    // io::Io
    void setHandler(IoHandler* newHandler, bool wantRead = true) override;
    void shutdown(bool flush, bool tellHandler) override;
    void markReadable() override;
    bool isConnecting() const override { return connecting; }
    plat::String getName() const override;
    void setTimeout(int ms) override;
    void setDeadline(int ms) override;

protected:
    // io::FdHandler
    void fdReadable() override;
    void fdWritable() override;
    void fdManagerGone() override;

private:
    class Out;
    enum class State { Running, WriteEndPending, ShuttingDown };

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    // rdr::FdOutStream::Callback
    void outputBlocked(rdr::FdOutStream* stream, bool isBlocked) override;

    void makeStreams();
    void setBlocking(bool blocking);
    void setInterest(bool read, bool write);
    void continueWriting();
    bool putOffFailure(const plat::Exception& failure);
    void writeOn();
    void scheduleEnd();
    void flushTimedOut();
    void completeShutdown();

    int inBufSize, outBufSize;
    bool connecting;
    bool makeNonBlocking;
    FdManager* fdMgr = nullptr; // since the first handler
    plat::String name;
    IoHandler* handler = nullptr;
    bool wantRead = false; // the interest last given to the manager
    bool wantWrite = false;
    bool blocked = false;     // the peer didn't take all of the last write
    bool writeFailed = false; // what is written vanishes until the end has shown
    bool inWritable = false;  // fdWritable is flushing
    State shutdownState = State::Running;
    bool completing = false; // ioClosed is running
    plat::Timer flushTimer{this};
    plat::Timer shutdownTimer{this};
    std::unique_ptr<rdr::FdInStream> in;
    std::unique_ptr<rdr::FdOutStream> out;
    Lifeline lifeline;
};

} // namespace io
