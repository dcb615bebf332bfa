// A set of parameters, searched by name and set from files and the command line.
#pragma once

#include "plat/ConfigParameter.h"
#include "plat/NoCaseMap.h"

#include <cstdio>
#include <initializer_list>

namespace plat {

class ParameterAlias;

/// A list of parameters, with further Configurations below it that are searched after its own.
///
/// Parameters enter themselves; those made through add... are owned. Used on the thread of the loop only.
class Configuration {
public:
    using AliasMap = std::map<std::string, ParameterAlias*, NoCaseLess>;

    class HelpCallback {
    public:
        virtual ~HelpCallback() = default;

        /// Help was asked for on the command line: 0 short, 1 all, 2 as XML.
        virtual void showHelp(int level) = 0;
    };

    explicit Configuration(const char* configName, const char* titleKey = nullptr); ///< the key is borrowed

    /// Clones every parameter of `other` and of what is below it, all owned here, and takes over its aliases.
    Configuration(const Configuration& other);
    Configuration& operator=(const Configuration&) = delete;
    ~Configuration(); ///< parameters that are not owned stay, without a Configuration

    static Configuration& global();

    // Looking up; names without regard to case
    ConfigParameter* find(const char* paramName, bool inChildren = true) const; ///< null if there is none
    ConfigParameter& get(const char* paramName) const;                          ///< throws if there is none
    bool getBool(const char* paramName, bool fallback) const; ///< these throw if the parameter has another type
    int getInt(const char* paramName, int fallback) const;    ///< also of an enum: the index
    String getString(const char* paramName, const char* fallback) const;
    int64_t getS64(const char* paramName, int64_t fallback) const;
    bool getBinary(const char* paramName, MBuf<unsigned char>& out) const; ///< false if there is none

    // Setting; false if the name is unknown or the value doesn't parse
    bool set(const char* paramName, const char* value, int priority = PriorityPreference);
    bool set(const char* nameStart, size_t nameLen, const char* value, int priority);

    /// "-name", "-name=value", "--name=value" or "name=value".
    bool setFromArg(const char* arg, int priority = PriorityPreference);

    /// Takes arguments of a null-terminated list while they fit, then looks whether the next one asks for help.
    /// Gives the number taken.
    int setFromArgs(const char* const* argv, HelpCallback* help = nullptr);

    /// The same, but throws "BadCmdLineArg" if an argument remains.
    void setFromArgsStrict(const char* const* argv, HelpCallback* help = nullptr);

    // Aliases
    void resolveAliases(NameValueMap& store) const; ///< replaces aliases in `store` by what they stand for
    const AliasMap& getAliases() const { return aliases; }

    // Children, borrowed
    void addChild(Configuration* child, bool uniqueOnly = true); ///< `uniqueOnly`: not if it is there already
    void removeChild(Configuration* child);

    // Making owned parameters; all texts are copied
    BoolParameter* addBool(const char* paramName, ParamText text, bool defaultValue, bool isAdvanced = false,
                           const char* flagList = nullptr);
    IntParameter* addInt(const char* paramName, ParamText text, int defaultValue, bool isAdvanced = false,
                         int minValue = INT_MIN, int maxValue = INT_MAX, const char* flagList = nullptr);
    EnumParameter* addEnum(const char* paramName, ParamText text, const char* defaultName,
                           const char* const* valueNames, bool isAdvanced = false, const char* flagList = nullptr);
    StringParameter* addString(const char* paramName, ParamText text, const char* defaultValue, bool isAdvanced = false,
                               const char* flagList = nullptr);
    S64Parameter* addS64(const char* paramName, ParamText text, int64_t defaultValue, bool isAdvanced = false,
                         const char* flagList = nullptr);
    BinaryParameter* addBinary(const char* paramName, ParamText text, const unsigned char* data, int lenBytes,
                               bool isAdvanced = false, const char* flagList = nullptr);
    void clear(); ///< deletes the owned parameters and forgets the others

    // Comparing and merging; by name, values as text
    String makeDiff(const Configuration& other) const; ///< names of what differs, joined by ","
    bool equals(const Configuration& other) const;
    void applyDiff(const Configuration& other); ///< takes over `other`'s differing values, at their priority
    void mergeFrom(const Configuration& other, bool addMissing, bool withChildren);

    /// All values at exactly `priority`, of this tree.
    static void collectValues(const Configuration& config, int priority, NameValueMap& map);

    /// All parameters, the newest first; then those of the children.
    std::vector<ConfigParameter*> getParams(bool inChildren = true) const;

    /// The order of help and dumps: by priority in force, descending, then by name.
    static void sort(std::vector<ConfigParameter*>& params);

    void usage(bool all, bool showDefaults, FILE* out = stdout) const;
    void dump() const; ///< logs all values that are not hidden

    const char* getName() const { return name.c_str(); }
    bool getLogChanges() const { return logChanges; }
    void setLogChanges(bool log) { logChanges = log; }
    const std::vector<Configuration*>& getChildren() const { return children; }

private:
    friend class ConfigParameter;
    friend class ParameterAlias;

    template <class P>
    P* own(P* param);
    ConfigParameter* findHashed(const char* paramName, uint64_t hash, bool inChildren) const;
    bool setWithin(const char* paramName, const char* value, int priority, int aliasDepth);
    void enter(ConfigParameter* param);
    void forget(ConfigParameter* param);
    bool isWithin(const Configuration* tree) const;
    void printTitleAndParams(bool all, bool showDefaults, FILE* out) const;

    String name;
    const char* locName;
    ConfigParameter* params = nullptr;
    std::vector<Configuration*> children;
    std::vector<Configuration*> parents;
    std::vector<ConfigParameter*> owned;
    AliasMap aliases;
    bool logChanges = true;
};

/// A name that stands for one or more parameters, or for other aliases.
class ParameterAlias : private NonCopyable {
public:
    ParameterAlias(const char* aliasName, std::initializer_list<const char*> targetNames,
                   Configuration* owner = nullptr); ///< null means the global one
    virtual ~ParameterAlias();

    /// Called when `value` (or null) is set under this name: fills `targets` with what is to be set instead; false
    /// refuses. Default: `value` for every target.
    virtual bool set(const char* aliasName, const char* value, NameValueMap& targets);

    const char* getName() const { return name.c_str(); }

private:
    friend class Configuration;

    std::string name;
    std::vector<std::string> targetNames;
    std::vector<Configuration*> configs; // where it is entered
};

} // namespace plat
