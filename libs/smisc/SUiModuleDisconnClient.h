// Cuts everybody off.
#pragma once

#include "sui/SUiModule.h"
#include "ui/Menu.h"

namespace smisc {

/// The menu item that disconnects all users, enabled while there are any.
class SUiModuleDisconnClient : public sui::SUiModule, private ui::Menu::ActionCallback {
public:
    SUiModuleDisconnClient(sui::SUiModuleMgr* manager, int section);
    ~SUiModuleDisconnClient() override;

    void onConnectionCount(int n) override;

private:
    void menuAction(ui::Menu::Item* chosen) override;

    ui::Menu::Item* item; // owned by the menu
};

} // namespace smisc
