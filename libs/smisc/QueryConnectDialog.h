// The question whether somebody may connect.
#pragma once

#include "hxauth/Permissions.h"
#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "plat/String.h"
#include "plat/Timer.h"
#include "smisc/fitPrompt.h"
#include "ui/Notifier.h"

#include <cstdint>
#include <memory>

namespace mui {
class MuButton;
class MuFrame;
class MuLayout;
class MuScroll;
class MuStatic;
class MuText;
} // namespace mui

namespace smisc {

/// Who asks, and what happens if nobody answers. Texts are UTF-8 as they came, and believed in nothing.
struct ConnectRequest {
    plat::String userName; ///< may be empty
    plat::String userType; ///< see promptLine
    uint16_t timeoutS = 0;
    plat::String message;              ///< Markup, shown between question and time-out; may be empty
    hxauth::Permissions timeoutRights; ///< what silence gives; nothing is a rejection
    bool offerViewOnly = false;
};

/// Gets the answer.
class QueryResultCallback {
public:
    virtual ~QueryResultCallback() = default;
    /// `byUser`: a button was pressed. It may start the next prompt.
    virtual void queryResult(const hxauth::Permissions& rights, bool byUser) = 0;
};

/// Shows one request at a time, counts down, and tells what was answered.
///
/// Only a deliberate act accepts (mui::MuElement::setDeliberate); the window takes the keyboard only when it is asked
/// to, once its first second is over. Silence gives the request's timeoutRights. Closing the window, which any client
/// could ask for, gives nothing.
class QueryConnectDialog : public mui::MuObserver, private plat::Timer::Callback, private ui::Notifier::Callback {
public:
    explicit QueryConnectDialog(QueryResultCallback* target); ///< borrowed
    ~QueryConnectDialog() override;

    void setNotifier(ui::Notifier* target) { notifier = target; } ///< borrowed; null, as at first, for none
    void start(const ConnectRequest& request); ///< in place of one that is on show, which goes unanswered
    void cancel();                             ///< no answer; nothing happens if nothing is on show
    bool isAsking() const { return asking; }

    // mui::MuObserver
    void muEvent(mui::MuElement* element, int type) override;
    void muActivated(mui::MuElement* element) override;
    void muClosed(mui::MuDialog*) override;

protected:
    /// Shows the dialog, urgent and on top, but without the keyboard: that belongs to whoever is typing.
    virtual void showQuietly() = 0;
    virtual void allowFocus() = 0;      ///< the keyboard may come from here on
    virtual void keepInView() = 0;      ///< once a second: another window may lie on it
    virtual rfb::Point frameSize() = 0; ///< what the window will have round it, in pixels

    bool mayTakeFocus() const; ///< the first second of the prompt is over
    mui::MuDialog& window() { return *dialog; }

private:
    struct Measure;

    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;
    // ui::Notifier::Callback
    bool notified(ui::Notifier::Handle, int reason) override;

    void addHeader();
    void addContent();
    mui::MuButton* addButton(mui::MuLayout* row, const char* name, const char* text);
    void fill(const ConnectRequest& request);
    void showTimeLeft(int seconds);
    void fitLine(const ConnectRequest& request);
    bool fit(int timeoutS, const PromptLimits& bounds);
    int chromeWidth();
    int wantedHeight(int width, int maxHeight);
    PromptLimits limits();
    void notify(const plat::String& line, uint16_t timeoutS);
    void hide();
    void finish(const hxauth::Permissions& rights, bool byUser);

    QueryResultCallback* callback;
    ui::Notifier* notifier = nullptr;
    ui::Notifier::Handle notification = 0; // 0: none
    hxauth::Permissions timeoutRights;
    int64_t shownAt = 0;  // monotonic, ticks of 100 ns
    int64_t deadline = 0; // the same
    bool asking = false;
    bool grants = false;    // silence does
    int leastMessagePx = 0; // what of the message stays in view where there is little room
    rfb::Point fitted;      // pixels
    std::unique_ptr<mui::MuDialog> dialog;
    mui::MuFrame* header = nullptr;
    mui::MuFrame* brand = nullptr;
    mui::MuLayout* body = nullptr;
    mui::MuLayout* column = nullptr;
    mui::MuLayout* buttonRow = nullptr;
    mui::MuText* question = nullptr;
    mui::MuScroll* scroll = nullptr;
    mui::MuText* custom = nullptr;
    mui::MuStatic* consequence = nullptr;
    mui::MuButton* viewButton = nullptr;
    mui::MuButton* rejectButton = nullptr;
    mui::MuButton* acceptButton = nullptr;
    plat::Timer timer{this};
};

} // namespace smisc
