// The kinds of parameters.
#include "plat/Assert.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/encodings.h"
#include "plat/numbers.h"
#include "plat/utf8.h"

#include <cstring>

namespace plat {
namespace {

LogSrc& log() {
    static LogSrc source("ConfigParameter");
    return source;
}

// Makes a bad text from whatever source abort at its place, for the hunt after who sent it.
BoolParameter& badUtf8Assert() {
    static BoolParameter param("_BadUtf8Assert", "Make bad UTF-8 cause an assertion failure for debugging",
                               /*defaultValue=*/false);
    return param;
}
const BoolParameter& badUtf8AssertEntered = badUtf8Assert();

template <class T>
bool same(const T& a, const T& b) {
    return a == b;
}

bool same(const MBuf<unsigned char>& a, const MBuf<unsigned char>& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

constexpr const char* s64Prefix = "int64:";
constexpr size_t s64Digits = 16;

String s64Text(int64_t number) { return strFormat("%s%016llx", s64Prefix, static_cast<unsigned long long>(number)); }

/// Big-endian digits behind the prefix; without it the bytes stand in little-endian order.
bool parseS64Text(const char* text, int64_t& number) {
    const bool prefixed = startsWith(text, s64Prefix);
    const char* const digits = prefixed ? text + std::strlen(s64Prefix) : strOrEmpty(text);
    uint8_t bytes[s64Digits / 2];
    if (std::strlen(digits) != s64Digits || !hexToBin(digits, sizeof(bytes), bytes))
        return false;
    uint64_t value = 0;
    for (size_t i = 0; i < sizeof(bytes); ++i)
        value = value << 8 | bytes[prefixed ? i : sizeof(bytes) - 1 - i];
    number = static_cast<int64_t>(value);
    return true;
}

int indexOfName(const char* const* names, const char* text) {
    for (int i = 0; names[i]; ++i) {
        if (strEqualsNoCase(names[i], text))
            return i;
    }
    return -1;
}

int countNames(const char* const* names) {
    int count = 0;
    while (names[count])
        ++count;
    ASSERT(count > 0);
    return count;
}

} // namespace

template <class T>
TypedParameter<T>::TypedParameter(const char* paramName, ParamText text, const T& defaultValue, bool isAdvanced,
                                  Configuration* owner, const char* flagList)
    : ConfigParameter(paramName, text, isAdvanced, owner, flagList) {
    values.emplace(PriorityDefault, defaultValue);
}

template <class T>
bool TypedParameter<T>::setValue(const T& newValue, int priority) {
    if (!mayBeSetAt(priority))
        return false;
    const auto it = values.find(priority);
    if (it != values.end() && same(it->second, newValue))
        return true;
    values.insert_or_assign(priority, newValue);
    valueSet(priority);
    return true;
}

template <class T>
void TypedParameter<T>::unset(int priority, bool tell) {
    if (priority == PriorityDefault || values.erase(priority) == 0)
        return;
    valueUnset(priority, tell);
}

template <class T>
String TypedParameter<T>::getValueStrAt(int priority) const {
    const auto it = values.find(priority);
    return it == values.end() ? String() : toText(it->second);
}

template <class T>
std::map<int, String> TypedParameter<T>::getValues() const {
    std::map<int, String> texts;
    for (const auto& [priority, someValue] : values)
        texts.emplace(priority, toText(someValue));
    return texts;
}

template <class T>
void TypedParameter<T>::copyValues(const TypedParameter& other) {
    values = other.values;
}

template class TypedParameter<bool>;
template class TypedParameter<int>;
template class TypedParameter<String>;
template class TypedParameter<MBuf<unsigned char>>;

// BoolParameter

BoolParameter::BoolParameter(const char* paramName, ParamText text, bool defaultValue, bool isAdvanced,
                             Configuration* owner, const char* flagList)
    : TypedParameter(paramName, text, defaultValue, isAdvanced, owner, flagList) {}

bool BoolParameter::parse(const char* text, bool& out) {
    static constexpr const char* words[] = {"", "1", "on", "true", "yes", "0", "off", "false", "no", nullptr};
    constexpr int firstFalse = 5;
    const int index = indexOfName(words, text);
    if (index < 0)
        return false;
    out = index < firstFalse;
    return true;
}

bool BoolParameter::setParam(const char* text, int priority) {
    bool parsed = false;
    if (!parse(text, parsed)) {
        log().error("Bool parameter %s: invalid value '%s'", getName(), text);
        return false;
    }
    return setValue(parsed, priority);
}

String BoolParameter::toText(const bool& someValue) const { return someValue ? "1" : "0"; }

ConfigParameter* BoolParameter::clone(Configuration* target) const {
    auto* const copy =
        new BoolParameter(getName(), copyText(), /*defaultValue=*/false, isAdvanced(), target, flagList().c_str());
    copy->makeCopied();
    copy->copyValues(*this);
    return copy;
}

// IntParameter

IntParameter::IntParameter(const char* paramName, ParamText text, int defaultValue, bool isAdvanced,
                           Configuration* owner, int minValue, int maxValue, const char* flagList)
    : TypedParameter(paramName, text, defaultValue, isAdvanced, owner, flagList), min(minValue), max(maxValue) {}

bool IntParameter::setValue(const int& newValue, int priority) {
    return newValue >= min && newValue <= max && TypedParameter::setValue(newValue, priority);
}

bool IntParameter::setParam(const char* text, int priority) {
    const char* pos = text;
    int parsed = 0;
    return text && parseInt(&pos, parsed, /*base=*/0) && !*pos && setValue(parsed, priority);
}

ConfigParameter* IntParameter::clone(Configuration* target) const {
    auto* const copy = new IntParameter(getName(), copyText(), 0, isAdvanced(), target, min, max, flagList().c_str());
    copy->makeCopied();
    copy->copyValues(*this);
    return copy;
}

// EnumParameter

EnumParameter::EnumParameter(const char* paramName, ParamText text, const char* defaultName,
                             const char* const* valueNames, bool isAdvanced, Configuration* owner, const char* flagList)
    : IntParameter(paramName, text, std::max(indexOfName(valueNames, defaultName), 0), isAdvanced, owner, 0,
                   countNames(valueNames) - 1, flagList),
      names(valueNames) {}

void EnumParameter::makeNamesCopied() {
    std::vector<std::string> texts(names, names + max + 1);
    std::vector<const char*> table;
    table.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        table.push_back(text.c_str());
    table.push_back(nullptr);
    ownedNames = std::move(texts); // the strings stay where they are
    ownedTable = std::move(table);
    names = ownedTable.data();
}

bool EnumParameter::setParam(const char* text, int priority) {
    const int index = indexOfName(names, text);
    return index >= 0 && setValue(index, priority);
}

ConfigParameter* EnumParameter::clone(Configuration* target) const {
    auto* const copy =
        new EnumParameter(getName(), copyText(), nullptr, names, isAdvanced(), target, flagList().c_str());
    copy->makeCopied();
    copy->makeNamesCopied();
    copy->copyValues(*this);
    return copy;
}

String EnumParameter::intToStr(int number) const {
    return number >= 0 && number <= max ? String(names[number]) : String();
}

// StringParameter

StringParameter::StringParameter(const char* paramName, ParamText text, const char* defaultValue, bool isAdvanced,
                                 Configuration* owner, const char* flagList)
    : TypedParameter(paramName, text, String(defaultValue), isAdvanced, owner, flagList) {
    ASSERT_TEXT(defaultValue, "Default value <null> for %s not allowed", paramName);
}

bool StringParameter::setValue(const String& newValue, int priority) {
    if (newValue.isNull())
        return false;
    if (!utf8::isValid(newValue.get())) {
        ASSERT_TEXT(!badUtf8Assert(), "Bad UTF-8 string for %s", getName());
        throw BadUtf8("Bad UTF-8 string for %s", getName());
    }
    return TypedParameter::setValue(newValue, priority);
}

bool StringParameter::setParam(const char* text, int priority) { return setValue(String(text), priority); }

ConfigParameter* StringParameter::clone(Configuration* target) const {
    auto* const copy = new StringParameter(getName(), copyText(), "", isAdvanced(), target, flagList().c_str());
    copy->makeCopied();
    copy->copyValues(*this);
    return copy;
}

// S64Parameter

S64Parameter::S64Parameter(const char* paramName, ParamText text, int64_t defaultValue, bool isAdvanced,
                           Configuration* owner, const char* flagList)
    : TypedParameter(paramName, text, s64Text(defaultValue), isAdvanced, owner, flagList) {}

int64_t S64Parameter::getValue() const {
    int64_t number = 0;
    parseS64Text(value().get(), number); // setValue lets nothing else in
    return number;
}

bool S64Parameter::setValue(const String& newValue, int priority) {
    int64_t number = 0;
    return parseS64Text(newValue.get(), number) && TypedParameter::setValue(s64Text(number), priority);
}

bool S64Parameter::setS64(int64_t number, int priority) { return setValue(s64Text(number), priority); }

bool S64Parameter::setParam(const char* text, int priority) { return setValue(String(text), priority); }

ConfigParameter* S64Parameter::clone(Configuration* target) const {
    auto* const copy = new S64Parameter(getName(), copyText(), 0, isAdvanced(), target, flagList().c_str());
    copy->makeCopied();
    copy->copyValues(*this);
    return copy;
}

// BinaryParameter

BinaryParameter::BinaryParameter(const char* paramName, ParamText text, const unsigned char* defaultData, int lenBytes,
                                 bool isAdvanced, Configuration* owner, const char* flagList)
    : TypedParameter(paramName, text, MBuf<unsigned char>(defaultData, lenBytes, /*secure=*/true), isAdvanced, owner,
                     flagList) {}

bool BinaryParameter::setBytes(const unsigned char* data, int lenBytes, int priority) {
    return setValue(MBuf<unsigned char>(data, lenBytes, /*secure=*/true), priority);
}

void BinaryParameter::getData(MBuf<unsigned char>& out) const { out.assign(value().data(), value().size()); }

bool BinaryParameter::setParam(const char* text, int priority) {
    MBuf<unsigned char> bytes(0, /*secure=*/true);
    if (!text || !hexToBin(text, bytes))
        return false;
    bytes.setSecure(/*secure=*/true);
    return setValue(bytes, priority);
}

String BinaryParameter::getValueStrAt(int priority) const {
    return hasPriority(priority) ? String("<binary>") : String();
}

ConfigParameter* BinaryParameter::clone(Configuration* target) const {
    auto* const copy = new BinaryParameter(getName(), copyText(), nullptr, 0, isAdvanced(), target, flagList().c_str());
    copy->makeCopied();
    copy->copyValues(*this);
    return copy;
}

String BinaryParameter::toText(const MBuf<unsigned char>& someValue) const {
    return binToHex(static_cast<size_t>(someValue.size()), someValue.data());
}

} // namespace plat
