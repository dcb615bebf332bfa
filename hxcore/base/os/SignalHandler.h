// Signals, as events of the loop.
#pragma once

#include "io/FdKicker.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <csignal>
#include <map>
#include <vector>

namespace os {

/// Calls back on the loop when a signal has come. There is at most one at a time.
///
/// The signal handler itself only kicks the loop. Signals that come again before the loop gets to them count once, as
/// they do with the system. SIGCHLD is the ProcessMonitor's.
class SignalHandler : private io::FdKickerCallback, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void signalled(int signal) = 0; ///< on the loop; may add and remove callbacks, its own too
    };

    SignalHandler();           ///< asserts that it is the only one; the thread must have an io::FdManager
    ~SignalHandler() override; ///< the signals do again what they did before

    static SignalHandler* instance() { return inst; } ///< null if there is none

    /// Borrowed, called in the order of registration. Throws plat::SystemException "sigaction" for what can't be
    /// caught.
    void add(int signal, Callback* callback);
    void remove(int signal, Callback* callback); ///< with the last one the signal does again what it did before

private:
    struct Watch {
        std::vector<Callback*> callbacks;
        struct sigaction before;
    };

    // io::FdKickerCallback
    void kicked(io::FdKicker* from) override;

    void tell(int signal);

    static SignalHandler* inst;

    std::map<int, Watch> watches;
    io::FdKicker kicker{this};
};

/// "SIGTERM", "SIGRTMIN+3"; "signal 99" for what has no name.
plat::String signalName(int signal);

} // namespace os
