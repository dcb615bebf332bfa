#include "smisc/SUiModuleDisconnClient.h"

#include "loc/Localize.h"
#include "sui/ServerComms.h"
#include "ui/MenuGrouper.h"

namespace smisc {

SUiModuleDisconnClient::SUiModuleDisconnClient(sui::SUiModuleMgr* manager, int section)
    : SUiModule("DisconnClient", manager),
      item(manager->serverMenu()->addItem(section, LOC_TEXT("smisc_suimoduledisconnectclient_mi_disconnect"), nullptr,
                                          this)) {
    item->setEnabled(/*on=*/false);
}

SUiModuleDisconnClient::~SUiModuleDisconnClient() { manager()->serverMenu()->removeItem(item); }

void SUiModuleDisconnClient::onConnectionCount(int n) { item->setEnabled(n >= 1); }

void SUiModuleDisconnClient::menuAction(ui::Menu::Item*) { manager()->comms()->sendDisconnClient("", ""); }

} // namespace smisc
