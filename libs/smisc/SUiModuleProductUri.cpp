#include "smisc/SUiModuleProductUri.h"

#include "product/ProductUri.h"
#include "rdr/InStream.h"

namespace smisc {

SUiModuleProductUri::SUiModuleProductUri(sui::SUiModuleMgr* manager) : SUiModule("ProductUri", manager) {
    ipc = manager->msgIpc();
    ipc->addHandler("productUri", this);
}

bool SUiModuleProductUri::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    product::setProductUri(in.readString8(/*repairUtf8=*/true).c_str());
    return true;
}

} // namespace smisc
