#include "smisc/SUiModuleGuestLogin.h"

#include "loc/Localize.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"
#include "ui/MenuGrouper.h"

#include <utility>

namespace smisc {

SUiModuleGuestLogin::SUiModuleGuestLogin(sui::SUiModuleMgr* manager, int section)
    : SUiModule("GuestLogin", manager),
      item(manager->serverMenu()->addItem(section, LOC_TEXT("smisc_suimoduleguestlogin_mi_guest"), nullptr, this)) {
    manager->serverMenu()->setShown(item, /*on=*/false);
    ipc = manager->msgIpc();
    ipc->addHandler("GuestLoginUi", this);
}

SUiModuleGuestLogin::~SUiModuleGuestLogin() {
    if (ipc)
        ipc->removeReader(this);
    removeItem();
}

void SUiModuleGuestLogin::onFeaturesChanged() {
    if (!manager()->isFeatureAvailable(name()))
        removeItem();
}

void SUiModuleGuestLogin::removeItem() {
    if (item)
        manager()->serverMenu()->removeItem(std::exchange(item, nullptr));
}

bool SUiModuleGuestLogin::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    const bool shown = in.readBool();
    const bool checked = in.readBool();
    if (!item)
        return true;
    manager()->serverMenu()->setShown(item, shown);
    item->setChecked(checked);
    return true;
}

void SUiModuleGuestLogin::menuAction(ui::Menu::Item*) {
    item->setChecked(!item->checked());
    manager()->msgIpc()->startMsg("GuestLoginEnable").writeBool(item->checked());
    manager()->msgIpc()->endMsg();
}

} // namespace smisc
