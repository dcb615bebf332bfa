// One question to the owner of a selection, answered without waiting.
#pragma once

#include "plat/Timer.h"
#include "tx/TXEventHandler.h"
#include "tx/TXWindow.h"

#include <string>

namespace tx {

/// Asks for a selection in one form and gathers the answer, in one piece or piece by piece (ICCCM 2.4 to 2.7).
///
/// It has a window of its own, so that an owner that goes on writing writes into nothing. Nobody is waited for longer
/// than five seconds without a piece and 30 seconds in all, nor for more than selectionLimit bytes.
class SelectionConversion : public TXWindow, private TXEventHandler, private plat::Timer::Callback {
public:
    enum class Outcome {
        Answered,
        Refused,  ///< the owner has no such form, or there is no owner
        Abandoned ///< no answer in time, too large, or not in the form of an answer
    };

    /// What came; the bytes of format 8, the first number of format 32.
    struct Answer {
        Outcome outcome = Outcome::Refused;
        Atom type = none;
        std::string bytes;
        bool hasNumber = false;
        unsigned long number = 0;
    };

    class Callback {
    public:
        virtual ~Callback() = default;

        /// Called once, from the loop; the conversion may be destroyed in it.
        virtual void converted(SelectionConversion* conversion, Answer& answer) = 0;
    };

    SelectionConversion(Atom selection, Atom target, Callback* callback); ///< asks at once; the callback is borrowed

    Atom selection() const { return selection_; }
    Atom target() const { return target_; }

    // TXWindow
    void selectionNotify(XSelectionEvent* event, Property& value) override;

private:
    enum class State { Asked, Gathering, Done };

    bool handleEvent(XEvent* event) override;
    bool timerExpired(plat::Timer* timer) override;
    void takeWhole(const Property& value);
    void startGathering(const Property& size);
    void takePiece();
    void finish(Outcome outcome);

    Atom selection_;
    Atom target_;
    Callback* callback;
    State state = State::Asked;
    Answer answer;
    plat::Timer silence{this};
    plat::Timer total{this};
};

} // namespace tx
