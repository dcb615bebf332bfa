// Timers on the event loop of the current thread.
#pragma once

#include "plat/CircularVector.h"
#include "plat/NonCopyable.h"

#include <cstdint>

namespace plat {

class TimerManager;

/// Wakes a callback once or at intervals.
///
/// Make it a member of what it wakes. Every call, and destruction, is safe inside timerExpired.
class Timer : private NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// True fires again after the interval; late by less than one, it keeps its phase.
        virtual bool timerExpired(Timer*) { return false; }
    };

    explicit Timer(Callback* target) : callback(target) {} ///< borrowed, outlives the timer
    ~Timer();
    void start(uint32_t ms);                   ///< from now, also when running; the thread must have a TimerManager
    void start(uint32_t ms, TimerManager& on); ///< the same on a manager that need not be the current one
    void cancel();                             ///< also when idle, or due in this round
    bool isActive() const { return manager != nullptr; }  ///< false while it is being fired
    uint32_t getIntervalMs() const { return intervalMs; } ///< of the last start

private:
    friend class TimerManager;

    Timer* next = nullptr;
    Timer* prev = nullptr;
    int64_t expiry = 0; // monotonic, ticks of 100 ns
    uint32_t intervalMs = 0;
    Callback* callback;
    TimerManager* manager = nullptr; // null while idle or being fired
    bool* destroyed = nullptr;       // set by the destructor while the timer is being fired
};

/// The timers of one loop, sorted by the time of firing; the newest one of a thread is its current one.
class TimerManager : private NonCopyable {
public:
    class Observer {
    public:
        virtual ~Observer() = default;
        virtual void nextTimerChanged(int timeUntilNextMs) = 0; ///< -1: no timer
    };

    explicit TimerManager(bool nested = false); ///< asserts that it is the thread's only one unless nested
    ~TimerManager();                            ///< cancels every timer

    static TimerManager* current();                           ///< of this thread, or null
    void setObserver(Observer* target) { observer = target; } ///< borrowed, may be null

    /// Milliseconds to the first timer, rounded up, 0 to 0x7fffffff, or -1 for none; `now` may be null.
    int timeUntilNext(int64_t* now = nullptr);

    /// Fires what is due; gives 0 then, else timeUntilNext. Timers started meanwhile wait for the next round.
    int processTimers();

private:
    friend class Timer;

    void startTimer(Timer* timer, uint32_t ms);
    void cancelTimer(Timer* timer);
    void insert(Timer* timer);
    void unlink(Timer* timer);
    bool checkTime(int64_t* now); // true after a jump of the clock
    void restartAll(int64_t now);
    void fire(Timer* timer);
    int msUntil(int64_t now) const;
    void tellObserver();

    TimerManager* previous;
    Timer* head = nullptr;
    Timer* tail = nullptr;
    CircularVector<Timer*> due; // being fired in this round
    Observer* observer = nullptr;
    bool* destroyed = nullptr; // set by the destructor while processTimers runs
};

} // namespace plat
