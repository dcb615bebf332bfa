#include "plat/Timer.h"

#include "plat/Assert.h"
#include "plat/LogSrc.h"
#include "plat/monoTime.h"

#include <algorithm>

namespace plat {
namespace {
LogSrc log("Timer");
thread_local TimerManager* thrInst = nullptr;

// How late the first timer may be before the clock's step is taken for a jump.
constexpr int64_t plausibleLateness = 240 * ticksPerSecond;

/// Lets a function that calls back learn that its object is gone.
class DeathWatch {
public:
    explicit DeathWatch(bool*& slot_) : slot(slot_), outer(slot_) { slot = &dead; }
    ~DeathWatch() {
        if (!dead)
            slot = outer;
        else if (outer)
            *outer = true;
    }
    bool isDead() const { return dead; }

private:
    bool*& slot; // not to be touched once dead
    bool* outer;
    bool dead = false;
};

} // namespace

Timer::~Timer() {
    cancel();
    if (destroyed)
        *destroyed = true;
}

void Timer::start(uint32_t ms) {
    ASSERT(thrInst);
    start(ms, *thrInst);
}

void Timer::start(uint32_t ms, TimerManager& on) {
    cancel();
    on.startTimer(this, ms);
}

void Timer::cancel() {
    if (manager)
        manager->cancelTimer(this);
}

TimerManager::TimerManager(bool nested) : previous(thrInst) {
    ASSERT(nested || !thrInst);
    thrInst = this;
}

TimerManager::~TimerManager() {
    while (head)
        cancelTimer(head);
    while (!due.isEmpty())
        cancelTimer(due[due.size() - 1]);
    ASSERT(thrInst == this);
    thrInst = previous;
    if (destroyed)
        *destroyed = true;
}

TimerManager* TimerManager::current() { return thrInst; }

int TimerManager::timeUntilNext(int64_t* now) {
    int64_t time = 0;
    checkTime(&time);
    if (now)
        *now = time;
    return msUntil(time);
}

int TimerManager::processTimers() {
    int64_t now = 0;
    const int wait = timeUntilNext(&now);
    if (wait != 0)
        return wait;
    // What a callback that threw left in `due` still fires, in front of what is due now.
    while (head && head->expiry <= now) {
        Timer* timer = head;
        unlink(timer);
        due.pushBack(timer);
    }
    DeathWatch watch(destroyed);
    while (!due.isEmpty()) {
        fire(due.popFront());
        if (watch.isDead())
            return 0;
    }
    tellObserver();
    return 0;
}

void TimerManager::fire(Timer* timer) {
    timer->manager = nullptr;
    DeathWatch managerWatch(destroyed);
    DeathWatch timerWatch(timer->destroyed);
    const int64_t dueAt = timer->expiry;
    const bool again = timer->callback->timerExpired(timer);
    if (!again || timerWatch.isDead() || managerWatch.isDead() || timer->manager)
        return;
    const int64_t interval = timer->intervalMs * ticksPerMs;
    int64_t now = 0;
    const bool jumped = checkTime(&now);
    timer->expiry = dueAt + interval;
    if (jumped || timer->expiry <= now)
        timer->expiry = now + interval;
    insert(timer);
}

void TimerManager::startTimer(Timer* timer, uint32_t ms) {
    int64_t now = 0;
    checkTime(&now);
    timer->intervalMs = ms;
    timer->expiry = now + ms * ticksPerMs;
    insert(timer);
    if (head == timer)
        tellObserver();
}

void TimerManager::cancelTimer(Timer* timer) {
    timer->manager = nullptr;
    for (int i = 0; i < due.size(); ++i)
        if (due[i] == timer) {
            due.erase(i);
            return;
        }
    unlink(timer);
}

void TimerManager::insert(Timer* timer) {
    // Behind the last one that is not later, sought from the nearer end.
    Timer* before = tail;
    if (head && timer->expiry - head->expiry < tail->expiry - timer->expiry) {
        before = nullptr;
        for (Timer* after = head; after->expiry <= timer->expiry; after = after->next)
            before = after; // the tail is later
    } else {
        while (before && before->expiry > timer->expiry)
            before = before->prev;
    }
    timer->manager = this;
    timer->prev = before;
    timer->next = before ? before->next : head;
    (before ? before->next : head) = timer;
    (timer->next ? timer->next->prev : tail) = timer;
}

void TimerManager::unlink(Timer* timer) {
    (timer->prev ? timer->prev->next : head) = timer->next;
    (timer->next ? timer->next->prev : tail) = timer->prev;
    timer->next = timer->prev = nullptr;
}

bool TimerManager::checkTime(int64_t* now) {
    const int64_t limit = head ? head->expiry + plausibleLateness : noTimeLimit;
    bool jumped = false;
    *now = monoTime(limit, &jumped);
    if (!jumped)
        return false;
    log.info(limit > *now ? "Time has jumped forwards - restarting timers"
                          : "Time has moved backwards - restarting timers");
    restartAll(*now);
    return true;
}

void TimerManager::restartAll(int64_t now) {
    Timer* last = tail;
    head = tail = nullptr;
    while (last) {
        Timer* timer = last;
        last = timer->prev;
        timer->expiry = now + timer->intervalMs * ticksPerMs;
        insert(timer);
    }
    for (int i = 0; i < due.size(); ++i)
        due[i]->expiry = now;
}

int TimerManager::msUntil(int64_t now) const {
    if (!due.isEmpty())
        return 0;
    if (!head)
        return -1;
    const int64_t ticks = head->expiry - now;
    return static_cast<int>(std::clamp<int64_t>((ticks + ticksPerMs - 1) / ticksPerMs, 0, 0x7fffffff));
}

void TimerManager::tellObserver() {
    if (observer)
        observer->nextTimerChanged(timeUntilNext());
}

} // namespace plat
