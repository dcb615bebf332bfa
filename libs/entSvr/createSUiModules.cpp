#include "entSvr/createSUiModules.h"

#include "hxutil/ConfigStoreFile.h"
#include "smisc/SUiModuleProductUri.h"

#include <memory>

void createSUiModules(sui::SUiModuleMgr* manager, int section) {
    (void)section;
    new smisc::SUiModuleProductUri(manager);
    if (!hxutil::ConfigStore::instance())
        hxutil::ConfigStore::setInstance(std::make_unique<hxutil::ConfigStoreFile>());
    manager->modulesCreated();
}
