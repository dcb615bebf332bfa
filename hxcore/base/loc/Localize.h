// Text for keys, in the user's language.
#pragma once

#include "loc/TransMap.h"
#include "plat/ConfigParameter.h"
#include "plat/String.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace loc {

/// All catalogs, and the list of locales that the process speaks.
///
/// Texts compiled into the libraries are there from static start-up; lookups before init report missing text. A text
/// that was handed out stays as it is to the end of the process. One key is used either raw (to be formatted) or plain
/// all through the program; mixing the two is a failed assertion.
class Localize : public plat::ParameterChangedCallback {
public:
    static Localize& instance(); ///< kept to the end of the process

    Localize(const Localize&) = delete;
    Localize& operator=(const Localize&) = delete;

    /// Joins the callbacks of the parameter Locale, then setDirs. Start-up calls it once.
    void init(const std::vector<std::string>& dirs = {});
    /// Looks for text files (strings.<locale>.po) in these directories, from the first locale on, and refreshes.
    void setDirs(const std::vector<std::string>& dirs);
    void refresh(); ///< finds the locales anew: from the parameter, else from the system

    /// Makes `map` (null: the current one) speak `list`, loading text files that are new.
    void setLocales(const std::vector<std::string>& list, TransMap* map);

    /// The text for `key`, or the key itself, logged with the caller's place (`file` may be null).
    const char* translate(const char* key, const char* file, int line, bool raw);
    const char* findTranslation(const char* key, bool raw); ///< null, and no log, if missing
    /// Raw text for the number, from the first locale that has the key with "_sing" or "_many"; else the key, logged.
    const char* translatePlural(const char* key, int count, const char* file = nullptr, int line = 0);

    /// Adds a text that stays valid to the end of the process; sorted runs of one language need no search. The first
    /// text of a key stays.
    void addString(const char* language, const char* key, const char* str);
    /// Adds or replaces a text; it is copied.
    void addTranslation(const char* language, const char* key, const char* text);

    plat::String getLocaleList() const;     ///< the locales in force, joined with ":"
    plat::String getCurrentLocales() const; ///< those of the innermost LocaleSetter with a list, else getLocaleList
    plat::String firstLocale() const;       ///< the first of getCurrentLocales

    // plat::ParameterChangedCallback
    void parameterChanged(plat::ConfigParameter*, int) override { refresh(); }

private:
    using Catalogs = std::map<std::string, Catalog, std::less<>>;

    Localize();
    void takeCompiledTexts();
    Catalog* findCatalog(std::string_view locale); // null if there is none
    const char* hand(const char* key, Translation& translation, bool raw);
    void addSystemLocales();
    void exportLanguage() const;
    bool loadLocale(const std::string& locale);
    void rebuild(TransMap& map);

    mutable std::recursive_mutex mutex;
    Catalogs catalogs;
    uint64_t version = 1; // grows with each change of the catalogs
    std::vector<std::string> locales;
    std::vector<std::string> searchDirs;
    std::set<std::string> loadedLocales; // looked for, found or not
    std::string lastLogged;
    bool initialised = false;
    Catalog* lastCatalog = nullptr; // where addString was, null at first
    std::string_view lastLanguage;
    Catalog::iterator lastPlace;
};

/// Makes missing or bad text end the process: for tests of the catalogs.
extern bool locStrict;

/// Plain text for a key, as const char*.
#define LOC_TEXT(key) ::loc::Localize::instance().translate(key, __FILE__, __LINE__, /*raw=*/false)
/// Raw text for a key, for loc::format.
#define LOC_RAW(key) ::loc::Localize::instance().translate(key, __FILE__, __LINE__, /*raw=*/true)
/// Raw text for a number of things, for loc::format.
#define LOC_PLURAL(key, count) ::loc::Localize::instance().translatePlural(key, count, __FILE__, __LINE__)

} // namespace loc
