#include "checkCatalogs.h"

#include "PoFile.h"
#include "loc/Directive.h"

#include <iostream>
#include <regex.h>
#include <set>
#include <string_view>

namespace {

// What a text takes from its caller: the letter by argument position. A directive without a position takes the only
// argument. False if a directive is malformed, or they don't fit each other.
bool findArguments(std::string_view text, std::map<int, char>& arguments) {
    bool withPosition = false;
    bool withoutPosition = false;
    for (size_t i = 0; i < text.size();) {
        if (text[i++] != '%')
            continue;
        if (i < text.size() && text[i] == '%') {
            ++i;
            continue;
        }
        loc::Directive found;
        std::string_view rest = text.substr(i);
        if (!found.read(rest))
            return false;
        i = text.size() - rest.size();
        (found.position ? withPosition : withoutPosition) = true;
        const auto [place, isNew] = arguments.try_emplace(found.position ? found.position : 1, found.letter);
        // One number may be shown in two forms, but it isn't a string.
        if (!isNew && (place->second == 'S') != (found.letter == 'S'))
            return false;
    }
    return !(withPosition && withoutPosition);
}

// A POSIX extended regular expression; <regex> doesn't compile without warnings under sanitizers.
class Pattern {
public:
    explicit Pattern(const char* expression) { regcomp(&compiled, expression, REG_EXTENDED); }
    ~Pattern() { regfree(&compiled); }
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    bool isIn(const std::string& text) const { return regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0; }

    // Takes all matches out of `text` and gives them.
    std::vector<std::string> takeFrom(std::string& text) const {
        std::vector<std::string> taken;
        regmatch_t match;
        for (size_t start = 0; regexec(&compiled, text.c_str() + start, 1, &match, 0) == 0;) {
            start += static_cast<size_t>(match.rm_so);
            const auto length = static_cast<size_t>(match.rm_eo - match.rm_so);
            taken.push_back(text.substr(start, length));
            text.erase(start, length);
        }
        return taken;
    }

private:
    regex_t compiled{};
};

const Pattern markup("<(a|b|br|div|font|i|li|span|u|ul)([ /][^>]*)?>");

// The names of the elements in a text, sorted: languages put them in other orders.
std::multiset<std::string> tagsOf(std::string text) {
    std::multiset<std::string> tags;
    for (const std::string& tag : markup.takeFrom(text))
        tags.insert(tag.substr(0, tag.find_first_of(" />")));
    return tags;
}

// "&" before a letter that isn't an entity; "&&" is a plain ampersand.
bool hasMnemonic(std::string text) {
    static const Pattern plain("&&|&#?[A-Za-z0-9]+;");
    static const Pattern mnemonic("&[^& ]");
    plain.takeFrom(text);
    return mnemonic.isIn(text);
}

// A slip in the typography of a language, or null. English texts stand as they were given.
const char* findSlip(std::string_view language, std::string text) {
    static const struct {
        std::string_view languages;
        Pattern pattern;
        std::string_view unless; // is in the text
        const char* what;
    } slips[] = {
        {"de es fr pt", Pattern("[^,]\\.\\.\\."), "", " has three dots for an ellipsis"},
        {"de es fr pt", Pattern("\""), "", " has straight quotes"},
        {"de", Pattern("[A-Za-z ]\xe2\x80\xa6"), "", " lacks the no-break space before an ellipsis"},
        {"de", Pattern("[A-Za-z\x80-\xff]'"), "", " has a straight apostrophe"},
        {"fr", Pattern("[A-Za-z]'[A-Za-z\x80-\xff]"), "", " has a straight apostrophe"},
        {"fr", Pattern(" ([:;!?]|\xc2\xbb)"), "", " breaks before a mark"},
        {"fr", Pattern("\xc2\xab "), "", " breaks after a quote"},
        {"fr", Pattern("[A-Za-z]([!?]|[:;]( |$))"), "", " lacks the space before a mark"},
        {"es", Pattern("\\?( |$)"), "\u00bf", " has no opening question mark"},
        {"es", Pattern("!( |$)"), "\u00a1", " has no opening exclamation mark"},
    };
    static const Pattern address("https?://[^ ]*");
    markup.takeFrom(text);
    address.takeFrom(text);
    for (const auto& slip : slips)
        if (slip.languages.find(language) != std::string_view::npos && slip.pattern.isIn(text) &&
            (slip.unless.empty() || text.find(slip.unless) == std::string::npos))
            return slip.what;
    return nullptr;
}

void checkTexts(const std::string& dir, const char* language, const Catalog& english, const Catalog& catalog) {
    const std::string path = dir + "/" + language + ".po";
    for (const auto& [key, entry] : english)
        if (!catalog.count(key))
            problem(path, "lacks " + key);
    for (const auto& [key, entry] : catalog) {
        const std::string place = path + ":" + std::to_string(entry.line);
        const auto original = english.find(key);
        if (original == english.end()) {
            problem(place, key + " is not in en.po");
            continue;
        }
        if (entry.text.empty())
            problem(place, key + " has no text");
        std::map<int, char> wanted;
        std::map<int, char> found;
        if (!findArguments(entry.text, found))
            problem(place, key + " has a bad format directive: " + entry.text);
        else if (findArguments(original->second.text, wanted) && wanted != found)
            problem(place, key + " takes other arguments than in English: " + entry.text);
        if (tagsOf(entry.text) != tagsOf(original->second.text))
            problem(place, key + " has other markup than in English: " + entry.text);
        if (hasMnemonic(entry.text) != hasMnemonic(original->second.text))
            problem(place, key + " has no mnemonic, or one that English lacks: " + entry.text);
        const char* const slip = findSlip(language, entry.text);
        if (slip)
            problem(place, key + slip + ": " + entry.text);
    }
}

} // namespace

int checkCatalogs(const std::vector<std::string>& dirs) {
    std::map<std::string, std::string> owners; // of keys
    size_t keys = 0;
    for (const std::string& dir : dirs) {
        std::map<std::string, Catalog> catalogs;
        for (const char* const language : languages)
            if (!readCatalog(dir, language, catalogs[language]))
                problem(dir, std::string("no ") + language + ".po");
        for (const char* const language : languages)
            checkTexts(dir, language, catalogs["en"], catalogs[language]);
        for (const auto& [key, entry] : catalogs["en"]) {
            const auto [owner, isNew] = owners.try_emplace(key, dir);
            if (!isNew)
                problem(dir, key + " is also in " + owner->second);
        }
        keys += catalogs["en"].size();
    }
    std::cout << dirs.size() << " catalogs, " << keys << " keys, " << problems << " problems\n";
    return problems ? 1 : 0;
}
