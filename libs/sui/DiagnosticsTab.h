// The tab of the information center that shows the report for support.
#pragma once

#include "mui/MuFileDialog.h"
#include "mui/MuInfoFrame.h"
#include "mui/MuMessageBox.h"
#include "plat/Timer.h"
#include "score/StatusDb.h"
#include "sui/InformationCenterTab.h"

#include <memory>

namespace mui {
class MuButton;
class MuScroll;
class MuStatic;
} // namespace mui
namespace score {
class StatusEventDb;
}

namespace sui {

class ServerUiCallback;

/// "Diagnostics": the report as text, which can be saved. Modules add buttons of their own.
///
/// Commits come in bursts, so the report follows them by a moment; what is shown or saved is always the latest.
class DiagnosticsTab : public InformationCenterTab,
                       public score::StatusObserver,
                       private mui::MuFileDialog::Callback,
                       private mui::MuMessageBox::Callback,
                       private plat::Timer::Callback {
public:
    /// All borrowed; they outlive the tab. `platform` tells of the displays.
    DiagnosticsTab(SUiModuleMgr* manager, score::StatusDb* infoDb, score::StatusEventDb* eventDb,
                   ServerUiCallback* platform);

    const plat::String& report() const { return text; } ///< as shown and as saved

    // InformationCenterTab
    void build(mui::MuPager* tabs) override;
    void aboutToShow() override;
    mui::MuElement* firstFocus() override;

private:
    // score::StatusDb::Observer
    void onCommit(score::StatusDb*) override;
    // mui::MuObserver
    void muActivated(mui::MuElement* element) override;
    // mui::MuFileDialog::Callback
    void fileChosen(const char* path) override;
    void fileFailed(const char* message) override;
    // mui::MuMessageBox::Callback
    void messageBoxClosed(mui::MuMessageBox* box, unsigned button) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void readDisplays();
    void rebuild();
    void askForFile();
    void save(const char* path);
    void tell(mui::MuMessageBox::Icon icon, std::initializer_list<const char*> messages);

    score::StatusDb* info;
    score::StatusEventDb* events;
    ServerUiCallback* platform;
    plat::String displays; // as of the last look
    int64_t displaysTicks = 0;
    plat::Timer rebuildTimer; // runs from the first commit of a burst
    plat::String text;

    // Null before build().
    mui::MuScroll* scroll = nullptr;
    mui::MuStatic* label = nullptr;
    mui::MuButton* saveButton = nullptr;
    std::unique_ptr<mui::MuInfoFrame> languageNotice; // null where the user reads English anyway

    std::unique_ptr<mui::MuFileDialog> fileDialog; // made on first use
    std::unique_ptr<mui::MuMessageBox> box;
};

/// Whether `locale` ("en_GB.UTF-8", "de") is English by its language; "C" counts as such, and so does "".
bool isEnglish(const char* locale);

/// The whole of `text` in a file of that name, or an exception and whatever was there before.
void saveReport(const char* path, const plat::String& text);

} // namespace sui
