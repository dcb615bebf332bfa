// Text on its way to other clients, piece by piece.
#pragma once

#include "plat/Timer.h"
#include "tx/TXEventHandler.h"

#include <cstdint>
#include <list>
#include <memory>
#include <string>

namespace tx {

/// The giving side of incremental transfers (ICCCM 2.7.2), a few at a time.
///
/// A requestor that takes nothing for five seconds, or whose window is gone, is forgotten.
class IncrSender : private TXEventHandler, private plat::Timer::Callback {
public:
    IncrSender() = default;
    ~IncrSender() override;

    /// Announces `text` in `property` of `requestor`. False, with nothing written, if it is not to be had: too many
    /// transfers are under way, or the window is one of ours, whose events are not ours to choose.
    bool start(Window requestor, Atom property, Atom type, std::shared_ptr<const std::string> text);

    size_t size() const { return transfers.size(); }

private:
    struct Transfer {
        Window requestor;
        Atom property;
        Atom type;
        std::shared_ptr<const std::string> text;
        size_t sent = 0;
        bool ended = false;   // the empty piece is out
        int64_t lastSign = 0; // of life, monotonic ticks
    };

    bool handleEvent(XEvent* event) override;
    bool timerExpired(plat::Timer* timer) override;
    void sendPiece(Transfer& transfer);
    void drop(std::list<Transfer>::iterator transfer, bool windowLives);

    std::list<Transfer> transfers;
    plat::Timer timer{this};
};

} // namespace tx
