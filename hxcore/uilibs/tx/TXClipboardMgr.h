// The clipboard of the desktop, watched and set.
#pragma once

#include "plat/Timer.h"
#include "tx/SelectionConversion.h"
#include "tx/TXClipboardWindow.h"
#include "tx/TXEventHandler.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace tx {

/// Tells what other clients copy, and offers text to them. Never waits for anybody.
///
/// Changes come as events of the XFixes extension; without it, by looking every so often, and by the times and texts
/// that the owners tell. What was there at the start counts as old.
class TXClipboardMgr : private TXEventHandler, private plat::Timer::Callback, private SelectionConversion::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// Another client has copied this: UTF-8 without NULs, not empty, at most selectionLimit bytes.
        virtual void textCopied(const std::string& utf8) = 0;
    };

    /// `pollMs` counts without XFixes only; 0 then means that nothing is noticed. With `sendPrimary` PRIMARY is watched
    /// too, and goes before CLIPBOARD. The display must be open.
    TXClipboardMgr(Callback* callback, int pollMs, bool sendPrimary);
    ~TXClipboardMgr() override;

    void start(); ///< watches for changes from now on
    void stop();  ///< watches no more; what is offered stays
    bool isRunning() const { return running; }

    void setText(std::string_view utf8); ///< claims both selections, also while stopped

private:
    // A selection that is watched.
    struct Source {
        Atom selection = none;
        bool pending = false;   // has changed, text not yet taken
        bool asked = false;     // to be asked for its time in this round of polling
        bool dated = false;     // `time` is known
        Time time = 0;          // of its last change
        Window owner = none;    // when last polled
        std::size_t digest = 0; // of the text last taken, where the owner tells no time
    };

    bool handleEvent(XEvent* event) override;
    bool timerExpired(plat::Timer* timer) override;
    void converted(SelectionConversion* conversion, SelectionConversion::Answer& answer) override;

    bool selectEvents(bool on); // false without XFixes
    void selectionChanged(Source& source, Window owner, Time time);
    void proceed();
    bool askForTime(Source& source);
    void takeTime(Source& source, const SelectionConversion::Answer& answer);
    bool takeText(Source& source, std::string text);
    void takeCutBuffer();
    void tell(const std::string& text);
    void convert(Source& source, Atom target);
    Source* findSource(Atom selection);

    class CutBufferHandler : public TXEventHandler {
    public:
        explicit CutBufferHandler(TXClipboardMgr* target) : mgr(target) {}
        bool handleEvent(XEvent* event) override;

    private:
        TXClipboardMgr* mgr;
    };

    Callback* callback;
    int pollMs;
    bool sendPrimary;
    TXClipboardWindow window;
    std::array<Source, 2> sources;                   // PRIMARY, then CLIPBOARD
    std::unique_ptr<SelectionConversion> conversion; // under way, or null
    plat::Timer pollTimer{this};
    CutBufferHandler cutBufferHandler{this};
    bool running = false;
    bool polling = false;
    bool firstRound = false; // of polling: what is there is old
    bool cutBufferPending = false;
    int fixesEvent = -1;        // the base of the events of XFixes, -1 without it
    Time lastTime = 0;          // of the change told, or made by us, last
    std::size_t lastLatin1 = 0; // digest of that text in Latin-1
};

} // namespace tx
