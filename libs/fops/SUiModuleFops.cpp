#include "fops/SUiModuleFops.h"

#include "plat/MString.h"
#include "plat/visibleText.h"
#include "rdr/InStream.h"

namespace fops {
namespace {
constexpr const char* message = "fopsNotification";
constexpr int shownMs = 4000;
} // namespace

SUiModuleFops::SUiModuleFops(sui::SUiModuleMgr* manager) : SUiModule("Fops", manager) {
    ipc = manager->msgIpc();
    ipc->addHandler(message, this);
}

SUiModuleFops::~SUiModuleFops() {
    if (ipc)
        ipc->removeReader(this);
}

bool SUiModuleFops::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    const plat::String text = plat::visibleText(in.readString8(/*repairUtf8=*/true).c_str());
    if (text.isEmpty())
        return true;
    plat::MString markup;
    markup.text(text.c_str());
    ui::Notifier::Notification notification;
    notification.text = markup.c_str();
    notification.timeoutMs = shownMs;
    notification.callback = this;
    notifier.notify(notification);
    return true;
}

bool SUiModuleFops::notified(ui::Notifier::Handle, int reason) {
    if (reason == ui::Notifier::Clicked)
        manager()->activate();
    return false;
}

} // namespace fops
