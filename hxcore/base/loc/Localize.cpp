#include "loc/Localize.h"

#include "loc/LocaleSetter.h"
#include "loc/PoReader.h"
#include "loc/format.h"
#include "loc/localeNames.h"
#include "loc/osLocale.h"
#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/builtInResource.h"
#include "plat/catalogTable.h"
#include "plat/file.h"
#include "plat/translate.h"
#include "plat/utf8.h"
#include "rdr/FileInStream.h"
#include "rdr/MemInStream.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>

namespace loc {

bool locStrict = false;

namespace {

plat::LogSrc log("Localize");
plat::StringParameter localeParam("Locale", plat::LocKey("loc_param_locale"), "");

// Gives the libraries below this one their texts.
class LowTranslator : public plat::Translator {
public:
    const char* translate(const char* key) override {
        return Localize::instance().translate(key, nullptr, 0, /*raw=*/false);
    }
    void translateWith(plat::DString& out, const char* key, const char* arg) override {
        format(out, Localize::instance().translate(key, nullptr, 0, /*raw=*/true), {arg});
    }
};

void reportMissing(const char* kind, const char* key, const char* file, int line) {
    const plat::String place = file ? plat::strFormat(" (%s:%d)", file, line) : plat::String();
    const plat::String text = plat::strFormat("%s for \"%s\"%s", kind, key, place.c_str());
    log.error("%s", text.c_str());
    if (!locStrict)
        return;
    std::fprintf(stderr, "%s\nAborting\n", text.c_str());
    std::abort();
}

bool isValidUtf8(const char* text) { return plat::utf8::isValid(text); }

// A name that is no path.
bool isFileLocale(const std::string& locale) {
    return std::all_of(locale.begin(), locale.end(),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; });
}

// Adds the entries of one text file to the catalog of its locale.
class TextLoader : private PoReader::Callback {
public:
    TextLoader(Localize& target, const std::string& localeName) : localize(target), locale(localeName) {}

    void loadResource() {
        const plat::String name = plat::strFormat("strings.%s.po", locale.c_str());
        const plat::BuiltInResource resource = plat::findBuiltInResource(name.c_str());
        if (!resource.data)
            return;
        rdr::MemInStream in(resource.data, resource.size);
        load(in, plat::strFormat("built-in resource %s", name.c_str()).c_str());
    }

    void loadFile(const std::string& dir) {
        const plat::String path = plat::strFormat("%s%cstrings.%s.po", dir.c_str(), '/', locale.c_str());
        try {
            if (!plat::fileExists(path.c_str()))
                return;
            if (!std::filesystem::is_regular_file(path.c_str()))
                throw plat::Exception("not a regular file"); // a FIFO would hold us up
            rdr::FileInStream in(path.c_str());
            load(in, path.c_str());
        } catch (const plat::Exception& e) {
            log.error("Error loading strings from %s: %s", path.c_str(), e.what());
        }
    }

private:
    void load(rdr::InStream& in, const char* name) {
        PoReader(*this, name, locale.c_str()).read(in);
        log.info("Loaded strings from %s", name);
    }

    // PoReader::Callback
    void addText(const char* key, const char* text) override { localize.addTranslation(locale.c_str(), key, text); }

    Localize& localize;
    const std::string& locale;
};

} // namespace

Localize& Localize::instance() {
    static auto* const inst = new Localize;
    if (plat::pendingCatalogs)
        inst->takeCompiledTexts();
    return *inst;
}

Localize::Localize() = default;

void Localize::takeCompiledTexts() {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    std::vector<const plat::CatalogTable*> tables;
    for (const plat::CatalogTable* table = plat::takeCatalogs(); table; table = table->next)
        tables.push_back(table);
    std::reverse(tables.begin(), tables.end());
    for (const plat::CatalogTable* const table : tables)
        for (const plat::CatalogLanguage* of = table->languages; of != table->languages + table->count; ++of)
            for (const plat::CatalogEntry* entry = of->entries; entry != of->entries + of->count; ++entry)
                addString(of->language, entry->key, entry->text);
}

void Localize::init(const std::vector<std::string>& dirs) {
    static LowTranslator lowTranslator;
    plat::setTranslator(&lowTranslator);
    if (!initialised)
        localeParam.addCallback(this);
    initialised = true;
    setDirs(dirs);
}

void Localize::setDirs(const std::vector<std::string>& dirs) {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    searchDirs = dirs;
    loadedLocales.clear();
    refresh();
}

void Localize::refresh() {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    locales.clear();
    const bool isChosen = !localeParam.value().isEmpty();
    if (isChosen)
        locales = normaliseLocales(localeParam.c_str());
    else
        addSystemLocales();
    locales.emplace_back("en_US");
    exportLanguage();
    if (isChosen)
        setProcessOsLocale(chooseOsLocale(locales));
    setLocales(locales, &TransMap::process());
    const std::string joined = joinLocales(locales);
    if (joined == lastLogged)
        return;
    lastLogged = joined;
    log.info("Locales %s", joined.c_str());
}

void Localize::addSystemLocales() {
    // Read once: later LANGUAGE holds our own choice.
    static const std::string environment = environmentLocale();
    static const char* const languageVariable = std::getenv("LANGUAGE");
    static const std::string language = languageVariable ? languageVariable : "";
    setProcessOsLocale(chooseOsLocale({environment}));
    if (environment == "C" || environment == "POSIX")
        return;
    const LocaleName name = LocaleName::parse(environment);
    locales = normaliseLocales(language, name);
    // C.UTF-8 says how text is written, not in which language.
    if (locales.empty() && !name.language.empty() && name.language != "C")
        locales.push_back(environment.substr(0, environment.find_first_of(".@")));
}

// For libraries that look texts up themselves.
void Localize::exportLanguage() const {
    const char* const variable = std::getenv("LANGUAGE");
    const std::string former = variable ? variable : "";
    if (former.substr(0, former.find(':')) == locales.front())
        return;
    setenv("LANGUAGE", (locales.front() + (former.empty() ? "" : ":") + former).c_str(), /*replace=*/1);
}

void Localize::setLocales(const std::vector<std::string>& list, TransMap* map) {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    TransMap& target = map ? *map : TransMap::current();
    const std::vector<std::string> expanded = expandLocales(list);
    bool loaded = false;
    for (const std::string& locale : expanded)
        loaded |= loadLocale(locale);
    if (!loaded && target.locales == expanded && target.version == version)
        return;
    target.locales = expanded;
    rebuild(target);
}

// False if it was looked for before.
bool Localize::loadLocale(const std::string& locale) {
    if (!loadedLocales.insert(locale).second)
        return false;
    TextLoader loader(*this, locale);
    loader.loadResource();
    if (!isFileLocale(locale))
        return true;
    for (const std::string& dir : searchDirs)
        loader.loadFile(dir);
    return true;
}

void Localize::rebuild(TransMap& map) {
    map.entries.clear();
    map.version = version;
    log.verbose("Updating %s TransMap with locales:", &map == &TransMap::process() ? "process" : "thread");
    for (const std::string& locale : map.locales) {
        log.verbose(" %s", locale.c_str());
        const auto catalog = catalogs.find(locale);
        if (catalog == catalogs.end())
            continue;
        for (auto& [key, translation] : catalog->second)
            map.entries.emplace(key, &translation);
    }
}

const char* Localize::hand(const char* key, Translation& translation, bool raw) {
    const TransState state = translation.state;
    if (state != TR_UNUSED) {
        ASSERT_TEXT((raw == (state == TR_RAW)), "Can't use same string as both raw and formatted - %s", key);
        return translation.getText();
    }
    translation.state = raw ? TR_RAW : TR_FORMATTED;
    if (!raw)
        translation.reduce();
    return translation.getText();
}

const char* Localize::findTranslation(const char* key, bool raw) {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    const TransMap& map = TransMap::current();
    const auto entry = map.entries.find(plat::strOrEmpty(key));
    return entry == map.entries.end() ? nullptr : hand(key, *entry->second, raw);
}

const char* Localize::translate(const char* key, const char* file, int line, bool raw) {
    const char* const text = findTranslation(key, raw);
    if (text)
        return text;
    reportMissing("Missing translation", plat::strOrEmpty(key), file, line);
    return key;
}

// By the whole name, or by the language alone.
Catalog* Localize::findCatalog(std::string_view locale) {
    auto catalog = catalogs.find(locale);
    if (catalog == catalogs.end())
        catalog = catalogs.find(LocaleName::parse(locale).language);
    return catalog == catalogs.end() ? nullptr : &catalog->second;
}

const char* Localize::translatePlural(const char* key, int count, const char* file, int line) {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    for (const std::string& locale : TransMap::current().locales) {
        Catalog* const catalog = findCatalog(locale);
        if (!catalog)
            continue;
        const plat::String pluralKey = plat::strFormat("%s_%s", key, pluralId(locale, count));
        const auto entry = catalog->find(pluralKey.view());
        if (entry != catalog->end())
            return hand(pluralKey.c_str(), entry->second, /*raw=*/true);
    }
    reportMissing("Missing plural translation", key, file, line);
    return key;
}

void Localize::addString(const char* language, const char* key, const char* str) {
    ASSERT_TEXT(isValidUtf8(str), "Bad UTF-8 in %s", key);
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    if (!lastCatalog || lastLanguage != language) {
        const auto catalog = catalogs.try_emplace(language).first;
        lastLanguage = catalog->first;
        lastCatalog = &catalog->second;
        lastPlace = lastCatalog->end();
    }
    // Keys come sorted: the place is right behind the last one.
    const auto hint = lastPlace == lastCatalog->end() ? lastPlace : std::next(lastPlace);
    const size_t before = lastCatalog->size();
    lastPlace = lastCatalog->try_emplace(hint, key);
    if (lastCatalog->size() == before)
        return;
    lastPlace->second.borrow(str);
    ++version;
}

void Localize::addTranslation(const char* language, const char* key, const char* text) {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    catalogs[language][key].copy(text);
    ++version;
}

plat::String Localize::firstLocale() const {
    const plat::String all = getCurrentLocales();
    return plat::String(all.view().substr(0, all.view().find(':')));
}

plat::String Localize::getLocaleList() const {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    return joinLocales(locales).c_str();
}

plat::String Localize::getCurrentLocales() const {
    const LocaleSetter* const setter = LocaleSetter::currentWithList();
    return setter ? plat::String(setter->getLocaleList()) : getLocaleList();
}

} // namespace loc
