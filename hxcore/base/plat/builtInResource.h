// Files that are part of the executable.
#pragma once

#include <cstddef>
#include <cstdint>

namespace plat {

/// Bytes of a resource; size 0 and null if there is none.
struct BuiltInResource {
    size_t size = 0;
    const uint8_t* data = nullptr;
};

/// Enters a file under its name; name and data are borrowed for the life of the process. The first of a name stays.
void addBuiltInResource(const char* name, size_t size, const void* data);

BuiltInResource findBuiltInResource(const char* name);

} // namespace plat
