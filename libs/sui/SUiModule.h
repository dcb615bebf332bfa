// The plug-in point of the server UI: features, and the manager that they live in.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <map>
#include <string>
#include <vector>

namespace io {
class MsgIpc;
}
namespace mui {
class MuLayout;
}
namespace score {
class StatusDb;
class StatusEventDb;
} // namespace score
namespace ui {
class MenuGrouper;
}

namespace sui {

class InformationCenterDialog;
class OptionsDialog;
class ServerComms;
class StatusDialog;
class SUiModuleMgr;

/// What a feature is told to be: offered at all, and switched on.
struct Feature {
    bool available = false;
    bool enabled = false;
};
using FeatureMap = std::map<std::string, Feature, std::less<>>;

/// A feature of the server UI. The manager owns it from construction on and destroys it before all dialogs.
class SUiModule : private plat::NonCopyable {
public:
    SUiModule(const char* moduleName, SUiModuleMgr* manager); ///< joins the end of the manager's list
    virtual ~SUiModule();                                     ///< leaves the list

    virtual bool vetoOptions() { return false; } ///< at each core status: true turns the Options item off
    virtual bool query(int arg) {
        (void)arg;
        return false;
    }                                                     ///< the manager asks in order and stops at the first true
    virtual void onConnectionCount(int n) { (void)n; }    ///< after each connection that came or went
    virtual void addOptionSections(OptionsDialog&) {}     ///< only if the feature is available
    virtual void addDiagnosticsButtons(mui::MuLayout*) {} ///< to the row of buttons of the diagnostics tab
    virtual bool handleLink(const char* url) {
        (void)url;
        return false;
    } ///< true ends the search
    virtual void onFeaturesChanged() {}
    virtual void onDesktopStarted(bool started) { (void)started; }

    const char* name() const { return moduleName_.c_str(); }

protected:
    SUiModuleMgr* manager() const { return mgr; }

private:
    plat::String moduleName_;
    SUiModuleMgr* mgr;
};

/// The modules in the order of their creation, what they may ask of the UI, and the features by name.
class SUiModuleMgr : private plat::NonCopyable {
public:
    virtual ~SUiModuleMgr(); ///< all modules must be gone by then, or go here

    virtual io::MsgIpc* msgIpc() = 0;
    virtual ui::MenuGrouper* serverMenu() = 0; ///< null while there are no menus
    virtual StatusDialog* statusDialog() = 0;
    virtual InformationCenterDialog* infoCenter() = 0; ///< null while there is none
    virtual ServerComms* comms() = 0;
    virtual score::StatusDb* statusDb() = 0;
    virtual score::StatusEventDb* eventDb() = 0;
    virtual bool isFeatureAvailable(const char* name) const; ///< false for an unknown name
    virtual bool isFeatureEnabled(const char* name) const;   ///< false for an unknown name
    virtual void activate() = 0;                             ///< opens the status dialog
    virtual bool anyVetoOptions();
    virtual bool anyQuery(int arg);
    virtual void notifyConnectionCount(int n);
    virtual void modulesCreated(); ///< by the creator of all modules, after the last
    virtual void addOptionSections(OptionsDialog& dialog);
    virtual void addDiagnosticsButtons(mui::MuLayout* layout);

    const std::vector<SUiModule*>& modules() const { return list; }

protected:
    void setFeatures(FeatureMap map); ///< replaces the map, then tells every module
    void notifyDesktopStarted(bool started);
    bool offerLink(const char* url); ///< true if a module took it
    void destroyModules();           ///< from the front

private:
    friend class SUiModule;

    std::vector<SUiModule*> list; // owned
    FeatureMap features;
};

/// The boolean parameter DebugUi: there is no core, all features count as there.
bool isDebugUi();

} // namespace sui
