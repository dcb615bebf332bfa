#include "tx/SelectionConversion.h"

#include "plat/LogSrc.h"
#include "tx/TX.h"

namespace tx {
namespace {
plat::LogSrc log("TXSelection");

constexpr uint32_t silenceMs = 5000;
constexpr uint32_t totalMs = 30000;
} // namespace

SelectionConversion::SelectionConversion(Atom selection, Atom target, Callback* callback_)
    : TXWindow(1, 1, nullptr, 0, /*overrideRedirect=*/true), selection_(selection), target_(target),
      callback(callback_) {
    addEventHandler(this, /*add=*/true);
    // Not the property of TXWindow's own questions: what comes there it takes itself.
    XConvertSelection(dpy, selection, target, zefSelection(), win(), currentTime);
    silence.start(silenceMs);
    total.start(totalMs);
}

void SelectionConversion::selectionNotify(XSelectionEvent* event, Property&) {
    if (state != State::Asked || event->selection != selection_ || event->target != target_)
        return;
    if (event->property == none) {
        finish(Outcome::Refused);
        return;
    }
    if (event->property != zefSelection())
        return; // not what we asked for: somebody else's claim
    const Property value = getWindowProperty(win(), zefSelection(), AnyPropertyType, /*remove=*/true, selectionLimit);
    if (value.type() == incrAtom())
        startGathering(value);
    else
        takeWhole(value);
}

void SelectionConversion::takeWhole(const Property& value) {
    answer.type = value.type();
    answer.bytes.assign(value.bytes().data(), value.bytes().size());
    answer.hasNumber = !value.longs().empty();
    if (answer.hasNumber)
        answer.number = value.longs()[0] & 0xffffffffUL; // Xlib extends the sign
    if (value.isTruncated())
        log.info("Ignoring selection beyond %zu bytes", selectionLimit);
    finish(value.isTruncated() ? Outcome::Abandoned : Outcome::Answered);
}

void SelectionConversion::startGathering(const Property& size) {
    // The number is the least that will come; that the property is gone asks for the first piece.
    const unsigned long least = size.longs().empty() ? 0 : size.longs()[0] & 0xffffffffUL;
    if (least > selectionLimit) {
        log.info("Ignoring selection beyond %zu bytes", selectionLimit);
        finish(Outcome::Abandoned);
        return;
    }
    state = State::Gathering;
    silence.start(silenceMs);
}

void SelectionConversion::takePiece() {
    const size_t room = selectionLimit - answer.bytes.size();
    const Property piece = getWindowProperty(win(), zefSelection(), AnyPropertyType, /*remove=*/true, room);
    if (!piece.exists())
        return; // taken already: one look may have been for two notices
    if (piece.bytes().empty() && piece.longs().empty()) {
        finish(Outcome::Answered);
        return;
    }
    if (piece.isTruncated())
        log.info("Ignoring selection beyond %zu bytes", selectionLimit);
    if (piece.isTruncated() || piece.bytes().empty() || (answer.type != none && answer.type != piece.type())) {
        finish(Outcome::Abandoned);
        return;
    }
    answer.type = piece.type();
    answer.bytes.append(piece.bytes().data(), piece.bytes().size());
    silence.start(silenceMs);
}

bool SelectionConversion::handleEvent(XEvent* event) {
    if (event->type == PropertyNotify && state == State::Gathering && event->xproperty.state == PropertyNewValue &&
        event->xproperty.atom == zefSelection())
        takePiece();
    return false;
}

bool SelectionConversion::timerExpired(plat::Timer*) {
    log.debug("timed out waiting for %s %s for 0x%lx", atomName(selection_), atomName(target_), win());
    finish(Outcome::Abandoned);
    return false;
}

void SelectionConversion::finish(Outcome outcome) {
    if (state == State::Done)
        return;
    state = State::Done;
    silence.cancel();
    total.cancel();
    answer.outcome = outcome;
    callback->converted(this, answer); // may be the end of this
}

} // namespace tx
