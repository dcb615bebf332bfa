// A scope in the user's locale, or in another language.
#pragma once

#include "loc/osLocale.h"
#include "plat/NonCopyable.h"

#include <locale.h>

#include <memory>
#include <string>

namespace loc {

class TransMap;

/// Puts the thread into the user's locale while it lives; the process stays in the C locale otherwise.
///
/// With a list the thread also speaks the first language of it. Scopes nest and end in reverse order.
class LocaleSetter : private plat::NonCopyable {
public:
    explicit LocaleSetter(const char* localeList = nullptr); ///< null or empty: the locale in force
    ~LocaleSetter();

    static const LocaleSetter* current();         ///< the thread's innermost, or null
    static const LocaleSetter* currentWithList(); ///< the innermost that has a list, or null

    const char* getOsLocale() const { return osLocale.name.c_str(); }
    Charset getCharset() const { return osLocale.charset; }
    const char* getLocaleList() const { return localeList.c_str(); } ///< "" if it chose no new one

private:
    void chooseLanguage(const char* list);

    OsLocale osLocale;
    std::string localeList;
    LocaleSetter* previous;
    std::unique_ptr<TransMap> transMap; // null unless a list was given
    locale_t ownLocale;                 // null: there is none, and the scope stays in the former one
    locale_t formerLocale = nullptr;
};

} // namespace loc
