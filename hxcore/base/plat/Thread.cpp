#include "plat/Thread.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <cstdio>
#include <memory>

namespace plat {
namespace {
LogSrc logSrc("Thread");
thread_local Thread* runningThread = nullptr;      // the one that the caller runs in
thread_local std::unique_ptr<Thread> nativeThread; // the wrapping of a thread that we didn't start
} // namespace

Mutex::Mutex() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    if (pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) != 0)
        std::fputs("WARNING: system libpthread has no recursive mutexes; deadlock may result.\n", stderr);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

Mutex::~Mutex() { pthread_mutex_destroy(&mutex); }

void Mutex::lock() { pthread_mutex_lock(&mutex); }

void Mutex::unlock() { pthread_mutex_unlock(&mutex); }

Condition::Condition(Mutex& m) : mutex(m) { pthread_cond_init(&cond, nullptr); }

Condition::~Condition() { pthread_cond_destroy(&cond); }

void Condition::wait(int timeoutMs) {
    ASSERT_TEXT(timeoutMs == -1, "Condition timed wait not implemented yet");
    pthread_cond_wait(&cond, &mutex.mutex);
}

void Condition::signal() { pthread_cond_signal(&cond); }

void Condition::broadcast() { pthread_cond_broadcast(&cond); }

Thread::Thread(const char* name_, Runnable* target_) : name(name_), target(target_) {}

Thread::Thread(pthread_t native) : name("Native"), target(nullptr), state(State::Native), id(native) {}

Thread::~Thread() {
    log("destroy");
    if (!isDetached)
        join();
    log("destroyed");
}

void Thread::start() {
    Lock lock(mutex);
    if (state != State::Created)
        return;
    const int error = pthread_create(&id, nullptr, threadMain, this);
    if (error != 0)
        throw SystemException("pthread_create", error);
    state = State::Started;
}

void Thread::join() {
    pthread_t joining;
    {
        Lock lock(mutex);
        if ((state != State::Started && state != State::Stopped) || isDetached)
            return;
        joining = id;
    }
    ASSERT(!pthread_equal(joining, pthread_self()));
    log("join");
    pthread_join(joining, nullptr); // without the mutex: the thread takes it to end
    log("joined");
    Lock lock(mutex);
    state = State::Joined;
}

void Thread::detach() {
    bool isOver;
    {
        Lock lock(mutex);
        ASSERT(!isDetached && state != State::Native);
        isDetached = true;
        if (state == State::Started || state == State::Stopped)
            pthread_detach(id);
        isOver = state != State::Started;
    }
    if (isOver)
        delete this;
}

Thread* Thread::getCurrent() {
    if (!runningThread) {
        nativeThread.reset(new Thread(pthread_self()));
        runningThread = nativeThread.get();
    }
    return runningThread;
}

Thread::State Thread::getState() const {
    Lock lock(mutex);
    return state;
}

void* Thread::threadMain(void* self) {
    static_cast<Thread*>(self)->main();
    return nullptr;
}

void Thread::main() {
    {
        Lock lock(mutex); // start() is still writing our id
    }
    runningThread = this;
    log("started");
    try {
        target->run();
        log("stopped");
    } catch (const std::exception& e) {
        log("failed", ": ", e.what());
    }
    bool endsAlone;
    {
        Lock lock(mutex);
        state = State::Stopped;
        endsAlone = isDetached;
    }
    if (endsAlone)
        delete this;
}

void Thread::log(const char* word, const char* separator, const char* text) const {
    logSrc.debug("%-9s %s %lx%s%s", word, name.c_str(), static_cast<unsigned long>(id), separator, text);
}

} // namespace plat
