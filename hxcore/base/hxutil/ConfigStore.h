// Where the values of parameters are kept between runs.
#pragma once

#include "plat/NonCopyable.h"

#include <memory>

namespace plat {
class ConfigParameter;
class Configuration;
} // namespace plat

namespace hxutil {

/// The store of configuration values; the process has one.
class ConfigStore : private plat::NonCopyable {
public:
    virtual ~ConfigStore() = default;

    void load(bool withPolicy, plat::Configuration* config); ///< priority 10, then with policy 30

    /// Sets what the files of that priority hold; null is the global Configuration. A missing file is skipped;
    /// other failures throw plat::SystemException.
    virtual void loadPriority(int priority, plat::Configuration* config) = 0;
    void loadPolicy(plat::Configuration* config);

    /// Adds to the user's values those of `config` that differ from `defaults`.
    virtual void save(plat::Configuration* config, plat::Configuration* defaults) = 0;
    virtual void saveParam(plat::ConfigParameter* param) = 0;
    virtual void removeParam(plat::ConfigParameter* param) = 0;
    virtual bool exists() = 0; ///< the user has values of their own

    static constexpr int preferencePriority = 10;
    static constexpr int policyPriority = 30;

    static ConfigStore* instance(); ///< null if none was set
    static void setInstance(std::unique_ptr<ConfigStore> store);
};

} // namespace hxutil
