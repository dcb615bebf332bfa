#include "plat/DynamicFn.h"

#include "plat/Exception.h"
#include "plat/SString.h"
#include "plat/String.h"

#include <dlfcn.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace plat {
namespace {

using Names = std::vector<std::string>;

// Cut at commas that stand outside brackets.
Names splitNames(std::string_view list) {
    Names names(1);
    bool inBrackets = false;
    for (const char c : list) {
        inBrackets = c == '[' || (inBrackets && c != ']');
        if (c == ',' && !inBrackets)
            names.emplace_back();
        else
            names.back() += c;
    }
    return names;
}

// "Xfixes[3,2]" as libXfixes.so.3, libXfixes.so.2; "Xrandr" as libXrandr.so; a file name as it is.
Names fileNames(const std::string& library) {
    if (library.find(".so") != std::string::npos)
        return {library};
    const size_t bracket = library.find('[');
    std::string stem = "lib";
    stem.append(library, 0, bracket).append(".so");
    if (bracket == std::string::npos)
        return {stem};
    const size_t end = std::min(library.find(']', bracket), library.size());
    Names names;
    for (const std::string& version : splitNames(library.substr(bracket + 1, end - bracket - 1)))
        names.push_back(std::string(stem).append(".").append(version));
    return names;
}

// The first that loads; it is never closed, since functions of it may be in use until the end.
void* openFirst(const char* libraries) {
    for (const std::string& library : splitNames(libraries))
        for (const std::string& name : fileNames(library))
            if (void* handle = dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL))
                return handle;
    return nullptr;
}

} // namespace

void* findDynamicSymbol(const char* libraries, const char* functions, char* error, int size) {
    const auto errorSize = static_cast<size_t>(size);
    void* handle = openFirst(libraries);
    if (!handle) {
        SString::format(error, errorSize, "%s: library not found for %s", libraries, functions);
        return nullptr;
    }
    for (const std::string& name : splitNames(functions))
        if (void* symbol = dlsym(handle, name.c_str()))
            return symbol;
    SString::format(error, errorSize, "%s: function %s not found", libraries, functions);
    return nullptr;
}

bool DynamicSymbol::isAvailable() const {
    if (!looked) {
        char error[1];
        symbol = findDynamicSymbol(libraries, functions, error, sizeof(error));
        looked = true;
    }
    return symbol != nullptr;
}

void* DynamicSymbol::resolve() const {
    if (isAvailable())
        return symbol;
    char error[256] = "";
    if (void* found = findDynamicSymbol(libraries, functions, error, sizeof(error)))
        return symbol = found; // installed since
    throw DynamicFnLoadFailed(error);
}

} // namespace plat
