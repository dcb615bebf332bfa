// A module's named source of log messages, and the process-wide log configuration.
#pragma once

#include "plat/NonCopyable.h"

#include <climits>
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

// The comparison stands at the place of the call, so that a call that is filtered out saves no arguments for the
// callee.
#if defined(__GNUC__) && !defined(__clang__)
#define PLAT_LOG_METHOD(method, level)                                                                                 \
    [[gnu::always_inline, gnu::format(printf, 2, 3)]] void method(const char* format, ...) {                           \
        if (isEnabled(level))                                                                                          \
            write(level, format, __builtin_va_arg_pack());                                                             \
    }
#else
#define PLAT_LOG_METHOD(method, level)                                                                                 \
    [[gnu::format(printf, 2, 3)]] void method(const char* format, ...) {                                               \
        if (!isEnabled(level))                                                                                         \
            return;                                                                                                    \
        va_list args;                                                                                                  \
        va_start(args, format);                                                                                        \
        vwrite(level, format, args);                                                                                   \
        va_end(args);                                                                                                  \
    }
#endif

/// A module's log source: make it a static of the file that logs.
///
/// Messages go to the destinations that the parameter Log maps the source to, and to memory while none takes them.
/// Logging works from static initialisation on, from any thread; a call that is filtered out costs one comparison.
/// Text from outside belongs into the arguments, never into the format.
class LogSrc : private NonCopyable {
public:
    explicit LogSrc(const char* srcName); ///< borrowed, a literal
    virtual ~LogSrc();

    /// Recomputes the highest level that any mapping accepts, -1 when there is none; before logActivate all goes
    /// through.
    virtual void updateMaxLevel();

    // void error(const char* format, ...), and so on
    PLAT_LOG_METHOD(error, LogError)
    PLAT_LOG_METHOD(status, LogStatus)
    PLAT_LOG_METHOD(info, LogInfo)
    PLAT_LOG_METHOD(debug, LogDebug)
    PLAT_LOG_METHOD(verbose, LogVerbose)

    /// Text beyond 4,095 bytes is cut.
    void write(int level, const char* format, ...) __attribute__((format(printf, 3, 4)));
    void vwrite(int level, const char* format, va_list args) __attribute__((format(printf, 3, 0)));

    /// One message for each line of `text` that is not empty.
    void writeLines(int level, const char* text);

    /// False when a message of this level would be dropped before it is formatted.
    bool isEnabled(int level) const { return level <= getMaxLevel(); }

    const char* getName() const { return name; }
    int getMaxLevel() const { return static_cast<int>(INT_MAX - closed); } ///< INT_MAX before logActivate

private:
    friend class LogRegistry;
    using Mappings = std::map<LogDest*, int>;

    void deliver(int level, const char* text);

    const char* name;
    unsigned closed; // INT_MAX less the highest level: 0, for all, also before the constructor has run
    Mappings* dests; // owned by the registry, which outlives all statics
    LogSrc* next;
    bool constructed;
};

#undef PLAT_LOG_METHOD

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
