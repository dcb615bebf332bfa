#include "plat/Configuration.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/cstr.h"
#include "plat/translate.h"

#include <algorithm>
#include <cstring>

namespace plat {
namespace {

constexpr int maxAliasDepth = 16; // of aliases that stand for aliases, lest they go round in circles

bool isOneOf(const char* text, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(), [=](const char* word) { return strEqualsNoCase(word, text); });
}

template <class P>
P& asType(ConfigParameter& param) {
    P* const typed = dynamic_cast<P*>(&param);
    if (!typed)
        throw ExceptionFmt("Parameter %s has type %s", param.getName(), param.getTypeName());
    return *typed;
}

void tellHelp(const char* const* argv, Configuration::HelpCallback* help) {
    if (!help || !argv[0] || !isOneOf(argv[0], {"-help", "--help", "-h", "/?"}))
        return;
    if (strEqualsNoCase(argv[1], "all"))
        help->showHelp(1);
    else
        help->showHelp(strEqualsNoCase(argv[1], "xml") ? 2 : 0);
}

/// Puts what `alias` stands for in its place; false if there is nothing to do.
bool resolve(ParameterAlias& alias, const std::string& name, NameValueMap& store) {
    const auto entry = store.find(name);
    if (entry == store.end())
        return false;
    NameValueMap targets;
    if (!alias.set(name.c_str(), entry->second.get(), targets))
        return false;
    store.erase(entry);
    store.merge(targets); // what is there already stays
    return true;
}

} // namespace

Configuration::Configuration(const char* configName, const char* titleKey) : name(configName), locName(titleKey) {}

Configuration::Configuration(const Configuration& other) : Configuration(other.getName(), other.locName) {
    logChanges = other.logChanges;
    for (const auto& [aliasName, alias] : other.aliases) {
        if (aliases.emplace(aliasName, alias).second)
            alias->configs.push_back(this);
    }
    mergeFrom(other, /*addMissing=*/true, /*withChildren=*/true);
}

Configuration::~Configuration() {
    clear();
    for (const auto& [aliasName, alias] : aliases)
        std::erase(alias->configs, this);
    for (Configuration* parent : parents)
        std::erase(parent->children, this);
    for (Configuration* child : children)
        std::erase(child->parents, this);
}

Configuration& Configuration::global() {
    // Kept to the end of the process: parameters are statics, and go in any order.
    static Configuration* const config = new Configuration("Global", "plat_configuration_global_params");
    return *config;
}

void Configuration::enter(ConfigParameter* param) {
    param->next = params;
    params = param;
}

void Configuration::forget(ConfigParameter* param) {
    ConfigParameter** link = &params;
    while (*link && *link != param)
        link = &(*link)->next;
    if (*link)
        *link = param->next;
    std::erase(owned, param);
}

void Configuration::clear() {
    const std::vector<ConfigParameter*> deleted = std::move(owned);
    owned.clear();
    for (auto param = deleted.rbegin(); param != deleted.rend(); ++param)
        delete *param; // the newest stands in front, where it is found at once
    for (ConfigParameter* param = params; param;) {
        ConfigParameter* const rest = param->next;
        param->config = nullptr;
        param->next = nullptr;
        param = rest;
    }
    params = nullptr;
}

// Looking up

ConfigParameter* Configuration::find(const char* paramName, bool inChildren) const {
    return findHashed(paramName, hashNoCase(paramName), inChildren);
}

ConfigParameter* Configuration::findHashed(const char* paramName, uint64_t hash, bool inChildren) const {
    for (ConfigParameter* param = params; param; param = param->next) {
        if (param->nameHash == hash && strEqualsNoCase(param->getName(), paramName))
            return param;
    }
    if (!inChildren)
        return nullptr;
    for (const Configuration* child : children) {
        if (ConfigParameter* const param = child->findHashed(paramName, hash, inChildren))
            return param;
    }
    return nullptr;
}

ConfigParameter& Configuration::get(const char* paramName) const {
    ConfigParameter* const param = find(paramName);
    if (!param)
        throw ExceptionFmt("Parameter %s not found", strOrEmpty(paramName));
    return *param;
}

bool Configuration::getBool(const char* paramName, bool fallback) const {
    ConfigParameter* const param = find(paramName);
    return param ? asType<BoolParameter>(*param).value() : fallback;
}

int Configuration::getInt(const char* paramName, int fallback) const {
    ConfigParameter* const param = find(paramName);
    return param ? asType<IntParameter>(*param).value() : fallback;
}

String Configuration::getString(const char* paramName, const char* fallback) const {
    ConfigParameter* const param = find(paramName);
    return param ? asType<StringParameter>(*param).value() : String(fallback);
}

int64_t Configuration::getS64(const char* paramName, int64_t fallback) const {
    ConfigParameter* const param = find(paramName);
    return param ? asType<S64Parameter>(*param).getValue() : fallback;
}

bool Configuration::getBinary(const char* paramName, MBuf<unsigned char>& out) const {
    ConfigParameter* const param = find(paramName);
    if (!param)
        return false;
    asType<BinaryParameter>(*param).getData(out);
    return true;
}

// Setting

bool Configuration::set(const char* paramName, const char* value, int priority) {
    return setWithin(paramName, value, priority, /*aliasDepth=*/0);
}

bool Configuration::set(const char* nameStart, size_t nameLen, const char* value, int priority) {
    return set(std::string(nameStart, nameLen).c_str(), value, priority);
}

bool Configuration::setWithin(const char* paramName, const char* value, int priority, int aliasDepth) {
    const auto alias = aliases.find(strOrEmpty(paramName));
    if (alias == aliases.end()) {
        if (ConfigParameter* const param = find(paramName, /*inChildren=*/false))
            return param->setParam(value, priority);
        for (Configuration* child : children) {
            if (child->aliases.count(strOrEmpty(paramName)) || child->find(paramName))
                return child->setWithin(paramName, value, priority, aliasDepth);
        }
        return false;
    }
    NameValueMap targets;
    if (aliasDepth >= maxAliasDepth || !alias->second->set(paramName, value, targets))
        return false;
    bool taken = targets.empty();
    for (const auto& [target, targetValue] : targets)
        taken |= setWithin(target.c_str(), targetValue.get(), priority, aliasDepth + 1);
    return taken;
}

bool Configuration::setFromArg(const char* arg, int priority) {
    const char* const text = strOrEmpty(arg);
    const bool dashed = text[0] == '-';
    const char* const start = text + (startsWith(text, "--") ? 2 : dashed ? 1 : 0);
    if (const char* const equals = std::strchr(start, '='))
        return set(start, static_cast<size_t>(equals - start), equals + 1, priority);
    if (dashed)
        return set(start, nullptr, priority);
    return std::any_of(children.begin(), children.end(),
                       [=](Configuration* child) { return child->setFromArg(text, priority); });
}

int Configuration::setFromArgs(const char* const* argv, HelpCallback* help) {
    int taken = 0;
    while (argv[taken]) {
        const char* const arg = argv[taken];
        const char* const following = argv[taken + 1];
        if (setFromArg(arg, PriorityPreference))
            taken += 1;
        else if (arg[0] == '-' && following && set(arg + 1, following, PriorityPreference))
            taken += 2;
        else
            break;
    }
    tellHelp(argv + taken, help);
    return taken;
}

void Configuration::setFromArgsStrict(const char* const* argv, HelpCallback* help) {
    const char* const left = argv[setFromArgs(argv, help)];
    if (!left)
        return;
    DString text;
    translateWith(text, "plat_bad_argument", left);
    if (help)
        text.format("%s%s", "  ", translate("plat_run_with_help"));
    throw Exception(text.c_str(), "BadCmdLineArg");
}

void Configuration::resolveAliases(NameValueMap& store) const {
    // An alias may stand for one that was passed already.
    bool changed = true;
    for (int round = 0; changed && round < maxAliasDepth; ++round) {
        changed = false;
        for (const auto& [aliasName, alias] : aliases)
            changed |= resolve(*alias, aliasName, store);
    }
    for (const Configuration* child : children)
        child->resolveAliases(store);
}

// Children

bool Configuration::isWithin(const Configuration* tree) const {
    return this == tree || std::any_of(tree->children.begin(), tree->children.end(),
                                       [this](const Configuration* child) { return isWithin(child); });
}

void Configuration::addChild(Configuration* child, bool uniqueOnly) {
    ASSERT(!isWithin(child));
    if (uniqueOnly && std::find(children.begin(), children.end(), child) != children.end())
        return;
    children.push_back(child);
    child->parents.push_back(this);
}

void Configuration::removeChild(Configuration* child) {
    std::erase(children, child);
    std::erase(child->parents, this);
}

// Making parameters

template <class P>
P* Configuration::own(P* param) {
    param->makeCopied();
    owned.push_back(param);
    return param;
}

BoolParameter* Configuration::addBool(const char* paramName, ParamText text, bool defaultValue, bool isAdvanced,
                                      const char* flagList) {
    return own(new BoolParameter(paramName, text, defaultValue, isAdvanced, this, flagList));
}

IntParameter* Configuration::addInt(const char* paramName, ParamText text, int defaultValue, bool isAdvanced,
                                    int minValue, int maxValue, const char* flagList) {
    return own(new IntParameter(paramName, text, defaultValue, isAdvanced, this, minValue, maxValue, flagList));
}

EnumParameter* Configuration::addEnum(const char* paramName, ParamText text, const char* defaultName,
                                      const char* const* valueNames, bool isAdvanced, const char* flagList) {
    EnumParameter* const param =
        own(new EnumParameter(paramName, text, defaultName, valueNames, isAdvanced, this, flagList));
    param->makeNamesCopied();
    return param;
}

StringParameter* Configuration::addString(const char* paramName, ParamText text, const char* defaultValue,
                                          bool isAdvanced, const char* flagList) {
    return own(new StringParameter(paramName, text, defaultValue, isAdvanced, this, flagList));
}

S64Parameter* Configuration::addS64(const char* paramName, ParamText text, int64_t defaultValue, bool isAdvanced,
                                    const char* flagList) {
    return own(new S64Parameter(paramName, text, defaultValue, isAdvanced, this, flagList));
}

BinaryParameter* Configuration::addBinary(const char* paramName, ParamText text, const unsigned char* data,
                                          int lenBytes, bool isAdvanced, const char* flagList) {
    return own(new BinaryParameter(paramName, text, data, lenBytes, isAdvanced, this, flagList));
}

// Comparing and merging

String Configuration::makeDiff(const Configuration& other) const {
    DString names;
    for (const ConfigParameter* param : getParams()) {
        const ConfigParameter* const theirs = other.find(param->getName());
        if (theirs && !(param->getValueStr() == theirs->getValueStr()))
            names.append(names.isEmpty() ? "" : ",").append(param->getName());
    }
    return names.take();
}

bool Configuration::equals(const Configuration& other) const { return makeDiff(other).isEmpty(); }

void Configuration::applyDiff(const Configuration& other) {
    for (ConfigParameter* param : getParams()) {
        const ConfigParameter* const theirs = other.find(param->getName());
        if (theirs && !(param->getValueStr() == theirs->getValueStr()))
            param->setParam(theirs->getValueStr().get(), theirs->getPriority());
    }
}

void Configuration::mergeFrom(const Configuration& other, bool addMissing, bool withChildren) {
    const std::vector<ConfigParameter*> theirs = other.getParams(withChildren);
    // From the oldest on, since new ones go to the front.
    for (auto it = theirs.rbegin(); it != theirs.rend(); ++it) {
        if (ConfigParameter* const mine = find((*it)->getName(), withChildren))
            mine->copyFrom(**it);
        else if (addMissing)
            owned.push_back((*it)->clone(this));
    }
}

void Configuration::collectValues(const Configuration& config, int priority, NameValueMap& map) {
    for (const ConfigParameter* param : config.getParams()) {
        if (!param->hasPriority(priority))
            continue;
        const std::map<int, String> values = param->getValues();
        map.emplace(param->getName(), values.at(priority));
    }
}

std::vector<ConfigParameter*> Configuration::getParams(bool inChildren) const {
    std::vector<ConfigParameter*> all;
    for (ConfigParameter* param = params; param; param = param->next)
        all.push_back(param);
    if (inChildren) {
        for (const Configuration* child : children) {
            const std::vector<ConfigParameter*> below = child->getParams();
            all.insert(all.end(), below.begin(), below.end());
        }
    }
    return all;
}

// ParameterAlias

ParameterAlias::ParameterAlias(const char* aliasName, std::initializer_list<const char*> targets, Configuration* owner)
    : name(aliasName), targetNames(targets.begin(), targets.end()) {
    Configuration* const config = owner ? owner : &Configuration::global();
    config->aliases.insert_or_assign(name, this);
    configs.push_back(config);
}

ParameterAlias::~ParameterAlias() {
    for (Configuration* config : configs) {
        const auto entry = config->aliases.find(name);
        if (entry != config->aliases.end() && entry->second == this)
            config->aliases.erase(entry);
    }
}

bool ParameterAlias::set(const char*, const char* value, NameValueMap& targets) {
    for (const std::string& target : targetNames)
        targets.insert_or_assign(target, String(value));
    return true;
}

} // namespace plat
