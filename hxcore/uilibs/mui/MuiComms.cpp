#include "mui/MuiComms.h"

#include "io/Io.h"
#include "mui/MuiCommsConn.h"
#include "os/NamedPipeListener.h"
#include "os/PipeNameScoped.h"
#include "os/UnixIo.h"
#include "plat/Assert.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <unistd.h>

namespace mui {
namespace {
plat::LogSrc log("MuiComms");
plat::BoolParameter muiComms("_MuiComms", plat::LocKey("mui_param_muicomms"), false);
MuiComms* theInstance = nullptr;
MuiModalHost* modalHost = nullptr;
constexpr const char* baseName = "MuiComms";
} // namespace

void MuiComms::init(Mui* mui, const char* nameSuffix) {
    MuiComms* instance = theInstance;
    ASSERT(!instance);
    theInstance = new MuiComms(mui, nameSuffix);
}

MuiComms* MuiComms::instance() { return theInstance; }

void MuiComms::destroy() {
    delete theInstance;
    theInstance = nullptr;
}

void MuiComms::initFromParameter(Mui* mui, const char* nameSuffix) {
    init(mui, nameSuffix);
    if (muiComms.value())
        theInstance->setEnabled(true);
}

void MuiComms::setModalHost(MuiModalHost* host) { modalHost = host; }

void MuiComms::serveModal(MuiModalClient* client, bool on) {
    if (modalHost)
        modalHost->serve(client, on);
}

MuiComms::MuiComms(Mui* target, const char* suffix) : mui(target), nameSuffix(suffix ? suffix : "") {}

MuiComms::~MuiComms() {
    serveModal(this, /*on=*/false);
    while (!connections.empty())
        connections.front()->end();
}

void MuiComms::setEnabled(bool enabled) {
    if (enabled == isEnabled())
        return;
    serveModal(this, enabled);
    if (!enabled) {
        listener.reset();
        pipeName = "";
        return;
    }
    try {
        const plat::String name = plat::strFormat("%s%s", baseName, nameSuffix.c_str());
        const os::PipeNameScoped pipe(name.c_str());
        listener = std::make_unique<os::NamedPipeListener>(pipe.path());
        listener->setAcceptor(this);
        pipeName = pipe.path();
    } catch (const plat::Exception& e) {
        log.error("MuiComms failed: %s", e.what());
        listener.reset();
    }
}

void MuiComms::acceptIo(io::Io* io) {
    try {
        auto* unixIo = dynamic_cast<os::UnixIo*>(io);
        if (!unixIo)
            throw plat::Exception("not a local socket");
        unixIo->namedPipeCredCheck(geteuid());
        endOverdue();
        if (connections.size() >= maxConnections || silentCount() >= maxSilent)
            throw plat::Exception("too many connections");
    } catch (const plat::Exception& e) {
        log.error("MuiComms refused %s: %s", io->getName().c_str(), e.what());
        io->shutdown(/*flush=*/false, /*tellHandler=*/false);
        return;
    }
    new MuiCommsConn(this, io);
}

/// While a dialog blocks, their timers rest: whoever comes next does away with them.
void MuiComms::endOverdue() {
    const std::list<MuiCommsConn*> snapshot = connections;
    for (MuiCommsConn* conn : snapshot)
        conn->endIfOverdue();
}

size_t MuiComms::silentCount() const {
    return static_cast<size_t>(std::count_if(connections.begin(), connections.end(),
                                             [](const MuiCommsConn* conn) { return !conn->hasSpoken(); }));
}

int MuiComms::modalFd() { return listener ? listener->getFd() : -1; }

void MuiComms::modalReadable() {
    io::FdHandler& handler = *listener;
    handler.fdReadable();
}

} // namespace mui
