#include "hostedremoteaccess/SUiModuleCloudJoin.h"

#include "loc/Localize.h"
#include "mui/MuButton.h"
#include "mui/MuLayout.h"
#include "plat/ConfigParameter.h"
#include "rdr/InStream.h"

#include <algorithm>
#include <climits>
#include <cstdint>

namespace hostedremoteaccess {
namespace {
plat::IntParameter refreshTimeoutS("_RefreshCloudTimeoutSecs", "", 1, /*isAdvanced=*/false, /*owner=*/nullptr,
                                   /*minValue=*/0);

uint32_t refreshTimeoutMs() {
    const int64_t wanted = int64_t{1000} * refreshTimeoutS.value();
    return static_cast<uint32_t>(std::min<int64_t>(wanted, INT_MAX)); // 24 days will do
}
} // namespace

SUiModuleCloudJoin::SUiModuleCloudJoin(sui::SUiModuleMgr* manager)
    : SUiModule("CloudJoin", manager), refreshTimer(this) {
    ipc = manager->msgIpc();
    ipc->addHandler("cloudRefreshAllowed", this);
}

SUiModuleCloudJoin::~SUiModuleCloudJoin() {
    if (ipc)
        ipc->removeReader(this);
    if (refreshBtn)
        refreshBtn->addObserver(this, /*add=*/false);
}

void SUiModuleCloudJoin::addDiagnosticsButtons(mui::MuLayout* layout) {
    refreshBtn = mui::MuButton::create(layout, "refresh", LOC_TEXT("hostedremoteaccess_refresh_button"));
    refreshBtn->setShown(/*shown=*/false);
    refreshBtn->addObserver(this, /*add=*/true);
}

bool SUiModuleCloudJoin::readMsg(const char*, rdr::InStream& in, io::MsgIpc*) {
    if (!refreshBtn)
        return true; // too early: the next one counts
    refreshBtn->setShown(in.readU8() != 0);
    refreshBtn->getParent()->doLayout();
    return true;
}

void SUiModuleCloudJoin::muActivated(mui::MuElement*) {
    refreshBtn->setEnabled(/*enabled=*/false);
    refreshTimer.start(refreshTimeoutMs());
    manager()->msgIpc()->startMsg("refreshCloudStatus");
    manager()->msgIpc()->endMsg();
}

bool SUiModuleCloudJoin::timerExpired(plat::Timer*) {
    refreshBtn->setEnabled(/*enabled=*/true);
    return false;
}

} // namespace hostedremoteaccess
