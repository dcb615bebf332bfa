// The core-level messages of the link to the server core, both ways.
#pragma once

#include "io/MsgIpc.h"
#include "plat/NonCopyable.h"
#include "score/ConnectionInfo.h"
#include "sui/SUiModule.h"

#include <cstdint>
#include <initializer_list>

namespace sui {

/// What the core says of itself.
struct CoreStatus {
    enum State : uint8_t { Idle, Connected, NoIcon };

    uint8_t state = Idle;
    bool optionsDisabled = false;
    bool cannotStop = false;
    bool closeStopsServer = false;
    plat::String notifyText;  ///< never on the wire, so it stays empty
    uint32_t notifyMs = 4000; ///< how long a connect popup stands; 0 for no popups
    uint64_t reserved = 0;    ///< never on the wire
    uint32_t notifyFlags = 0; ///< bit 0: popups stay
};

/// Reads the core's nine messages and sends ours. docs/links/core.md is the table.
///
/// A message is read whole before its callback runs, so a message in pieces calls once.
class ServerComms : public io::MsgIpc::Reader, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void desktopStarted(bool started) { (void)started; }
        virtual void addRemConn(const score::ConnectionInfo& info, bool add) { (void)info, (void)add; }
        virtual void updateCoreStatus(const CoreStatus& status) { (void)status; }
        virtual void updatePrivacyStatus(bool on) { (void)on; }
        virtual void updateFeatures(const FeatureMap& map) { (void)map; }
        virtual void showStatusDialog() {}
        virtual void showOptions(const char* section) { (void)section; } ///< null for the default one
        virtual void setServerExe(const char* path) { (void)path; }
        virtual void resolveEvent(const char* id) { (void)id; }
    };

    ServerComms(io::MsgIpc* link, Callback* target); ///< both borrowed
    ~ServerComms() override;

    void sendUiLocale(const char* language);
    void sendAddClient(const char* address);                  ///< without the white space at its ends
    void sendDisconnClient(const char* idA, const char* idB); ///< both empty: all connections
    void sendResolveEvent(const char* id);
    void sendReload();
    void sendUpdateStatus();
    void sendUiActivated();
    void sendRequestOptions();
    void sendQuit();
    void sendDesktopEnv(const char* desktop); ///< empty when none

private:
    struct Message;
    static const Message messages[];

    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;

    void readDesktopStarted(rdr::InStream& in);
    void readAddRemConn(rdr::InStream& in);
    void readUpdateCoreStatus(rdr::InStream& in);
    void readUpdatePrivacyStatus(rdr::InStream& in);
    void readUpdateFeatures(rdr::InStream& in);
    void readShowStatusDialog(rdr::InStream& in);
    void readShowOptions(rdr::InStream& in);
    void readSetServerExe(rdr::InStream& in);
    void readResolveEvent(rdr::InStream& in);

    void send(const char* name, std::initializer_list<const char*> texts = {});

    Callback* callback;
};

} // namespace sui
