#include "plat/ConfigParameter.h"

#include "plat/Assert.h"
#include "plat/Configuration.h"
#include "plat/LogSrc.h"
#include "plat/translate.h"

#include <algorithm>

namespace plat {
namespace {

constexpr const char* noPolicyFlag = "noPolicy";

// Parameters are set during static initialisation too.
LogSrc& log() {
    static LogSrc source("ConfigParameter");
    return source;
}

std::set<std::string> splitFlags(const char* list) {
    std::set<std::string> result;
    const std::string text = strOrEmpty(list);
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(',', start), text.size());
        if (end > start)
            result.insert(text.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

} // namespace

/// A round of telling the callbacks, on the stack of notify.
struct ConfigParameter::Notification {
    explicit Notification(ConfigParameter& told) : param(told), outer(told.notification) { param.notification = this; }
    ~Notification() {
        if (alive)
            param.notification = outer;
    }

    ConfigParameter& param;
    Notification* outer;
    bool alive = true; // false once the parameter is gone
};

ConfigParameter::ConfigParameter(const char* paramName, ParamText text, bool isAdvanced, Configuration* owner,
                                 const char* flagList)
    : config(owner ? owner : &Configuration::global()), name(paramName), nameHash(hashNoCase(paramName)),
      desc(text.desc), locDesc(text.locDesc), advanced(isAdvanced), flags(splitFlags(flagList)) {
    ASSERT(desc || locDesc);
    config->enter(this);
}

ConfigParameter::~ConfigParameter() {
    for (Notification* round = notification; round; round = round->outer)
        round->alive = false;
    if (config)
        config->forget(this);
}

bool ConfigParameter::setInt(int, int) { return false; }

String ConfigParameter::intToStr(int value) const { return strFormat("%d", value); }

const char* ConfigParameter::getDescription() const { return desc ? desc : translate(locDesc); }

void ConfigParameter::addCallback(ParameterChangedCallback* callback, bool atEnd) {
    callbacks.insert(atEnd ? callbacks.end() : callbacks.begin(), callback);
}

void ConfigParameter::removeCallback(ParameterChangedCallback* callback) { std::erase(callbacks, callback); }

void ConfigParameter::copyFrom(const ConfigParameter& other) {
    const std::map<int, String> theirs = other.getValues();
    for (const auto& [priority, text] : getValues()) {
        if (!theirs.count(priority))
            unset(priority, /*notify=*/true);
    }
    for (const auto& [priority, text] : theirs)
        setParam(text.get(), priority);
}

void ConfigParameter::makeCopied() {
    if (copied)
        return;
    copied = true;
    ownedName = name;
    ownedDesc = desc;
    ownedLocDesc = locDesc;
    name = ownedName.c_str();
    desc = ownedDesc.get();
    locDesc = ownedLocDesc.get();
}

bool ConfigParameter::mayBeSetAt(int priority) const { return priority < PriorityPolicy || !hasFlag(noPolicyFlag); }

void ConfigParameter::valueSet(int priority) {
    const int level = priority > PriorityDefault ? LogDebug : LogVerbose;
    if (config && config->getLogChanges() && log().isEnabled(level))
        log().write(level, "set %s(%s) to %s, priority %d", name, getTypeName(), getValueStrAt(priority).c_str(),
                    priority);
    notify(priority);
}

void ConfigParameter::valueUnset(int priority, bool tell) {
    if (config && config->getLogChanges() && log().isEnabled(LogDebug))
        log().debug("unset %s(%s) priority %d, now %s, priority %d", name, getTypeName(), priority,
                    getValueStrAt(getPriority()).c_str(), getPriority());
    if (tell)
        notify(priority);
}

void ConfigParameter::notify(int priority) {
    const Notification round(*this);
    const std::vector<ParameterChangedCallback*> told = callbacks;
    for (ParameterChangedCallback* callback : told) {
        if (std::find(callbacks.begin(), callbacks.end(), callback) == callbacks.end())
            continue; // removed by an earlier one
        callback->parameterChanged(this, priority);
        if (!round.alive)
            return;
    }
}

ParamText ConfigParameter::copyText() const {
    ParamText text(desc);
    text.locDesc = locDesc;
    return text;
}

std::string ConfigParameter::flagList() const {
    std::string list;
    for (const std::string& flag : flags)
        list += (list.empty() ? "" : ",") + flag;
    return list;
}

} // namespace plat
