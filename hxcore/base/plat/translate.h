// Texts of the catalogs for code below the library that holds them.
#pragma once

#include "plat/DString.h"

namespace plat {

/// Gives low code its translations; the localization library installs one.
class Translator {
public:
    virtual ~Translator() = default;

    /// The plain text of `key`; stays valid to the end of the process.
    virtual const char* translate(const char* key) = 0;

    /// Appends the text of `key` with `arg` in the place of its one argument.
    virtual void translateWith(DString& out, const char* key, const char* arg) = 0;
};

void setTranslator(Translator* translator); ///< borrowed; null takes it away

/// The text of `key` in the current language, or the key itself while there is no translator.
const char* translate(const char* key);

/// Appends the text of `key` with `arg` filled in; without a translator the key, a blank and the argument.
void translateWith(DString& out, const char* key, const char* arg);

} // namespace plat
