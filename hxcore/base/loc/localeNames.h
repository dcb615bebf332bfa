// Names of locales, lists of them, and the plural rule.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace loc {

/// The parts of a name such as "pt_BR.UTF-8@x" that choose texts.
struct LocaleName {
    std::string_view language;
    std::string_view territory; // "" if the name has none

    static LocaleName parse(std::string_view name); ///< views into `name`
};

/// Splits at ":" and gives each item its territory: its own, that of `reference` for the same language, else the
/// language's usual one, else none. Items without a language are dropped.
std::vector<std::string> normaliseLocales(std::string_view list, LocaleName reference = {});

/// Each locale and its language alone, then "en_US" and "en"; repeats stay.
std::vector<std::string> expandLocales(const std::vector<std::string>& list);

std::string joinLocales(const std::vector<std::string>& list); ///< with ":"

/// "sing" or "many": the form of a text for `count` things.
const char* pluralId(std::string_view locale, int count);

} // namespace loc
