// Whether guests may connect.
#pragma once

#include "io/MsgIpc.h"
#include "sui/SUiModule.h"
#include "ui/Menu.h"

namespace smisc {

/// The check item of guest access, which is there once the core says so.
class SUiModuleGuestLogin : public sui::SUiModule, private ui::Menu::ActionCallback, private io::MsgIpc::Reader {
public:
    SUiModuleGuestLogin(sui::SUiModuleMgr* manager, int section);
    ~SUiModuleGuestLogin() override;

    void onFeaturesChanged() override;

private:
    void menuAction(ui::Menu::Item* chosen) override;
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    void removeItem();

    ui::Menu::Item* item; // owned by the menu; null once the feature was found to be missing
};

} // namespace smisc
