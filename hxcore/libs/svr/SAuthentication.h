// The words for how connecting users are authenticated.
#pragma once

#include "hxauth/SAuthFlows.h"
#include "plat/String.h"

#include <vector>

namespace plat {
class Configuration;
}

namespace svr {

/// What a scheme asks of the user; its number in the steps of hxauth::SAuthFlows.
enum SchemeKind {
    SchemeUnknown = 0,
    SchemePassword = 1,    ///< a user name and password, or a password alone
    SchemeInteractive = 2, ///< a dialogue of questions
    SchemeCertificate = 3,
    SchemeSingleSignOn = 4,
    SchemeCloudSso = 6,
};

/// The schemes that the modules bring, by name: one list for the whole process.
class SAuthentication {
public:
    /// Enters or replaces a scheme. One that is not enabled is known, but not to be offered.
    static void registerScheme(const char* name, SchemeKind kind, bool enabled = true);
    static SchemeKind schemeKind(const char* name); ///< the name must be exact
    static bool isSchemeEnabled(const char* name);
};

// The value of the parameter Authentication: flows joined by ",", of names joined by "+". "None" is a flow of no steps.

/// Empty items are skipped. A flow with a name that is no scheme is left out, or throws if `strict`.
hxauth::SAuthFlows parseAuthentication(const char* text, bool strict);
plat::String serialiseAuthentication(const hxauth::SAuthFlows& flows);

/// The items of the value that are "None", or one scheme that takes a password or signs on by itself.
std::vector<plat::String> passwordSchemes(const char* text);
bool hasUserPasswordScheme(const plat::Configuration& cfg);
/// Whether `name` is a step of the value `primary`, or of `secondary`, which may be null.
bool containsScheme(const char* name, const char* primary, const char* secondary);

/// The known values of the parameter Authentication, by the number that the options know them by.
enum AuthPreset {
    AuthNotConfigured,
    AuthNone,
    AuthZef,
    AuthSystem,
    AuthSingleSignOn,
    AuthInteractive,
    AuthCertificate,
    AuthRadius,
    AuthDuo,
    AuthSecurId,
    AuthCloudSso,
    AuthCustom ///< anything else
};

/// The preset of an Authentication value, in any case of its letters; null counts as empty.
int authenticationPreset(const char* value);
const char* authenticationValue(int preset); ///< null for AuthCustom

/// How a preset is called in the user's language.
plat::String authenticationText(int preset);
/// What it means for connecting users, in a sentence; null for AuthCustom.
plat::String authenticationDescription(int preset);

/// The preset in force; AuthCustom where SecurityTypes says more than Authentication does.
int presetFromConfig(const plat::Configuration& cfg);

/// Whether the parameter SecurityTypes is "<auto>": the types follow from Authentication and Encryption.
bool hasAutoSecTypes(const plat::Configuration& cfg);

/// Appends the security types that `cfg` offers, preferred first: those of SecurityTypes, else those that
/// Authentication and Encryption come down to.
void deriveSecTypes(const plat::Configuration& cfg, std::vector<int>& result);

} // namespace svr
