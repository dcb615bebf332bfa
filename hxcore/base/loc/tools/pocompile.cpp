// Turns the catalogs of a library into source code, and checks catalogs against each other.
//
//   pocompile <library> <out.cpp> <loc dir>
//   pocompile --check <loc dir>...
//
// A loc dir holds {en,de,es,fr,pt}.po: entries of msgid "key" and msgstr "text", parted by empty lines; lines that
// begin with "#" are comments; a line with just a quoted string continues the one above.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

// The order in which generated code adds them.
constexpr const char* languages[] = {"de", "es", "fr", "en", "pt"};

struct Entry {
    std::string text;
    int line;
};
using Catalog = std::map<std::string, Entry>;

int problems = 0;

void problem(const std::string& where, const std::string& what) {
    std::cerr << where << ": " << what << "\n";
    ++problems;
}

// RFC 3629, and no noncharacters: the rule by which a running program checks texts.
bool isValidUtf8(std::string_view text) {
    size_t i = 0;
    while (i < text.size()) {
        const auto first = static_cast<unsigned char>(text[i++]);
        if (first < 0x80)
            continue;
        const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
        if (first < 0xc2 || first > 0xf4)
            return false;
        unsigned code = first & (0x3fU >> more);
        for (int n = 0; n < more; ++n, ++i) {
            if (i >= text.size() || (text[i] & 0xc0) != 0x80)
                return false;
            code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3fU);
        }
        const unsigned least = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
        if (code < least || code > 0x10ffff || (code >= 0xd800 && code < 0xe000))
            return false;
        if ((code >= 0xfdd0 && code <= 0xfdef) || (code & 0xfffe) == 0xfffe)
            return false;
    }
    return true;
}

// One PO file, read line by line.
class Reader {
public:
    Reader(std::string poPath, Catalog& target) : path(std::move(poPath)), catalog(target) {}

    void read(std::istream& in) {
        std::string text;
        while (std::getline(in, text)) {
            ++lineNo;
            if (!text.empty() && text.back() == '\r')
                text.pop_back();
            readLine(text);
        }
        ++lineNo;
        endEntry();
    }

private:
    enum class State { Nothing, Id, Text };

    std::string where() const { return path + ":" + std::to_string(lineNo); }

    void readLine(const std::string& text) {
        if (!isValidUtf8(text))
            return problem(where(), "bad UTF-8");
        if (text.empty())
            return endEntry();
        if (text[0] == '#')
            return;
        if (text[0] == '"') {
            if (state == State::Nothing)
                return problem(where(), "string without msgid");
            return addQuoted(text);
        }
        const size_t blank = text.find(' ');
        const char* const wanted = state == State::Nothing ? "msgid" : "msgstr";
        if (blank == std::string::npos || state == State::Text)
            return problem(where(), "bad command or string (an empty line must end an entry)");
        if (text.compare(0, blank, wanted) != 0)
            return problem(where(), std::string("expected ") + wanted);
        state = state == State::Nothing ? State::Id : State::Text;
        if (state == State::Id)
            idLine = lineNo;
        addQuoted(text.substr(blank + 1));
    }

    void endEntry() {
        if (state == State::Id)
            problem(where(), "expected msgstr");
        if (state == State::Text && !id.empty() && !catalog.try_emplace(id, Entry{message, idLine}).second)
            problem(path + ":" + std::to_string(idLine), "duplicate key " + id);
        state = State::Nothing;
        id.clear();
        message.clear();
    }

    void addQuoted(std::string_view text) {
        const size_t open = text.find_first_not_of(' ');
        if (open == std::string_view::npos || text[open] != '"')
            return problem(where(), "junk preceding string data");
        std::string& target = state == State::Id ? id : message;
        for (size_t i = open + 1; i < text.size(); ++i) {
            if (text[i] == '"') {
                if (i + 1 != text.size())
                    problem(where(), "junk following string data");
                return;
            }
            if (text[i] != '\\') {
                target += text[i];
                continue;
            }
            if (!addEscape(++i < text.size() ? text[i] : '\0', target))
                return problem(where(), "invalid escape code");
        }
        problem(where(), "missing terminator");
    }

    static bool addEscape(char code, std::string& target) {
        static constexpr std::string_view codes = "abfnrtv\"'?\\";
        static constexpr std::string_view values = "\a\b\f\n\r\t\v\"'?\\";
        const size_t place = codes.find(code);
        if (code == '\0' || place == std::string_view::npos)
            return false;
        target += values[place];
        return true;
    }

    std::string path;
    Catalog& catalog;
    State state = State::Nothing;
    int lineNo = 0;
    int idLine = 0;
    std::string id;
    std::string message;
};

// False if the file isn't there.
bool readCatalog(const std::string& dir, const char* language, Catalog& catalog) {
    const std::string path = dir + "/" + language + ".po";
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    Reader(path, catalog).read(in);
    return true;
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f && c != '"' && c != '\\' && c != '?') {
            out += c;
            continue;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\%03o", byte);
        out += escape;
    }
    return out + "\"";
}

std::string sourceText(const std::string& library, const std::map<std::string, Catalog>& catalogs) {
    std::ostringstream out;
    out << "// Made by pocompile from the texts of " << library
        << ".\n#include \"plat/catalogTable.h\"\n\nnamespace {\n";
    std::ostringstream list;
    int count = 0;
    for (const char* const language : languages) {
        const Catalog& catalog = catalogs.at(language);
        if (catalog.empty())
            continue;
        out << "const plat::CatalogEntry " << language << "[] = {\n";
        for (const auto& [key, entry] : catalog)
            out << "    {" << quoted(key) << ", " << quoted(entry.text) << "},\n";
        out << "};\n";
        list << "    {\"" << language << "\", " << language << ", sizeof " << language << " / sizeof " << language
             << "[0]},\n";
        ++count;
    }
    out << "const plat::CatalogLanguage languages[] = {\n"
        << list.str() << "};\n"
        << "constinit plat::CatalogTable table{" << quoted(library) << ", languages, " << count << "};\n\n"
        << "bool enter() {\n    static int entered = 0;\n    if (entered++ == 0)\n        plat::addCatalog(table);\n"
        << "    return true;\n}\n[[maybe_unused]] const bool atStart = enter();\n} // namespace\n";
    return out.str();
}

int compile(const std::string& library, const std::string& outPath, const std::string& dir) {
    std::map<std::string, Catalog> catalogs;
    for (const char* const language : languages)
        if (!readCatalog(dir, language, catalogs[language]) && std::string_view(language) == "en")
            problem(dir, "no en.po");
    if (catalogs["en"].empty())
        problem(dir, "en.po holds no texts");
    if (problems)
        return 1;
    std::ofstream out(outPath, std::ios::binary);
    out << sourceText(library, catalogs);
    if (!out.flush()) {
        std::cerr << outPath << ": can't write\n";
        return 1;
    }
    return 0;
}

struct Directive {
    int position = 0; // 0: none given
    bool plus = false;
    bool limit = false;
    char letter = '\0';
};

// Reads digits at `i`, moving it; 0 if there are none.
int readNumber(std::string_view text, size_t& i) {
    int number = 0;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9' && number < 10000)
        number = number * 10 + (text[i++] - '0');
    return number;
}

// Reads the directive behind a "%", its parts in any order; `i` ends behind it. False if it is malformed.
bool readDirective(std::string_view text, size_t& i, Directive& found) {
    while (i < text.size()) {
        const char c = text[i];
        if (c == '+' && !found.plus) {
            found.plus = true;
            ++i;
        } else if (c == '.' && !found.limit) {
            found.limit = true;
            if (readNumber(text, ++i) == 0)
                return false;
        } else if (c >= '1' && c <= '9' && found.position == 0) {
            found.position = readNumber(text, i);
            if (i >= text.size() || text[i++] != '$')
                return false;
        } else {
            found.letter = c;
            ++i;
            return (c == 'S' && !found.plus) || (c == 'D' && !found.limit) || (c == 'X' && !found.plus && !found.limit);
        }
    }
    return false;
}

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
        Directive found;
        if (!readDirective(text, i, found))
            return false;
        (found.position ? withPosition : withoutPosition) = true;
        const auto [place, isNew] = arguments.try_emplace(found.position ? found.position : 1, found.letter);
        // One number may be shown in two forms, but it isn't a string.
        if (!isNew && (place->second == 'S') != (found.letter == 'S'))
            return false;
    }
    return !(withPosition && withoutPosition);
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
    }
}

int check(const std::vector<std::string>& dirs) {
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

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (!args.empty() && args[0] == "--check")
        return check({args.begin() + 1, args.end()});
    if (args.size() == 3)
        return compile(args[0], args[1], args[2]);
    std::cerr << "usage: pocompile <library> <out.cpp> <loc dir>\n       pocompile --check <loc dir>...\n";
    return 2;
}
