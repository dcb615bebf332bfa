// Tells the person at the screen who comes and goes.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/Timer.h"
#include "score/ConnectionInfo.h"
#include "ui/Notifier.h"

#include <memory>
#include <string>
#include <vector>

namespace sui {

struct CoreStatus;

/// Turns each connection event into a popup that says what happened and how many are connected.
///
/// Those who go within 100 ms share one popup. Where popups are sticky (bit 0 of the flags) there is one at a time,
/// and it stays until the last user has gone.
class ConnNotifier : private ui::Notifier::Callback, private plat::Timer::Callback, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void activate() = 0; ///< a popup was clicked
    };

    static constexpr unsigned StickyFlag = 1;

    explicit ConnNotifier(Callback* target);                                       ///< borrowed
    ConnNotifier(Callback* target, std::unique_ptr<ui::Notifier> notifierInstead); ///< for tests
    ~ConnNotifier() override;

    void onConnection(const score::ConnectionInfo& info, bool add, const CoreStatus& status);

    /// "User "x" has connected." and its like, in the user's language. Plain text, one line.
    static plat::String eventText(const score::ConnectionInfo& info, bool add);

private:
    struct Live {
        plat::String idA;
        plat::String idB;
        ui::Notifier::Handle handle;
        bool endless; // it has no time-out
    };

    // ui::Notifier::Callback
    bool notified(ui::Notifier::Handle handle, int reason) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    bool isSticky() const { return (record.flags & StickyFlag) != 0; }
    void forget(const score::ConnectionInfo& info);
    void addPending(const plat::String& text);
    void raise(const plat::String& text, const plat::String& idA, const plat::String& idB);

    Callback* callback;
    int connected = 0; // never below 0
    std::unique_ptr<ui::Notifier> notifier;
    plat::Timer timer; // of what is pending
    ui::Notifier::Notification record;
    std::string pendingText; // a line for each who went
    int pendingLines = 0;
    std::vector<Live> live;
};

} // namespace sui
