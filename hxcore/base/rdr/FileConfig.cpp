#include "rdr/FileConfig.h"

#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rdr/FileInStream.h"
#include "rdr/TransactedFileOutStream.h"

#include <cerrno>

namespace plat::FileConfig {
namespace {
LogSrc log("FileConfig");

bool isMissing(const SystemException& e) { return e.errNo == ENOENT || e.errNo == ENOTDIR; }

// False, with an empty map, if there is no file.
bool readIfThere(const char* path, NameValueMap& map) {
    try {
        readFile(path, map);
    } catch (const SystemException& e) {
        if (!isMissing(e))
            throw;
        return false;
    }
    return true;
}

} // namespace

void load(Configuration& config, const char* path, int priority) {
    log.verbose("Looking for %s config in %s", config.getName(), path);
    rdr::FileInStream in(path);
    log.debug("Reading %s config from %s", config.getName(), path);
    StreamConfig::read(in, config, priority);
}

void readFile(const char* path, NameValueMap& map, const Configuration::AliasMap* aliases) {
    rdr::FileInStream in(path);
    StreamConfig::readToMap(in, map, aliases);
}

void writeFile(const char* path, const NameValueMap& map, int flags) {
    rdr::TransactedFileOutStream out(path, flags);
    StreamConfig::writeMap(out, map);
    out.commit();
}

void removeEntry(const char* path, const char* name, int flags) {
    NameValueMap map;
    if (readIfThere(path, map) && map.erase(name))
        writeFile(path, map, flags);
}

void addEntry(const char* path, const char* name, const char* value, int flags) {
    NameValueMap map;
    readIfThere(path, map);
    if (map.emplace(name, value).second)
        writeFile(path, map, flags);
}

void setEntry(const char* path, const char* name, const char* value, int flags) {
    NameValueMap map;
    readIfThere(path, map);
    const auto entry = map.find(name);
    if (entry != map.end() && entry->second.isNull() == !value && entry->second == value)
        return;
    map.insert_or_assign(name, value);
    writeFile(path, map, flags);
}

void save(const Configuration& config, const char* path, const Configuration& defaults, int flags) {
    NameValueMap map;
    readIfThere(path, map);
    if (StreamConfig::updateFromConfig(config, defaults, map))
        writeFile(path, map, flags);
}

} // namespace plat::FileConfig
