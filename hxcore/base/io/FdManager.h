// The loop's list of descriptors and timers, and the dispatch of a round.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/Timer.h"

#include <vector>

namespace io {

class FdHandler;

/// Handlers in the order of their addresses, each at most once.
class FdHandlerSet {
public:
    bool add(FdHandler* handler);    ///< false if it was there
    bool remove(FdHandler* handler); ///< false if it wasn't
    bool contains(FdHandler* handler) const;
    FdHandler* takeLast(); ///< null when empty
    bool isEmpty() const { return items.empty(); }
    void takeFrom(FdHandlerSet& other); ///< all of them
    void swap(FdHandlerSet& other) { items.swap(other.items); }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }

private:
    std::vector<FdHandler*> items;
};

/// The base of an event loop: it holds handlers and timers and calls them, but cannot wait by itself.
///
/// The newest one of a thread is its current one; another may be nested in it, with timers and handlers of its own.
class FdManager : private plat::Timer::Callback, private plat::NonCopyable {
public:
    /// The current manager of this thread, or null.
    static FdManager* current();

    /// Enters a handler, borrowed, or takes it out: then nothing calls it any more, not even in this round.
    void addHandler(FdHandler* handler, bool add);

    /// What to watch of a handler that is entered; `accept` is reading on a listening socket.
    ///
    /// False: `connectInterest` was asked for, and this manager can't report it.
    virtual bool setInterest(FdHandler* handler, bool read, bool write, bool except, bool accept, bool connectInterest);

    void markReadable(FdHandler* handler); ///< fdReadable in the next round, which comes at once
    void markWritable(FdHandler* handler); ///< fdWritable in the next round, which comes at once
    void unmark(FdHandler* handler);       ///< out of all that waits to be called, in this round too
    void kick();                           ///< the next wait returns at once

    /// Starts a timer on this manager, also while another one is nested in it.
    void startTimer(plat::Timer& timer, uint32_t ms);

    /// Closes the descriptors of all handlers but `except` (null: of all), in a forked child.
    void closeFds(const FdHandler* except);

    /// Takes all handlers out, calling fdManagerGone on each, last first: the end of every manager begins so.
    void dismissHandlers();

    /// For exit(), which leaves the stack as it is: dismissHandlers on this thread's managers, from the innermost out.
    static void dismissAll();

protected:
    explicit FdManager(bool nested);
    ~FdManager() override; ///< the derived destructor has called dismissHandlers

    void dispatch(); ///< one round: timers, then readable, then writable handlers
    void loseRead(FdHandler* handler);
    void loseWrite(FdHandler* handler);

    FdHandlerSet handlers;
    FdHandlerSet readReady, writeReady; // to be called in the next round
    plat::TimerManager timers;

private:
    bool timerExpired(plat::Timer* timer) override;
    virtual void forget(FdHandler* /*handler*/) {} // it was taken out

    FdHandlerSet readPending, writePending; // being called in this round
    plat::Timer kickTimer{this};
    FdManager* previous;
};

} // namespace io
