// Connects out to a viewer that listens.
#pragma once

#include "io/MsgIpc.h"
#include "smisc/AddClientDialog.h"
#include "sui/SUiModule.h"
#include "ui/Menu.h"

namespace smisc {

/// The menu item, there while the core allows it, and its dialog.
class SUiModuleAddClient : public sui::SUiModule,
                           private ui::Menu::ActionCallback,
                           private io::MsgIpc::Reader,
                           private AddClientDialog::Callback {
public:
    SUiModuleAddClient(sui::SUiModuleMgr* manager, int section);
    ~SUiModuleAddClient() override;

private:
    void menuAction(ui::Menu::Item* chosen) override;
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    void connectTo(const char* address) override;

    ui::Menu::Item* item; // owned by the menu
    AddClientDialog dialog;
};

} // namespace smisc
