// Configuration values in text files.
#pragma once

#include "hxutil/ConfigStore.h"
#include "plat/String.h"

#include <map>
#include <vector>

namespace hxutil {

/// Reads the shared files, the user's and the policy's; writes the user's.
class ConfigStoreFile : public ConfigStore {
public:
    ConfigStoreFile(); ///< the directories of os::AppInfo, as they are at that time

    /// Files of a directory, behind those known: `common`, with `withCustom` also `common.custom`, then the
    /// application's own.
    void addDir(int priority, const char* dir, bool withCustom);

    // hxutil::ConfigStore
    void loadPriority(int priority, plat::Configuration* config) override;
    void save(plat::Configuration* config, plat::Configuration* defaults) override;
    void saveParam(plat::ConfigParameter* param) override;
    void removeParam(plat::ConfigParameter* param) override;
    bool exists() override;

    const std::vector<plat::String>& files(int priority) { return filesOf[priority]; } ///< in the order of reading

private:
    std::map<int, std::vector<plat::String>> filesOf;
};

} // namespace hxutil
