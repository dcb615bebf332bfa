#include "hxutil/ConfigStore.h"

namespace hxutil {
namespace {
std::unique_ptr<ConfigStore>& current() {
    static std::unique_ptr<ConfigStore> store;
    return store;
}
} // namespace

ConfigStore* ConfigStore::instance() { return current().get(); }

void ConfigStore::setInstance(std::unique_ptr<ConfigStore> store) { current() = std::move(store); }

void ConfigStore::load(bool withPolicy, plat::Configuration* config) {
    loadPriority(preferencePriority, config);
    if (withPolicy)
        loadPolicy(config);
}

void ConfigStore::loadPolicy(plat::Configuration* config) { loadPriority(policyPriority, config); }

} // namespace hxutil
