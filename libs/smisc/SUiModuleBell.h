// The bell of the desktop, for viewers.
#pragma once

#include "sui/SUiModule.h"
#include "tx/BellMonitor.h"

#include <memory>

namespace smisc {

/// Sends "bell" for each bell while the desktop is up.
class SUiModuleBell : public sui::SUiModule, private tx::BellMonitor::Callback {
public:
    explicit SUiModuleBell(sui::SUiModuleMgr* manager) : SUiModule("Bell", manager) {}

    void onDesktopStarted(bool started) override;

private:
    void bellRang() override;

    std::unique_ptr<tx::BellMonitor> monitor; // null while the desktop is down
};

} // namespace smisc
