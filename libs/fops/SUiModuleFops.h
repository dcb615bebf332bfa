// What the core has to tell about operations on files.
#pragma once

#include "io/MsgIpc.h"
#include "sui/PopupNotifier.h"
#include "sui/SUiModule.h"

namespace fops {

/// Reads the message "fopsNotification" (one string8, plain text) and shows it for a few seconds.
class SUiModuleFops : public sui::SUiModule, private io::MsgIpc::Reader, private ui::Notifier::Callback {
public:
    explicit SUiModuleFops(sui::SUiModuleMgr* manager);
    ~SUiModuleFops() override;

private:
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    // ui::Notifier::Callback
    bool notified(ui::Notifier::Handle handle, int reason) override;

    sui::SystemNotifier notifier;
};

} // namespace fops
