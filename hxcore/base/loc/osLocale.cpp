#include "loc/osLocale.h"

#include "loc/localeNames.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"

#include <clocale>
#include <cstdlib>
#include <initializer_list>
#include <langinfo.h>
#include <locale.h>
#include <map>
#include <mutex>

namespace loc {
namespace {

plat::LogSrc log("Localize");
std::mutex processMutex; // of the two below it, which a thread other than the loop's may ask for
OsLocale processLocale;

struct Answer {
    bool works = false;
    OsLocale locale;
};

// Tries a name without touching the locale of the process.
class Trial {
public:
    Trial(int mask, const std::string& name) : locale(newlocale(mask, name.c_str(), nullptr)) {}
    ~Trial() {
        if (locale)
            freelocale(locale);
    }
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    bool works() const { return locale != nullptr; }
    std::string codeset() const { return locale ? nl_langinfo_l(CODESET, locale) : ""; }

private:
    locale_t locale;
};

std::string_view behind(std::string_view name, char mark, char stop) {
    const size_t start = name.find(mark);
    if (start == std::string_view::npos)
        return {};
    const std::string_view rest = name.substr(start + 1);
    return rest.substr(0, rest.find(stop));
}

Charset charsetOf(const std::string& name) {
    const std::string codeset = Trial(LC_CTYPE_MASK, name).codeset();
    return parseCharset(codeset.empty() ? behind(name, '.', '@') : codeset);
}

// The first of the codesets with which the operating system knows the locale.
bool tryCodesets(const std::string& name, std::initializer_list<const char*> codesets, Charset charset, Answer& out) {
    const LocaleName parts = LocaleName::parse(name);
    std::string base(parts.language);
    if (!parts.territory.empty())
        base.append("_").append(parts.territory);
    const std::string_view modifier = behind(name, '@', '\0');
    for (const char* const codeset : codesets) {
        std::string candidate = base + "." + codeset;
        if (!modifier.empty())
            candidate.append("@").append(modifier);
        if (Trial(LC_MESSAGES_MASK, candidate).works()) {
            out = {true, {candidate, charset}};
            return true;
        }
    }
    return false;
}

Answer find(const std::string& name) {
    if (name == "POSIX")
        return find("C"); // another name for the same
    Answer answer{true, {name, charsetOf(name)}};
    const Charset charset = answer.locale.charset;
    if (charset == Charset::Utf8)
        return answer;
    if (tryCodesets(name, {"UTF-8", "utf-8", "UTF8", "utf8"}, Charset::Utf8, answer) || charset != Charset::Unknown)
        return answer;
    if (tryCodesets(name, {"ISO-8859-1", "ISO8859-1", "iso88591", "ISO-8859-15", "ISO8859-15"}, Charset::Iso8859_1,
                    answer) ||
        tryCodesets(name, {"US-ASCII"}, Charset::Ascii, answer))
        return answer;
    return {};
}

} // namespace

Charset parseCharset(std::string_view codeset) {
    std::string plain;
    for (const char c : codeset)
        if (c != '-' && c != '_')
            plain += plat::asciiLower(c);
    if (plain == "utf8")
        return Charset::Utf8;
    if (plain.starts_with("iso88591"))
        return Charset::Iso8859_1;
    if (plain.find("ascii") != std::string::npos || plain == "isoir6" || plain == "646" ||
        plain.starts_with("iso646") || plain.starts_with("ansix3.4"))
        return Charset::Ascii;
    return Charset::Unknown;
}

bool findOsLocale(const std::string& name, OsLocale* found) {
    static std::mutex mutex; // of the cache
    static std::map<std::string, Answer> cache;
    const std::lock_guard<std::mutex> lock(mutex);
    auto entry = cache.find(name);
    if (entry == cache.end())
        entry = cache.emplace(name, find(name)).first;
    if (entry->second.works)
        *found = entry->second.locale;
    return entry->second.works;
}

OsLocale chooseOsLocale(const std::vector<std::string>& list) {
    OsLocale chosen;
    for (const std::string& name : list) {
        if (findOsLocale(name, &chosen))
            return chosen;
        log.info("No OS support for locale \"%s\"", name.c_str());
    }
    findOsLocale("C", &chosen);
    return chosen;
}

OsLocale getProcessOsLocale() {
    const std::lock_guard<std::mutex> lock(processMutex);
    return processLocale;
}

void setProcessOsLocale(const OsLocale& locale) {
    const std::lock_guard<std::mutex> lock(processMutex);
    processLocale = locale;
}

std::string environmentLocale() {
    const std::string former = std::setlocale(LC_MESSAGES, nullptr);
    const char* const name = std::setlocale(LC_MESSAGES, "");
    if (name) {
        std::string found = name;
        std::setlocale(LC_MESSAGES, former.c_str());
        return found;
    }
    // The operating system doesn't know it, but the catalogs may.
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (value && *value)
            return value;
    }
    return "C";
}

std::string toUtf8(std::string_view text, Charset charset) {
    if (charset == Charset::Utf8)
        return std::string(text);
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        char encoded[4];
        char* end = encoded;
        plat::encodeUtf8(byte >= 0x80 && charset != Charset::Iso8859_1 ? plat::replacementChar : byte, &end);
        out.append(encoded, end);
    }
    return out;
}

std::string fromUtf8(std::string_view text, Charset charset) {
    if (charset == Charset::Utf8)
        return std::string(text);
    const uint32_t last = charset == Charset::Iso8859_1 ? 0xff : 0x7f;
    std::string out;
    for (const char *pos = text.data(), *end = pos + text.size(); pos < end;) {
        uint32_t codepoint = 0;
        const bool valid = plat::utf8::decode(&pos, end, &codepoint);
        out += valid && codepoint <= last ? static_cast<char>(codepoint) : '?';
    }
    return out;
}

} // namespace loc
