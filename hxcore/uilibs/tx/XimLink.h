// The road of messages between us and an input method's server.
#pragma once

#include "plat/NonCopyable.h"
#include "tx/TXEventHandler.h"
#include "tx/xim.h"
#include "tx/xlib.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tx {

/// Finds the server of a named method, and carries messages both ways in events and properties of X ("The Input Method
/// Protocol", appendix D, version 0.0 of the transport). Waits for nothing that the server has to say.
class XimLink : private TXEventHandler, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void ximAppeared() = 0; ///< a server has announced itself; another one may be connected
        virtual void ximConnected() = 0;
        virtual bool ximMessage(const xim::Message& message) = 0; ///< false for what no server would say
        virtual void ximLost(bool ended) = 0; ///< maybe never connected; `ended` false for one that has no sense
    };

    explicit XimLink(Callback* target) : callback(target) {}

    /// Where no server runs: two round trips the first time, then one. True if one runs: it has been asked to connect.
    bool open(const std::string& name);
    void close();   ///< ends the conversation, without a callback
    void release(); ///< before the display goes

    bool isOpen() const { return owner != none; }
    bool isReplaced() const;               ///< another one owns the name: one round trip
    bool send(xim::Writer& writer);        ///< false while there is no server to send to
    bool filterEvent(const XEvent& event); ///< true for an event that was ours
    Atom compoundText() const;

private:
    // TXEventHandler: properties of the root window
    bool handleEvent(XEvent* event) override;

    bool watch(Window window);
    void lose(const char* why, bool ended = false);
    void connected(const XClientMessageEvent& event);
    void receive(const XClientMessageEvent& event);
    void receive(xim::Bytes data, bool single);

    Callback* callback;
    std::vector<Atom> atoms;       // by the list in the source; empty until a method is named
    Window own = none;             // where the server's messages go
    Window owner = none;           // of the method's selection
    Window server = none;          // where ours go
    std::vector<uint8_t> incoming; // the pieces of a message that has not come in full
    unsigned sentLong = 0;         // messages that took a property
};

} // namespace tx
