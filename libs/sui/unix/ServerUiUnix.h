// The server UI on an X desktop.
#pragma once

#include "plat/Timer.h"
#include "sui/ServerUi.h"
#include "sui/ServerUiCallback.h"
#include "sui/unix/displayInfo.h"
#include "ui/unix/StatusIconGtk.h"

#include <memory>

namespace sui {

/// Holds the UI's core, the icon and what it knows of the desktop, and decides what becomes of the status dialog.
///
/// While no icon leads back to the dialog, hiding iconifies it, or leaves it where it is where nobody manages windows,
/// so that it stays within reach.
class ServerUiUnix : private ServerUiCallback,
                     private ui::Menu::ActionCallback,
                     private ui::StatusIconGtk::Callback,
                     private plat::Timer::Callback {
public:
    explicit ServerUiUnix(io::MsgIpc* link); ///< borrowed
    ~ServerUiUnix() override;

    ServerUi* serverUi() { return &ui; }

private:
    // sui::ServerUiCallback
    void refreshIcon() override;
    void refreshAll() override;
    void dialogOpened() override { dialogWanted = true; }
    const char* desktopName() override { return icon ? icon->desktop().name() : ""; }
    bool mayHideDialog() override;
    DisplayInfo displayInfo() override { return readDisplayInfo(); }
    // ui::Menu::ActionCallback
    void menuAction(ui::Menu::Item* item) override;
    // ui::StatusIconGtk::Callback
    void iconEmbedded(bool shown) override;
    void iconActivated() override { ui.activate(); }
    bool canUseIndicator() override;
    void desktopChanged() override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void updateHideItem();
    bool mustHide() const; ///< something else leads back to the dialog, or nothing shall
    void hideDialog();
    void putAside(); ///< without hiding it

    ServerUi ui;
    bool iconShown = false;
    bool dialogWanted = false; // since it was opened, until it was hidden
    std::unique_ptr<ui::StatusIconGtk> icon;
    ui::Menu::Item* openItem = nullptr;      // of the icon's menu
    ui::Menu::Item* hideSeparator = nullptr; // of the dialog's menu, null while it offers no hiding
    ui::Menu::Item* hideItem = nullptr;
    plat::Timer fallbackTimer; // no icon came up in its time
    plat::String dbusAddress;
};

} // namespace sui
