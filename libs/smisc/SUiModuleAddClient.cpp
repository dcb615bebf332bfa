#include "smisc/SUiModuleAddClient.h"

#include "loc/Localize.h"
#include "rdr/InStream.h"
#include "sui/ServerComms.h"
#include "ui/MenuGrouper.h"

#include <cstring>

namespace smisc {

SUiModuleAddClient::SUiModuleAddClient(sui::SUiModuleMgr* manager, int section)
    : SUiModule("AddClient", manager),
      item(manager->serverMenu()->addItem(section, LOC_TEXT("smisc_suimoduleaddclient_mi_connect"), nullptr, this)),
      dialog(this) {
    manager->serverMenu()->setShown(item, /*on=*/false);
    ipc = manager->msgIpc();
    ipc->addHandler("enableAddClient", this);
    ipc->addHandler("addClientResult", this);
}

SUiModuleAddClient::~SUiModuleAddClient() {
    if (ipc)
        ipc->removeReader(this);
    manager()->serverMenu()->removeItem(item);
}

void SUiModuleAddClient::menuAction(ui::Menu::Item*) { dialog.show(); }

bool SUiModuleAddClient::readMsg(const char* message, rdr::InStream& in, io::MsgIpc*) {
    if (strcmp(message, "enableAddClient") == 0) {
        const bool enabled = in.readBool();
        manager()->serverMenu()->setShown(item, enabled);
        item->setEnabled(enabled);
        return true;
    }
    if (in.readBool()) {
        const plat::String text = in.readString8(/*repairUtf8=*/true);
        dialog.failed(text.c_str());
    } else {
        dialog.succeeded();
    }
    return true;
}

void SUiModuleAddClient::connectTo(const char* address) { manager()->comms()->sendAddClient(address); }

} // namespace smisc
