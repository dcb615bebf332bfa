// The top object of the normal mode.
#pragma once

#include "io/MsgIpc.h"
#include "sui/unix/ServerUiUnix.h"

namespace io {
class Io;
}

/// The link to the core and the UI on it, for as long as the core keeps the link.
class ServerUiApp : private io::MsgIpc::Callback {
public:
    explicit ServerUiApp(io::Io* link); ///< which deletes itself
    ~ServerUiApp() override;

private:
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc*) override; ///< ends the loop with 0, whoever closed

    io::MsgIpc ipc;
    sui::ServerUiUnix shell;
};
