// Deleting an object that is still at work.
#pragma once

#include "plat/Timer.h"

#include <memory>

namespace plat {

/// Deletes an object, and itself, from the next round of the loop. Make it with new and forget it.
///
/// If the loop ends before, both stay.
template <class T>
class DeferredDeleter : private Timer::Callback, private NonCopyable {
public:
    explicit DeferredDeleter(T* object_) : object(object_) { timer.start(0); }

private:
    ~DeferredDeleter() override = default;

    bool timerExpired(Timer*) override {
        delete this;
        return false;
    }

    std::unique_ptr<T> object;
    Timer timer{this};
};

/// Deletes `object`, if any, from the next round of the loop.
template <class T>
void deleteLater(T* object) {
    if (object)
        new DeferredDeleter<T>(object);
}

} // namespace plat
