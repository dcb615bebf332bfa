// Where data files that all users share are looked for.
#pragma once

#include "plat/String.h"

#include <vector>

namespace os {

class SharedConfigDirs {
public:
    /// The directories in the order of the search; they need not exist.
    static std::vector<plat::String> list();

    /// The path of the first file of that name in the list, or a null string.
    static plat::String find(const char* fileName);
};

} // namespace os
