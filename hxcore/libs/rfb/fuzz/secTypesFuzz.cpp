// Lists of security types: the names of what is read give the same list again.
#include "rfb/secTypes.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<int> types;
    rfb::parseSecTypes(text.c_str(), types);
    std::string printed;
    for (const int type : types)
        printed += std::string(rfb::secTypeName(type).c_str()) + ',';
    std::vector<int> again;
    rfb::parseSecTypes(printed.c_str(), again);
    if (again != types)
        std::abort();
    return 0;
}
