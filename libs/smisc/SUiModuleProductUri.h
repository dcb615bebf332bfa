// The product's web address as the core tells it.
#pragma once

#include "io/MsgIpc.h"
#include "sui/SUiModule.h"

namespace smisc {

/// Reads the message "productUri" (one string8) into the parameter _ProductUri.
class SUiModuleProductUri : public sui::SUiModule, private io::MsgIpc::Reader {
public:
    explicit SUiModuleProductUri(sui::SUiModuleMgr* manager);

private:
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
};

} // namespace smisc
