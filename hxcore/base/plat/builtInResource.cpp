#include "plat/builtInResource.h"

#include "plat/cstr.h"

#include <map>
#include <string_view>

namespace plat {
namespace {

using Table = std::map<std::string_view, BuiltInResource>;

// Entries may be made before main.
Table& table() {
    static Table resources;
    return resources;
}

} // namespace

void addBuiltInResource(const char* name, size_t size, const void* data) {
    table().emplace(name, BuiltInResource{size, static_cast<const uint8_t*>(data)});
}

BuiltInResource findBuiltInResource(const char* name) {
    const auto found = table().find(strOrEmpty(name));
    return found == table().end() ? BuiltInResource{} : found->second;
}

} // namespace plat
