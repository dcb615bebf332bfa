// Whether connections may come by way of the cloud.
#pragma once

#include "io/MsgIpc.h"
#include "sui/SUiModule.h"

namespace hostedremoteaccess {

/// Reads the message "cloudStatus" (a boolean): whether the cloud is in use.
class SUiModuleCloudAccess : public sui::SUiModule, private io::MsgIpc::Reader {
public:
    explicit SUiModuleCloudAccess(sui::SUiModuleMgr* manager);
    ~SUiModuleCloudAccess() override;

    bool isCloudInUse() const { return cloudStatus; }

private:
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;

    bool cloudStatus = false;
};

} // namespace hostedremoteaccess
