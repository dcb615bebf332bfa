#include "tx/TXClipboardMgr.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"
#include "tx/TX.h"
#include "tx/dynXfixes.h"
#include "tx/latin1.h"

#include <algorithm>
#include <functional>

namespace tx {
namespace {
plat::LogSrc log("TXClipboardMgr");

plat::BoolParameter useCutBuffer("UseCutBuffer", "Use the cut buffer as well as the X selections",
                                 /*defaultValue=*/false);

// The server counts milliseconds in 32 bits, and begins again after 49 days.
int compareTimes(Time a, Time b) { return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); }

std::size_t digestOf(std::string_view text) { return std::hash<std::string_view>{}(text); }

// No program shows a NUL, some write one behind the text, and many end at one: the rest must not be lost with it.
void makePlain(std::string& text) {
    std::erase(text, '\0');
    if (!plat::utf8::isValid(text.data(), text.data() + text.size()))
        text = plat::repairUtf8(text.data(), static_cast<int>(text.size())).c_str();
}
} // namespace

TXClipboardMgr::TXClipboardMgr(Callback* callback_, int pollMs_, bool sendPrimary_)
    : callback(callback_), pollMs(pollMs_), sendPrimary(sendPrimary_) {
    sources[0].selection = XA_PRIMARY;
    sources[1].selection = clipboardAtom();
    window.addEventHandler(this, /*add=*/true);
}

TXClipboardMgr::~TXClipboardMgr() { stop(); }

void TXClipboardMgr::start() {
    if (running)
        return;
    running = true;
    lastTime = getServerTime();
    if (useCutBuffer.value())
        addRootEventHandler(&cutBufferHandler, /*add=*/true, PropertyChangeMask);
    const bool fixes = selectEvents(/*on=*/true);
    XSync(dpy, False); // what is copied from here on is seen
    if (fixes)
        return;
    log.info("XFixes extension not present");
    polling = pollMs > 0;
    if (!polling)
        return;
    log.info("Polling for clipboard updates every %dms", pollMs);
    firstRound = true;
    timerExpired(&pollTimer);
}

void TXClipboardMgr::stop() {
    if (!running)
        return;
    running = polling = cutBufferPending = false;
    pollTimer.cancel();
    conversion.reset();
    for (Source& source : sources)
        source.pending = source.asked = false;
    if (!dpy)
        return;
    addRootEventHandler(&cutBufferHandler, /*add=*/false);
    if (fixesEvent >= 0)
        selectEvents(/*on=*/false);
}

bool TXClipboardMgr::selectEvents(bool on) {
    int error = 0;
    if (!dynXfixes::XFixesQueryExtension(dpy, &fixesEvent, &error)) {
        fixesEvent = -1;
        return false;
    }
    int major = 1;
    int minor = 0;
    dynXfixes::XFixesQueryVersion(dpy, &major, &minor);
    if (on)
        log.info("XFixes extension present - version %d.%d", major, minor);
    for (const Source& source : sources)
        if (sendPrimary || source.selection != XA_PRIMARY)
            dynXfixes::XFixesSelectSelectionInput(dpy, window.win(), source.selection,
                                                  on ? unsigned{XFixesSetSelectionOwnerNotifyMask} : 0U);
    return true;
}

void TXClipboardMgr::setText(std::string_view utf8) {
    // What others copied before is gone with this.
    conversion.reset();
    cutBufferPending = false;
    for (Source& source : sources)
        source.pending = source.asked = false;
    lastTime = getServerTime();
    std::string text(utf8);
    makePlain(text);
    lastLatin1 = digestOf(utf8ToLatin1(text));
    window.setText(text, lastTime);
    if (polling && !pollTimer.isActive())
        pollTimer.start(static_cast<uint32_t>(pollMs));
}

bool TXClipboardMgr::handleEvent(XEvent* event) {
    if (!running || fixesEvent < 0 || event->type != fixesEvent + XFixesSelectionNotify || event->xany.send_event)
        return false;
    const auto& change = *reinterpret_cast<XFixesSelectionNotifyEvent*>(event);
    log.debug("selection change event, selection %s, timestamp %lu", atomName(change.selection),
              change.selection_timestamp);
    if (Source* source = findSource(change.selection))
        selectionChanged(*source, change.owner, change.selection_timestamp);
    return false;
}

bool TXClipboardMgr::CutBufferHandler::handleEvent(XEvent* event) {
    if (event->type == PropertyNotify && event->xproperty.atom == XA_CUT_BUFFER0) {
        mgr->cutBufferPending = true;
        mgr->proceed();
    }
    return false;
}

void TXClipboardMgr::selectionChanged(Source& source, Window owner, Time time) {
    if (conversion && conversion->selection() == source.selection)
        conversion.reset(); // from an owner of before
    source.pending = owner != none && owner != window.win();
    source.dated = true;
    source.time = time;
    if (owner == window.win())
        log.debug("%s selection owned by us", atomName(source.selection));
    proceed();
}

bool TXClipboardMgr::timerExpired(plat::Timer*) {
    for (Source& source : sources)
        source.asked = sendPrimary || source.selection != XA_PRIMARY;
    cutBufferPending = useCutBuffer.value();
    proceed();
    return false;
}

/// Starts what is to be done next, unless something is under way.
void TXClipboardMgr::proceed() {
    if (!running || conversion)
        return;
    for (Source& source : sources)
        if (std::exchange(source.asked, false) && askForTime(source))
            return;
    bool old = false;
    for (Source& source : sources) {
        if (!std::exchange(source.pending, false))
            continue;
        if (source.dated && compareTimes(source.time, lastTime) < 0) {
            old = true;
            continue;
        }
        convert(source, utf8String());
        return;
    }
    if (std::exchange(cutBufferPending, false))
        takeCutBuffer();
    if (old)
        log.debug("Selections were old; ignoring");
    firstRound = false;
    if (polling)
        pollTimer.start(static_cast<uint32_t>(pollMs));
}

/// False if there is nobody else to ask.
bool TXClipboardMgr::askForTime(Source& source) {
    const Window owner = XGetSelectionOwner(dpy, source.selection);
    if (owner == window.win())
        log.debug("%s selection owned by us", atomName(source.selection));
    if (owner == none || owner == window.win()) {
        source.owner = owner;
        return false;
    }
    if (owner != source.owner)
        source.dated = false;
    source.owner = owner;
    convert(source, timestampAtom());
    return true;
}

void TXClipboardMgr::takeTime(Source& source, const SelectionConversion::Answer& answer) {
    const bool told = answer.outcome == SelectionConversion::Outcome::Answered && answer.type == XA_INTEGER &&
                      answer.hasNumber && answer.number != 0 && compareTimes(answer.number, getServerTime()) <= 0;
    if (!told) {
        // An owner that doesn't tell, or tells of the future: its text says whether it is new.
        source.pending = answer.outcome != SelectionConversion::Outcome::Abandoned;
        source.dated = false;
        return;
    }
    source.pending = !firstRound && (!source.dated || source.time != answer.number);
    source.dated = true;
    source.time = answer.number;
}

void TXClipboardMgr::converted(SelectionConversion* done, SelectionConversion::Answer& answer) {
    Source* source = findSource(done->selection());
    const Atom target = done->target();
    const std::unique_ptr<SelectionConversion> ended = std::move(conversion); // it called us: it goes at the end
    if (source && target == timestampAtom()) {
        takeTime(*source, answer);
    } else if (source && answer.outcome != SelectionConversion::Outcome::Abandoned) {
        const bool text = answer.type == utf8String() || answer.type == XA_STRING;
        if (answer.type == XA_STRING)
            answer.bytes = latin1ToUtf8(answer.bytes);
        const bool taken = text && takeText(*source, std::move(answer.bytes));
        if (!taken && target == utf8String())
            convert(*source, XA_STRING);
    }
    proceed();
}

/// False if there is no text in it.
bool TXClipboardMgr::takeText(Source& source, std::string text) {
    makePlain(text);
    if (text.empty())
        return false;
    if (source.dated) {
        lastTime = source.time;
    } else {
        const std::size_t digest = digestOf(text);
        if (std::exchange(source.digest, digest) == digest || firstRound)
            return true;
        lastTime = getServerTime();
    }
    tell(text);
    return true;
}

void TXClipboardMgr::takeCutBuffer() {
    const Time time = getCutBufferTime();
    const bool later = time != 0 && compareTimes(time, lastTime) >= 0;
    log.debug("Cut buffer time is %lu, later %d", time, later ? 1 : 0);
    if (!later)
        return;
    const Property value = getWindowProperty(rootWindow, XA_CUT_BUFFER0, XA_STRING, /*remove=*/false, selectionLimit);
    const std::string latin1(value.bytes().data(), value.bytes().size());
    if (latin1.empty() || value.isTruncated() || digestOf(latin1) == lastLatin1)
        return; // the last one goes for what we, or a program that sets everything, wrote beside the selections
    log.debug("Using X cut buffer string");
    lastTime = time;
    std::string text = latin1ToUtf8(latin1);
    makePlain(text);
    if (!text.empty())
        tell(text);
}

void TXClipboardMgr::tell(const std::string& text) {
    if (text.size() > selectionLimit) {
        log.info("Ignoring selection beyond %zu bytes", selectionLimit);
        return;
    }
    lastLatin1 = digestOf(utf8ToLatin1(text));
    callback->textCopied(text);
}

void TXClipboardMgr::convert(Source& source, Atom target) {
    conversion.reset(new SelectionConversion(source.selection, target, this)); // as the private base that we are
}

TXClipboardMgr::Source* TXClipboardMgr::findSource(Atom selection) {
    const auto found = std::find_if(sources.begin(), sources.end(),
                                    [selection](const Source& each) { return each.selection == selection; });
    return found == sources.end() ? nullptr : &*found;
}

} // namespace tx
