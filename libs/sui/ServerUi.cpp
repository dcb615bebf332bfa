#include "sui/ServerUi.h"

#include "io/MsgIpc.h"
#include "loc/Localize.h"
#include "mui/MuAboutDialog.h"
#include "mui/MuButtonBar.h"
#include "mui/MuPopupMenu.h"
#include "os/launchFailures.h"
#include "os/openUrl.h"
#include "plat/DeferredDeleter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/MString.h"
#include "plat/cstr.h"
#include "product/ProductUri.h"
#include "product/init.h"
#include "score/Mode.h"
#include "score/ServerHelper.h"
#include "sui/DiagnosticsTab.h"

#include <cstring>

namespace sui {
namespace {
plat::LogSrc log("ServerUi");
constexpr const char* optionsLink = "app://options/";

// Sections of the server's menu; modules add theirs between the two.
constexpr int firstSection = 1;
constexpr int lastSection = 4;

bool isServiceMode() { return score::productMode() == score::ProductMode::Service; }
} // namespace

ServerUi::ServerUi(io::MsgIpc* link, ServerUiCallback* platformObject)
    : ipc(link), platform(platformObject), serverComms(link, this), infoDb("Info"),
      infoReader(std::make_unique<score::StatusDbReader>(link, &infoDb)),
      eventReader(std::make_unique<score::StatusDbReader>(link, &events)), connNotifier(this), menuGrouper(&menuProxy),
      statusDlg(std::make_unique<StatusDialog>(&infoDb, &events, static_cast<StatusDialog::Callback*>(this), this)),
      infoDlg(std::make_unique<InformationCenterDialog>()) {
    addMenuItems();
    statusDlg->getDialog()->setCloseCallback(this);
    addInfoCenterTabs();
    menuProxy.attach(statusDlg->getMoreMenu());
    serverComms.sendUiLocale(loc::Localize::instance().firstLocale().c_str());
}

void ServerUi::addInfoCenterTabs() {
    auto connectionsOwned = std::make_unique<ConnectionsTab>(this);
    connectionsTab = connectionsOwned.get();
    infoDlg->addTab(std::move(connectionsOwned));
    auto statusOwned = std::make_unique<StatusTab>(this, &events);
    statusTab = statusOwned.get();
    infoDlg->addTab(std::move(statusOwned));
    infoDlg->addTab(std::make_unique<DiagnosticsTab>(this, &infoDb, &events, platform));
}

ServerUi::~ServerUi() {
    os::ProcessMonitor::instance().detachAll(this);
    destroyModules();
    stopBox.reset();
    optionsFailureBox.reset();
    optionsDlg.reset();
    aboutDlg.reset();
    infoDlg.reset();
    mui::Mui::instance()->removeMenu(&menuProxy);
    menuProxy.detach(statusDlg->getMoreMenu());
    statusDlg.reset();
    infoReader.reset();
    eventReader.reset();
}

void ServerUi::addMenuItems() {
    const unsigned elevated = isServiceMode() ? unsigned{ui::Menu::NeedsElevation} : 0;
    const auto add = [this](int section, const char* text, unsigned flags) {
        return menuGrouper.addItem(section, text, nullptr, static_cast<ui::Menu::ActionCallback*>(this), flags);
    };
    infoCenterItem = add(firstSection, LOC_TEXT("sui_serverui_mi_infocenter"), 0);
    optionsItem = add(firstSection, LOC_TEXT("sui_serverui_mi_options"), elevated);
    supportItem = add(firstSection, LOC_TEXT("sui_serverui_mi_help"), 0);
    aboutItem = add(firstSection, LOC_TEXT("sui_serverui_mi_about"), 0);
    stopItem = add(lastSection, LOC_TEXT("sui_serverui_mi_quit"), elevated);
    mui::Mui::instance()->addMenu("serverui", &menuProxy);
}

void ServerUi::modulesCreated() {
    SUiModuleMgr::modulesCreated();
    infoDlg->tabsReady();
}

void ServerUi::activate() {
    serverComms.sendUpdateStatus();
    statusDlg->getDialog()->setShown(/*shown=*/true);
    serverComms.sendUiActivated();
    platform->dialogOpened();
}

void ServerUi::addRemConn(const score::ConnectionInfo& info, bool add) {
    if (add)
        connectionsTab->addConnection(info);
    else
        connectionsTab->removeConnection(info);
    notifyConnectionCount(static_cast<int>(connections().size()));
    // Whoever is looking must show at once, whether or not the core's tree changes too.
    statusDlg->refresh();
    connNotifier.onConnection(info, add, status);
}

void ServerUi::updateCoreStatus(const CoreStatus& fresh) {
    status = fresh;
    stopItem->setEnabled(!status.cannotStop);
    const bool vetoed = anyVetoOptions(); // every module hears of each status
    optionsItem->setEnabled(!status.optionsDisabled && !vetoed);
    statusTab->setOptionsDisabled(status.optionsDisabled);
    platform->refreshAll();
}

void ServerUi::updatePrivacyStatus(bool on) {
    privacy = on;
    platform->refreshIcon();
}

void ServerUi::showOptions(const char* section) { openOptions(section); }

void ServerUi::openOptions(const char* section) {
    if (optionsDlg) {
        optionsDlg->select(section);
        return;
    }
    std::unique_ptr<OptionsDialog> fresh;
    try {
        fresh = std::make_unique<OptionsDialog>(statusDlg->getDialog(), static_cast<OptionsDialog::Callback*>(this));
        addOptionSections(*fresh);
        fresh->load();
        fresh->show();
        fresh->select(section);
        optionsDlg = std::move(fresh);
    } catch (const os::ElevateCancelled&) {
        // The user has thought better of it.
    } catch (const plat::Exception& e) {
        log.error("Error showing options dialog: %s", e.describe().c_str());
        showOptionsFailure(fresh && fresh->errorText() ? fresh->errorText() : e.what());
    }
}

void ServerUi::showOptionsFailure(const char* message) {
    plat::MString markup;
    markup.text(message);
    optionsFailureBox = std::make_unique<mui::MuMessageBox>(statusDlg->getDialog(), LOC_TEXT("sui_optionsdialog_title"),
                                                            mui::MuMessageBox::Icon::Error,
                                                            std::initializer_list<const char*>{markup.c_str()});
    optionsFailureBox->show();
}

void ServerUi::optionsFinished() { plat::deleteLater(optionsDlg.release()); }

void ServerUi::setServerExe(const char* path) { score::setServerExe(path); }

void ServerUi::resolveEvent(const char* id) {
    const std::unique_ptr<score::StatusEvent> event = events.read(id);
    if (!event)
        return;
    if (event->recovery == score::StatusEvent::OpenUrl)
        os::openUrl(event->resolver.c_str());
    else
        events.resolve(*event);
}

void ServerUi::handleLink(const char* url) {
    if (plat::startsWith(url, optionsLink)) {
        const char* section = url + strlen(optionsLink);
        showOptions(*section ? section : nullptr);
        return;
    }
    if (!offerLink(url))
        os::openUrl(url);
}

void ServerUi::menuAction(ui::Menu::Item* item) {
    if (item == infoCenterItem) {
        openInfoCenter(nullptr);
    } else if (item == optionsItem) {
        serverComms.sendUpdateStatus();
        serverComms.sendRequestOptions();
        // Where there is no core, nobody answers.
        if (isDebugUi())
            openOptions(nullptr);
    } else if (item == supportItem) {
        os::openUrl(product::supportUri);
    } else if (item == aboutItem) {
        showAbout();
    } else if (item == stopItem) {
        confirmStop();
    }
}

void ServerUi::showAbout() {
    aboutDlg = std::make_unique<mui::MuAboutDialog>(statusDlg->getDialog(), LOC_TEXT("sui_statusdialog_title"),
                                                    "zefserver", product::aboutMarkup(), this);
    aboutDlg->show();
}

bool ServerUi::closing(mui::MuDialog*) {
    if (status.closeStopsServer) {
        confirmStop();
        return false;
    }
    return platform->mayHideDialog();
}

void ServerUi::confirmStop() {
    stopBox = std::make_unique<mui::MuMessageBox>(
        statusDlg->getDialog(), LOC_TEXT("sui_statusdialog_title"), mui::MuMessageBox::Icon::Warning,
        std::initializer_list<const char*>{LOC_TEXT("sui_serverui_stop_server_confirm")},
        mui::MuButtonBar::Yes | mui::MuButtonBar::No, static_cast<mui::MuMessageBox::Callback*>(this));
    stopBox->show();
}

void ServerUi::messageBoxClosed(mui::MuMessageBox*, unsigned button) {
    if (button == mui::MuButtonBar::Yes)
        stopConfirmed();
}

void ServerUi::stopConfirmed() {
    try {
        if (isServiceMode())
            runStop();
        else
            serverComms.sendQuit();
    } catch (const os::ElevateCancelled&) {
        // The user has thought better of it.
    } catch (const plat::Exception& e) {
        log.error("Failed to quit server: %s", e.what());
    }
    if (isDebugUi())
        ipc->close(/*tell=*/true);
}

// Whoever asks for a password may take long, so the wait is the loop's.
void ServerUi::runStop() {
    if (stopPid != 0) {
        log.info("The server is being stopped already");
        return;
    }
    const score::ServerLauncher launcher({"-stop"});
    stopPid = os::launchProcess(launcher.config(), this);
}

void ServerUi::processEnded(pid_t, int waitStatus) {
    stopPid = 0;
    if (waitStatus != 0)
        log.info("The server was not stopped: %s", os::waitStatusText(waitStatus).c_str());
}

void ServerUi::openInfoCenter(const char* tab) {
    serverComms.sendUpdateStatus();
    infoDlg->show(tab);
}

const char* ServerUi::iconName(const CoreStatus& status) {
    switch (status.state) {
    case CoreStatus::NoIcon:
        return nullptr;
    case CoreStatus::Connected:
        return "zefserverConnected";
    default:
        return "zefserver";
    }
}

const char* ServerUi::overlayName(uint32_t maxSeverity) {
    return maxSeverity == 1 ? "Warning" : maxSeverity == 2 ? "Error" : nullptr;
}

const char* ServerUi::statusBadgeName(uint32_t maxSeverity, bool privacy) {
    if (maxSeverity == 1)
        return "statusWarning";
    if (maxSeverity == 2)
        return "statusError";
    return privacy ? "statusPrivate" : nullptr;
}

} // namespace sui
