#include "entSvr/createSUiModules.h"

#include "fops/SUiModuleFops.h"
#include "hostedremoteaccess/SUiModuleCloudAccess.h"
#include "hostedremoteaccess/SUiModuleCloudJoin.h"
#include "hxauth/permissionDefns.h"
#include "hxutil/ConfigStoreFile.h"
#include "loc/Localize.h"
#include "smisc/SUiModuleAddClient.h"
#include "smisc/SUiModuleBell.h"
#include "smisc/SUiModuleClipboard.h"
#include "smisc/SUiModuleDisconnClient.h"
#include "smisc/SUiModuleGuestLogin.h"
#include "smisc/SUiModuleNominal.h"
#include "smisc/SUiModuleProductUri.h"

#include <memory>

using hxauth::PermissionDeclaration;
using smisc::SUiModuleNominal;

// The order is that of menu items, of option pages and of the list of permissions.
void createSUiModules(sui::SUiModuleMgr* manager, int section) {
    new smisc::SUiModuleProductUri(manager);
    new hostedremoteaccess::SUiModuleCloudJoin(manager);
    if (!hxutil::ConfigStore::instance())
        hxutil::ConfigStore::setInstance(std::make_unique<hxutil::ConfigStoreFile>());
    new smisc::SUiModuleClipboard(manager);
    new smisc::SUiModuleBell(manager);
    new SUiModuleNominal("Proxy", manager);
    new SUiModuleNominal("UnattendedAccess", manager);
    new smisc::SUiModuleDisconnClient(manager, section);
    new SUiModuleNominal("SecurityZefAuth", manager, {}, {{"ZefAuth", svr::SchemePassword}});
    new hostedremoteaccess::SUiModuleCloudAccess(manager);
    new SUiModuleNominal("PinLink", manager,
                         {"pinLinkGenerateResult", "pinLinkGenerateError", "pinLinkQuery", "pinLinkQueryCancel"});
    new SUiModuleNominal("UpdateNotification", manager,
                         {"updateResult", "enableManualUpdateChecks", "queryAutoUpdateChecks"});
    static const PermissionDeclaration audio(hxauth::codeListen, LOC_TEXT("hxauth_permissions_listen_desc"), "fdv",
                                             "AudioEnable");
    new SUiModuleNominal("Audio", manager);
    new SUiModuleNominal("SystemAuth", manager, {},
                         {{"SystemAuth", svr::SchemePassword}, {"InteractiveSystemAuth", svr::SchemeInteractive}});
    new SUiModuleNominal("RadiusAuth", manager, {}, {{"Radius", svr::SchemeInteractive}});
    new SUiModuleNominal("PubkeyAuth", manager, {}, {{"Certificate", svr::SchemeCertificate}});
    new SUiModuleNominal("Chat", manager, {"ChatConn", "ChatMsg", "ChatStart", "ChatUi"});
    static const PermissionDeclaration chat('h', LOC_TEXT("chat_permission_desc"), "fd", "EnableChat");
    new SUiModuleNominal("FileTransfer", manager, {"FileTransferUi"});
    static const PermissionDeclaration fileTransfer('t', LOC_TEXT("ft_permission_desc"), "fd", "ShareFiles");
    new fops::SUiModuleFops(manager);
    new SUiModuleNominal("Printing", manager, {"defaultPrinter"});
    static const PermissionDeclaration printing('r', LOC_TEXT("print_permission_desc"), "fd", "EnableRemotePrinting");
    new SUiModuleNominal("ScreenRecorder", manager, {"recordNotification", "recordQuery"});
    static const PermissionDeclaration recording('w', LOC_TEXT("screenrecorder_permission_desc"), "fd",
                                                 "SessionRecordEnable");
    new SUiModuleNominal("SecurityNone", manager);
    new SUiModuleNominal("SecurityNoneCiphers", manager);
    new SUiModuleNominal("SecurityRA2", manager);
    new SUiModuleNominal("SecurityRA4", manager);
    new SUiModuleNominal("SingleSignOn", manager, {}, {{"SingleSignOn", svr::SchemeSingleSignOn}});
    new SUiModuleNominal("CloudAuth", manager, {}, {{"CloudSso", svr::SchemeCloudSso}});
    new SUiModuleNominal("MaxEncryption", manager);
    new smisc::SUiModuleAddClient(manager, section);
    new smisc::SUiModuleGuestLogin(manager, section);
    new SUiModuleNominal("IpListen", manager);
    new SUiModuleNominal("TcpListen", manager);
    new SUiModuleNominal("UdpListen", manager);
    new SUiModuleNominal("DuoAuth", manager, {}, {{"Duo", svr::SchemeInteractive}});
    manager->modulesCreated();
}
