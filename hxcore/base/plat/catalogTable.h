// The texts that are compiled into the libraries, before anybody looks one up.
#pragma once

#include <cstddef>

namespace plat {

struct CatalogEntry {
    const char* key;
    const char* text;
};

/// All texts of one library in one language, sorted by key.
struct CatalogLanguage {
    const char* language;
    const CatalogEntry* entries;
    size_t count;
};

/// The texts of one library: a static of generated code.
///
/// The library that looks texts up lies above those that hold some, so they only queue here and are taken on first
/// use. Entering takes no memory and depends on the start-up of nothing else.
struct CatalogTable {
    const char* library;
    const CatalogLanguage* languages; ///< in the order in which they are to be added
    size_t count;
    CatalogTable* next = nullptr;
};

inline constinit CatalogTable* pendingCatalogs = nullptr; ///< the newest first

inline void addCatalog(CatalogTable& table) {
    table.next = pendingCatalogs;
    pendingCatalogs = &table;
}

/// Hands over what has been entered since the last call, the newest first; null if nothing.
inline CatalogTable* takeCatalogs() {
    CatalogTable* const taken = pendingCatalogs;
    pendingCatalogs = nullptr;
    return taken;
}

} // namespace plat
