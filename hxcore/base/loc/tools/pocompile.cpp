// Turns the catalogs of a library into source code, and checks catalogs against each other.
//
//   pocompile <library> <out.cpp> <loc dir>
//   pocompile --check <loc dir>...
//
// A loc dir holds {en,de,es,fr,pt}.po: entries of msgid "key" and msgstr "text", parted by empty lines; lines that
// begin with "#" are comments; a line with just a quoted string continues the one above.

#include "PoFile.h"
#include "checkCatalogs.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

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

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (!args.empty() && args[0] == "--check")
        return checkCatalogs({args.begin() + 1, args.end()});
    if (args.size() == 3)
        return compile(args[0], args[1], args[2]);
    std::cerr << "usage: pocompile <library> <out.cpp> <loc dir>\n       pocompile --check <loc dir>...\n";
    return 2;
}
