// Where log messages go.
#pragma once

#include "plat/NonCopyable.h"

#include <cstdio>
#include <mutex>

namespace plat {

/// A named destination of log messages, found by its name in the parameter Log.
///
/// Enters itself in the list of destinations, and takes itself out of it and of all sources when destroyed.
class LogDest : private NonCopyable {
public:
    static constexpr int noLimit = 0x7fffffff;

    explicit LogDest(const char* destName, int levelLimit = noLimit); ///< borrowed; null keeps it out of the list
    virtual ~LogDest();

    /// Called for each message on the thread that logs; `text` is one line without control characters.
    virtual void write(int level, const char* srcName, const char* text) = 0;

    /// While false, messages are kept in memory instead. Default: true.
    virtual bool isActive() { return true; }

    static LogDest* find(const char* name); ///< without regard to case; null if there is none
    static void list(FILE* stream);         ///< one name a line, indented by two

    const char* getName() const { return name; }
    int getLevel() const { return maxLevel; }
    void setLevel(int levelLimit); ///< messages above it are not taken; updates all sources

protected:
    std::recursive_mutex mutex; // any thread may log

private:
    friend class LogRegistry;

    const char* name;
    LogDest* next = nullptr;
    int maxLevel;
};

} // namespace plat
