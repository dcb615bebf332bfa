// Catalogs as the build reads them, more strictly than a running program does.
#pragma once

#include <map>
#include <string>

struct Entry {
    std::string text;
    int line;
};
using Catalog = std::map<std::string, Entry>;

/// The order in which generated code adds them.
inline constexpr const char* languages[] = {"de", "es", "fr", "en", "pt"};

extern int problems;                                             ///< told so far
void problem(const std::string& where, const std::string& what); ///< tells one on stderr

/// Reads <dir>/<language>.po and tells its problems; false if there is no such file.
bool readCatalog(const std::string& dir, const char* language, Catalog& catalog);
