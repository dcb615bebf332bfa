#include "plat/LogRegistry.h"

#include "plat/ConfigParameter.h"
#include "plat/LogDestFile.h"
#include "plat/cstr.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

namespace plat {
namespace {

constexpr const char* defaultSpec = "*:stderr:10";

StringParameter& logParam() {
    static StringParameter param("Log", LocKey("plat_param_log"), "");
    return param;
}

/// Applies the parameter again whenever it changes. Until logging is active, all is kept for the first time.
class SpecWatcher : public ParameterChangedCallback {
public:
    SpecWatcher() { logParam().addCallback(this); }
    ~SpecWatcher() override { logParam().removeCallback(this); }
    void parameterChanged(ConfigParameter*, int) override {
        if (LogRegistry::isActive())
            LogRegistry::instance().apply();
    }
};

const SpecWatcher specWatcher;

bool parseLevel(const char* text, int& level) {
    const char* const end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, level);
    return error == std::errc() && stop == end && level >= 0;
}

} // namespace

constinit bool LogRegistry::active = false;

LogRegistry& LogRegistry::instance() {
    static LogRegistry* const registry = new LogRegistry;
    return *registry;
}

void LogRegistry::add(LogSrc* source) {
    if (spare.empty()) {
        source->dests = new LogSrc::Mappings;
    } else {
        source->dests = spare.back();
        spare.pop_back();
    }
    source->next = sources;
    sources = source;
    for (const Element& element : applied) {
        if (LogDest* const dest = find(element.target.c_str()))
            map(element, dest, source);
    }
}

void LogRegistry::remove(LogSrc* source) {
    LogSrc** link = &sources;
    while (*link && *link != source)
        link = &(*link)->next;
    if (*link)
        *link = source->next;
    // The destructor of another static may still log through this one: the empty map stays valid.
    source->dests->clear();
    spare.push_back(source->dests);
}

void LogRegistry::add(LogDest* dest) {
    dest->next = dests;
    dests = dest;
}

void LogRegistry::remove(LogDest* dest) {
    LogDest** link = &dests;
    while (*link && *link != dest)
        link = &(*link)->next;
    if (*link)
        *link = dest->next;
    for (LogSrc* source = sources; source; source = source->next) {
        if (source->dests->erase(dest) > 0)
            source->updateMaxLevel();
    }
}

LogDest* LogRegistry::find(const char* destName) const {
    LogDest* dest = dests;
    while (dest && !strEqualsNoCase(dest->name, destName))
        dest = dest->next;
    return dest;
}

void LogRegistry::setSpec(const char* newSpec) {
    specSet = newSpec != nullptr;
    spec = strOrEmpty(newSpec);
    apply();
}

void LogRegistry::activate() {
    if (active)
        return;
    active = true;
    apply(/*dropAll=*/true);
}

std::string LogRegistry::specInForce() const {
    if (specSet)
        return spec;
    const String& value = logParam().value();
    return value.isEmpty() ? defaultSpec : value.c_str();
}

std::vector<LogRegistry::Element> LogRegistry::parse(const std::string& spec) {
    std::vector<Element> elements;
    for (size_t start = 0; start <= spec.size();) {
        const size_t end = std::min(spec.find(',', start), spec.size());
        const std::string text = spec.substr(start, end - start);
        start = end + 1;
        if (text.empty())
            continue;
        const size_t first = text.find(':');
        const size_t second = first == std::string::npos ? first : text.find(':', first + 1);
        int level = 0;
        if (second == std::string::npos || !parseLevel(text.c_str() + second + 1, level))
            std::fprintf(stderr, "Failed to parse log param element: '%s'\n", logSafeText(text.c_str()).c_str());
        else
            elements.push_back({text.substr(0, first), text.substr(first + 1, second - first - 1), level});
    }
    return elements;
}

void LogRegistry::map(const Element& element, LogDest* dest, LogSrc* source) {
    if (logPatternMatches(element.pattern.c_str(), source->name))
        (*source->dests)[dest] = element.level;
}

void LogRegistry::mapAll(const Element& element) {
    LogDest* const dest = find(element.target.c_str());
    if (!dest) {
        std::fprintf(stderr, "No LogDest found: '%s'\n", logSafeText(element.target.c_str()).c_str());
        return;
    }
    for (LogSrc* source = sources; source; source = source->next)
        map(element, dest, source);
}

int LogRegistry::replay(const std::vector<Element>& elements) {
    int highest = -1;
    for (const Element& element : elements) {
        LogDest* const dest = find(element.target.c_str());
        // Asking whether a destination is active may open its file, so first see whether there is anything for it.
        if (element.pattern != "*" || !dest || !store.holds(element.level) || !dest->isActive())
            continue;
        store.replay(*dest, element.level);
        highest = std::max(highest, element.level);
    }
    return highest;
}

void LogRegistry::apply(bool dropAll) {
    LogDestFile::stderrDest();
    LogDestFile::fileDest();
    for (LogSrc* source = sources; source; source = source->next)
        source->dests->clear();
    applied = parse(specInForce());
    for (const Element& element : applied)
        mapAll(element);
    const int highest = replay(std::vector<Element>(applied)); // what a destination does may apply anew
    if (dropAll)
        store.clear();
    else
        store.forget(highest);
    updateMaxLevels();
}

void LogRegistry::updateMaxLevels() {
    for (LogSrc* source = sources; source; source = source->next)
        source->updateMaxLevel();
}

void LogRegistry::listSources(int width, FILE* stream) const {
    std::vector<std::string_view> names; // files of one idea share a name
    for (const LogSrc* source = sources; source; source = source->next) {
        if (std::find(names.begin(), names.end(), source->name) == names.end())
            names.emplace_back(source->name);
    }
    int column = 2;
    for (const std::string_view& name : names) {
        const int nameLen = static_cast<int>(name.size());
        if (&name != &names.front()) {
            // The comma that follows the name must fit too.
            const bool fits = column + 2 + nameLen + (&name != &names.back() ? 1 : 0) <= width;
            std::fputs(fits ? ", " : ",\n  ", stream);
            column = fits ? column + 2 : 2;
        }
        std::fwrite(name.data(), 1, name.size(), stream);
        column += nameLen;
    }
}

void LogRegistry::listDests(FILE* stream) const {
    for (const LogDest* dest = dests; dest; dest = dest->next)
        std::fprintf(stream, "  %s\n", dest->name);
}

bool logPatternMatches(const char* pattern, const char* text) {
    const char* star = nullptr; // the last one seen, and the text that it must cover at least
    const char* covered = nullptr;
    while (*text) {
        if (*pattern == '*') {
            star = pattern++;
            covered = text;
        } else if (*pattern == *text) {
            ++pattern;
            ++text;
        } else if (star) {
            pattern = star + 1;
            text = ++covered;
        } else {
            return false;
        }
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == 0;
}

} // namespace plat
