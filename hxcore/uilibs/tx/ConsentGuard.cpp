#include "tx/ConsentGuard.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"
#include "tx/TX.h"

#include <utility>

namespace tx {
namespace {

plat::LogSrc log("ConsentGuard");
plat::BoolParameter localConsentOnly("LocalConsentOnly", plat::LocKey("tx_param_localconsentonly"), false);

/// The server's clock has 32 bits, and wraps.
int msBetween(Time from, Time to) { return static_cast<int>(static_cast<unsigned>(to) - static_cast<unsigned>(from)); }

} // namespace

ConsentGuard::Scope::Scope(std::shared_ptr<ConsentGuard> guard_, const XEvent& event) : guard(std::move(guard_)) {
    if (guard)
        outer = std::exchange(guard->current, guard->judge(event));
}

ConsentGuard::Scope::~Scope() {
    if (guard)
        guard->current = outer;
}

ConsentGuard::ConsentGuard() : watching(InputSources::instance().watch(true)) {
    if (!watching && isLocalOnly())
        log.error("this X server can't tell local input from injected input: only a time-out can decide");
}

ConsentGuard::~ConsentGuard() {
    if (watching && dpy)
        InputSources::instance().watch(false);
}

void ConsentGuard::shown() {
    shownAt = getServerTime();
    buttons.clear(); // a release alone has no effect
    noteHeldKeys();
}

void ConsentGuard::noteHeldKeys() {
    char down[32] = {};
    XQueryKeymap(dpy, down);
    keys.clear();
    for (unsigned code = 0; code < 256; code++) {
        if (down[code / 8] & (1 << code % 8))
            keys[code] = Verdict::NotFresh;
    }
}

ConsentGuard::Verdict ConsentGuard::verdict() const {
    if (current == Verdict::NoInput && !isLocalOnly())
        return Verdict::Deliberate; // our own doing, such as inspection
    return current;
}

bool ConsentGuard::isLocalOnly() { return localConsentOnly.value(); }

const char* ConsentGuard::describe(Verdict verdict) {
    switch (verdict) {
    case Verdict::Deliberate:
        return "deliberate";
    case Verdict::NoInput:
        return "no input";
    case Verdict::Forged:
        return "sent by another client";
    case Verdict::TooEarly:
        return "too early";
    case Verdict::NotFresh:
        return "no fresh press";
    case Verdict::Injected:
        return "injected";
    case Verdict::Unknown:
        return "of unknown source";
    }
    return "";
}

ConsentGuard::Verdict ConsentGuard::judge(const XEvent& event) {
    switch (event.type) {
    case FocusIn:
        // Keys that went down while others had the keyboard. A press that is still on its way counts as held.
        if (!event.xany.send_event)
            noteHeldKeys();
        return Verdict::NoInput;
    case KeyPress:
        return judgePress(event, keyDelayMs, keys, event.xkey.keycode);
    case KeyRelease:
        return judgeRelease(event, keys, event.xkey.keycode);
    case ButtonPress:
        return judgePress(event, pointerDelayMs, buttons, event.xbutton.button);
    case ButtonRelease:
        return judgeRelease(event, buttons, event.xbutton.button);
    case MotionNotify:
        return event.xany.send_event ? Verdict::Forged : Verdict::NoInput;
    default:
        return Verdict::NoInput;
    }
}

ConsentGuard::Verdict ConsentGuard::judgePress(const XEvent& event, int delayMs, std::map<unsigned, Verdict>& presses,
                                               unsigned code) {
    if (event.xany.send_event)
        return Verdict::Forged; // and what is held stays so
    const bool isKey = event.type == KeyPress;
    // A repetition is a release and a press of the same moment, unless the client asked for presses alone.
    const bool repeated = isKey && code == releasedKey && event.xkey.time == releasedAt;
    Verdict verdict = judgeSource(event);
    if (verdict != Verdict::Injected && (repeated || presses.count(code)))
        verdict = Verdict::NotFresh;
    else if (verdict != Verdict::Injected && msBetween(shownAt, event.xkey.time) < delayMs)
        verdict = Verdict::TooEarly;
    presses[code] = verdict;
    return verdict;
}

ConsentGuard::Verdict ConsentGuard::judgeRelease(const XEvent& event, std::map<unsigned, Verdict>& presses,
                                                 unsigned code) {
    if (event.xany.send_event)
        return Verdict::Forged;
    if (event.type == KeyRelease) {
        releasedKey = code;
        releasedAt = event.xkey.time;
    }
    const auto press = presses.find(code);
    if (press == presses.end())
        return Verdict::NotFresh;
    const Verdict ofPress = press->second;
    presses.erase(press);
    return ofPress == Verdict::Deliberate ? judgeSource(event) : ofPress;
}

ConsentGuard::Verdict ConsentGuard::judgeSource(const XEvent& event) {
    if (!isLocalOnly())
        return Verdict::Deliberate;
    switch (InputSources::instance().sourceOf(event)) {
    case InputSource::Device:
        return Verdict::Deliberate;
    case InputSource::Injected:
        return Verdict::Injected;
    default:
        return Verdict::Unknown;
    }
}

} // namespace tx
