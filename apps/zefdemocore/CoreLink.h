// The core's side of the link to the UI.
#pragma once

#include "io/MsgIpc.h"
#include "plat/NonCopyable.h"
#include "zefdemocore/CutText.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace democore {

/// The six texts of a connection, in wire order.
struct Connection {
    std::string user, address, idA, idB, permissions, userType;
};

/// Sends every message that the UI has an ear for, and prints each that comes from it: "ui: name text text".
class CoreLink : private io::MsgIpc::Callback, private io::MsgIpc::Reader, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        /// After it was printed; numbers among the fields are decimal.
        virtual void uiMessage(const std::string& name, const std::vector<std::string>& fields) = 0;
        virtual void linkLost() {}
    };

    CoreLink(int fd, Callback* target); ///< takes the descriptor; the callback is borrowed
    ~CoreLink() override;

    // Core messages
    void desktopStarted(bool started);
    void addRemConn(const Connection& connection, bool add);
    void updateCoreStatus(const std::vector<uint32_t>& fields); ///< state, three flags, notifyMs, notifyFlags
    void updatePrivacyStatus(bool on);
    void updateFeatures(const std::vector<std::pair<std::string, int>>& features); ///< bit 0 available, 1 enabled
    void sendText(const char* name, const std::string& text);                      ///< a message of one string8
    void sendBool(const char* name, bool value);                                   ///< a message of one boolean
    void sendEmpty(const char* name);
    void setLogLevel(uint32_t level);

    // Status databases: "Info" and "Event"
    void setNode(const char* db, const std::string& path, uint32_t order,
                 const std::map<std::string, std::string>& data);
    void removeNode(const char* db, const std::string& path);
    void commit(const char* db);
    void setUpdating(const char* db, bool on);

    void sendRaw(std::string_view bytes);                             ///< onto the wire, without a frame
    void sendBody(const std::string& name, std::string_view body);    ///< a message with this body
    void sendCutText(const std::string& text);                        ///< "clientCutText"
    const std::string& lastCutText() const { return cutText.last(); } ///< of the UI
    void closeLink();
    bool isOpen() const { return link.isAttached(); }

private:
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc*) override;
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override;

    Callback* callback;
    int socketFd; // the link's
    io::MsgIpc link;
    CutText cutText;
};

} // namespace democore
