// A module's named source of log messages, and the process-wide log configuration.
#pragma once

#include "plat/NonCopyable.h"

#include <cstdarg>
#include <cstdio>
#include <map>

namespace plat {

class LogDest;

enum LogLevel : int {
    LogError = 0,     ///< something is lost
    LogStatus = 10,   ///< the life of the process
    LogInfo = 30,     ///< what support needs
    LogDebug = 100,   ///< what we need
    LogVerbose = 110, ///< what we need rarely
};

/// A module's log source: make it a static of the file that logs.
///
/// Messages go to the destinations that the parameter Log maps the source to, and to memory while none takes them.
/// Logging works from static initialisation on, from any thread; a call that is filtered out costs one comparison.
/// Text from outside belongs into the arguments, never into the format.
class LogSrc : private NonCopyable {
public:
    explicit LogSrc(const char* srcName); ///< borrowed, a literal
    virtual ~LogSrc();

    /// Recomputes the highest level that any mapping accepts; -1 when there is none.
    virtual void updateMaxLevel();

    void error(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void status(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void info(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void debug(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void verbose(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Text beyond 4,095 bytes is cut.
    void write(int level, const char* format, ...) __attribute__((format(printf, 3, 4)));
    void vwrite(int level, const char* format, va_list args) __attribute__((format(printf, 3, 0)));

    /// One message for each line of `text` that is not empty.
    void writeLines(int level, const char* text);

    /// False when a message of this level would be dropped before it is formatted.
    bool isEnabled(int level) const;

    const char* getName() const { return name; }
    int getMaxLevel() const { return maxLevel; }

private:
    friend class LogRegistry;
    using Mappings = std::map<LogDest*, int>;

    void deliver(int level, const char* text);

    const char* name;
    int maxLevel;
    Mappings* dests; // owned by the registry, which outlives all statics
    LogSrc* next;
    bool constructed;
};

/// Keeps a specification that overrides the parameter Log, and applies it; null goes back to the parameter.
void logSetSpec(const char* spec);

/// Ends the phase in which all goes to memory. The event loop calls it; further calls do nothing.
void logActivate();

bool logIsActive(); ///< true once logActivate was called

/// Empties all mappings, sets them from what is in force and replays what memory holds.
void logApply();

/// The names of all sources, each once, newest first, joined by ", ", in lines of at most `width` columns after an
/// indent of two.
void logListSources(int width, FILE* stream);

} // namespace plat
