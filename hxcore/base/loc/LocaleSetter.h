// A scope in the user's locale, or in another language.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <locale.h>
#include <memory>
#include <string>

namespace loc {

class TransMap;

enum class Charset { Unknown, Utf8, Iso8859_1, Ascii };

/// Puts the thread into the user's locale while it lives; the process stays in the C locale otherwise.
///
/// With a list the thread also speaks the first language of it. Scopes nest and end in reverse order.
class LocaleSetter : private plat::NonCopyable {
public:
    explicit LocaleSetter(const char* localeList = nullptr); ///< null or empty: the locale in force
    ~LocaleSetter();

    static LocaleSetter* current();                              ///< the thread's innermost, may be null
    static const LocaleSetter* currentWithList();                ///< the innermost that has a list, may be null
    const char* getOsLocale() const { return osLocale.c_str(); } ///< "C" if nothing better works
    Charset getCharset() const { return charset; }
    const char* getLocaleList() const { return localeList.c_str(); } ///< "" if it chose no new one

private:
    void chooseLanguage(const char* list);

    std::string osLocale = "C";
    Charset charset = Charset::Ascii;
    std::string localeList;
    LocaleSetter* previous;
    std::unique_ptr<TransMap> transMap; // null unless a list was given
    locale_t formerLocale = nullptr;    // null: newlocale failed, and the scope stays in the former one
    locale_t ownLocale = nullptr;
};

} // namespace loc
