// Ordered maps whose keys are names in ASCII, compared without regard to case.
#pragma once

#include "plat/String.h"

#include <map>
#include <string>

namespace plat {

/// Orders names by their bytes with A to Z taken as a to z, whatever the locale.
struct NoCaseLess {
    using is_transparent = void;
    static int compare(const char* a, const char* b); ///< below 0, 0 or above 0; null counts as ""
    bool operator()(const std::string& a, const std::string& b) const { return compare(a.c_str(), b.c_str()) < 0; }
    bool operator()(const std::string& a, const char* b) const { return compare(a.c_str(), b) < 0; }
    bool operator()(const char* a, const std::string& b) const { return compare(a, b.c_str()) < 0; }
};

/// Names and values of settings; a null value means a name that was given alone.
using NameValueMap = std::map<std::string, String, NoCaseLess>;

} // namespace plat
