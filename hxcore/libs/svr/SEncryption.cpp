#include "svr/SEncryption.h"

#include "loc/Localize.h"
#include "plat/Configuration.h"
#include "svr/SAuthentication.h"

#include <iterator>

namespace svr {
namespace {
struct Level {
    const char* value;      // of the parameter
    const char* labelKey;   // among choices
    const char* displayKey; // as a fact
};
constexpr Level levels[] = {
    {"AlwaysMaximum", "svr_sencryption_always_maximum", "svr_sencryption_always_maximum_display"},
    {"AlwaysOn", "svr_sencryption_always_on", "svr_sencryption_always_on_display"},
    {"PreferOn", "svr_sencryption_prefer_on", "svr_sencryption_custom_display"},
    {"PreferOff", "svr_sencryption_prefer_off", "svr_sencryption_custom_display"},
    {"AlwaysOff", "svr_sencryption_always_off", "svr_sencryption_custom_display"},
};
static_assert(std::size(levels) == EncryptUnknown);

bool isLevel(int level) { return level >= 0 && level < EncryptUnknown; }
} // namespace

int encryptionLevel(const char* value) {
    for (size_t i = 0; i < std::size(levels); ++i)
        if (plat::strEqualsNoCase(value, levels[i].value))
            return static_cast<int>(i);
    return EncryptUnknown;
}

const char* encryptionValue(int level) { return isLevel(level) ? levels[level].value : nullptr; }

int encryptionFromConfig(const plat::Configuration& cfg) {
    if (!hasAutoSecTypes(cfg))
        return EncryptUnknown;
    return encryptionLevel(cfg.getString("Encryption", "").c_str());
}

plat::String encryptionLabel(int level) {
    return LOC_TEXT(isLevel(level) ? levels[level].labelKey : "svr_sencryption_custom");
}

plat::String encryptionDisplay(int level) {
    return LOC_TEXT(isLevel(level) ? levels[level].displayKey : "svr_sencryption_custom_display");
}

} // namespace svr
