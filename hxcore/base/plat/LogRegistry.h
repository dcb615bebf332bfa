// What all log sources and destinations share; internal to logging.
#pragma once

#include "plat/LogDestMem.h"
#include "plat/LogSrc.h"

#include <string>
#include <vector>

namespace plat {

/// The lists of sources and destinations, the memory store, and the setting that ties them together.
///
/// Never destroyed, so that statics may log to the end of the process. Changed on the main thread only.
class LogRegistry : private NonCopyable {
public:
    static LogRegistry& instance();
    static bool isActive() { return active; }

    void add(LogSrc* source);
    void remove(LogSrc* source);
    void add(LogDest* dest);
    void remove(LogDest* dest);
    LogDest* find(const char* destName) const;

    void setSpec(const char* spec); ///< null goes back to the parameter
    void activate();
    void apply(bool dropAll = false); ///< `dropAll` empties the memory after the replay
    void updateMaxLevels();

    void listSources(int width, FILE* stream) const;
    void listDests(FILE* stream) const;
    LogDestMem& memory() { return store; }

private:
    friend struct LogRegistryTest;

    struct Element { // of a specification: <log>:<target>:<level>
        std::string pattern;
        std::string target;
        int level;
    };

    LogRegistry() = default;
    std::string specInForce() const;
    static std::vector<Element> parse(const std::string& spec);
    static void map(const Element& element, LogDest* dest, LogSrc* source);
    void mapAll(const Element& element);
    int replay(const std::vector<Element>& elements); ///< gives the highest level that was handed over, or -1

    static constinit bool active;

    LogSrc* sources = nullptr;
    LogDest* dests = nullptr;
    LogDestMem store;
    std::vector<Element> applied; // sources that come later are mapped by it
    std::string spec;
    bool specSet = false;
    std::vector<LogSrc::Mappings*> spare; // of sources that are gone
};

/// `text` in one line: control characters, "~" and bytes that aren't UTF-8 in a visible form that starts with "~".
std::string logSafeText(const char* text);

/// True if `text` matches `pattern`, in which "*" stands for any run of characters.
bool logPatternMatches(const char* pattern, const char* text);

} // namespace plat
