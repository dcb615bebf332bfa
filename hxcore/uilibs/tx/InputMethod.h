// Text from an input method.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"
#include "plat/Timer.h"
#include "rfb/Rect.h"
#include "tx/XimLink.h"
#include "tx/xlib.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace tx {

/// A window that takes text from an input method.
class InputMethodClient {
public:
    virtual ~InputMethodClient() = default;
    /// A key that the method doesn't use, or with `send_event` one that it made. It may be late.
    virtual void inputMethodKey(XKeyEvent* event) = 0;
    virtual void inputMethodText(const plat::String& text) = 0; ///< UTF-8
};

/// Speaks XIM with the input method that XMODIFIERS names ("@im=<name>"), over the spot: its window follows the text
/// cursor of the widget that takes text. Where the method can't do that, it shows its text where it likes. Keys go
/// there only while there is such a widget. It is found when a text field is entered, and when it comes or comes back
/// meanwhile.
///
/// Nothing waits for the method, which is why Xlib's own client is of no use: there each step blocks. Keys are sent,
/// and come back later as keys, as text, or not at all; behind each goes a question that every method answers. With a
/// question unanswered for answerMs, the keys under way are used as they are, and so are all further ones, until the
/// method has answered everything.
class InputMethod : private plat::Timer::Callback, private XimLink::Callback, private plat::NonCopyable {
public:
    static constexpr unsigned answerMs = 1000;

    static InputMethod& instance();

    /// `client` takes text in `window`, with its cursor at `cursor` (in the window); an empty rectangle ends that.
    /// Called whenever the cursor moves.
    void setCursor(InputMethodClient* client, Window window, const rfb::Rect& cursor);
    void forget(InputMethodClient* client); ///< its keys that are under way are dropped

    /// True if the method has taken the key; what becomes of it comes through the client.
    bool takeKey(InputMethodClient* client, const XKeyEvent& event);

    bool filterEvent(const XEvent& event); ///< true for one between us and the method

    bool isReady() const { return context != 0 && !stalled; } ///< a method takes our keys

    void close(); ///< before the display is

private:
    /// A key that was sent.
    struct Sent {
        XKeyEvent event;
        InputMethodClient* client;
        unsigned question;     // that was asked behind it
        bool used = false;     // as it was, since the method was late: what comes back is swallowed
        bool held = false;     // and not sent: the method doesn't want it, but those before it
        bool released = false; // meanwhile, in a way that the method isn't told of
        XKeyEvent release{};
    };
    /// What a client gets next: a key, or a text.
    struct Due {
        InputMethodClient* client;
        XKeyEvent event;
        plat::String text;
    };
    enum class Stage { Opening, Asking, Open };

    InputMethod() = default;

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;
    // XimLink::Callback
    void ximAppeared() override;
    void ximConnected() override;
    bool ximMessage(const xim::Message& message) override;
    void ximLost(bool ended) override;

    void start();
    bool opened(xim::Bytes body);
    bool handleMessage(const xim::Message& message);
    bool contextMade(xim::Bytes body);
    bool handleError(xim::Bytes body);
    void keyReturned(const xim::ForwardedEvent& key);
    void textCommitted(const xim::CommitBody& body);
    bool isLate() const;
    void sync(uint16_t flags, uint16_t ofIm, uint16_t ofIc);
    void ask(xim::Writer& writer);
    void answered();
    void makeContext();
    void dropContext();
    void focusContext(bool in);
    void followCursor();
    void spotValue(xim::Writer* out, bool whole) const;
    void sendSpot(bool probe);
    bool triggers(const XKeyEvent& event);
    bool holdBack(InputMethodClient* client, const XKeyEvent& event);
    void useHeldKeys();
    void useSentKeys();
    void use(const Sent& key);
    void giveDue();

    XimLink link{this};
    Stage stage = Stage::Opening;
    unsigned lastAsked = 0;    // number of the last question
    unsigned lastAnswered = 0; // answers come in the order of the questions
    unsigned leftUpTo = 0;     // the question behind the leaving of a field
    bool stalled = false;      // late with an answer
    bool confirming = false;   // that it is no longer
    uint16_t im = 0;
    xim::AttributeIds ids;
    std::vector<uint32_t> styles; // that are left to try, best first
    xim::TriggerKeys triggerKeys;
    uint32_t forwardMask = KeyPressMask;
    uint16_t context = 0; // of `contextWindow`; 0 for none
    Window contextWindow = none;
    InputMethodClient* contextClient = nullptr;
    bool contextAsked = false;
    unsigned contextQuestion = 0; // its number
    bool contextFocused = false;
    InputMethodClient* current = nullptr;
    Window currentWindow = none;
    rfb::Rect spot;
    std::deque<Sent> sent; // and not given back
    std::deque<Due> due;   // given once all else is settled: a client may do anything in its calls
    plat::Timer answerTimer{this};
};

} // namespace tx
