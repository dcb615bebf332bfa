// The window behind the alert and users buttons: who is connected, what went wrong, what support needs.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "plat/NonCopyable.h"

#include <memory>
#include <vector>

namespace mui {
class MuPager;
}

namespace sui {

class InformationCenterTab;

/// The dialog "infocenterdlg" with its tabs, which modules may add to.
class InformationCenterDialog : private mui::MuObserver, private mui::ActionKeyCallback, private plat::NonCopyable {
public:
    InformationCenterDialog();
    ~InformationCenterDialog() override;

    void addTab(std::unique_ptr<InformationCenterTab> tab); ///< before tabsReady(): from the constructors of modules
    void tabsReady();               ///< once, when all modules are there: sorts the tabs and builds them
    void show(const char* tabName); ///< opens on that tab; null or an unknown name keeps the current one

    mui::MuDialog* getDialog() { return dialog.get(); }

private:
    // mui::ActionKeyCallback
    bool actionKey(int action, mui::MuDialog*) override;

    void select(const char* tabName);
    bool isCurrent(const InformationCenterTab& tab) const;

    std::vector<std::unique_ptr<InformationCenterTab>> tabs;
    std::unique_ptr<mui::MuDialog> dialog;
    mui::MuPager* pager = nullptr;
};

} // namespace sui
