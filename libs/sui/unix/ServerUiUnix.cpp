#include "sui/unix/ServerUiUnix.h"

#include "loc/Localize.h"
#include "mui/MuPopupMenu.h"
#include "os/elevate.h"
#include "score/Mode.h"
#include "tx/TXWindow.h"
#include "tx/WindowManager.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace sui {
namespace {
constexpr unsigned fallbackMs = 4000;
constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr const char* themedIcon = "/usr/share/icons/hicolor/48x48/apps/zefserverConnected.png";
} // namespace

ServerUiUnix::ServerUiUnix(io::MsgIpc* link) : ui(link, this), fallbackTimer(this) {
    os::setPkexecAllowed(/*allowed=*/false); // the user is asked in a terminal
    icon = std::make_unique<ui::StatusIconGtk>(static_cast<ui::StatusIconGtk::Callback*>(this));
    mui::Mui::instance()->addMenu("tray", icon->menu());
    openItem = icon->menu()->addItem(LOC_TEXT("sui_serverui_mi_open"), nullptr, nullptr,
                                     static_cast<ui::Menu::ActionCallback*>(this));
    ui.menuItems()->attach(icon->menu());
    updateHideItem();
    fallbackTimer.start(fallbackMs);
}

ServerUiUnix::~ServerUiUnix() {
    // The place of its items is given by an item of ours.
    ui.menuItems()->detach(ui.statusDialog()->getMoreMenu());
    ui.menuItems()->detach(icon->menu());
    mui::Mui::instance()->removeMenu(icon->menu());
}

void ServerUiUnix::refreshIcon() {
    const CoreStatus& status = ui.coreStatus();
    uint32_t count = 0;
    const char* name = ServerUi::iconName(status);
    const char* overlay = ServerUi::overlayName(ui.eventDb()->maxSeverity(count));
    icon->setImage(name ? name : "", overlay ? overlay : "");
    icon->setTooltip(
        plat::strFormat("%s - %s", LOC_TEXT("sui_statusdialog_title"), score::productModeText(score::productMode()))
            .c_str());
}

void ServerUiUnix::refreshAll() {
    refreshIcon();
    updateHideItem();
}

void ServerUiUnix::updateHideItem() {
    const bool wanted = !ui.coreStatus().closeStopsServer || score::productMode() == score::ProductMode::Service;
    if (wanted == (hideItem != nullptr))
        return;
    ui::Menu* menu = ui.statusDialog()->getMoreMenu();
    ui.menuItems()->detach(menu);
    if (wanted) {
        hideSeparator = menu->addSeparator();
        hideItem = menu->addItem(LOC_TEXT("sui_statusdialog_mi_hide"), nullptr, nullptr,
                                 static_cast<ui::Menu::ActionCallback*>(this));
    } else {
        menu->removeItem(hideItem);
        menu->removeItem(hideSeparator);
        hideItem = nullptr;
        hideSeparator = nullptr;
    }
    ui.menuItems()->attach(menu, hideSeparator);
}

void ServerUiUnix::menuAction(ui::Menu::Item* item) {
    if (item == hideItem)
        hideDialog();
    else if (item == openItem)
        ui.activate();
}

void ServerUiUnix::iconEmbedded(bool shown) {
    iconShown = shown;
    if (!dialogWanted)
        hideDialog();
    refreshIcon();
    if (shown)
        fallbackTimer.cancel();
}

bool ServerUiUnix::canUseIndicator() { return access(themedIcon, F_OK) == 0; }

bool ServerUiUnix::mustHide() const { return iconShown || !ServerUi::iconName(ui.coreStatus()); }

bool ServerUiUnix::mayHideDialog() {
    dialogWanted = false;
    if (mustHide())
        return true;
    putAside();
    return false;
}

void ServerUiUnix::hideDialog() {
    dialogWanted = false;
    if (mustHide())
        ui.statusDialog()->getDialog()->setShown(/*shown=*/false);
    else
        putAside();
}

void ServerUiUnix::putAside() {
    mui::MuDialog* dialog = ui.statusDialog()->getDialog();
    if (tx::WindowManager::isWMRunning())
        dialog->showIconified();
    else
        dialog->setShown(/*shown=*/true);
}

bool ServerUiUnix::timerExpired(plat::Timer*) {
    const auto* window = static_cast<tx::TXWindow*>(ui.statusDialog()->getDialog()->nativeWindow());
    if (window->isMapped())
        ui.comms()->sendUiActivated();
    return false;
}

void ServerUiUnix::desktopChanged() {
    dbusAddress = icon->desktop().dbusAddress();
    const char* ours = getenv(busVariable);
    if (!dbusAddress.isEmpty() && (!ours || strcmp(ours, dbusAddress.c_str()) != 0))
        setenv(busVariable, dbusAddress.c_str(), /*replace=*/1);
    ui.comms()->sendDesktopEnv(desktopName());
}

} // namespace sui
