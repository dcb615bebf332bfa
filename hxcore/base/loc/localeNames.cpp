#include "loc/localeNames.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace loc {
namespace {

// A language's usual territory, sorted by language.
constexpr struct {
    std::string_view language;
    std::string_view territory;
} usualTerritories[] = {
    {"af", "ZA"}, {"be", "BY"}, {"bg", "BG"}, {"ca", "ES"}, {"cs", "CZ"}, {"da", "DK"}, {"de", "DE"}, {"dz", "BT"},
    {"el", "GR"}, {"en", "US"}, {"es", "ES"}, {"et", "EE"}, {"fa", "IR"}, {"fi", "FI"}, {"fo", "FO"}, {"fr", "FR"},
    {"ga", "IE"}, {"gu", "IN"}, {"he", "IL"}, {"hi", "IN"}, {"hr", "HR"}, {"hu", "HU"}, {"hy", "AM"}, {"is", "IS"},
    {"it", "IT"}, {"iu", "CA"}, {"ja", "JP"}, {"ka", "GE"}, {"ko", "KR"}, {"lt", "LT"}, {"lv", "LV"}, {"mk", "MK"},
    {"mr", "IN"}, {"mt", "MT"}, {"nb", "NO"}, {"ne", "NP"}, {"nl", "NL"}, {"nn", "NO"}, {"pl", "PL"}, {"pt", "BR"},
    {"ro", "RO"}, {"ru", "RU"}, {"sk", "SK"}, {"sl", "SI"}, {"sr", "RS"}, {"sv", "SE"}, {"th", "TH"}, {"to", "TO"},
    {"tr", "TR"}, {"uk", "UA"}, {"ur", "PK"}, {"uz", "UZ"}, {"vi", "VN"}, {"zh", "CN"},
};
static_assert(std::size(usualTerritories) == 54);
static_assert(std::is_sorted(std::begin(usualTerritories), std::end(usualTerritories),
                             [](const auto& a, const auto& b) { return a.language < b.language; }));

std::string_view usualTerritory(std::string_view language) {
    const auto* const row = std::lower_bound(std::begin(usualTerritories), std::end(usualTerritories), language,
                                             [](const auto& r, std::string_view l) { return r.language < l; });
    return row != std::end(usualTerritories) && row->language == language ? row->territory : std::string_view();
}

std::string normalise(const LocaleName& name, const LocaleName& reference) {
    std::string_view territory = name.territory;
    if (territory.empty() && name.language == reference.language)
        territory = reference.territory;
    if (territory.empty())
        territory = usualTerritory(name.language);
    std::string result(name.language);
    if (!territory.empty())
        result.append("_").append(territory);
    return result;
}

} // namespace

LocaleName LocaleName::parse(std::string_view name) {
    const size_t mark = name.find_first_of("_-.@");
    LocaleName parts{name.substr(0, mark), {}};
    if (mark != std::string_view::npos && (name[mark] == '_' || name[mark] == '-')) {
        const std::string_view rest = name.substr(mark + 1);
        parts.territory = rest.substr(0, rest.find_first_of(".@"));
    }
    return parts;
}

std::vector<std::string> normaliseLocales(std::string_view list, LocaleName reference) {
    std::vector<std::string> result;
    for (size_t start = 0; start <= list.size();) {
        const size_t end = std::min(list.find(':', start), list.size());
        const LocaleName name = LocaleName::parse(list.substr(start, end - start));
        if (!name.language.empty())
            result.push_back(normalise(name, reference));
        start = end + 1;
    }
    return result;
}

std::vector<std::string> expandLocales(const std::vector<std::string>& list) {
    std::vector<std::string> result;
    for (const std::string& locale : list) {
        const LocaleName name = LocaleName::parse(locale);
        result.push_back(locale);
        if (!name.territory.empty())
            result.emplace_back(name.language);
    }
    result.emplace_back("en_US");
    result.emplace_back("en");
    return result;
}

std::string joinLocales(const std::vector<std::string>& list) {
    std::string joined;
    for (const std::string& locale : list)
        joined += (joined.empty() ? "" : ":") + locale;
    return joined;
}

const char* pluralId(std::string_view locale, int count) {
    const LocaleName name = LocaleName::parse(locale);
    const auto isAny = [&](std::initializer_list<std::string_view> languages) {
        return std::find(languages.begin(), languages.end(), name.language) != languages.end();
    };
    if (isAny({"ja", "vi", "ko", "zh"}))
        return "many";
    const bool zeroIsOne = isAny({"fr"}) || (isAny({"pt"}) && (name.territory.empty() || name.territory == "BR"));
    return count == 1 || (zeroIsOne && count == 0) ? "sing" : "many";
}

} // namespace loc
