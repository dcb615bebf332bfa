// The words for how connecting users are authenticated.
#pragma once

#include "plat/String.h"

namespace svr {

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

/// How a preset is called in the user's language.
plat::String authenticationText(int preset);

} // namespace svr
