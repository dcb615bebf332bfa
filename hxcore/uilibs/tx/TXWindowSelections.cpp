// The part of TXWindow that gives text to other clients and takes theirs (ICCCM 2).
#include "plat/LogSrc.h"
#include "plat/monoTime.h"
#include "plat/utf8.h"
#include "plat/waitForFd.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/TXState.h"
#include "tx/TXWindow.h"
#include "tx/latin1.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tx {
namespace {

plat::LogSrc log("TXSelection");

constexpr int answerTimeoutMs = 1000;
constexpr int maxPieces = 4096; // of a large transfer; beyond, the owner is left waiting

/// What a SelectionNotify must say to be the answer to our question; anyone can send one.
struct Question {
    Window window;
    Atom selection;
    Atom target;
};

Bool isAnswer(Display*, XEvent* event, XPointer arg) {
    const auto* question = reinterpret_cast<const Question*>(arg);
    const XSelectionEvent& e = event->xselection;
    return event->type == SelectionNotify && e.requestor == question->window && e.selection == question->selection &&
           e.target == question->target && (e.property == none || e.property == selectionString());
}

/// Answers to earlier questions, which came too late, must not be taken for the next one's.
void dropStaleAnswers(Window window) {
    XEvent event;
    while (XCheckTypedWindowEvent(dpy, window, SelectionNotify, &event))
        ;
}

/// Milliseconds to `deadline`, rounded up; 0 once it has passed.
int msUntil(int64_t deadline) {
    const int64_t left = deadline - plat::monoTicks();
    return left <= 0 ? 0 : static_cast<int>((left + plat::ticksPerMs - 1) / plat::ticksPerMs);
}

bool waitForAnswer(const Question& question, int timeoutMs, XEvent* answer) {
    const int64_t deadline = plat::monoTicks() + timeoutMs * plat::ticksPerMs;
    auto* arg = reinterpret_cast<XPointer>(const_cast<Question*>(&question));
    while (!XCheckIfEvent(dpy, answer, isAnswer, arg)) {
        const int left = msUntil(deadline);
        // Bytes that Xlib has read already would not show on the descriptor: XCheckIfEvent looked at them all.
        if (left == 0 || !plat::waitForFd(ConnectionNumber(dpy), left, /*read=*/true, /*write=*/false))
            return XCheckIfEvent(dpy, answer, isAnswer, arg);
    }
    return true;
}

void writeBytes(Window requestor, Atom property, Atom type, std::string_view bytes) {
    XChangeProperty(dpy, requestor, property, type, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
}

void writeLongs(Window requestor, Atom property, Atom type, std::span<const long> values) {
    XChangeProperty(dpy, requestor, property, type, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(values.data()), static_cast<int>(values.size()));
}

/// The most that one request can carry, less its header; an owner may send more only piece by piece.
size_t largestProperty() {
    const long units = XExtendedMaxRequestSize(dpy) ? XExtendedMaxRequestSize(dpy) : XMaxRequestSize(dpy);
    return static_cast<size_t>(units) * 4 - 100;
}

} // namespace

bool TXWindow::ownSelection(Atom selection, Time time) {
    XSetSelectionOwner(dpy, selection, win_, time);
    if (XGetSelectionOwner(dpy, selection) != win_)
        return false;
    auto& owners = state().selectionOwners;
    const auto previous = owners.find(selection);
    if (previous != owners.end() && previous->second != this)
        previous->second->selectionTimes.erase(selection);
    selectionTimes[selection] = time;
    owners[selection] = this;
    return true;
}

void TXWindow::disownSelections() {
    for (const auto& [selection, time] : selectionTimes)
        XSetSelectionOwner(dpy, selection, none, time);
    forgetSelections();
    clearCutText();
}

void TXWindow::forgetSelections() {
    for (const auto& [selection, time] : selectionTimes)
        state().selectionOwners.erase(selection);
    selectionTimes.clear();
}

void TXWindow::setCutText(size_t len, const char* text, Time time) {
    log.debug("Acquiring PRIMARY and CLIPBOARD selections timestamp %lu", time);
    keepText({text, len});
    std::string latin1 = utf8ToLatin1({text, len});
    if (latin1.size() <= largestProperty())
        XStoreBytes(dpy, latin1.data(), static_cast<int>(latin1.size()));
    if (cutText.isSecure())
        plat::secureWipe(latin1.data(), latin1.size());
    ownSelection(XA_PRIMARY, time);
    ownSelection(clipboardAtom(), time);
}

void TXWindow::setPrimaryText(size_t len, const char* text, Time time) {
    keepText({text, len});
    ownSelection(XA_PRIMARY, time);
}

plat::String TXWindow::getCutText(Atom selection) {
    const auto owner = state().selectionOwners.find(selection);
    if (owner != state().selectionOwners.end())
        return owner->second->heldText();
    if (!requestSelection(selection, utf8String(), answerTimeoutMs) || !hasCutText())
        requestSelection(selection, XA_STRING, answerTimeoutMs);
    return heldText();
}

bool TXWindow::requestSelection(Atom selection, Atom target, int timeoutMs) {
    clearCutText();
    incrProperty = none;
    dropStaleAnswers(win_);
    XConvertSelection(dpy, selection, target, selectionString(), win_, currentTime);
    XEvent answer;
    if (!waitForAnswer({win_, selection, target}, timeoutMs, &answer)) {
        log.debug("timed out waiting for %s %s for 0x%lx", atomName(selection), atomName(target), win_);
        return false;
    }
    answerExpected = true;
    handleSelectionNotify(&answer.xselection);
    answerExpected = false;
    return true;
}

void TXWindow::setSensitive(bool sensitive) { cutText.setSecure(sensitive); }

void TXWindow::selectionNotify(XSelectionEvent*, Property& value) {
    if (answerExpected) // else too late, or nobody's answer at all: what we hold may be what we offer
        storeCutText(value);
}

bool TXWindow::selectionRequest(Window requestor, Atom, Atom target, Atom property) {
    if (!hasCutText())
        return false;
    const std::string_view held(cutText.data(), static_cast<size_t>(cutText.size()) - 1); // less its NUL
    if (held.size() > largestProperty()) { // UTF-8 is never the shorter form
        log.info("Not giving text of %zu bytes: too large for a request", held.size());
        return false;
    }
    if (target != XA_STRING) {
        writeBytes(requestor, property, target, held);
        return true;
    }
    std::string latin1 = utf8ToLatin1(held);
    writeBytes(requestor, property, target, latin1);
    if (cutText.isSecure())
        plat::secureWipe(latin1.data(), latin1.size());
    return true;
}

void TXWindow::storeCutText(const Property& value) {
    const auto bytes = value.bytes();
    const std::string_view text(bytes.data(), bytes.size());
    if (value.isTruncated())
        log.info("Ignoring selection beyond %zu bytes", selectionLimit);
    if (value.isTruncated() || bytes.empty()) {
        clearCutText();
    } else if (value.type() == XA_STRING) {
        std::string utf8 = latin1ToUtf8(text);
        keepText(utf8);
        plat::secureWipe(utf8.data(), utf8.size());
    } else if (value.type() == utf8String()) {
        keepText(text);
    }
}

void TXWindow::clearCutText() { cutText.clear(); }

void TXWindow::keepText(std::string_view utf8) {
    if (utf8.size() > selectionLimit)
        utf8 =
            utf8.substr(0, static_cast<size_t>(plat::utf8::cutPartial(utf8.data(), static_cast<int>(selectionLimit))));
    cutText.resize(0);
    cutText.resize(static_cast<int>(utf8.size()) + 1); // zeroes
    std::copy(utf8.begin(), utf8.end(), cutText.data());
}

plat::String TXWindow::heldText() const {
    if (!hasCutText())
        return {};
    return plat::repairUtf8(cutText.data(),
                            static_cast<int>(strnlen(cutText.data(), static_cast<size_t>(cutText.size()))));
}

void TXWindow::handleProperty(const XPropertyEvent& event) {
    if (incrProperty == none || event.atom != incrProperty || event.state != PropertyNewValue)
        return;
    // Deleting a piece asks the owner for the next one; an empty one ends the transfer (ICCCM 2.7.2).
    Property piece = getWindowProperty(win_, incrProperty, AnyPropertyType, /*remove=*/true, /*limitBytes=*/4);
    const bool ended = piece.exists() && piece.bytes().empty() && piece.longs().empty();
    if (ended || ++incrPieces > maxPieces)
        incrProperty = none;
}

void TXWindow::handleSelectionClear(const XSelectionClearEvent& event) {
    const auto ours = selectionTimes.find(event.selection);
    if (ours == selectionTimes.end() || event.send_event)
        return;
    if (XGetSelectionOwner(dpy, event.selection) == win_)
        return; // it has been taken back since
    selectionTimes.erase(ours);
    const auto owner = state().selectionOwners.find(event.selection);
    if (owner != state().selectionOwners.end() && owner->second == this)
        state().selectionOwners.erase(owner);
}

void TXWindow::handleSelectionNotify(XSelectionEvent* event) {
    Property value;
    // Only the property that we named: another one of ours is not to be read and deleted because someone says so.
    if (answerExpected && event->property == selectionString())
        value = getWindowProperty(win_, event->property, AnyPropertyType, /*remove=*/true, selectionLimit);
    if (value.type() == incrAtom()) {
        log.info("Ignoring large selection - replacing with empty string");
        incrProperty = event->property;
        incrPieces = 0;
        value = Property::fromText(utf8String(), {});
    }
    selectionNotify(event, value);
    value.wipe();
}

void TXWindow::handleSelectionRequest(const XSelectionRequestEvent& event) {
    const ErrorCatcher catcher(100); // the requestor may be gone, or may never have been
    XEvent reply{};
    reply.xselection.type = SelectionNotify;
    reply.xselection.requestor = event.requestor;
    reply.xselection.selection = event.selection;
    reply.xselection.target = event.target;
    reply.xselection.time = event.time;
    // Requestors of before ICCCM name no property.
    reply.xselection.property = answerSelection(event, event.property == none ? event.target : event.property);
    XSendEvent(dpy, event.requestor, False, 0, &reply);
}

Atom TXWindow::answerSelection(const XSelectionRequestEvent& event, Atom property) {
    const auto owned = selectionTimes.find(event.selection);
    if (owned == selectionTimes.end() || property == none)
        return none;
    if (event.target == targetsAtom()) {
        const long targets[] = {static_cast<long>(timestampAtom()), static_cast<long>(utf8String()), XA_STRING};
        writeLongs(event.requestor, property, XA_ATOM, targets);
    } else if (event.target == timestampAtom()) {
        const long time[] = {static_cast<long>(owned->second)};
        writeLongs(event.requestor, property, XA_INTEGER, time);
    } else if ((event.target != utf8String() && event.target != XA_STRING) ||
               !selectionRequest(event.requestor, event.selection, event.target, property)) {
        return none;
    }
    return property;
}

} // namespace tx
