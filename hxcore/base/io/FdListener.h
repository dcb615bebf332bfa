// A listening socket on the loop.
#pragma once

#include "io/FdHandler.h"
#include "io/Lifeline.h"
#include "plat/Timer.h"

#include <memory>
#include <vector>

namespace io {

class FdManager;
class Io;
class IoAcceptor;

/// Accepts connections and hands them to an acceptor.
///
/// When descriptors run out, accepting rests for 100 ms. What the acceptor throws is logged as "ioAccept error: %s".
/// The listener may be destroyed in its acceptor's callback.
class FdListener : public FdHandler, protected plat::Timer::Callback {
public:
    explicit FdListener(int fd_ = -1, bool ownFd_ = true);
    ~FdListener() override;

    void setAcceptor(IoAcceptor* newAcceptor); ///< borrowed; null stops accepting
    IoAcceptor* getAcceptor() const { return acceptor; }

    /// Hands a connection over only when its first byte has come: at most `maxSilent` may be waiting, each for at most
    /// `timeoutMs`; more are closed at once. Not for protocols in which our side speaks first. 0: no waiting, the
    /// default.
    void setSilenceLimit(unsigned maxSilent, unsigned timeoutMs);

protected:
    /// Wraps an accepted descriptor, which is non-blocking and close-on-exec; null if it was refused (and closed).
    virtual Io* makeIo(int acceptedFd);

    void replaceFd(int newFd); ///< another listening socket under the same acceptor; -1 for none

    // plat::Timer::Callback; a derived class with timers of its own calls this for others
    bool timerExpired(plat::Timer* timer) override;

private:
    class Silent;

    // io::FdHandler
    void fdReadable() override;
    void fdManagerGone() override;

    void watch();
    void acceptFailed(int errNo);
    void handOver(Io* io);
    void removeSilent(Silent* silent);

    IoAcceptor* acceptor = nullptr;
    FdManager* fdMgr = nullptr; // since the first acceptor
    plat::Timer restTimer{this};
    unsigned maxSilent = 0;
    unsigned silentTimeoutMs = 0;
    std::vector<std::unique_ptr<Silent>> silents;
    Lifeline lifeline;
};

} // namespace io
