// Texts of permissions: what is read, made canonical and printed reads back as the same, and prints the same.
#include "hxauth/Permissions.h"
#include "loc/Localize.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    loc::Localize::instance().init();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    hxauth::Permissions::description(text.c_str());
    hxauth::Permissions permissions;
    try {
        permissions.fromString(text.c_str());
    } catch (const hxauth::Permissions::ParseException&) {
        return 0;
    }
    require(strcmp(permissions.toString(), text.c_str()) == 0);
    hxauth::Permissions canonical = permissions;
    canonical.normalise();
    require(hxauth::Permissions::sameEntries(permissions, canonical));
    const hxauth::Permissions again(canonical.toString());
    require(hxauth::Permissions::sameEntries(again, canonical));

    hxauth::Permissions wide("d!c");
    wide.merge(permissions);
    hxauth::Permissions narrow("d!c");
    narrow.restrict(permissions);
    for (const hxauth::Permissions& each : {wide, narrow}) {
        require(hxauth::Permissions::sameEntries(hxauth::Permissions(each.toString()), each));
        require(each.get('c') == hxauth::Permission::Denied);
    }
    return 0;
}
