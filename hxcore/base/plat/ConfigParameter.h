// Typed settings, each with one value for every source that set it.
#pragma once

#include "plat/MBuf.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <climits>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace plat {

class ConfigParameter;
class Configuration;

/// Where a value comes from; the highest one wins.
enum ParamPriority : int {
    PriorityDefault = 0,     ///< given at construction, can't be unset
    PriorityPreference = 10, ///< the user's or the command line's
    PriorityPolicy = 30,     ///< this and above: the administrator's
};

/// A key of the message catalogs, where a text could stand too.
struct LocKey {
    explicit constexpr LocKey(const char* catalogKey) : key(catalogKey) {}
    const char* key;
};

/// What a parameter is for: a text in English, or a key of the catalogs. Borrowed.
struct ParamText {
    constexpr ParamText(const char* text) : desc(text) {}
    constexpr ParamText(LocKey key) : locDesc(key.key) {}
    const char* desc = nullptr;
    const char* locDesc = nullptr;
};

class ParameterChangedCallback {
public:
    virtual ~ParameterChangedCallback() = default;

    /// The value at `priority` was set or dropped; it need not be the one in force.
    virtual void parameterChanged(ConfigParameter*, int priority) = 0;
};

/// A named setting that enters itself in a Configuration when it is built.
///
/// Make it a static of the source that reads it. A name that begins with "_" is hidden from help and dumps. Setting and
/// unsetting tell the callbacks, which may remove themselves and others, and may delete the parameter.
class ConfigParameter : private NonCopyable {
public:
    virtual ~ConfigParameter();

    /// Parses and sets; false, with nothing changed, if the text doesn't parse or policy may not set this parameter.
    virtual bool setParam(const char* value, int priority = PriorityPreference) = 0;

    /// Drops the value of one priority; the default stays.
    virtual void unset(int priority, bool notify = true) = 0;

    virtual bool setInt(int value, int priority = PriorityPreference);
    virtual String getValueStr() const = 0;
    virtual int getInt() const { return 0; }
    virtual int getPriority() const = 0; ///< of the value in force
    virtual bool hasPriority(int priority) const = 0;
    virtual String getValueStrAt(int priority) const = 0; ///< null if absent, "<binary>" for a binary parameter
    virtual std::map<int, String> getValues() const = 0;  ///< all values in the form that setParam takes
    virtual const char* getTypeName() const = 0;          ///< "bool", "int", "enum", "string", "s64" or "binary"

    /// A copy with owned texts and all values, entered in `target`, which does not own it; no callbacks.
    virtual ConfigParameter* clone(Configuration* target) const = 0;
    virtual String intToStr(int value) const;

    const char* getDescription() const; ///< translated when only a key is set
    const char* getName() const { return name; }
    const char* getDesc() const { return desc; }       ///< may be null
    const char* getLocDesc() const { return locDesc; } ///< may be null
    bool isAdvanced() const { return advanced; }
    bool isHidden() const { return name[0] == '_'; }
    bool hasFlag(const char* flag) const { return flags.count(flag) != 0; }
    const std::set<std::string>& getFlags() const { return flags; }
    Configuration* getConfig() const { return config; } ///< null once its Configuration is gone

    /// Borrowed; tells of changes until it is removed.
    void addCallback(ParameterChangedCallback* callback, bool atEnd = true);
    void removeCallback(ParameterChangedCallback* callback);

    /// Brings every priority into line with `other`: what it lacks is unset, what it has is set through setParam.
    void copyFrom(const ConfigParameter& other);

    /// Takes copies of the texts, so that those given at construction may go.
    void makeCopied();

protected:
    /// `flagList` is comma-separated or null; a null `owner` means the global Configuration.
    ConfigParameter(const char* paramName, ParamText text, bool isAdvanced, Configuration* owner, const char* flagList);

    bool mayBeSetAt(int priority) const;
    void valueSet(int priority); ///< logs and tells the callbacks; the parameter may be gone afterwards
    void valueUnset(int priority, bool notify);
    std::string flagList() const; ///< the flags joined by ","
    ParamText copyText() const;   ///< both texts, for a clone

private:
    friend class Configuration;
    struct Notification;

    void notify(int priority);

    Configuration* config;
    ConfigParameter* next = nullptr;
    const char* name;
    uint64_t nameHash; // without regard to case
    const char* desc;
    const char* locDesc;
    bool advanced;
    bool copied = false;
    std::set<std::string> flags;
    std::vector<ParameterChangedCallback*> callbacks;
    Notification* notification = nullptr; // the innermost under way
    String ownedName, ownedDesc, ownedLocDesc;
};

/// A parameter with values of type T, by priority.
template <class T>
class TypedParameter : public ConfigParameter {
public:
    /// The value in force; valid until the next change.
    const T& value() const { return values.rbegin()->second; }

    /// Sets without parsing; an equal value at the same priority changes and tells nothing.
    virtual bool setValue(const T& newValue, int priority = PriorityPreference);

    // ConfigParameter
    void unset(int priority, bool notify = true) override;
    String getValueStr() const override { return toText(value()); }
    int getPriority() const override { return values.rbegin()->first; }
    bool hasPriority(int priority) const override { return values.count(priority) != 0; }
    String getValueStrAt(int priority) const override;
    std::map<int, String> getValues() const override;

protected:
    TypedParameter(const char* paramName, ParamText text, const T& defaultValue, bool isAdvanced, Configuration* owner,
                   const char* flagList);
    virtual String toText(const T& someValue) const = 0;
    void copyValues(const TypedParameter& other);

private:
    std::map<int, T> values; // never empty: the default is at 0
};

extern template class TypedParameter<bool>;
extern template class TypedParameter<int>;
extern template class TypedParameter<String>;
extern template class TypedParameter<MBuf<unsigned char>>;

/// On or off. A name alone on the command line turns it on.
class BoolParameter : public TypedParameter<bool> {
public:
    BoolParameter(const char* paramName, ParamText text, bool defaultValue, bool isAdvanced = false,
                  Configuration* owner = nullptr, const char* flagList = nullptr);
    explicit operator bool() const { return value(); }
    static bool parse(const char* text, bool& out); ///< null and "" mean true

    // ConfigParameter
    bool setParam(const char* text, int priority = PriorityPreference) override;
    bool setInt(int number, int priority = PriorityPreference) override { return setValue(number != 0, priority); }
    int getInt() const override { return value() ? 1 : 0; }
    const char* getTypeName() const override { return "bool"; }
    ConfigParameter* clone(Configuration* target) const override;

protected:
    String toText(const bool& someValue) const override;
};

/// A number within bounds, both included.
class IntParameter : public TypedParameter<int> {
public:
    IntParameter(const char* paramName, ParamText text, int defaultValue, bool isAdvanced = false,
                 Configuration* owner = nullptr, int minValue = INT_MIN, int maxValue = INT_MAX,
                 const char* flagList = nullptr);
    explicit operator int() const { return value(); }
    bool setValue(const int& newValue, int priority = PriorityPreference) override;

    // ConfigParameter
    bool setParam(const char* text, int priority = PriorityPreference) override;
    bool setInt(int number, int priority = PriorityPreference) override { return setValue(number, priority); }
    int getInt() const override { return value(); }
    const char* getTypeName() const override { return "int"; }
    ConfigParameter* clone(Configuration* target) const override;

    const int min;
    const int max;

protected:
    String toText(const int& someValue) const override { return intToStr(someValue); }
};

/// One of a table of names; its value is the index.
class EnumParameter : public IntParameter {
public:
    /// `valueNames` ends with a null pointer and is borrowed; a default that isn't in it gives the first.
    EnumParameter(const char* paramName, ParamText text, const char* defaultName, const char* const* valueNames,
                  bool isAdvanced = false, Configuration* owner = nullptr, const char* flagList = nullptr);

    const char* const* getNames() const { return names; } ///< ends with a null pointer
    void makeNamesCopied();

    // ConfigParameter
    bool setParam(const char* text, int priority = PriorityPreference) override;
    const char* getTypeName() const override { return "enum"; }
    ConfigParameter* clone(Configuration* target) const override;
    String intToStr(int number) const override;

private:
    const char* const* names;
    std::vector<std::string> ownedNames;
    std::vector<const char*> ownedTable;
};

/// A text in valid UTF-8.
class StringParameter : public TypedParameter<String> {
public:
    StringParameter(const char* paramName, ParamText text, const char* defaultValue, bool isAdvanced = false,
                    Configuration* owner = nullptr, const char* flagList = nullptr);
    const char* c_str() const { return value().c_str(); }
    bool setValue(const String& newValue, int priority = PriorityPreference) override; ///< throws BadUtf8

    // ConfigParameter; throws BadUtf8
    bool setParam(const char* text, int priority = PriorityPreference) override;
    const char* getTypeName() const override { return "string"; }
    ConfigParameter* clone(Configuration* target) const override;

protected:
    String toText(const String& someValue) const override { return someValue; }
};

/// A signed number of 64 bits, kept as the text "int64:" and 16 hexadecimal digits.
class S64Parameter : public TypedParameter<String> {
public:
    S64Parameter(const char* paramName, ParamText text, int64_t defaultValue, bool isAdvanced = false,
                 Configuration* owner = nullptr, const char* flagList = nullptr);
    int64_t getValue() const;
    bool setS64(int64_t number, int priority = PriorityPreference);
    bool setValue(const String& newValue, int priority = PriorityPreference) override;

    // ConfigParameter
    bool setParam(const char* text, int priority = PriorityPreference) override;
    const char* getTypeName() const override { return "s64"; }
    ConfigParameter* clone(Configuration* target) const override;

protected:
    String toText(const String& someValue) const override { return someValue; }
};

/// Bytes, such as an obfuscated password. Their text form is hexadecimal, and is never logged.
class BinaryParameter : public TypedParameter<MBuf<unsigned char>> {
public:
    BinaryParameter(const char* paramName, ParamText text, const unsigned char* defaultData, int lenBytes,
                    bool isAdvanced = false, Configuration* owner = nullptr, const char* flagList = nullptr);
    bool setBytes(const unsigned char* data, int lenBytes, int priority = PriorityPreference);

    /// A copy of the bytes in force, into a buffer whose own setting says whether it is wiped.
    virtual void getData(MBuf<unsigned char>& out) const;

    // ConfigParameter
    bool setParam(const char* text, int priority = PriorityPreference) override;
    String getValueStrAt(int priority) const override;
    const char* getTypeName() const override { return "binary"; }
    ConfigParameter* clone(Configuration* target) const override;

protected:
    String toText(const MBuf<unsigned char>& someValue) const override;
};

} // namespace plat
