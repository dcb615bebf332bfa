#include "entSvr/createSUiModules.h"

#include "hostedremoteaccess/SUiModuleCloudAccess.h"
#include "hostedremoteaccess/SUiModuleCloudJoin.h"
#include "hxutil/ConfigStoreFile.h"
#include "smisc/SUiModuleProductUri.h"

#include <memory>

void createSUiModules(sui::SUiModuleMgr* manager, int section) {
    (void)section;
    new smisc::SUiModuleProductUri(manager);
    new hostedremoteaccess::SUiModuleCloudJoin(manager);
    if (!hxutil::ConfigStore::instance())
        hxutil::ConfigStore::setInstance(std::make_unique<hxutil::ConfigStoreFile>());
    new hostedremoteaccess::SUiModuleCloudAccess(manager);
    manager->modulesCreated();
}
