// Text copied here or at a viewer.
#pragma once

#include "smisc/SUiClipboard.h"
#include "sui/SUiModule.h"

namespace smisc {

/// Owns the clipboard of the link, which lives while the desktop is up.
class SUiModuleClipboard : public sui::SUiModule {
public:
    explicit SUiModuleClipboard(sui::SUiModuleMgr* manager)
        : SUiModule("Clipboard", manager), clipboard(manager->msgIpc()) {}

    void onDesktopStarted(bool started) override { clipboard.setDesktopUp(started); }

private:
    SUiClipboard clipboard;
};

} // namespace smisc
