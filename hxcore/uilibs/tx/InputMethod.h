// Text from an input method.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"
#include "plat/Timer.h"
#include "rfb/Rect.h"
#include "tx/xlib.h"

#include <cstdint>
#include <deque>

struct _xcb_xim_t;

namespace tx {

/// Who takes text from an input method.
class InputMethodClient {
public:
    virtual ~InputMethodClient() = default;
    virtual void inputMethodKey(XKeyEvent* event) = 0;          ///< a key that the method doesn't use
    virtual void inputMethodText(const plat::String& text) = 0; ///< UTF-8
};

/// Speaks XIM with the input method that XMODIFIERS names ("@im=<name>"), over the spot: its window follows the text
/// cursor of the widget that takes text. Keys go there only while there is such a widget.
///
/// Nothing waits for the method: keys are sent, and come back later as keys or as text. One that leaves a key without
/// an answer for answerMs counts as hung: the keys are used as they are, and it is let alone until another one runs. By
/// libxcb-imdkit; without it there is no input method.
///
/// Off unless the hidden parameter _InputMethod is on: keys that a method gives back have not been seen to arrive in
/// every case, and plain typing must not suffer from that.
class InputMethod : private plat::Timer::Callback, private plat::NonCopyable {
public:
    static constexpr unsigned answerMs = 1000;

    static InputMethod& instance();

    /// `client` takes text in `window`, with its cursor at `cursor` (in the window); an empty rectangle ends that.
    /// Called whenever the cursor moves.
    void setCursor(InputMethodClient* client, Window window, const rfb::Rect& cursor);
    void forget(InputMethodClient* client); ///< its keys that are under way are dropped

    /// True if the method has taken the key; what becomes of it comes through the client.
    bool takeKey(InputMethodClient* client, const XKeyEvent& event);

    /// True for an event between us and the method.
    bool filterEvent(const XEvent& event);

    bool isReady() const { return context != 0; } ///< a method takes our keys

    void close(); ///< before the display is

    // What the library calls.
    void opened();
    void contextMade(uint16_t id);
    void keyReturned(unsigned type, unsigned keycode, Time time);
    void keyDone();
    void textCommitted(uint32_t flags, const char* text, uint32_t len, const uint32_t* keysyms, size_t keysymCount);
    void lost();

private:
    InputMethod() = default;

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void start();
    void makeContext();
    void sendSpot(bool probe);
    void stop();
    void giveBack();
    void flush();
    void deliver(XKeyEvent event);

    _xcb_xim_t* im = nullptr; // null while no method is spoken with
    bool isOpen = false;
    uint16_t context = 0; // of `contextWindow`; 0 for none
    Window contextWindow = none;
    bool contextAsked = false;
    Window hungOwner = none; // of a method that gave no answer
    Window owner = none;
    InputMethodClient* current = nullptr;
    Window currentWindow = none;
    rfb::Rect spot;
    std::deque<XKeyEvent> pending; // sent, and not given back
    size_t unanswered = 0;         // of the latest of them; the method is through with the others
    bool stopLater = false;        // lost inside a call of the library
    int depth = 0;                 // of calls into the library
    plat::Timer answerTimer{this};
};

} // namespace tx
