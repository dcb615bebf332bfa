// The version texts, in the user's language.
#pragma once

#include "plat/String.h"

namespace product {

/// Made anew whenever the language changes.
struct VersionInfo {
    plat::String displayVersion;
    plat::String dottedVersion;
    plat::String buildLine;
    plat::String aboutMarkup;
    plat::String aboutText;

    void rebuild(const char* applicationName);

private:
    plat::String acknowledgementsUri() const;
    plat::String makeMarkup() const;
    plat::String makeText() const;
};

VersionInfo& versionInfo(); ///< of the process

} // namespace product
