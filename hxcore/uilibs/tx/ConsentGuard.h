// Tells a deliberate act of the person at the screen from other input.
#pragma once

#include "plat/NonCopyable.h"
#include "tx/InputSources.h"
#include "tx/xlib.h"

#include <map>
#include <memory>
#include <set>

namespace tx {

/// Judges the keys and buttons of one window that asks for consent.
///
/// A remote user who is let in types and points through the same server, other clients can send events, and somebody
/// may be typing when the window appears. An act counts if the press that began it was sent by the server, not by a
/// client; was a fresh one, of a key that was up, not its repetition; and came at least pointerDelayMs or keyDelayMs
/// after the window appeared. With the parameter LocalConsentOnly it must have come from a device as well, not from
/// XTEST.
///
/// What another window hid counts as new once it is seen: the delay of the pointer begins again, since the click may
/// have been meant for what lay there; keys do nothing while all of the window is hidden. And a window that was given
/// the keyboard, rather than clicked, may have cut into somebody's typing: keys count once none came for keyDelayMs.
///
/// Input that can't count is kept from the window altogether (isIgnored), so that nobody else moves the focus, say.
class ConsentGuard : private plat::NonCopyable {
public:
    enum class Verdict {
        Deliberate,
        NoInput, ///< no key or button is being handled
        Forged,  ///< sent by a client
        TooEarly,
        NotFresh, ///< held down since before, or repeated; or no press at all
        Hidden,   ///< a key, while nobody can see the window
        Injected, ///< not by a device of this computer
        Unknown,  ///< injected perhaps: the server doesn't tell
        Method,   ///< by way of an input method, which is another client
    };

    static constexpr int pointerDelayMs = 500;
    static constexpr int keyDelayMs = 1000;

    /// Marks an event of the window as being handled. They nest: a handler may run a loop of its own.
    class Scope {
    public:
        Scope(std::shared_ptr<ConsentGuard> guard, const XEvent& event); ///< null is none
        Scope(std::shared_ptr<ConsentGuard> guard, Verdict known);       ///< without an event of the server
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        std::shared_ptr<ConsentGuard> guard;
        Verdict outer = Verdict::NoInput;
    };

    ConsentGuard();
    ~ConsentGuard();

    /// The window came into view: the delays begin, and what is held down stays without effect until it is let go.
    /// Takes two round trips.
    void shown();

    /// The press being handled is an input method's from here on: neither what comes back nor its release counts.
    void givenAway(const XKeyEvent& event);

    Verdict verdict() const; ///< on the event being handled
    bool isIgnored() const { return current == Verdict::Forged || current == Verdict::Injected; }

    static bool isLocalOnly(); ///< parameter LocalConsentOnly
    static const char* describe(Verdict verdict);

private:
    Verdict judge(const XEvent& event);
    Verdict judgePress(const XEvent& event, std::map<unsigned, Verdict>& presses, unsigned code);
    Verdict judgeRelease(const XEvent& event, std::map<unsigned, Verdict>& presses, unsigned code);
    static Verdict judgeSource(const XEvent& event);
    Verdict judgeTime(const XEvent& event);
    Verdict judgeMotion(const XMotionEvent& event) const;
    bool isTyping(const XEvent& press);
    void noteHeldKeys();
    void noteKeyboard();
    void noteVisibility(int state);

    bool watching;        // the sources of input
    Time shownAt = 0;     // by the server's clock, as are all times here
    Time uncoveredAt = 0; // a part of the window, or all of it
    int visibility = VisibilityUnobscured;
    bool hasKeyboard = false; // by the focus, rather than under the pointer
    bool mayBeTyping = false; // since the keyboard came; quietSince holds
    Time quietSince = 0;      // the keyboard came, or the last key that was too early
    bool clicked = false;     // deliberately; clickedAt holds
    Time clickedAt = 0;
    Verdict current = Verdict::NoInput;
    std::map<unsigned, Verdict> keys;    // that are down, and what was thought of their press
    std::map<unsigned, Verdict> buttons; // the same
    unsigned releasedKey = 0;            // the last one let go, at
    Time releasedAt = 0;
};

} // namespace tx
