#include "hostedremoteaccess/SUiModuleCloudAccess.h"

#include "rdr/InStream.h"

#include <cstring>

namespace hostedremoteaccess {
namespace {
constexpr const char* message = "cloudStatus";
}

SUiModuleCloudAccess::SUiModuleCloudAccess(sui::SUiModuleMgr* manager) : SUiModule("CloudAccess", manager) {
    ipc = manager->msgIpc();
    ipc->addHandler(message, this);
}

SUiModuleCloudAccess::~SUiModuleCloudAccess() {
    if (ipc)
        ipc->removeReader(this);
}

bool SUiModuleCloudAccess::readMsg(const char* name, rdr::InStream& in, io::MsgIpc*) {
    if (strcmp(name, message) == 0)
        cloudStatus = in.readU8() != 0;
    return true;
}

} // namespace hostedremoteaccess
