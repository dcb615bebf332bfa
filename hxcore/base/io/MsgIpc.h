// Named messages in frames over a connection.
#pragma once

#include "io/Ipc.h"
#include "io/StateMachine.h"
#include "rdr/InStreamV4.h"
#include "rdr/OutStreamV4.h"

#include <map>
#include <string>
#include <vector>

namespace io {

/// A link: messages, each a name and a body of typed fields, to and from one peer.
///
/// It may be destroyed in any of its callbacks. Wire: frames of a 16-bit header (bit 15 ends the message, bits 0 to 14
/// count the payload bytes that follow); the payload of a message is its name as a string8, then the body.
class MsgIpc : public IoAcceptor, private Ipc::Callback {
public:
    /// Handles the messages of one or more names.
    class Reader {
    public:
        virtual ~Reader(); ///< takes itself out of `ipc`

        /// True: done, and what is left of the message is skipped. False: to be run again when the loop next runs.
        ///
        /// Runs again from the start of the body when bytes are missing: read all that is needed, then act. What it
        /// throws closes the link.
        virtual bool readMsg(const char* name, rdr::InStream& in, MsgIpc* ipc) = 0;

        virtual void ipcStateChanged(MsgIpc*) {} ///< the link was attached or lost; once, however many names
        virtual void ipcRemoved(MsgIpc* gone) {  ///< the MsgIpc is being destroyed
            if (ipc == gone)
                ipc = nullptr;
        }

    protected:
        MsgIpc* ipc = nullptr; ///< set by the concrete reader when it registers
    };

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void ipcClosed(MsgIpc*) {} ///< the link is gone, by whichever side
        virtual bool isMsgAllowed(MsgIpc*, const char* /*name*/, bool /*writing*/) { return true; }
        virtual void ipcError(MsgIpc*, const plat::Exception&) {} ///< ipcClosed follows
    };

    /// `callback` is borrowed and may be null; `name` is the link's in logs. `blocking`: nothing is read but by
    /// readMessage and its kin. `warnDiscard` logs messages that are written while there is no Io.
    MsgIpc(Callback* callback, const char* name, bool blocking = false, bool warnDiscard = false);
    ~MsgIpc() override;

    void acceptIo(Io* io) override; ///< there must be none

    /// Enters or replaces the handler, borrowed, of a name; null is the name of the default handler.
    void addHandler(const char* name, Reader* reader);
    void removeHandler(const char* name);    ///< a message of it that waits for data is skipped
    void removeReader(const Reader* reader); ///< all its names

    /// Opens a message; the body is written to what it returns, then endMsg.
    ///
    /// Throws plat::Exception if the callback doesn't allow the message. Without an Io the bytes vanish.
    rdr::OutStream& startMsg(const char* name);
    void endMsg(bool flush = true); ///< throws what the stream throws

    /// Waits for one message and handles it; `name`, unless null, is the only name that is accepted but "badMsg".
    ///
    /// Throws if another came, and what reading throws; the link is ready for the next message then. It may return
    /// with the link closed.
    void readMessage(const char* name);
    void readUntil(const char* name); ///< handles messages up to and with the next of that name
    void readUntilEnd();              ///< handles messages until the stream ends

    void close(bool tell); ///< ends the link; `tell` calls Callback::ipcClosed if there was one

    void setBlocking(bool on);
    void setReplyBadMsg(bool on) { replyBadMsg = on; }         ///< answer unknown names; default false
    void setCloseOnGarbage(bool on) { closeOnGarbage = on; }   ///< close on names below "A"; default true
    void setCloseOnDestroy(bool on) { closeOnDestroy = on; }   ///< run close in the destructor; default false
    void setFlushOnClose(bool on) { ipc.setFlushOnClose(on); } ///< default false

    bool isAttached() const { return ipc.getIo() != nullptr; }
    Io* getIo() const { return ipc.getIo(); } ///< null while not attached
    const char* getName() const { return ipc.getName(); }
    const char* lastMsgName() const { return msgName.c_str(); } ///< of the message read last
    rdr::OutStream& outStream() { return out; }                 ///< of the framed messages

private:
    struct NameLess {
        using is_transparent = void;
        static const char* key(const char* s) { return s; }
        static const char* key(const plat::String& s) { return s.get(); }
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return less(key(a), key(b));
        }
        static bool less(const char* a, const char* b); // null first
    };
    using StateFn = rdr::StateMachine<MsgIpc>::StateFn;
    using Handlers = std::map<plat::String, Reader*, NameLess>;

    // io::Ipc::Callback
    void dataAvailable(Ipc*) override;
    void ipcClosed(Ipc*) override;
    void ipcError(Ipc*, const plat::Exception& failure) override;

    // States
    bool startMsgState();
    bool readNameState();
    bool dispatchState();
    bool finishMsgState();

    void readName();
    bool refuseName(); // gives what readNameState gives
    [[noreturn]] void throwPeerReport();
    bool isAllowed(const char* name, bool writing);
    void skipMessage();
    void erase(Handlers::iterator entry);
    void attachmentChanged(StateFn newState);
    bool tellStateChanged(); // false if this died meanwhile
    bool isRegistered(const Reader* reader) const;
    void runToNextMsg(const Lifeline::Watch& watch);
    void recover(const plat::Exception& failure);

    Ipc ipc;
    Callback* callback;
    rdr::InStreamV4 in;
    rdr::OutStreamV4 out;
    rdr::StateMachine<MsgIpc> state;
    Handlers handlers;
    Handlers::iterator current; // being dispatched, or end
    plat::String expected;      // what readMessage demands, or null
    std::string msgName;
    bool warnDiscard;
    bool replyBadMsg = false;
    bool closeOnDestroy = false;
    bool closeOnGarbage = true;
    unsigned attachment = 0; // counts comings and goings of an Io
    Lifeline lifeline;
};

} // namespace io
