#include "sui/SUiModule.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"

#include <algorithm>

namespace sui {
namespace {
plat::LogSrc log("SUiModule");
plat::BoolParameter debugUi("DebugUi", "Run without server for debugging the UI", /*defaultValue=*/false);
} // namespace

bool isDebugUi() { return debugUi.value(); }

SUiModule::SUiModule(const char* moduleName, SUiModuleMgr* manager) : moduleName_(moduleName), mgr(manager) {
    mgr->list.push_back(this);
    log.debug("module %s", name());
}

SUiModule::~SUiModule() { mgr->list.erase(std::find(mgr->list.begin(), mgr->list.end(), this)); }

SUiModuleMgr::~SUiModuleMgr() { destroyModules(); }

void SUiModuleMgr::destroyModules() {
    while (!list.empty())
        delete list.front();
}

bool SUiModuleMgr::isFeatureAvailable(const char* name) const {
    const auto found = features.find(std::string_view(name));
    return found != features.end() && found->second.available;
}

bool SUiModuleMgr::isFeatureEnabled(const char* name) const {
    const auto found = features.find(std::string_view(name));
    return found != features.end() && found->second.enabled;
}

bool SUiModuleMgr::anyVetoOptions() {
    return std::any_of(list.begin(), list.end(), [](SUiModule* each) { return each->vetoOptions(); });
}

bool SUiModuleMgr::anyQuery(int arg) {
    return std::any_of(list.begin(), list.end(), [arg](SUiModule* each) { return each->query(arg); });
}

void SUiModuleMgr::notifyConnectionCount(int n) {
    for (SUiModule* each : list)
        each->onConnectionCount(n);
}

void SUiModuleMgr::modulesCreated() {
    if (!isDebugUi())
        return;
    for (SUiModule* each : list)
        features[each->name()] = {/*available=*/true, /*enabled=*/true};
}

void SUiModuleMgr::addOptionSections(OptionsDialog& dialog) {
    for (SUiModule* each : list)
        if (isFeatureAvailable(each->name()))
            each->addOptionSections(dialog);
}

void SUiModuleMgr::addDiagnosticsButtons(mui::MuLayout* layout) {
    for (SUiModule* each : list)
        each->addDiagnosticsButtons(layout);
}

void SUiModuleMgr::setFeatures(FeatureMap map) {
    features = std::move(map);
    for (SUiModule* each : list)
        each->onFeaturesChanged();
}

void SUiModuleMgr::notifyDesktopStarted(bool started) {
    for (SUiModule* each : list)
        each->onDesktopStarted(started);
}

bool SUiModuleMgr::offerLink(const char* url) {
    return std::any_of(list.begin(), list.end(), [url](SUiModule* each) { return each->handleLink(url); });
}

} // namespace sui
