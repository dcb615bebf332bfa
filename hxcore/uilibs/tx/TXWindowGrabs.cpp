// The part of TXWindow that holds the pointer and the keyboard.
#include "plat/LogSrc.h"
#include "plat/Timer.h"
#include "tx/TX.h"
#include "tx/TXState.h"
#include "tx/TXWindow.h"

namespace tx {
namespace {

plat::LogSrc log("TXWindow");

constexpr long grabbedPointerEvents = ButtonPressMask | ButtonReleaseMask | PointerMotionMask;
constexpr uint32_t retryMs = 50;
constexpr int maxRetries = 60;

/// Asks again for a grab that was refused: a window manager holds one for as long as a key or button of its own is
/// down, and a popup that came up meanwhile would miss the press outside that closes it.
class GrabRetry : private plat::Timer::Callback {
public:
    static GrabRetry& instance() {
        static GrabRetry& retry = *new GrabRetry;
        return retry;
    }
    /// `window` wants the grab, and was refused or not; null if nobody wants it any more.
    void note(TXWindow* TXState::*refused, TXWindow* window, bool isRefused) {
        state().*refused = isRefused ? window : nullptr;
        retries = 0;
        if (isRefused && plat::TimerManager::current())
            timer.start(retryMs);
    }

private:
    bool timerExpired(plat::Timer*) override {
        TXState& shared = state();
        if (!dpy)
            return false;
        if (shared.pointerRefused && shared.pointerRefused->tryGrabPointer() == GrabSuccess)
            shared.pointerRefused = nullptr;
        if (shared.keyboardRefused && shared.keyboardRefused->tryGrabKeyboard() == GrabSuccess)
            shared.keyboardRefused = nullptr;
        return (shared.pointerRefused || shared.keyboardRefused) && ++retries < maxRetries;
    }

    plat::Timer timer{this};
    int retries = 0;
};

} // namespace

void TXWindow::setGrab(bool pointer, bool keyboard, Cursor cursor, bool ownerEvents) {
    TXWindow* const oldPointer = pointerGrabber();
    TXWindow* const oldKeyboard = keyboardGrabber();
    std::erase(state().grabWindows, this);
    grab = {pointer, keyboard, ownerEvents, cursor};
    if (pointer || keyboard)
        state().grabWindows.push_back(this);
    applyGrabs(oldPointer, oldKeyboard);
}

void TXWindow::applyGrabs(const TXWindow* oldPointer, const TXWindow* oldKeyboard) {
    TXWindow* const newPointer = pointerGrabber();
    TXWindow* const newKeyboard = keyboardGrabber();
    if (newPointer != oldPointer) {
        if (oldPointer)
            XUngrabPointer(dpy, currentTime);
        const int result = newPointer && !isGrabSuppressed() ? newPointer->tryGrabPointer() : GrabSuccess;
        if (result != GrabSuccess)
            log.error("XGrabPointer failed: %d", result);
        GrabRetry::instance().note(&TXState::pointerRefused, newPointer, result != GrabSuccess);
    }
    if (newKeyboard != oldKeyboard) {
        if (oldKeyboard)
            XUngrabKeyboard(dpy, currentTime);
        const int result = newKeyboard && !isGrabSuppressed() ? newKeyboard->tryGrabKeyboard() : GrabSuccess;
        if (result != GrabSuccess)
            log.error("XGrabKeyboard failed: %d", result);
        GrabRetry::instance().note(&TXState::keyboardRefused, newKeyboard, result != GrabSuccess);
    }
}

int TXWindow::tryGrabPointer() const {
    return XGrabPointer(dpy, win_, /*owner_events=*/True, grabbedPointerEvents, GrabModeAsync, GrabModeAsync, none,
                        grab.cursor, currentTime);
}

int TXWindow::tryGrabKeyboard() const {
    return XGrabKeyboard(dpy, win_, grab.ownerEvents ? True : False, GrabModeAsync, GrabModeAsync, currentTime);
}

} // namespace tx
