#include "svr/SAuthentication.h"

#include "loc/Localize.h"
#include "loc/format.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/Splitter.h"
#include "rfb/secTypes.h"
#include "svr/SEncryption.h"

#include <cstring>
#include <iterator>
#include <map>
#include <string>

namespace svr {
namespace {
constexpr const char* systemName = "Linux";
constexpr const char* noneWord = "None";
constexpr const char* autoWord = "<auto>";

struct Preset {
    const char* value;   // of the parameter
    const char* key;     // what it is called
    bool namesSystem;    // the text takes the system's name
    bool afterPassword;  // stands behind the text of AuthSystem
    const char* descKey; // what it means; all take the system's name
};
constexpr Preset presets[] = {
    {"", "svr_sauthentication_not_configured", false, false, "svr_sauthentication_not_configured_desc_fmt"},
    {"None", "svr_sauthentication_none", false, false, "svr_sauthentication_none_desc_fmt"},
    {"ZefAuth", "svr_sauthentication_zefauth", false, false, "svr_sauthentication_zefauth_desc_fmt"},
    {"SystemAuth", "svr_sauthentication_system_fmt", true, false, "svr_sauthentication_system_desc_fmt"},
    {"SingleSignOn,SystemAuth", "svr_sauthentication_sso", false, false, "svr_sauthentication_sso_desc_fmt"},
    {"InteractiveSystemAuth", "svr_sauthentication_interactive_fmt", true, false,
     "svr_sauthentication_interactive_desc_fmt"},
    {"Certificate", "svr_sauthentication_certificate", false, false, "svr_sauthentication_certificate_desc_fmt"},
    {"SystemAuth+Radius", "svr_sauthentication_radius", false, true, "svr_sauthentication_radius_desc_fmt"},
    {"SystemAuth+Duo", "svr_sauthentication_duo", false, true, "svr_sauthentication_duo_desc_fmt"},
    {"SystemAuth+SecurID", "svr_sauthentication_securid", false, true, "svr_sauthentication_securid_desc_fmt"},
    {"CloudSso", "svr_sauthentication_cloudsso", false, false, "svr_sauthentication_cloudsso_desc_fmt"},
};
static_assert(std::size(presets) == AuthCustom);

struct Scheme {
    SchemeKind kind;
    bool enabled;
};

std::map<std::string, Scheme, std::less<>>& schemes() {
    static std::map<std::string, Scheme, std::less<>> all;
    return all;
}

// One pass over Authentication: the families take the level behind their names.
struct Walk {
    const char* level;
    bool encrypted;
};
constexpr Walk maximum{":256+", true};
constexpr Walk encrypted{":128+", true};
constexpr Walk unencrypted{"ne", false};

std::vector<Walk> walksOf(int encryption) {
    switch (encryption) {
    case EncryptAlwaysMaximum:
        return {maximum};
    case EncryptAlwaysOn:
        return {encrypted};
    case EncryptPreferOn:
        return {encrypted, unencrypted};
    case EncryptPreferOff:
        return {unencrypted, encrypted};
    case EncryptAlwaysOff:
        return {unencrypted};
    default:
        return {};
    }
}

// The types that one item of Authentication comes down to, as parseSecTypes reads them.
std::string secTypesOf(const char* item, const Walk& walk) {
    if (strcmp(item, "SingleSignOn") == 0)
        return std::string("SSO") + walk.level;
    const bool none = strcmp(item, noneWord) == 0;
    if (!none && SAuthentication::schemeKind(item) != SchemePassword)
        return "";
    std::string types = std::string("RA2") + walk.level;
    if (!walk.encrypted && (none || strcmp(item, "ZefAuth") == 0))
        types += std::string(",") + item; // the types of the same names
    return types;
}
} // namespace

void SAuthentication::registerScheme(const char* name, SchemeKind kind, bool enabled) {
    schemes()[name] = {kind, enabled};
}

SchemeKind SAuthentication::schemeKind(const char* name) {
    const auto found = schemes().find(std::string_view(plat::strOrEmpty(name)));
    return found == schemes().end() ? SchemeUnknown : found->second.kind;
}

bool SAuthentication::isSchemeEnabled(const char* name) {
    const auto found = schemes().find(std::string_view(plat::strOrEmpty(name)));
    return found != schemes().end() && found->second.enabled;
}

hxauth::SAuthFlows parseAuthentication(const char* text, bool strict) {
    hxauth::SAuthFlows flows;
    plat::String copy(text);
    for (char* pos = copy.get(); pos;) {
        char* item = plat::Splitter::split(&pos, ',');
        if (strcmp(item, noneWord) == 0) {
            flows.emplace_back();
            continue;
        }
        hxauth::AuthFlow flow;
        bool known = true;
        for (char* rest = item; rest;) {
            const char* name = plat::Splitter::split(&rest, '+');
            if (!*name)
                continue;
            const SchemeKind kind = SAuthentication::schemeKind(name);
            if (kind == SchemeUnknown && strict)
                throw plat::ExceptionFmt("Unknown auth method \"%s\"", name);
            known = known && kind != SchemeUnknown;
            flow.push_back({static_cast<uint32_t>(kind), name});
        }
        if (known && !flow.empty()) // an empty one would let everybody in
            flows.push_back(std::move(flow));
    }
    return flows;
}

plat::String serialiseAuthentication(const hxauth::SAuthFlows& flows) {
    std::string text;
    for (const hxauth::AuthFlow& flow : flows) {
        if (&flow != &flows.front())
            text += ',';
        if (flow.empty())
            text += noneWord;
        for (const hxauth::AuthStep& step : flow) {
            if (&step != &flow.front())
                text += '+';
            text += step.name.c_str();
        }
    }
    return plat::String(text.c_str());
}

std::vector<plat::String> passwordSchemes(const char* text) {
    std::vector<plat::String> names;
    plat::String copy(text);
    for (char* pos = copy.get(); pos;) {
        const char* item = plat::Splitter::split(&pos, ',');
        const SchemeKind kind = SAuthentication::schemeKind(item);
        if (strcmp(item, noneWord) == 0 || kind == SchemePassword || kind == SchemeSingleSignOn)
            names.emplace_back(item);
    }
    return names;
}

bool hasUserPasswordScheme(const plat::Configuration& cfg) {
    return parseAuthentication(cfg.getString("Authentication", "").c_str(), /*strict=*/false).hasScheme(SchemePassword);
}

bool containsScheme(const char* name, const char* primary, const char* secondary) {
    const auto has = [name](const char* value) {
        return parseAuthentication(value, /*strict=*/false).hasSchemeName(name);
    };
    return has(primary) || (secondary && has(secondary));
}

int authenticationPreset(const char* value) {
    for (size_t i = 0; i < std::size(presets); ++i)
        if (plat::strEqualsNoCase(value, presets[i].value))
            return static_cast<int>(i);
    return AuthCustom;
}

const char* authenticationValue(int preset) {
    return preset >= 0 && preset < AuthCustom ? presets[preset].value : nullptr;
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

plat::String authenticationDescription(int preset) {
    if (preset < 0 || preset >= AuthCustom)
        return plat::String();
    return loc::formatted(LOC_RAW(presets[preset].descKey), {systemName});
}

bool hasAutoSecTypes(const plat::Configuration& cfg) {
    return plat::strEquals(cfg.getString("SecurityTypes", autoWord).c_str(), autoWord);
}

int presetFromConfig(const plat::Configuration& cfg) {
    if (!hasAutoSecTypes(cfg))
        return AuthCustom;
    return authenticationPreset(cfg.getString("Authentication", "").c_str());
}

void deriveSecTypes(const plat::Configuration& cfg, std::vector<int>& result) {
    if (!hasAutoSecTypes(cfg)) {
        rfb::parseSecTypes(cfg.getString("SecurityTypes", "").c_str(), result);
        return;
    }
    for (const Walk& walk : walksOf(encryptionFromConfig(cfg))) {
        plat::String authentication = cfg.getString("Authentication", "");
        for (char* pos = authentication.get(); pos;)
            rfb::parseSecTypes(secTypesOf(plat::Splitter::split(&pos, ','), walk).c_str(), result);
    }
}

} // namespace svr
