// Tells when the pointer has been away for a while.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/Timer.h"

namespace ui {

/// Calls back once the pointer has been outside of something for the delay. What it watches is up to the derived class.
class AutoHider : private plat::Timer::Callback, private plat::NonCopyable {
public:
    static constexpr unsigned defaultDelayMs = 3000;

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void autoHide(AutoHider* hider) = 0; ///< once for each time that the pointer stays away
    };

    AutoHider();
    ~AutoHider() override = default;

    void setCallback(Callback* target) { callback = target; } ///< borrowed, may be null
    void setDelay(unsigned ms);                               ///< counts from the last start or leave
    void start();                                             ///< again: the delay begins anew
    void stop();
    bool isRunning() const { return running; }

protected:
    void pointerEntered(); ///< told by the derived class
    void pointerLeft();
    virtual bool isPointerInside() = 0;

private:
    bool timerExpired(plat::Timer*) override;

    Callback* callback = nullptr;
    unsigned delayMs = defaultDelayMs;
    bool running = false;
    plat::Timer timer;
};

} // namespace ui
