#include "tx/InputMethod.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"
#include "rfb/keySymbols.h"
#include "tx/TX.h"
#include "tx/ximWords.h"

#include <algorithm>
#include <utility>

namespace tx {
namespace {

plat::LogSrc log("InputMethod");
plat::BoolParameter enabled("_InputMethod", "Send keys to the XIM server that XMODIFIERS names", /*defaultValue=*/true);

constexpr size_t maxSent = 256;    // keys
constexpr unsigned maxAsked = 256; // beyond, the method doesn't keep up

/// The input styles that we can serve, best first (Xlib, "Input Method Values").
constexpr uint32_t servedStyles[] = {
    XIMPreeditPosition | XIMStatusNothing, XIMPreeditPosition | XIMStatusNone, XIMPreeditNothing | XIMStatusNothing,
    XIMPreeditNothing | XIMStatusNone,     XIMPreeditNone | XIMStatusNone,
};

/// For methods that draw in a window of ours with a font of the server.
constexpr std::string_view fontSet = "-*-*-medium-r-normal-*-14-*-*-*-*-*-*-*,-*-*-*-r-*-*-14-*-*-*-*-*-*-*,fixed";

bool matches(const xim::TriggerKey& key, KeySym keysym, unsigned state) {
    return key.keysym == keysym && (state & key.mask) == (key.modifiers & key.mask);
}

} // namespace

InputMethod& InputMethod::instance() {
    static InputMethod& method = *new InputMethod;
    return method;
}

// Who takes text.

void InputMethod::setCursor(InputMethodClient* client, Window window, const rfb::Rect& cursor) {
    if (cursor.isEmpty()) {
        if (client != current)
            return;
        current = nullptr;
        focusContext(/*in=*/false);
        return;
    }
    const bool entered = current != client;
    const bool moved = spot != cursor;
    current = client;
    currentWindow = window;
    spot = cursor;
    if (!link.isOpen()) {
        if (entered)
            start();
        return;
    }
    followCursor();
    if (moved && context && !stalled)
        sendSpot(/*probe=*/false);
}

/// The context is for the window that takes text, and knows whether one does.
void InputMethod::followCursor() {
    if (current && stage == Stage::Open && contextWindow != currentWindow)
        makeContext();
    else
        focusContext(current != nullptr);
}

void InputMethod::forget(InputMethodClient* client) {
    std::erase_if(sent, [client](const Sent& one) { return one.client == client; });
    std::erase_if(due, [client](const Due& one) { return one.client == client; });
    if (client == current)
        current = nullptr;
    if (client == contextClient)
        dropContext();
}

void InputMethod::dropContext() {
    if (context) {
        xim::Writer destroy(xim::DestroyIc);
        destroy.u16(im).u16(context);
        link.send(destroy);
    }
    context = 0;
    contextFocused = false;
    contextClient = nullptr;
    contextWindow = none;
}

// The conversation begins.

void InputMethod::start() {
    const std::string name = xim::methodName();
    if (name.empty() || !enabled.value() || link.isOpen() || !link.open(name))
        return;
    lastAsked++;
    answerTimer.start(answerMs);
}

void InputMethod::ximAppeared() {
    // The one that hangs may have a successor.
    if (stalled && link.isReplaced()) {
        link.close();
        ximLost(/*ended=*/true);
    } else if (current) {
        start();
    }
    giveDue();
}

void InputMethod::ximConnected() {
    answered();
    const uint16_t one = 1;
    const bool little = reinterpret_cast<const uint8_t&>(one) == 1;
    xim::Writer hello(xim::Connect);
    hello.u8(little ? 'l' : 'B').u8(0).u16(1).u16(0).u16(0);
    ask(hello);
}

bool InputMethod::opened(xim::Bytes body) {
    xim::OpenReplyBody reply;
    if (stage != Stage::Opening || !parse(body, &reply))
        return false;
    im = reply.im;
    ids = reply.ids;
    stage = Stage::Asking;
    xim::Writer encodings(xim::EncodingNegotiation);
    encodings.u16(im).u16(0);
    encodings.string8("COMPOUND_TEXT");
    encodings.setU16(xim::headerBytes + 2, encodings.size() - xim::headerBytes - 4);
    encodings.pad().u16(0).u16(0);
    ask(encodings);
    xim::Writer values(xim::GetImValues);
    values.u16(im).u16(2).u16(static_cast<unsigned>(ids.queryInputStyle));
    ask(values);
    return true;
}

/// Asks for a context for the window that takes text, in the best style that is left.
void InputMethod::makeContext() {
    if (contextAsked || styles.empty())
        return; // made for the right window when the answer comes
    dropContext();
    contextAsked = true;
    contextQuestion = lastAsked + 1;
    contextClient = current;
    contextWindow = currentWindow;
    xim::Writer out(xim::CreateIc);
    const auto number = [&out](int id, uint32_t value) {
        if (id >= 0)
            out.u16(static_cast<unsigned>(id)).u16(4).u32(value);
    };
    out.u16(im).u16(0);
    number(ids.inputStyle, styles.front());
    number(ids.clientWindow, static_cast<uint32_t>(contextWindow));
    number(ids.focusWindow, static_cast<uint32_t>(contextWindow));
    if (styles.front() & XIMPreeditPosition)
        spotValue(&out, /*whole=*/true);
    out.setU16(xim::headerBytes + 2, out.size() - xim::headerBytes - 4);
    ask(out);
}

/// Where the method shows its own window: below the text cursor.
void InputMethod::spotValue(xim::Writer* out, bool whole) const {
    if (ids.preeditAttributes < 0 || ids.spotLocation < 0)
        return;
    out->u16(static_cast<unsigned>(ids.preeditAttributes)).u16(0);
    const size_t start = out->size();
    out->u16(static_cast<unsigned>(ids.spotLocation)).u16(4);
    out->u16(static_cast<uint16_t>(spot.tl.x)).u16(static_cast<uint16_t>(spot.br.y));
    if (whole && ids.fontSet >= 0) {
        out->u16(static_cast<unsigned>(ids.fontSet)).u16(static_cast<unsigned>((2 + fontSet.size() + 3) / 4 * 4));
        out->u16(static_cast<unsigned>(fontSet.size()));
        out->bytes({reinterpret_cast<const uint8_t*>(fontSet.data()), fontSet.size()}).pad();
    }
    out->setU16(start - 2, out->size() - start);
}

void InputMethod::sendSpot(bool probe) {
    xim::Writer out(xim::SetIcValues);
    out.u16(im).u16(context).u16(0).u16(0);
    spotValue(&out, /*whole=*/false);
    const size_t len = out.size() - xim::headerBytes - 8;
    if (len == 0 && !probe)
        return;
    out.setU16(xim::headerBytes + 4, len);
    ask(out);
}

/// One that is late is told when it answers again.
void InputMethod::focusContext(bool in) {
    if (!context || contextFocused == in || stalled)
        return;
    contextFocused = in;
    xim::Writer out(in ? xim::SetIcFocus : xim::UnsetIcFocus);
    out.u16(im).u16(context);
    link.send(out);
    sendSpot(/*probe=*/!in);
    if (!in)
        leftUpTo = lastAsked;
}

// Messages.

void InputMethod::ask(xim::Writer& writer) {
    link.send(writer);
    lastAsked++;
    if (!stalled && !answerTimer.isActive())
        answerTimer.start(answerMs);
}

/// The method is through with the oldest question; what is still under way has its full time again.
void InputMethod::answered() {
    answerTimer.cancel();
    if (lastAnswered < lastAsked)
        lastAnswered++;
    if (lastAnswered < lastAsked && !stalled)
        answerTimer.start(answerMs);
    useHeldKeys();
    if (lastAnswered < lastAsked || !stalled)
        return;
    // What it made of the late keys may still follow, but not behind the answer to one more question.
    confirming = context && !confirming;
    if (confirming) {
        sendSpot(/*probe=*/true);
        return;
    }
    stalled = false;
    log.info("the input method answers again");
}

bool InputMethod::filterEvent(const XEvent& event) {
    const bool ours = link.filterEvent(event);
    giveDue();
    return ours;
}

bool InputMethod::ximMessage(const xim::Message& message) {
    const bool wasStalled = stalled;
    if (!handleMessage(message))
        return false;
    if (wasStalled && !stalled)
        followCursor();
    return true;
}

/// False for what no method would say.
bool InputMethod::handleMessage(const xim::Message& message) {
    const xim::Bytes body = message.body;
    switch (message.opcode) {
    case xim::ConnectReply: {
        if (stage != Stage::Opening)
            return false;
        answered();
        xim::Writer open(xim::Open);
        open.string8(xim::localeName());
        ask(open);
        return true;
    }
    case xim::OpenReply:
        answered();
        return opened(body);
    case xim::EncodingNegotiationReply:
        answered();
        return stage == Stage::Asking;
    case xim::GetImValuesReply: {
        answered();
        std::vector<uint32_t> offered;
        if (stage != Stage::Asking || !xim::parseStyles(body, ids.queryInputStyle, &offered))
            return false;
        for (const uint32_t style : servedStyles) {
            if (std::find(offered.begin(), offered.end(), style) != offered.end())
                styles.push_back(style);
        }
        stage = Stage::Open;
        log.info("input method ready%s", styles.empty() ? ", in no style that is known" : "");
        if (current)
            makeContext();
        return true;
    }
    case xim::CreateIcReply:
        return contextMade(body);
    case xim::SetIcValuesReply:
        answered();
        return true;
    case xim::Error:
        return handleError(body);
    case xim::RegisterTriggerKeys:
        triggerKeys = {};
        return parse(body, &triggerKeys);
    case xim::SetEventMask: {
        xim::EventMasks masks;
        if (!parse(body, &masks))
            return false;
        forwardMask = masks.forward;
        return true;
    }
    case xim::ForwardEvent: {
        xim::ForwardedEvent key;
        if (parse(body, &key)) // any other event is of no use
            keyReturned(key);
        return true;
    }
    case xim::Commit: {
        xim::CommitBody text;
        if (!parse(body, &text))
            return false;
        textCommitted(text);
        return true;
    }
    case xim::Sync:
        sync(xim::synchronous, im, context);
        return true;
    case xim::AuthRequired:
        return false;
    default:
        return true; // what methods may tell, and needn't be known
    }
}

bool InputMethod::contextMade(xim::Bytes body) {
    xim::Reader in(body);
    in.skip(2);
    const uint16_t made = in.u16();
    if (!in.ok() || made == 0 || !std::exchange(contextAsked, false))
        return false;
    answered();
    context = made;
    if (contextWindow == none)
        dropContext(); // its window went meanwhile
    followCursor();
    return true;
}

/// A refusal is an answer. Without a context, keys are used as they are.
bool InputMethod::handleError(xim::Bytes body) {
    if (stage != Stage::Open)
        return false;
    answered();
    xim::Reader in(body);
    in.skip(6);
    const unsigned code = in.u16();
    log.debug("the input method refuses: %u", code);
    if (contextAsked && lastAnswered >= contextQuestion) {
        contextAsked = false;
        styles.erase(styles.begin());
        if (current)
            makeContext();
    }
    return true;
}

// Keys and text.

/// True for a key that begins or ends what the method does, where it listens to no others before that. It is told.
bool InputMethod::triggers(const XKeyEvent& event) {
    const bool isOn = (forwardMask & KeyPressMask) != 0;
    const std::vector<xim::TriggerKey>& keys = isOn ? triggerKeys.off : triggerKeys.on;
    if (event.type != KeyPress || keys.empty())
        return false;
    XKeyEvent copy = event;
    KeySym keysym = NoSymbol;
    char text[32];
    XLookupString(&copy, text, sizeof(text), &keysym, nullptr);
    for (size_t i = 0; i < keys.size(); i++) {
        if (!matches(keys[i], keysym, event.state))
            continue;
        xim::Writer out(xim::TriggerNotify);
        out.u16(im).u16(context).u16(isOn ? 1 : 0).u16(0).u32(static_cast<uint32_t>(i)).u32(KeyPressMask);
        link.send(out);
        sendSpot(/*probe=*/true);
        if (!isOn)
            forwardMask |= KeyPressMask; // as it will say: what is typed next comes behind this
        return true;
    }
    return false;
}

bool InputMethod::takeKey(InputMethodClient* client, const XKeyEvent& event) {
    if (!context || stalled || client != current || contextWindow != currentWindow)
        return false;
    if (lastAsked - lastAnswered >= maxAsked) {
        sent.push_back({event, client, lastAsked}); // behind those that wait
        timerExpired(&answerTimer);
        return true;
    }
    if (triggers(event))
        return true;
    if (!(forwardMask & (event.type == KeyPress ? KeyPressMask : KeyReleaseMask)))
        return holdBack(client, event);
    xim::Writer out = xim::forwardedKey(event, im, context, contextWindow);
    link.send(out);
    sendSpot(/*probe=*/true); // that has an answer, whatever becomes of the key
    sent.push_back({event, client, lastAsked});
    if (sent.size() > maxSent)
        sent.pop_front(); // the method made something of it long ago
    return true;
}

/// A key that the method doesn't want waits for those before it. True if there are any.
bool InputMethod::holdBack(InputMethodClient* client, const XKeyEvent& event) {
    if (event.type == KeyRelease) {
        const auto press = std::find_if(sent.rbegin(), sent.rend(), [&event](const Sent& one) {
            return one.event.type == KeyPress && one.event.keycode == event.keycode && !one.used;
        });
        if (press == sent.rend() || press->released)
            return false;
        press->released = true;
        press->release = event;
        return true;
    }
    const auto undecided = [this](const Sent& one) { return !one.used && one.question > lastAnswered; };
    if (std::none_of(sent.begin(), sent.end(), undecided))
        return false;
    Sent held{event, client, lastAsked};
    held.held = true;
    sent.push_back(held);
    return true;
}

/// Those whose turn it is.
void InputMethod::useHeldKeys() {
    for (auto one = sent.begin(); one != sent.end();) {
        if (one->held && !one->used && one->question <= lastAnswered) {
            use(*one);
            one = sent.erase(one);
        } else {
            ++one;
        }
    }
}

/// What was begun in the field before belongs there.
bool InputMethod::isLate() const {
    return stalled || !current || !context || contextWindow != currentWindow || lastAnswered < leftUpTo;
}

void InputMethod::sync(uint16_t flags, uint16_t ofIm, uint16_t ofIc) {
    if (!(flags & xim::synchronous))
        return;
    xim::Writer reply(xim::SyncReply);
    reply.u16(ofIm).u16(ofIc);
    link.send(reply);
}

/// The method gave a key back, or made one up.
void InputMethod::keyReturned(const xim::ForwardedEvent& key) {
    sync(key.flags, key.im, key.ic);
    const auto found = std::find_if(sent.begin(), sent.end(), [&key](const Sent& one) {
        return !one.held && one.event.type == key.type && one.event.keycode == key.keycode &&
               static_cast<uint32_t>(one.event.time) == key.time;
    });
    if (found != sent.end()) {
        const Sent back = *found;
        // The ones before it became text, or waited for that.
        for (auto one = sent.begin(); one != found; ++one)
            one->question = std::min(one->question, lastAnswered);
        const auto passed = std::remove_if(sent.begin(), found, [](const Sent& one) { return !one.held || one.used; });
        sent.erase(passed, found + 1);
        useHeldKeys();
        if (!back.used)
            use(back);
    } else if (!isLate() && key.ic == context) {
        XKeyEvent made{};
        made.type = key.type;
        made.display = dpy;
        made.send_event = True;
        made.window = currentWindow;
        made.root = rootWindow;
        made.time = key.time;
        made.keycode = key.keycode;
        made.state = key.state;
        made.same_screen = True;
        due.push_back({current, made, {}});
    }
}

void InputMethod::textCommitted(const xim::CommitBody& body) {
    sync(body.flags, body.im, body.ic);
    if (isLate() || body.ic != context)
        return;
    std::string utf8;
    if (!body.text.empty())
        utf8 = xim::utf8FromCompoundText(body.text, link.compoundText());
    const uint32_t character = rfb::unicodeFromKeysym(body.keysym); // 0 for none
    if (utf8.empty() && character != 0) {
        char encoded[8];
        char* end = static_cast<char*>(encoded);
        plat::encodeUtf8(character, &end);
        utf8.assign(static_cast<char*>(encoded), end);
    }
    const plat::String text = plat::repairUtf8(utf8.data(), static_cast<int>(utf8.size()));
    if (!text.isEmpty())
        due.push_back({current, {}, text});
}

// The method fails.

bool InputMethod::timerExpired(plat::Timer*) {
    log.info("the input method gives no answer: keys are used as they are");
    stalled = true;
    answerTimer.cancel();
    useSentKeys();
    giveDue();
    return false;
}

/// Those whose question has no answer. They stay in the list, to be known when they come back after all.
void InputMethod::useSentKeys() {
    for (Sent& one : sent) {
        if (one.question > lastAnswered && !std::exchange(one.used, true))
            use(one);
    }
}

void InputMethod::use(const Sent& key) {
    due.push_back({key.client, key.event, {}});
    if (key.released)
        due.push_back({key.client, key.release, {}});
}

/// In any call the client may end, or run a loop of its own, which goes on here.
void InputMethod::giveDue() {
    while (!due.empty()) {
        Due one = due.front();
        due.pop_front();
        if (one.text.isEmpty())
            one.client->inputMethodKey(&one.event);
        else
            one.client->inputMethodText(one.text);
    }
}

/// Keys under way are used as they are.
void InputMethod::ximLost(bool ended) {
    answerTimer.cancel();
    stage = Stage::Opening;
    context = im = 0;
    contextClient = nullptr;
    stalled = confirming = contextAsked = contextFocused = false;
    contextWindow = none;
    ids = {};
    styles.clear();
    triggerKeys = {};
    forwardMask = KeyPressMask;
    useSentKeys();
    sent.clear();
    lastAnswered = leftUpTo = lastAsked;
    if (ended && current)
        start(); // the next one may have come first
}

void InputMethod::close() {
    current = nullptr;
    link.close();
    ximLost(/*ended=*/true);
    due.clear();
    link.release();
}

} // namespace tx
