#include "smisc/SUiModuleNominal.h"

#include "plat/LogSrc.h"

namespace smisc {
namespace {
plat::LogSrc log("SUiModuleNominal");
}

SUiModuleNominal::SUiModuleNominal(const char* moduleName, sui::SUiModuleMgr* manager,
                                   std::initializer_list<const char*> messages, std::initializer_list<Scheme> schemes)
    : SUiModule(moduleName, manager) {
    ipc = manager->msgIpc();
    for (const char* message : messages)
        ipc->addHandler(message, this);
    for (const Scheme& scheme : schemes)
        svr::SAuthentication::registerScheme(scheme.name, scheme.kind);
}

SUiModuleNominal::~SUiModuleNominal() {
    if (ipc)
        ipc->removeReader(this);
}

bool SUiModuleNominal::readMsg(const char* message, rdr::InStream&, io::MsgIpc*) {
    log.debug("%s: nothing is made of %s", name(), message);
    return true;
}

} // namespace smisc
