// The centre of the UI process.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuMessageBox.h"
#include "os/ProcessMonitor.h"
#include "plat/Markup.h"
#include "score/ConnectionInfo.h"
#include "score/StatusDbReader.h"
#include "score/StatusEvent.h"
#include "sui/ConnNotifier.h"
#include "sui/ConnectionsTab.h"
#include "sui/InformationCenterDialog.h"
#include "sui/OptionsDialog.h"
#include "sui/SUiModule.h"
#include "sui/ServerComms.h"
#include "sui/ServerUiCallback.h"
#include "sui/StatusDialog.h"
#include "sui/StatusTab.h"
#include "ui/MenuGrouper.h"
#include "ui/MenuProxy.h"

#include <memory>
#include <vector>

namespace mui {
class MuAboutDialog;
}

namespace sui {

/// Owns the link's readers, both databases, the dialogs and all modules, and decides what a message does.
class ServerUi : public SUiModuleMgr,
                 public plat::Markup::LinkCallback,
                 private ConnNotifier::Callback,
                 private ui::Menu::ActionCallback,
                 private ServerComms::Callback,
                 private OptionsDialog::Callback,
                 private mui::MuDialog::CloseCallback,
                 private mui::MuMessageBox::Callback,
                 private os::ProcessMonitor::Callback,
                 private StatusDialog::Callback {
public:
    ServerUi(io::MsgIpc* link, ServerUiCallback* platformObject); ///< both borrowed
    ~ServerUi() override;

    // SUiModuleMgr
    io::MsgIpc* msgIpc() override { return ipc; }
    ui::MenuGrouper* serverMenu() override { return &menuGrouper; }
    StatusDialog* statusDialog() override { return statusDlg.get(); }
    InformationCenterDialog* infoCenter() override { return infoDlg.get(); }
    ServerComms* comms() override { return &serverComms; }
    score::StatusDb* statusDb() override { return &infoDb; }
    score::StatusEventDb* eventDb() override { return &events; }
    void activate() override; ///< of sui::ConnNotifier::Callback as well
    void modulesCreated() override;

    // plat::Markup::LinkCallback
    void linkClicked(const char* href) override { handleLink(href); }

    void handleLink(const char* url); ///< options, then the modules, then the desktop's opener
    void confirmStop();               ///< asks; on yes the server is stopped

    /// The items that every menu of the server offers, to be attached to each.
    ui::MenuProxy* menuItems() { return &menuProxy; }

    const CoreStatus& coreStatus() const { return status; }
    bool isPrivate() const { return privacy; }
    const std::vector<score::ConnectionInfo>& connections() const { return connectionsTab->connections(); }

    // Names of images; null for none. Pure functions of the state.
    static const char* iconName(const CoreStatus& status);
    static const char* overlayName(uint32_t maxSeverity);
    static const char* statusBadgeName(uint32_t maxSeverity, bool privacy);

private:
    // ui::Menu::ActionCallback
    void menuAction(ui::Menu::Item* item) override;
    // sui::ServerComms::Callback
    void desktopStarted(bool started) override { notifyDesktopStarted(started); }
    void addRemConn(const score::ConnectionInfo& info, bool add) override;
    void updateCoreStatus(const CoreStatus& fresh) override;
    void updatePrivacyStatus(bool on) override;
    void updateFeatures(const FeatureMap& map) override { setFeatures(map); }
    void showStatusDialog() override { activate(); }
    void showOptions(const char* section) override;
    void setServerExe(const char* path) override;
    void resolveEvent(const char* id) override;

    // sui::OptionsDialog::Callback
    void optionsFinished() override;
    // mui::MuDialog::CloseCallback
    bool closing(mui::MuDialog* dialog) override;
    // mui::MuMessageBox::Callback
    void messageBoxClosed(mui::MuMessageBox* box, unsigned button) override;
    // StatusDialog::Callback
    uint32_t connectionCount() override { return static_cast<uint32_t>(connections().size()); }
    void statusChanged() override { platform->refreshIcon(); }
    void openInfoCenter(const char* tab) override;

    // os::ProcessMonitor::Callback
    void processEnded(pid_t pid, int waitStatus) override;

    void addMenuItems();
    void openOptions(const char* section); ///< null for the default one
    void showOptionsFailure(const char* message);
    void showAbout();
    void addInfoCenterTabs();
    void stopConfirmed();
    void runStop();

    io::MsgIpc* ipc;
    ServerUiCallback* platform;
    ServerComms serverComms;
    score::StatusDb infoDb;
    score::StatusEventDb events;
    std::unique_ptr<score::StatusDbReader> infoReader;
    std::unique_ptr<score::StatusDbReader> eventReader;
    std::vector<score::ConnectionInfo> records; // in order of arrival
    ConnNotifier connNotifier;
    ui::MenuProxy menuProxy;
    ui::MenuGrouper menuGrouper;
    ui::Menu::Item* infoCenterItem = nullptr; // the items are the menu's
    ui::Menu::Item* optionsItem = nullptr;
    ui::Menu::Item* supportItem = nullptr;
    ui::Menu::Item* aboutItem = nullptr;
    ui::Menu::Item* stopItem = nullptr;
    CoreStatus status;
    std::unique_ptr<StatusDialog> statusDlg;
    std::unique_ptr<InformationCenterDialog> infoDlg;
    ConnectionsTab* connectionsTab; // these are the information center's
    StatusTab* statusTab;
    std::unique_ptr<mui::MuAboutDialog> aboutDlg;
    std::unique_ptr<OptionsDialog> optionsDlg;
    std::unique_ptr<mui::MuMessageBox> optionsFailureBox;
    std::unique_ptr<mui::MuMessageBox> stopBox;
    pid_t stopPid = 0; // of what stops the server, while that runs
    bool privacy = false;
};

} // namespace sui
