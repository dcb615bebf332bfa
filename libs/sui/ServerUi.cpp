#include "sui/ServerUi.h"

#include "io/MsgIpc.h"
#include "loc/Localize.h"
#include "mui/MuButtonBar.h"
#include "os/launchFailures.h"
#include "os/openUrl.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/cstr.h"
#include "score/Mode.h"
#include "score/ServerHelper.h"
#include "sui/InformationCenterDialog.h"

#include <cstring>

namespace sui {
namespace {
plat::LogSrc log("ServerUi");
constexpr const char* optionsLink = "app://options/";
} // namespace

ServerUi::ServerUi(io::MsgIpc* link, ServerUiCallback* platformObject)
    : ipc(link), platform(platformObject), serverComms(link, this), infoDb("Info"),
      infoReader(std::make_unique<score::StatusDbReader>(link, &infoDb)),
      eventReader(std::make_unique<score::StatusDbReader>(link, &events)),
      statusDlg(std::make_unique<StatusDialog>(&infoDb, &events, static_cast<StatusDialog::Callback*>(this), this)),
      infoDlg(std::make_unique<InformationCenterDialog>()) {
    statusDlg->getDialog()->setCloseCallback(this);
    serverComms.sendUiLocale(loc::Localize::instance().firstLocale().c_str());
}

ServerUi::~ServerUi() {
    os::ProcessMonitor::instance().detachAll(this);
    destroyModules();
    stopBox.reset();
    infoDlg.reset();
    statusDlg.reset();
    infoReader.reset();
    eventReader.reset();
}

void ServerUi::modulesCreated() {
    SUiModuleMgr::modulesCreated();
    infoDlg->tabsReady();
}

void ServerUi::activate() {
    serverComms.sendUpdateStatus();
    statusDlg->getDialog()->setShown(true);
    serverComms.sendUiActivated();
    platform->dialogOpened();
}

void ServerUi::addRemConn(const score::ConnectionInfo& info, bool add) {
    if (add)
        records.push_back(info);
    else
        score::ConnectionInfo::removeMatching(records, info);
    notifyConnectionCount(static_cast<int>(records.size()));
    // Whoever is looking must show at once, whether or not the core's tree changes too.
    statusDlg->refresh();
}

void ServerUi::updateCoreStatus(const CoreStatus& fresh) {
    status = fresh;
    anyVetoOptions();
    platform->refreshAll();
}

void ServerUi::updatePrivacyStatus(bool on) {
    privacy = on;
    platform->refreshIcon();
}

void ServerUi::showOptions(const char* section) {
    log.status("Options are asked for, but not part of this build: %s", section ? section : "(default)");
}

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
        showOptions(url + strlen(optionsLink));
        return;
    }
    if (!offerLink(url))
        os::openUrl(url);
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
        if (score::productMode() == score::ProductMode::Service)
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

void ServerUi::openMoreMenu(mui::MuElement*) { log.debug("menu asked for"); }

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
