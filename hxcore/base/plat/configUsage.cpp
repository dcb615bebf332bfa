// Help and dumps of parameters.
#include "plat/Configuration.h"
#include "plat/LogDest.h"
#include "plat/LogSrc.h"
#include "plat/translate.h"
#include "plat/utf8.h"

#include <algorithm>
#include <cstring>

namespace plat {
namespace {

constexpr int lineWidth = 79;
constexpr int nameWidth = 14;

LogSrc& log() {
    static LogSrc source("Configuration");
    return source;
}

bool isBinary(const ConfigParameter& param) { return dynamic_cast<const BinaryParameter*>(&param) != nullptr; }

int lastLineChars(const DString& text) {
    const char* const lineFeed = std::strrchr(text.c_str(), '\n');
    return utf8::countChars(lineFeed ? lineFeed + 1 : text.c_str());
}

void printParam(const ConfigParameter& param, bool showDefault, FILE* out) {
    DString line;
    line.format("  %-*s - %s", nameWidth, param.getName(), param.getDescription());
    line.wordWrap(lineWidth, nameWidth + 5);
    if (showDefault && !isBinary(param)) {
        const String standing = strFormat("(%s=%s)", translate("plat_configuration_help_default"),
                                          param.getValueStrAt(PriorityDefault).c_str());
        if (lastLineChars(line) + 1 + utf8::countChars(standing.c_str()) <= lineWidth)
            line.format(" %s", standing.c_str());
        else
            line.format("\n%-*c%s", nameWidth + 6, ' ', standing.c_str());
    }
    std::fprintf(out, "%s\n", line.c_str());
}

String describePriority(const ConfigParameter& param) {
    const int priority = param.getPriority();
    if (priority == PriorityDefault)
        return "Default";
    if (priority == PriorityPreference)
        return "Preference";
    if (priority < PriorityPolicy)
        return strFormat("Priority %d", priority);
    return param.hasPriority(PriorityPreference) ? "Policy overriding preference" : "Policy";
}

} // namespace

void Configuration::sort(std::vector<ConfigParameter*>& params) {
    std::stable_sort(params.begin(), params.end(), [](const ConfigParameter* a, const ConfigParameter* b) {
        if (a->getPriority() != b->getPriority())
            return a->getPriority() > b->getPriority();
        return NoCaseLess::compare(a->getName(), b->getName()) < 0;
    });
}

void Configuration::printTitleAndParams(bool all, bool showDefaults, FILE* out) const {
    if (locName)
        std::fprintf(out, "%s:\n", translate(locName));
    else
        std::fprintf(out, "%s Parameters:\n", name.c_str());
    std::vector<ConfigParameter*> sorted = getParams(/*inChildren=*/false);
    sort(sorted);
    for (const ConfigParameter* param : sorted) {
        if (!param->isHidden() && (all || (!param->isAdvanced() && !isBinary(*param))))
            printParam(*param, showDefaults, out);
    }
    for (const Configuration* child : children)
        child->printTitleAndParams(all, showDefaults, out);
}

void Configuration::usage(bool all, bool showDefaults, FILE* out) const {
    DString intro(translate("plat_configuration_param_usage"));
    intro.wordWrap(lineWidth);
    std::fprintf(out, "%s\n\n", intro.c_str());
    printTitleAndParams(all, showDefaults, out);
    if (!all)
        return;
    std::fprintf(out, "%s\n  ", translate("plat_configuration_log_names_title"));
    logListSources(lineWidth, out);
    std::fprintf(out, "\n%s\n", translate("plat_configuration_log_dests_title"));
    LogDest::list(out);
}

void Configuration::dump() const {
    std::vector<ConfigParameter*> sorted = getParams();
    sort(sorted);
    for (const ConfigParameter* param : sorted) {
        if (param->isHidden())
            continue;
        const int priority = param->getPriority();
        // The text form of a binary parameter is a secret: show what stands for it.
        log().write(priority <= PriorityDefault ? LogDebug : LogInfo, "%s=%s (%s)", param->getName(),
                    param->getValueStrAt(priority).c_str(), describePriority(*param).c_str());
    }
}

} // namespace plat
