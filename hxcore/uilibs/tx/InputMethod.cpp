#include "tx/InputMethod.h"

#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"
#include "rfb/keySymbols.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/dynTextInput.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

namespace tx {
namespace {

plat::LogSrc log("InputMethod");
plat::BoolParameter enabled("_InputMethod", "Send keys to the XIM server that XMODIFIERS names", false);

constexpr uint32_t maxCommitBytes = 64 * 1024;
constexpr size_t maxPending = 256; // keys; beyond, the method doesn't keep up
constexpr uint32_t overTheSpot = XCB_IM_PreeditPosition | XCB_IM_StatusNothing;

/// The name of "@im=<name>" in XMODIFIERS; empty for none that is a server.
std::string methodName() {
    const char* modifiers = std::getenv("XMODIFIERS");
    const char* found = modifiers ? std::strstr(modifiers, "@im=") : nullptr;
    if (!found)
        return {};
    const std::string name(found + 4, std::strcspn(found + 4, "@"));
    return name == "none" || name == "local" || name.size() > 100 ? std::string() : name;
}

InputMethod& self(void* data) { return *static_cast<InputMethod*>(data); }

void onForward(xcb_xim_t*, xcb_xic_t, xcb_key_press_event_t* event, void* data) {
    self(data).keyReturned(event->response_type & 0x7fU, event->detail, event->time);
}

void onCommit(xcb_xim_t*, xcb_xic_t, uint32_t flags, char* text, uint32_t len, uint32_t* keysyms, size_t count,
              void* data) {
    self(data).textCommitted(flags, text, len, keysyms, count);
}

void onProbed(xcb_xim_t*, xcb_xic_t, void* data) { self(data).keyDone(); }

void onLost(xcb_xim_t*, void* data) { self(data).lost(); }

void onOpened(xcb_xim_t*, void* data) { self(data).opened(); }

void onContext(xcb_xim_t*, xcb_xic_t id, void* data) { self(data).contextMade(id); }

/// The form in which the library takes those of its events that are about windows (X protocol, "Events").
bool toWire(const XEvent& event, xcb_generic_event_t* out) {
    static_assert(sizeof(xcb_client_message_event_t) <= sizeof(xcb_generic_event_t));
    std::memset(out, 0, sizeof *out);
    switch (event.type) {
    case ClientMessage: {
        xcb_client_message_event_t wire{};
        wire.format = static_cast<uint8_t>(event.xclient.format);
        wire.window = static_cast<xcb_window_t>(event.xclient.window);
        wire.type = static_cast<xcb_atom_t>(event.xclient.message_type);
        if (event.xclient.format == 32) {
            for (int i = 0; i < 5; i++)
                wire.data.data32[i] = static_cast<uint32_t>(event.xclient.data.l[i]);
        } else {
            std::memcpy(wire.data.data8, event.xclient.data.b, sizeof wire.data.data8);
        }
        std::memcpy(out, &wire, sizeof wire);
        break;
    }
    case SelectionNotify: {
        xcb_selection_notify_event_t wire{};
        wire.time = static_cast<xcb_timestamp_t>(event.xselection.time);
        wire.requestor = static_cast<xcb_window_t>(event.xselection.requestor);
        wire.selection = static_cast<xcb_atom_t>(event.xselection.selection);
        wire.target = static_cast<xcb_atom_t>(event.xselection.target);
        wire.property = static_cast<xcb_atom_t>(event.xselection.property);
        std::memcpy(out, &wire, sizeof wire);
        break;
    }
    case DestroyNotify: {
        xcb_destroy_notify_event_t wire{};
        wire.event = static_cast<xcb_window_t>(event.xdestroywindow.event);
        wire.window = static_cast<xcb_window_t>(event.xdestroywindow.window);
        std::memcpy(out, &wire, sizeof wire);
        break;
    }
    default:
        return false;
    }
    out->response_type = static_cast<uint8_t>(event.type | (event.xany.send_event ? 0x80 : 0));
    return true;
}

xcb_key_press_event_t toWire(const XKeyEvent& event, Window window) {
    xcb_key_press_event_t wire{};
    wire.response_type = static_cast<uint8_t>(event.type);
    wire.detail = static_cast<xcb_keycode_t>(event.keycode);
    wire.sequence = static_cast<uint16_t>(event.serial);
    wire.time = static_cast<xcb_timestamp_t>(event.time);
    wire.root = static_cast<xcb_window_t>(event.root);
    wire.event = static_cast<xcb_window_t>(window);
    wire.root_x = static_cast<int16_t>(event.x_root);
    wire.root_y = static_cast<int16_t>(event.y_root);
    wire.event_x = static_cast<int16_t>(event.x);
    wire.event_y = static_cast<int16_t>(event.y);
    wire.state = static_cast<uint16_t>(event.state);
    wire.same_screen = 1;
    return wire;
}

constexpr xcb_xim_im_callback callbacks = [] {
    xcb_xim_im_callback table{};
    table.forward_event = onForward;
    table.commit_string = onCommit;
    table.disconnected = onLost;
    return table;
}();

} // namespace

InputMethod& InputMethod::instance() {
    static InputMethod& method = *new InputMethod;
    return method;
}

void InputMethod::setCursor(InputMethodClient* client, Window window, const rfb::Rect& cursor) {
    if (cursor.isEmpty()) {
        if (client == current)
            current = nullptr;
        return;
    }
    const bool moved = spot != cursor || currentWindow != window;
    if (current != client) {
        pending.clear();
        unanswered = 0;
    }
    current = client;
    currentWindow = window;
    spot = cursor;
    if (!im)
        start();
    else if (isOpen && contextWindow != window)
        makeContext();
    else if (moved && context)
        sendSpot(/*probe=*/false);
    flush();
}

/// What the library writes goes round Xlib's own buffer, which may be empty and flush nothing.
void InputMethod::flush() {
    if (im)
        dynTextInput::xcb_flush(dynTextInput::XGetXCBConnection(dpy));
}

void InputMethod::forget(InputMethodClient* client) {
    if (client != current)
        return;
    current = nullptr;
    pending.clear();
    unanswered = 0;
    answerTimer.cancel();
}

void InputMethod::start() {
    const std::string name = methodName();
    if (name.empty() || !enabled.value())
        return;
    const Atom selection = XInternAtom(dpy, ("@server=" + name).c_str(), True);
    owner = selection ? XGetSelectionOwner(dpy, selection) : none;
    if (owner == none || owner == hungOwner)
        return; // asked again when another text field is entered
    try {
        xcb_connection_t* connection = dynTextInput::XGetXCBConnection(dpy);
        dynTextInput::xcb_compound_text_init();
        im = dynTextInput::xcb_xim_create(connection, DefaultScreen(dpy), ("@im=" + name).c_str());
        if (!im)
            return;
        dynTextInput::xcb_xim_set_im_callback(im, &callbacks, static_cast<void*>(this));
        dynTextInput::xcb_xim_set_use_utf8_string(im, true);
        const bool connects = dynTextInput::xcb_xim_open(im, onOpened, false, static_cast<void*>(this));
        log.debug("input method %s: %s", name.c_str(), connects ? "connecting" : "none");
        if (!connects)
            stop();
        else
            answerTimer.start(answerMs);
    } catch (const plat::DynamicFnLoadFailed& e) {
        log.info("no input method: %s", e.what());
        hungOwner = owner;
    }
}

void InputMethod::opened() {
    isOpen = true;
    answerTimer.cancel();
    log.info("input method ready");
    if (current)
        makeContext();
}

void InputMethod::makeContext() {
    if (contextAsked)
        return; // made for the right window when the answer comes
    if (context)
        dynTextInput::xcb_xim_destroy_ic(im, context, static_cast<xcb_xim_destroy_ic_callback>(nullptr),
                                         static_cast<void*>(nullptr));
    context = 0;
    contextAsked = true;
    contextWindow = currentWindow;
    uint32_t style = overTheSpot;
    auto window = static_cast<uint32_t>(contextWindow);
    xcb_point_t point{static_cast<int16_t>(spot.tl.x), static_cast<int16_t>(spot.br.y)};
    xcb_xim_nested_list preedit = dynTextInput::xcb_xim_create_nested_list(im, XCB_XIM_XNSpotLocation, &point, nullptr);
    dynTextInput::xcb_xim_create_ic(im, onContext, static_cast<void*>(this), XCB_XIM_XNInputStyle, &style,
                                    XCB_XIM_XNClientWindow, &window, XCB_XIM_XNFocusWindow, &window,
                                    XCB_XIM_XNPreeditAttributes, &preedit, nullptr);
    std::free(preedit.data);
    answerTimer.start(answerMs);
}

void InputMethod::contextMade(uint16_t id) {
    contextAsked = false;
    answerTimer.cancel();
    context = id;
    if (id == 0)
        return; // refused: keys are used as they are
    if (current && contextWindow != currentWindow) {
        makeContext();
        return;
    }
    dynTextInput::xcb_xim_set_ic_focus(im, id);
    sendSpot(/*probe=*/false);
}

/// Where the method shows its own window: below the text cursor.
void InputMethod::sendSpot(bool probe) {
    xcb_point_t point{static_cast<int16_t>(spot.tl.x), static_cast<int16_t>(spot.br.y)};
    xcb_xim_nested_list preedit = dynTextInput::xcb_xim_create_nested_list(im, XCB_XIM_XNSpotLocation, &point, nullptr);
    dynTextInput::xcb_xim_set_ic_values(im, context, probe ? onProbed : nullptr, static_cast<void*>(this),
                                        XCB_XIM_XNPreeditAttributes, &preedit, nullptr);
    std::free(preedit.data);
}

bool InputMethod::takeKey(InputMethodClient* client, const XKeyEvent& event) {
    if (!context || client != current || contextWindow != currentWindow || unanswered >= maxPending)
        return false;
    while (pending.size() >= maxPending) // used long ago
        pending.pop_front();
    xcb_key_press_event_t wire = toWire(event, contextWindow);
    if (!dynTextInput::xcb_xim_forward_event(im, context, &wire))
        return false;
    pending.push_back(event);
    unanswered++;
    sendSpot(/*probe=*/true); // that has an answer, whatever becomes of the key
    flush();
    if (!answerTimer.isActive())
        answerTimer.start(answerMs);
    return true;
}

bool InputMethod::filterEvent(const XEvent& event) {
    if (event.type == DestroyNotify && event.xdestroywindow.window == hungOwner)
        hungOwner = none;
    xcb_generic_event_t wire;
    if (!im || !toWire(event, &wire))
        return false;
    depth++;
    const bool taken = dynTextInput::xcb_xim_filter_event(im, &wire);
    flush();
    depth--;
    if (stopLater && depth == 0)
        stop();
    return taken;
}

/// The method gave a key back, or made one up.
void InputMethod::keyReturned(unsigned type, unsigned keycode, Time time) {
    const auto found = std::find_if(pending.begin(), pending.end(), [=](const XKeyEvent& event) {
        return static_cast<unsigned>(event.type) == type && event.keycode == keycode && event.time == time;
    });
    if (found == pending.end())
        return; // not one of ours: nobody pressed it
    const XKeyEvent event = *found;
    pending.erase(pending.begin(), found + 1); // the ones before it were used
    unanswered = std::min(unanswered, pending.size());
    deliver(event);
}

/// The method is through with the oldest key; what is still under way has its full time again.
void InputMethod::keyDone() {
    answerTimer.cancel();
    if (unanswered > 0 && --unanswered > 0)
        answerTimer.start(answerMs);
}

void InputMethod::deliver(XKeyEvent event) {
    if (current)
        current->inputMethodKey(&event);
}

void InputMethod::textCommitted(uint32_t flags, const char* text, uint32_t len, const uint32_t* keysyms,
                                size_t keysymCount) {
    std::string utf8;
    if ((flags & XCB_XIM_LOOKUP_CHARS) && text && len <= maxCommitBytes) {
        if (dynTextInput::xcb_xim_get_encoding(im) == XCB_XIM_UTF8_STRING) {
            utf8.assign(text, len);
        } else {
            size_t utf8Len = 0;
            char* converted = dynTextInput::xcb_compound_text_to_utf8(text, static_cast<size_t>(len), &utf8Len);
            if (converted)
                utf8.assign(converted, utf8Len);
            std::free(converted);
        }
    }
    if (flags & XCB_XIM_LOOKUP_KEYSYM) {
        for (size_t i = 0; i < std::min<size_t>(keysymCount, 64); i++) {
            char encoded[8];
            char* end = static_cast<char*>(encoded);
            plat::encodeUtf8(rfb::unicodeFromKeysym(keysyms[i]), &end);
            utf8.append(static_cast<char*>(encoded), end);
        }
    }
    if (current && !utf8.empty())
        current->inputMethodText(plat::repairUtf8(utf8.data(), static_cast<int>(utf8.size())));
}

void InputMethod::lost() {
    log.info("input method gone");
    stopLater = true; // the library is still at work
}

bool InputMethod::timerExpired(plat::Timer*) {
    log.info("the input method gives no answer: keys are used as they are");
    stop();
    hungOwner = owner;
    const ErrorCatcher catcher(100);
    XSelectInput(dpy, owner, StructureNotifyMask); // another method may get the same number
    return false;
}

/// Ends the conversation; keys under way are used as they are.
void InputMethod::stop() {
    answerTimer.cancel();
    stopLater = false;
    if (im) {
        dynTextInput::xcb_xim_close(im);
        flush();
        dynTextInput::xcb_xim_destroy(im);
    }
    im = nullptr;
    isOpen = contextAsked = false;
    context = 0;
    contextWindow = none;
    giveBack();
}

void InputMethod::giveBack() {
    const std::deque<XKeyEvent> keys = std::exchange(pending, {});
    const size_t used = keys.size() - std::exchange(unanswered, 0);
    for (size_t i = used; i < keys.size(); i++)
        deliver(keys[i]);
}

void InputMethod::close() {
    current = nullptr;
    stop();
    hungOwner = owner = none;
}

} // namespace tx
