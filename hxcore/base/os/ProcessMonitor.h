// Watches child processes from the event loop.
#pragma once

#include "io/FdKicker.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <map>
#include <memory>
#include <sys/types.h>
#include <vector>

namespace os {

/// Reaps the children that it was told of, and tells who waits for them.
///
/// SIGCHLD belongs to it once it is attached to a loop. Children that it doesn't know are left to others.
class ProcessMonitor : private io::FdKickerCallback, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// From the loop, once: the child is gone, and its number may be another's soon. `waitStatus` is as of
        /// waitpid(2), or `lost`.
        virtual void processEnded(pid_t pid, int waitStatus) = 0;
    };

    static constexpr int lost = -1; ///< the status of a child that somebody else has reaped

    /// The one of this process; a forked child has one of its own, which knows no children.
    static ProcessMonitor& instance();

    /// Has SIGCHLD wake the thread's current loop, unless one is woken already. Without a loop children wait for
    /// reap().
    void attach();

    /// A child of ours, from now on. `name` is for the log; the callback is borrowed, null for none.
    void add(pid_t pid, const char* name, Callback* callback);

    /// Nobody waits for the child any more; it is reaped all the same.
    void detach(pid_t pid);
    void detachAll(Callback* callback); ///< all children of that callback, which is about to go

    /// Sends a signal. False, with errno set, if there is no such process or it may not be signalled.
    bool kill(pid_t pid, int signal);

    bool knows(pid_t pid) const;         ///< added and not yet reaped
    const char* nameOf(pid_t pid) const; ///< "<detached>" after detach, "<unknown>" for what was never added

    void reap(); ///< looks at all children now; never waits

private:
    struct Child {
        plat::String name;
        Callback* callback;
        bool detached;
    };

    ProcessMonitor();
    ~ProcessMonitor() override = default;

    // io::FdKickerCallback
    void kicked(io::FdKicker* from) override;

    void startOver();
    void reapOne(pid_t pid);

    pid_t owner; // a fork leaves a copy that is no use
    std::map<pid_t, Child> children;
    std::unique_ptr<io::FdKicker> kicker;
};

/// "status 3" of an exit, "signal 9" of a death, for logs and messages; `waitStatus` as of waitpid(2).
plat::String waitStatusText(int waitStatus);

} // namespace os
