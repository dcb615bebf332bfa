#include "svr/SAuthentication.h"

#include "loc/Localize.h"
#include "loc/format.h"

#include <iterator>
#include <strings.h>

namespace svr {
namespace {
constexpr const char* systemName = "Linux";

struct Preset {
    const char* value;  // of the parameter
    const char* key;    // what it is called
    bool namesSystem;   // the text takes the system's name
    bool afterPassword; // stands behind the text of AuthSystem
};
constexpr Preset presets[] = {
    {"", "svr_sauthentication_not_configured", false, false},
    {"None", "svr_sauthentication_none", false, false},
    {"ZefAuth", "svr_sauthentication_zefauth", false, false},
    {"SystemAuth", "svr_sauthentication_system_fmt", true, false},
    {"SingleSignOn,SystemAuth", "svr_sauthentication_sso", false, false},
    {"InteractiveSystemAuth", "svr_sauthentication_interactive_fmt", true, false},
    {"Certificate", "svr_sauthentication_certificate", false, false},
    {"SystemAuth+Radius", "svr_sauthentication_radius", false, true},
    {"SystemAuth+Duo", "svr_sauthentication_duo", false, true},
    {"SystemAuth+SecurID", "svr_sauthentication_securid", false, true},
    {"CloudSso", "svr_sauthentication_cloudsso", false, false},
};
static_assert(std::size(presets) == AuthCustom);
} // namespace

int authenticationPreset(const char* value) {
    for (size_t i = 0; i < std::size(presets); ++i)
        if (strcasecmp(value ? value : "", presets[i].value) == 0)
            return static_cast<int>(i);
    return AuthCustom;
}

plat::String authenticationText(int preset) {
    if (preset < 0 || preset >= AuthCustom)
        return plat::String(LOC_TEXT("svr_sauthentication_custom"));
    const Preset& found = presets[preset];
    if (found.namesSystem)
        return loc::formatted(LOC_RAW(found.key), {systemName});
    if (found.afterPassword)
        return plat::strFormat("%s + %s", authenticationText(AuthSystem).c_str(), LOC_TEXT(found.key));
    return plat::String(LOC_TEXT(found.key));
}

} // namespace svr
