// The process of the connection prompt: its link to the core.
#pragma once

#include "io/MsgIpc.h"
#include "smisc/QueryConnectDialog.h"

namespace io {
class Io;
}

namespace smisc {

/// Reads requests and sends answers, until the link ends and the loop with it. docs/links/prompt.md is the table.
class QueryConnectApp : private QueryResultCallback, private io::MsgIpc::Callback, private io::MsgIpc::Reader {
public:
    using DialogFactory = std::unique_ptr<QueryConnectDialog> (*)(QueryResultCallback* target);

    QueryConnectApp(io::Io* link, DialogFactory makeDialog); ///< the link deletes itself
    ~QueryConnectApp() override;

    void startSample(); ///< a request of nobody, for developers; the first answer ends the loop

private:
    // smisc::QueryResultCallback
    void queryResult(const hxauth::Permissions& rights, bool byUser) override;
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc*) override;
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) override;

    void start(const ConnectRequest& request);
    void cancel();
    void sendResult(const hxauth::Permissions& rights, bool byUser);

    io::MsgIpc link; // named apart from the one that the base knows
    std::unique_ptr<QueryConnectDialog> dialog;
    bool active = false;
    bool isSample = false;
    uint32_t sequence = 0; // of the next answer: answers and cancelled requests before it
};

} // namespace smisc
