#include "rdr/StreamConfig.h"

#include "plat/DString.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"
#include "rdr/exceptions.h"

#include <cstring>
#include <string>

namespace plat::StreamConfig {
namespace {

// As isspace in the C locale, whatever the locale is.
bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

struct Line {
    std::string name;
    std::string value;
    bool hasValue = false;

    const char* valueOrNull() const { return hasValue ? value.c_str() : nullptr; }
};

// The character that stands for the two at `text`, or NUL if they stand for themselves.
char unescape(const char* text) {
    static constexpr char codes[] = "nr\\";
    static constexpr char values[] = "\n\r\\";
    const char* const code = text[1] ? std::strchr(codes, text[1]) : nullptr;
    return *text == '\\' && code ? values[code - codes] : '\0';
}

// False for a blank line.
bool parse(const char* text, Line& line) {
    while (isSpace(*text))
        ++text;
    std::string plain;
    size_t kept = 0; // up to the last character that isn't white space, or was escaped
    for (; *text; ++text) {
        const char escaped = unescape(text);
        if (escaped)
            ++text;
        plain += escaped ? escaped : *text;
        if (escaped || !isSpace(*text))
            kept = plain.size();
    }
    plain.resize(kept);
    if (plain.empty())
        return false;
    const size_t equals = plain.find('=');
    line.hasValue = equals != std::string::npos;
    line.name = plain.substr(0, equals);
    line.value = line.hasValue ? plain.substr(equals + 1) : std::string();
    return true;
}

// The next line that isn't blank; false at the end of the stream or message.
bool readLine(rdr::InStream& in, Line& line) {
    plat::DString text;
    try {
        do {
            in.readLine(text);
        } while (!parse(text.c_str(), line));
    } catch (const rdr::EndOfStream&) {
        return false;
    } catch (const rdr::EndOfMsg&) {
        return false;
    }
    return true;
}

} // namespace

void read(rdr::InStream& in, Configuration& config, int priority) {
    Line line;
    while (readLine(in, line))
        config.set(line.name.c_str(), line.valueOrNull(), priority);
}

void readToMap(rdr::InStream& in, NameValueMap& map, const Configuration::AliasMap* aliases) {
    Line line;
    while (readLine(in, line)) {
        NameValueMap targets;
        const auto alias = aliases ? aliases->find(line.name) : Configuration::AliasMap::const_iterator();
        if (!aliases || alias == aliases->end())
            targets.emplace(line.name, line.valueOrNull());
        else
            alias->second->set(line.name.c_str(), line.valueOrNull(), targets);
        for (const auto& [name, value] : targets)
            map.insert_or_assign(name, value);
    }
}

String escape(const char* value) {
    if (!value)
        return String();
    DString out;
    for (; *value; ++value) {
        if (*value == '\n')
            out.append("\\n");
        else if (*value == '\r')
            out.append("\\r");
        else if (*value == '\\')
            out.append("\\\\");
        else
            out.append(value, 1);
    }
    return out.take();
}

void write(rdr::OutStream& out, const char* name, const char* value) {
    if (value)
        out.writeStr("%s=%s\n", name, escape(value).c_str());
    else
        out.writeStr("%s\n", name);
}

void writeMap(rdr::OutStream& out, const NameValueMap& map) {
    for (const auto& [name, value] : map)
        write(out, name.c_str(), value.get());
}

bool updateFromConfig(const Configuration& config, const Configuration& defaults, NameValueMap& map) {
    bool changed = false;
    for (const ConfigParameter* const param : config.getParams()) {
        const ConfigParameter* const original = defaults.find(param->getName());
        const String value = param->getValueStr();
        if (!original || original->getValueStr() == value)
            continue;
        const auto entry = map.find(param->getName());
        if (entry != map.end() && !entry->second.isNull() && entry->second == value)
            continue;
        map.insert_or_assign(param->getName(), value);
        changed = true;
    }
    return changed;
}

} // namespace plat::StreamConfig
