// Threads, mutexes and conditions, for those who need them: the loop and its callbacks run on one thread.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <pthread.h>

namespace plat {

/// A recursive mutex.
class Mutex : private NonCopyable {
public:
    Mutex();
    ~Mutex();
    void lock();
    void unlock();

private:
    friend class Condition;
    pthread_mutex_t mutex;
};

/// Holds a mutex for a scope.
class Lock : private NonCopyable {
public:
    explicit Lock(Mutex& m) : mutex(m) { mutex.lock(); }
    ~Lock() { mutex.unlock(); }

private:
    Mutex& mutex;
};

/// What threads wait for; the caller holds the mutex, once, for every call.
class Condition : private NonCopyable {
public:
    explicit Condition(Mutex& m); ///< borrowed
    ~Condition();
    void wait(int timeoutMs = -1); ///< only without a limit; may return early, so test in a loop
    void signal();
    void broadcast();

private:
    Mutex& mutex;
    pthread_cond_t cond;
};

/// What a thread does.
class Runnable {
public:
    virtual ~Runnable() = default;
    virtual void run() = 0; ///< what it throws is logged and ends the thread
};

/// A named thread. The destructor joins it, unless it was detached: then it deletes itself when it ends.
class Thread : private NonCopyable {
public:
    enum class State { Created, Started, Stopped, Joined, Native };

    /// `target` is borrowed and must outlive the thread.
    Thread(const char* name, Runnable* target);
    ~Thread();

    void start();  ///< once only: false attempts are ignored; throws plat::SystemException "pthread_create"
    void join();   ///< waits for the end of a thread that was started and not detached
    void detach(); ///< of a thread from new; the caller must not touch it again

    static Thread* getCurrent(); ///< the calling thread, wrapped as "Native" if it wasn't started here

    State getState() const;
    const char* getName() const { return name.c_str(); }

private:
    explicit Thread(pthread_t native);
    static void* threadMain(void* self);
    void main();
    void log(const char* word, const char* separator = "", const char* text = "") const;

    mutable Mutex mutex; // guards what follows against the thread itself
    String name;
    Runnable* target;
    State state = State::Created;
    bool isDetached = false;
    pthread_t id{};
};

} // namespace plat
