#include "io/FdListener.h"

#include "io/FdIo.h"
#include "io/FdManager.h"
#include "io/IoHandler.h"
#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace io {
namespace {
plat::LogSrc log("FdListener");
constexpr unsigned restMs = 100;
} // namespace

/// A connection that has said nothing yet.
class FdListener::Silent : private IoHandler, private plat::Timer::Callback {
public:
    Silent(FdListener* owner_, Io* io_, unsigned timeoutMs) : owner(owner_), io(io_) {
        timer.start(timeoutMs);
        io->setHandler(this);
    }
    ~Silent() override {
        if (io)
            io->shutdown(/*flush=*/false, /*tellHandler=*/false);
    }

private:
    void ioReadable(Io*) override {
        Io* speaking = io;
        io = nullptr;
        speaking->setHandler(nullptr);
        FdListener* listener = owner;
        listener->removeSilent(this);
        listener->handOver(speaking);
    }
    void ioClosed(Io*) override {
        io = nullptr;
        owner->removeSilent(this);
    }
    bool timerExpired(plat::Timer*) override {
        log.info("Closing %s, which says nothing", io->getName().c_str());
        owner->removeSilent(this);
        return false;
    }

    FdListener* owner;
    Io* io; // null once handed over
    plat::Timer timer{this};
};

FdListener::FdListener(int fd_, bool ownFd_) : FdHandler(fd_, ownFd_) {}

FdListener::~FdListener() {
    if (fdMgr)
        fdMgr->addHandler(this, /*add=*/false);
}

void FdListener::setAcceptor(IoAcceptor* newAcceptor) {
    acceptor = newAcceptor;
    if (!fdMgr && acceptor) {
        fdMgr = FdManager::current();
        ASSERT(fdMgr);
        fdMgr->addHandler(this, /*add=*/true);
    }
    watch();
}

void FdListener::setSilenceLimit(unsigned maxWaiting, unsigned timeoutMs) {
    maxSilent = maxWaiting;
    silentTimeoutMs = timeoutMs;
}

Io* FdListener::makeIo(int acceptedFd) { return new FdIo(acceptedFd); }

void FdListener::replaceFd(int newFd) {
    closeFd();
    fd = newFd;
    restTimer.cancel();
    watch();
}

bool FdListener::timerExpired(plat::Timer*) {
    watch();
    return false;
}

void FdListener::fdReadable() {
    if (!acceptor)
        return;
    const int accepted = accept4(fd, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (accepted < 0) {
        acceptFailed(errno);
        return;
    }
    if (maxSilent > 0 && silents.size() >= maxSilent) {
        log.info("Refusing a connection: %u others have said nothing yet", maxSilent);
        close(accepted);
        return;
    }
    Io* io = nullptr;
    try {
        io = makeIo(accepted);
    } catch (const plat::Exception& failure) {
        log.info("ioAccept error: %s", failure.describe().c_str());
    }
    if (!io)
        return;
    if (maxSilent > 0)
        silents.push_back(std::make_unique<Silent>(this, io, silentTimeoutMs));
    else
        handOver(io);
}

void FdListener::fdManagerGone() {
    fdMgr = nullptr;
    restTimer.cancel();
    silents.clear();
}

void FdListener::watch() {
    if (fdMgr)
        fdMgr->setInterest(this, /*read=*/false, /*write=*/false, /*except=*/false,
                           /*accept=*/acceptor && fd >= 0 && !restTimer.isActive(), /*connectInterest=*/false);
}

void FdListener::acceptFailed(int errNo) {
    if (errNo == EAGAIN || errNo == EINTR || errNo == ECONNABORTED)
        return; // the peer has gone again
    log.info("ioAccept error: %s", plat::SystemException("accept", errNo).describe().c_str());
    fdMgr->startTimer(restTimer, restMs);
    watch();
}

void FdListener::handOver(Io* io) {
    if (!acceptor) {
        io->shutdown(/*flush=*/false, /*tellHandler=*/false);
        return;
    }
    try {
        acceptor->acceptIo(io); // may destroy this listener
    } catch (const plat::Exception& failure) {
        log.info("ioAccept error: %s", failure.describe().c_str());
    }
}

void FdListener::removeSilent(Silent* silent) {
    std::erase_if(silents, [silent](const auto& each) { return each.get() == silent; });
}

} // namespace io
