// The button that makes the core look at the hosted service again.
#pragma once

#include "io/MsgIpc.h"
#include "mui/MuObserver.h"
#include "plat/Timer.h"
#include "sui/SUiModule.h"

namespace mui {
class MuButton;
}

namespace hostedremoteaccess {

/// Adds a button to the diagnostics tab, which shows while the core allows it (message "cloudRefreshAllowed", a
/// boolean). A press sends "refreshCloudStatus" and turns the button off for `_RefreshCloudTimeoutSecs` seconds.
class SUiModuleCloudJoin : public sui::SUiModule,
                           private mui::MuObserver,
                           private plat::Timer::Callback,
                           private io::MsgIpc::Reader {
public:
    explicit SUiModuleCloudJoin(sui::SUiModuleMgr* manager);
    ~SUiModuleCloudJoin() override;

    // sui::SUiModule
    void addDiagnosticsButtons(mui::MuLayout* layout) override;

private:
    // mui::MuObserver
    void muActivated(mui::MuElement* element) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;

    mui::MuButton* refreshBtn = nullptr; // null until the tab is built
    plat::Timer refreshTimer;
};

} // namespace hostedremoteaccess
