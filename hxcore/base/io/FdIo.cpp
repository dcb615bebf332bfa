#include "io/FdIo.h"

#include "io/FdManager.h"
#include "io/IoHandler.h"
#include "plat/Assert.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/FdInStream.h"
#include "rdr/exceptions.h"

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <sys/socket.h>

namespace io {
namespace {
plat::LogSrc log("FdIo");

plat::IntParameter lazyFlushTimeout("LazyFlushTimeout",
                                    "Maximum number of seconds for which attempts should be made to flush data to an "
                                    "unresponsive client (maximum 49 days)",
                                    60, /*isAdvanced=*/true, /*owner=*/nullptr, 0, INT_MAX);

uint32_t flushTimeoutMs() {
    return static_cast<uint32_t>(std::min<int64_t>(int64_t{lazyFlushTimeout.value()} * 1000, INT_MAX));
}

// What takes 64 KiB with its frame headers in one read.
constexpr int usualInBufBytes = 66 * 1024;

const char* yesNo(bool value) { return value ? "true" : "false"; }

struct Scope {
    explicit Scope(bool& flag_) : flag(flag_) { flag = true; }
    ~Scope() { flag = false; }
    bool& flag;
};

void makeFdNonBlocking(int fd) {
    const int flags = fcntl(fd, F_GETFL);
    if (flags < 0 || fcntl(fd, F_SETFL, flags | O_NONBLOCK) < 0)
        throw plat::StdlibException("fcntl(O_NONBLOCK)");
}

} // namespace

/// Keeps the failure of a write from whoever happens to write while the loop looks after the connection.
class FdIo::Out : public rdr::FdOutStream {
public:
    Out(FdIo* io_, int bufBytes) : FdOutStream(io_->fd, /*ownFd=*/false, io_, bufBytes), io(io_) {}

protected:
    size_t writeData(const void* buf, size_t len, bool needWrite) override {
        if (io->writeFailed)
            return len; // nobody takes it any more
        try {
            return FdOutStream::writeData(buf, len, needWrite);
        } catch (const plat::Exception& failure) {
            if (!io->putOffFailure(failure))
                throw;
            return len;
        }
    }

private:
    FdIo* io;
};

FdIo::FdIo(int fd_, bool ownFd_, bool nowConnecting, int inBufBytes, int outBufBytes, bool nonBlockingFd)
    : FdHandler(fd_, ownFd_), inBufSize(inBufBytes), outBufSize(outBufBytes), connecting(nowConnecting),
      makeNonBlocking(nonBlockingFd) {
    if (fd >= 0)
        makeStreams();
}

FdIo::~FdIo() {
    if (fdMgr)
        fdMgr->addHandler(this, /*add=*/false);
    inStream_ = nullptr;
    outStream_ = nullptr;
    if (!out)
        return;
    // What is still buffered gets one try, but nobody waits for it.
    out->setCallback(nullptr);
    out->setThrowErrors(/*on=*/false);
    out->setNonBlocking(/*on=*/true);
}

void FdIo::attachFd(int newFd, bool nowConnecting) {
    ASSERT(fd < 0);
    fd = newFd;
    connecting = nowConnecting;
    makeStreams();
}

void FdIo::shutdownWrite() {
    if (shutdownState == State::Running)
        shutdownState = State::WriteEndPending;
    if (out->bytesInBuffer() > 0)
        out->flush();
    if (out->bytesInBuffer() == 0)
        out->shutdownWrite();
}

int FdIo::getSockError() const {
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) < 0)
        throw plat::StdlibException("getsockopt");
    return error;
}

void FdIo::setHandler(IoHandler* newHandler, bool read) {
    if (shutdownState == State::ShuttingDown) {
        if (!newHandler)
            handler = nullptr; // it doesn't want to be told any more
        return;
    }
    handler = newHandler;
    if (!fdMgr && handler) {
        fdMgr = FdManager::current();
        ASSERT(fdMgr);
        fdMgr->addHandler(this, /*add=*/true);
    }
    setBlocking(!handler);
    if (!fdMgr)
        return;
    setInterest(handler && read, handler && (connecting || blocked));
    if (!handler)
        fdMgr->unmark(this);
    else if (read && in && (in->buffered() > 0 || in->isTimedOut()))
        fdMgr->markReadable(this);
}

void FdIo::shutdown(bool flush, bool tellHandler) {
    if (completing)
        return;
    log.debug("shutdown %p (fd=%d), flush %s (tellHandler %s)", static_cast<void*>(this), fd, yesNo(flush),
              yesNo(tellHandler));
    if (!fdMgr) {
        ASSERT(!tellHandler);
        log.debug("immediate shutdown %p (fd=%d)", static_cast<void*>(this), fd);
        const std::unique_ptr<FdIo> self(this);
        if (flush)
            writeOn();
        return;
    }
    shutdownState = State::ShuttingDown;
    shutdownTimer.cancel();
    setInterest(/*read=*/false, /*write=*/false);
    fdMgr->unmark(this);
    if (!tellHandler)
        handler = nullptr;
    if (!flush || !out) {
        scheduleEnd();
        return;
    }
    setBlocking(/*blocking=*/false);
    fdMgr->startTimer(flushTimer, flushTimeoutMs());
    fdWritable();
}

void FdIo::markReadable() {
    if (fdMgr && handler && shutdownState != State::ShuttingDown)
        fdMgr->markReadable(this);
}

plat::String FdIo::getName() const { return name.isEmpty() ? plat::strFormat("<fd%d>", fd) : name; }

void FdIo::setTimeout(int ms) {
    if (!in)
        return;
    in->setTimeout(ms);
    out->setTimeout(ms);
}

void FdIo::setDeadline(int ms) {
    if (!in)
        return;
    in->setDeadline(ms);
    out->setDeadline(ms);
}

void FdIo::fdReadable() {
    if (!handler || shutdownState == State::ShuttingDown)
        return;
    Lifeline::Watch watch(lifeline);
    try {
        handler->ioReadable(this);
    } catch (const rdr::BlockException&) {
        return;
    } catch (const plat::Exception& failure) {
        log.info("Read error: %s", failure.describe().c_str());
        if (!watch.isCut() && fdMgr)
            shutdown(/*flush=*/false, /*tellHandler=*/true);
    }
}

void FdIo::fdWritable() {
    setInterest(wantRead, /*write=*/false);
    connecting = false;
    Lifeline::Watch watch(lifeline);
    try {
        if (writeFailed && !wantRead && shutdownState != State::ShuttingDown)
            throw plat::Exception("the peer takes no more");
        continueWriting();
    } catch (const plat::Exception& failure) {
        log.info("Write error: %s", failure.describe().c_str());
        if (!watch.isCut() && fdMgr)
            shutdown(/*flush=*/false, /*tellHandler=*/true);
    }
}

void FdIo::fdManagerGone() {
    fdMgr = nullptr;
    wantRead = wantWrite = false;
    flushTimer.cancel();
    shutdownTimer.cancel();
    if (shutdownState != State::ShuttingDown) {
        handler = nullptr;
        return;
    }
    if (completing)
        return;
    log.debug("shutdown completed by FdManager dtor %p (fd=%d)", static_cast<void*>(this), fd);
    completeShutdown();
}

bool FdIo::timerExpired(plat::Timer* timer) {
    if (timer == &flushTimer) {
        flushTimedOut();
        return false;
    }
    log.debug("shutdown complete %p (fd=%d)", static_cast<void*>(this), fd);
    completeShutdown();
    return false;
}

void FdIo::outputBlocked(rdr::FdOutStream*, bool isBlocked) {
    if (isBlocked == blocked && !isBlocked)
        return; // nothing changes while all goes out at once
    const bool wasBlocked = blocked;
    blocked = isBlocked;
    if (!fdMgr)
        return;
    if (blocked) {
        setInterest(wantRead, /*write=*/true);
        // Later attempts don't put the end off while the peer takes nothing.
        if (!wasBlocked && !flushTimer.isActive())
            fdMgr->startTimer(flushTimer, flushTimeoutMs());
    } else {
        flushTimer.cancel();
        fdMgr->markWritable(this);
    }
}

void FdIo::makeStreams() {
    if (makeNonBlocking)
        makeFdNonBlocking(fd);
    in = std::make_unique<rdr::FdInStream>(fd, -1, inBufSize < 0 ? usualInBufBytes : inBufSize);
    out = std::make_unique<Out>(this, outBufSize);
    inStream_ = in.get();
    outStream_ = out.get();
}

void FdIo::setBlocking(bool blocking) {
    if (!in)
        return;
    try {
        in->setNonBlocking(!blocking);
        out->setNonBlocking(!blocking);
    } catch (const plat::Exception& failure) {
        log.error("setHandler: %s", failure.describe().c_str());
    }
}

void FdIo::setInterest(bool read, bool write) {
    wantRead = read;
    wantWrite = write;
    if (fdMgr)
        fdMgr->setInterest(this, read, write, /*except=*/false, /*accept=*/false, /*connectInterest=*/false);
}

void FdIo::continueWriting() {
    if (out && out->bytesInBuffer() > 0) {
        const Scope writing(inWritable);
        out->flush();
        if (!blocked && fdMgr && out->bytesInBuffer() == 0)
            fdMgr->markWritable(this);
        return;
    }
    if (shutdownState == State::ShuttingDown) {
        scheduleEnd();
    } else if (shutdownState == State::WriteEndPending) {
        out->shutdownWrite();
        fdMgr->unmark(this);
    } else if (handler) {
        handler->ioWritable(this);
    }
}

// A write outside of fdWritable failed: what the peer sent before it went is still to be read, and that it went shows
// in reading, or else after the time that a flush has.
bool FdIo::putOffFailure(const plat::Exception& failure) {
    if (!fdMgr || !handler || inWritable || shutdownState == State::ShuttingDown)
        return false;
    log.info("Write error: %s", failure.describe().c_str());
    writeFailed = true;
    blocked = false;
    fdMgr->startTimer(flushTimer, flushTimeoutMs());
    if (wantRead)
        fdMgr->markReadable(this);
    else
        fdMgr->markWritable(this);
    return true;
}

void FdIo::writeOn() {
    try {
        out->flush();
    } catch (const plat::Exception& failure) {
        log.info("Write error: %s", failure.describe().c_str());
    }
}

void FdIo::scheduleEnd() { fdMgr->startTimer(shutdownTimer, 0); }

void FdIo::flushTimedOut() {
    log.debug("flush timer");
    if (shutdownState == State::ShuttingDown) {
        scheduleEnd();
        return;
    }
    in->setTimedOut(/*on=*/true);
    if (wantRead)
        fdMgr->markReadable(this);
}

void FdIo::completeShutdown() {
    const std::unique_ptr<FdIo> self(this);
    completing = true;
    IoHandler* told = handler;
    handler = nullptr;
    if (!told)
        return;
    try {
        told->ioClosed(this);
    } catch (const plat::Exception& failure) {
        log.info("Shutdown error: %s", failure.describe().c_str());
    }
}

} // namespace io
