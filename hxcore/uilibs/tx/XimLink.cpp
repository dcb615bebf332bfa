#include "tx/XimLink.h"

#include "plat/LogSrc.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"

#include <cstring>
#include <optional>
#include <utility>

namespace tx {
namespace {

plat::LogSrc log("XimLink");

constexpr size_t shortBytes = 20;  // what a ClientMessage holds
constexpr unsigned longSlots = 64; // properties in turn for longer messages, as some may still be unread

/// Those of `atoms`; the first two are enough to look for a server.
enum AtomIndex { Servers, Selection, XConnect, Protocol, MoreData, CompoundText, FirstSlot };

void internAtoms(std::vector<std::string> names, std::vector<Atom>* out) {
    std::vector<char*> texts;
    for (std::string& one : names)
        texts.push_back(one.data());
    const size_t known = out->size();
    out->resize(known + names.size());
    XInternAtoms(dpy, texts.data(), static_cast<int>(texts.size()), False, out->data() + known);
}

} // namespace

bool XimLink::open(const std::string& name) {
    if (atoms.empty()) {
        addRootEventHandler(this, /*add=*/true, PropertyChangeMask);
        internAtoms({"XIM_SERVERS", "@server=" + name}, &atoms);
    }
    const Window found = XGetSelectionOwner(dpy, atoms[Selection]);
    if (found == none || !watch(found))
        return false;
    if (atoms.size() <= XConnect) {
        std::vector<std::string> names = {"_XIM_XCONNECT", "_XIM_PROTOCOL", "_XIM_MOREDATA", "COMPOUND_TEXT"};
        for (unsigned i = 0; i < longSlots; i++)
            names.push_back("_ZEF_XIM_" + std::to_string(i));
        internAtoms(std::move(names), &atoms);
    }
    if (own == none)
        own = XCreateWindow(dpy, rootWindow, -1, -1, 1, 1, 0, 0, InputOnly, nullptr, 0, nullptr);
    owner = found;
    log.debug("connecting to 0x%lx", owner);
    sendClientMessage(owner, NoEventMask, owner, atoms[XConnect], static_cast<long>(own));
    return true;
}

/// Its end is the end of the server. Anybody can name any window: one of ours has no need of it, and where we listen
/// already for another reason we listen on.
bool XimLink::watch(Window window) {
    if (window == rootWindow || window == own || findWindow(window))
        return false;
    ErrorCatcher catcher(100);
    XWindowAttributes attributes{};
    if (!XGetWindowAttributes(dpy, window, &attributes))
        return false;
    XSelectInput(dpy, window, attributes.your_event_mask | StructureNotifyMask);
    return !catcher.failed();
}

bool XimLink::isReplaced() const { return owner != none && XGetSelectionOwner(dpy, atoms[Selection]) != owner; }

void XimLink::close() {
    owner = server = none;
    incoming.clear();
}

void XimLink::release() {
    close();
    if (own != none)
        XDestroyWindow(dpy, own);
    own = none;
    if (!atoms.empty())
        addRootEventHandler(this, /*add=*/false);
    atoms.clear();
}

Atom XimLink::compoundText() const { return atoms.size() > CompoundText ? atoms[CompoundText] : none; }

void XimLink::lose(const char* why, bool ended) {
    log.info("input method gone: %s", why);
    close();
    callback->ximLost(ended);
}

void XimLink::connected(const XClientMessageEvent& event) {
    const auto window = static_cast<Window>(event.data.l[0]);
    if (server != none || event.format != 32 || window == none)
        return;
    if (!watch(window)) {
        lose("its window is none");
        return;
    }
    server = window;
    callback->ximConnected();
}

bool XimLink::send(xim::Writer& writer) {
    if (server == none)
        return false;
    const std::vector<uint8_t>& data = writer.message();
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = server;
    event.xclient.message_type = atoms[Protocol];
    event.xclient.format = 8;
    if (data.size() <= shortBytes) {
        std::memcpy(event.xclient.data.b, data.data(), data.size());
    } else {
        const Atom property = atoms[FirstSlot + sentLong++ % longSlots];
        XChangeProperty(dpy, server, property, XA_STRING, 8, PropModeAppend, data.data(),
                        static_cast<int>(data.size()));
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(data.size());
        event.xclient.data.l[1] = static_cast<long>(property);
    }
    XSendEvent(dpy, server, False, NoEventMask, &event);
    return true;
}

bool XimLink::filterEvent(const XEvent& event) {
    if (own == none)
        return false;
    if (event.type == DestroyNotify) {
        const Window gone = event.xdestroywindow.window;
        if (!event.xany.send_event && gone != none && (gone == owner || gone == server))
            lose("ended", /*ended=*/true);
        return false; // others may wait for the same
    }
    if (event.xany.window != own)
        return false;
    if (event.type != ClientMessage || owner == none)
        return true;
    if (event.xclient.message_type == atoms[XConnect])
        connected(event.xclient);
    else if (event.xclient.message_type == atoms[Protocol] || event.xclient.message_type == atoms[MoreData])
        receive(event.xclient);
    return true;
}

void XimLink::receive(const XClientMessageEvent& event) {
    if (server == none)
        return;
    if (event.format == 32) {
        std::optional<Property> value;
        {
            ErrorCatcher catcher(100); // the name may be none
            value = getWindowProperty(own, static_cast<Atom>(event.data.l[1]), AnyPropertyType, /*remove=*/true,
                                      xim::maxMessageBytes);
        }
        const std::span<const char> bytes = value->bytes();
        if (value->isTruncated())
            lose("a message too long");
        else
            receive({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()}, /*single=*/false);
        return;
    }
    if (event.format != 8)
        return;
    const auto* piece = reinterpret_cast<const uint8_t*>(event.data.b);
    incoming.insert(incoming.end(), piece, piece + shortBytes);
    const bool more = event.message_type == atoms[MoreData];
    if (more && incoming.size() <= xim::maxMessageBytes)
        return;
    const std::vector<uint8_t> whole = std::exchange(incoming, {});
    if (more)
        lose("a message without end");
    else
        receive(xim::Bytes(whole), /*single=*/true); // and what fills the event up
}

void XimLink::receive(xim::Bytes data, bool single) {
    xim::Message message;
    for (bool more = true; more && xim::takeMessage(data, &message); more = !single) {
        if (!callback->ximMessage(message)) {
            lose(("it has no sense: " + std::to_string(message.opcode)).c_str());
            return;
        }
    }
}

/// A server that comes touches this property in any case.
bool XimLink::handleEvent(XEvent* event) {
    if (event->type == PropertyNotify && event->xproperty.atom == atoms[Servers])
        callback->ximAppeared();
    return false;
}

} // namespace tx
