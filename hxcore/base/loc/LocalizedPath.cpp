#include "loc/LocalizedPath.h"

#include "plat/cstr.h"

#include <cstdlib>
#include <string>

namespace loc {

void LocalizedPath(plat::DString& out, const char* path, bool stripHome) {
    std::string home = plat::strOrEmpty(std::getenv("HOME"));
    home.erase(home.find_last_not_of('/') + 1);
    const char* shown = plat::strOrEmpty(path);
    // The root directory has no components to leave out.
    if (stripHome && !home.empty() && plat::startsWith(shown, (home + "/").c_str())) {
        const char* below = shown + home.size();
        while (*below == '/')
            ++below;
        if (*below)
            shown = below;
    }
    out.append(shown);
}

} // namespace loc
