#include "zefserverui/tx/ServerUiApp.h"

#include "entSvr/createSUiModules.h"
#include "io/LogDestIpc.h"
#include "os/AppLoop.h"

namespace {
constexpr int moduleMenuSection = 2;

// The link must be attached before the shell, which speaks on it at once, is made.
io::MsgIpc* attached(io::MsgIpc& ipc, io::Io* io) {
    ipc.acceptIo(io);
    return &ipc;
}
} // namespace

ServerUiApp::ServerUiApp(io::Io* link) : ipc(this, "server"), shell(attached(ipc, link)) {
    createSUiModules(shell.serverUi(), moduleMenuSection);
    plat::LogDestIpc::instance().attach(&ipc);
}

ServerUiApp::~ServerUiApp() { plat::LogDestIpc::instance().attach(nullptr); }

void ServerUiApp::ipcClosed(io::MsgIpc*) { os::AppLoop::exit(0); }
