#include "tx/ConsentGuard.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"
#include "tx/TX.h"

#include <utility>

namespace tx {
namespace {

plat::LogSrc log("ConsentGuard");
plat::BoolParameter localConsentOnly("LocalConsentOnly", plat::LocKey("tx_param_localconsentonly"),
                                     /*defaultValue=*/false);

/// The server's clock has 32 bits, and wraps.
int msBetween(Time from, Time to) { return static_cast<int>(static_cast<unsigned>(to) - static_cast<unsigned>(from)); }

} // namespace

ConsentGuard::Scope::Scope(std::shared_ptr<ConsentGuard> guard_, const XEvent& event) : guard(std::move(guard_)) {
    if (guard)
        outer = std::exchange(guard->current, guard->judge(event));
}

ConsentGuard::Scope::Scope(std::shared_ptr<ConsentGuard> guard_, Verdict known) : guard(std::move(guard_)) {
    if (guard)
        outer = std::exchange(guard->current, known);
}

ConsentGuard::Scope::~Scope() {
    if (guard)
        guard->current = outer;
}

ConsentGuard::ConsentGuard() : watching(InputSources::instance().watch(/*on=*/true)) {
    if (!watching && isLocalOnly())
        log.error("this X server can't tell local input from injected input: only a time-out can decide");
}

ConsentGuard::~ConsentGuard() {
    if (watching && dpy)
        InputSources::instance().watch(/*on=*/false);
}

void ConsentGuard::shown() {
    shownAt = getServerTime();
    uncoveredAt = shownAt;
    visibility = VisibilityUnobscured;
    mayBeTyping = false;
    clicked = false;
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

/// The keyboard is ours from here on. What went down before counts as held, and a press on its way does too.
void ConsentGuard::noteKeyboard() {
    noteHeldKeys();
    quietSince = getServerTime();
    mayBeTyping = !clicked || msBetween(clickedAt, quietSince) > keyDelayMs;
}

void ConsentGuard::noteVisibility(int state) {
    if (state < visibility) // VisibilityUnobscured is the least
        uncoveredAt = getServerTime();
    visibility = state;
}

void ConsentGuard::givenAway(const XKeyEvent& event) {
    if (event.type == KeyPress)
        keys[event.keycode] = Verdict::Method;
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
    case Verdict::Hidden:
        return "the window is hidden";
    case Verdict::Injected:
        return "injected";
    case Verdict::Unknown:
        return "of unknown source";
    case Verdict::Method:
        return "by way of an input method";
    }
    return "";
}

ConsentGuard::Verdict ConsentGuard::judge(const XEvent& event) {
    switch (event.type) {
    case FocusIn:
        if (!event.xany.send_event) {
            hasKeyboard = event.xfocus.detail != NotifyPointer;
            noteKeyboard();
        }
        return Verdict::NotFresh;
    case FocusOut: // which lets go of what is held
        if (!event.xany.send_event)
            hasKeyboard = false;
        return Verdict::NotFresh;
    case EnterNotify:
        // Where no window has the focus, keys go to the one under the pointer.
        if (event.xcrossing.focus && !hasKeyboard && !event.xany.send_event)
            noteKeyboard();
        return Verdict::NotFresh;
    case LeaveNotify:
        return Verdict::NotFresh;
    case Expose:
        if (!event.xany.send_event)
            uncoveredAt = getServerTime();
        return Verdict::NoInput;
    case VisibilityNotify:
        if (!event.xany.send_event)
            noteVisibility(event.xvisibility.state);
        return Verdict::NoInput;
    case KeyPress:
        return judgePress(event, keys, event.xkey.keycode);
    case KeyRelease:
        return judgeRelease(event, keys, event.xkey.keycode);
    case ButtonPress:
        return judgePress(event, buttons, event.xbutton.button);
    case ButtonRelease:
        return judgeRelease(event, buttons, event.xbutton.button);
    case MotionNotify:
        return judgeMotion(event.xmotion);
    default:
        return Verdict::NoInput;
    }
}

ConsentGuard::Verdict ConsentGuard::judgePress(const XEvent& event, std::map<unsigned, Verdict>& presses,
                                               unsigned code) {
    if (event.xany.send_event)
        return Verdict::Forged; // and what is held stays so
    const bool isKey = event.type == KeyPress;
    // A repetition is a release and a press of the same moment, unless the client asked for presses alone.
    const bool repeated = isKey && code == releasedKey && event.xkey.time == releasedAt;
    Verdict verdict = judgeSource(event);
    if (verdict != Verdict::Injected && (repeated || presses.count(code)))
        verdict = Verdict::NotFresh;
    else if (verdict == Verdict::Deliberate)
        verdict = judgeTime(event);
    presses[code] = verdict;
    return verdict;
}

/// The buttons in its state are those of a press that was judged, or none of ours; without any it begins nothing.
ConsentGuard::Verdict ConsentGuard::judgeMotion(const XMotionEvent& event) const {
    if (event.send_event)
        return Verdict::Forged;
    Verdict verdict = Verdict::NotFresh;
    for (unsigned button = Button1; button <= Button5; button++) {
        if (!(event.state & unsigned{Button1Mask} << (button - Button1)))
            continue;
        const auto press = buttons.find(button);
        verdict = press == buttons.end() ? Verdict::NotFresh : press->second;
        if (verdict != Verdict::Deliberate)
            break;
    }
    return verdict;
}

/// Of a fresh press that may count.
ConsentGuard::Verdict ConsentGuard::judgeTime(const XEvent& event) {
    if (event.type == KeyPress) {
        if (isTyping(event) || msBetween(shownAt, event.xkey.time) < keyDelayMs)
            return Verdict::TooEarly;
        return visibility == VisibilityFullyObscured ? Verdict::Hidden : Verdict::Deliberate;
    }
    const Time time = event.xbutton.time;
    if (msBetween(shownAt, time) < pointerDelayMs || msBetween(uncoveredAt, time) < pointerDelayMs)
        return Verdict::TooEarly;
    clicked = true; // whoever clicks here means this window with the keys that follow, too
    clickedAt = time;
    mayBeTyping = false;
    return Verdict::Deliberate;
}

/// Whether the key may belong to a text that was begun for another window.
bool ConsentGuard::isTyping(const XEvent& press) {
    if (!mayBeTyping)
        return false;
    mayBeTyping = msBetween(quietSince, press.xkey.time) < keyDelayMs;
    quietSince = press.xkey.time;
    return mayBeTyping;
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
