#include "plat/LogDest.h"

#include "plat/LogRegistry.h"

namespace plat {

LogDest::LogDest(const char* destName, int levelLimit) : name(destName), maxLevel(levelLimit) {
    if (name)
        LogRegistry::instance().add(this);
}

LogDest::~LogDest() {
    // Without a name it is in no list, and no source maps to it.
    if (name)
        LogRegistry::instance().remove(this);
}

void LogDest::setLevel(int levelLimit) {
    maxLevel = levelLimit;
    LogRegistry::instance().updateMaxLevels();
}

LogDest* LogDest::find(const char* name) { return LogRegistry::instance().find(name); }

void LogDest::list(FILE* stream) { LogRegistry::instance().listDests(stream); }

} // namespace plat
