#include "ui/AutoHider.h"

namespace ui {

AutoHider::AutoHider() : timer(this) {}

void AutoHider::setDelay(unsigned ms) {
    delayMs = ms;
    if (timer.isActive())
        timer.start(delayMs);
}

void AutoHider::start() {
    running = true;
    if (!isPointerInside())
        timer.start(delayMs);
}

void AutoHider::stop() {
    running = false;
    timer.cancel();
}

void AutoHider::pointerEntered() { timer.cancel(); }

void AutoHider::pointerLeft() {
    if (running)
        timer.start(delayMs);
}

bool AutoHider::timerExpired(plat::Timer*) {
    // An enter may have been missed, as when the window came up under the pointer.
    if (running && !isPointerInside() && callback)
        callback->autoHide(this);
    return false;
}

} // namespace ui
