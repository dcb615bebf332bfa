// Lists of users and groups: what is read prints, and what is printed reads whole and prints the same.
#include "loc/Localize.h"
#include "sysauth/SecurityPrincipal.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    loc::Localize::instance().init();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    sysauth::PrincipalList list;
    list.fromString(text.c_str(), /*skipInvalid=*/true);
    const plat::String printed = list.toString();
    sysauth::PrincipalList again;
    again.fromString(printed.c_str(), /*skipInvalid=*/false);
    if (again.toString() != printed || again.size() != list.size())
        std::abort();
    for (int i = 0; i < list.size(); ++i)
        if (again.find(list.at(i).getName(), list.at(i).isGroup()) < 0)
            std::abort();
    list.removeDefaultEntries();
    return 0;
}
